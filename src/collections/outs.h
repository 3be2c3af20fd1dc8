// The outs that only collections have.
#pragma once

#include <tessel/collections.h>
#include <tessel/values.h>

#include "api/detached.h"
#include "api/outs.h"
#include "collections/fillers.h"

// The id of a list or a map.
template <class Collection>
class CHeldOut {
 public:
  CHeldOut(TSXRefId* pId, CPtrSessMap<Collection>& registry) : m_pId(pId), m_Registry(registry) {
    *m_pId = 0;
  }
  TSXStatus Fail(TSXStatus status) { return status; }
  TSXStatus Store(CHeld<Collection> held) {
    *m_pId = m_Registry.InsertHeld(held);
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
