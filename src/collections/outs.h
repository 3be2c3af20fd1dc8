// The outs that only collections have.
#pragma once

#include <tessel/collections.h>
#include <tessel/values.h>

#include "api/outs.h"
#include "collections/fillers.h"

// A collection and the node whose memory it lives in.
template <class Collection>
struct CHeld {
  Collection* m_pCollection = nullptr;
  const xercesc::DOMNode* m_pHolder = nullptr;
};

// The id of a list or a map.
template <class Collection>
class CHeldOut {
 public:
  CHeldOut(TSXRefId* pId, CPtrSessMap<Collection>& registry) : m_pId(pId), m_Registry(registry) {
    *m_pId = 0;
  }
  TSXStatus Fail(TSXStatus status) { return status; }
  TSXStatus Store(CHeld<Collection> held) {
    *m_pId = held.m_pHolder != nullptr ? m_Registry.InsertHeld(held.m_pCollection, *held.m_pHolder)
                                       : m_Registry.Insert(held.m_pCollection);
    return 0;
  }

 private:
  TSXRefId* m_pId;
  CPtrSessMap<Collection>& m_Registry;
};

// An array of node ids, disposed of on failure.
class CArrayOut {
 public:
  explicit CArrayOut(GenericRefObjSessionArray* pArray) : m_pArray(pArray) {}
  TSXStatus Fail(TSXStatus status) {
    ClearArray(m_pArray);
    return status;
  }
  TSXStatus Store(xercesc::DOMNodeList* pList) {
    TSUNodeListToArray(m_pArray, pList);
    return 0;
  }
  TSXStatus Store(std::span<xercesc::DOMNode* const> nodes) {
    StoreNodes(nodes, m_pArray);
    return 0;
  }
  TSXStatus Store(xercesc::DOMNamedNodeMap* pMap) {
    TSUNamedNodeMapToArray(m_pArray, pMap);
    return 0;
  }

 private:
  GenericRefObjSessionArray* m_pArray;
};

// A node that the call took out of a map: it lives on with its document object,
// and closing its id frees it.
class CDetachedNodeOut : public CNodeOut {
 public:
  using CNodeOut::CNodeOut;
  TSXStatus Store(xercesc::DOMNode* pNode) {
    const TSXStatus status = CNodeOut::Store(pNode);
    if (pNode != nullptr) {
      g_NodeDomMap.Insert(pNode, g_NodeDomMap.GetDomByNode(pNode->getOwnerDocument()));
    }
    return status;
  }
};
