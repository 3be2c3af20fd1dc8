#include <tessel/collections.h>
#include <tessel/status.h>

#include <xercesc/dom/impl/DOMNamedNodeMapImpl.hpp>
#include <xercesc/dom/impl/DOMNodeVector.hpp>

#include "api/frame.h"
#include "collections/outs.h"
#include "document/domimpl.h"

using xercesc::DOMDocumentType;
using xercesc::DOMException;
using xercesc::DOMNamedNodeMap;
using xercesc::DOMNode;

namespace {

using CHeldMap = CHeld<DOMNamedNodeMap>;
using CMapsSet = Maps<DOMException::WRONG_DOCUMENT_ERR, DOMException::NO_MODIFICATION_ALLOWED_ERR,
                      DOMException::INUSE_ATTRIBUTE_ERR>;
using CMapsRemove = Maps<DOMException::NO_MODIFICATION_ALLOWED_ERR, DOMException::NOT_FOUND_ERR>;

CHeldOut<DOMNamedNodeMap> MapOut(TSXRefId* pId) { return {pId, g_NamedNodeMapSessMap}; }

// The one kind of node that a map may hold.
DOMNode::NodeType KindOf(const DOMNamedNodeMap& map, const DOMNode& holder) {
  if (holder.getNodeType() != DOMNode::DOCUMENT_TYPE_NODE) return DOMNode::ATTRIBUTE_NODE;
  const bool entities = static_cast<const DOMDocumentType&>(holder).getEntities() == &map;
  return entities ? DOMNode::ENTITY_NODE : DOMNode::NOTATION_NODE;
}

// Whether a map of the same document, but another one, holds the node.
bool IsInOtherMap(const DOMNamedNodeMap& map, const DOMNode& holder, const DOMNode& node) {
  return domimpl::IsOwned(node) && node.getOwnerDocument() == holder.getOwnerDocument() &&
         map.getNamedItem(node.getNodeName()) != &node;
}

// The maps of a document type would take any node, tear it out of its tree or leave it
// in two maps. Every map refuses what the attribute maps do.
void CheckItem(const DOMNamedNodeMap& map, const DOMNode& holder, const DOMNode& node) {
  if (node.getNodeType() != KindOf(map, holder)) {
    throw DOMException(DOMException::HIERARCHY_REQUEST_ERR);
  }
  if (node.getNodeType() != DOMNode::ATTRIBUTE_NODE && IsInOtherMap(map, holder, node)) {
    throw DOMException(DOMException::INUSE_ATTRIBUTE_ERR);
  }
}

// The hash table behind a map of a document type.
class CBuckets : xercesc::DOMNamedNodeMapImpl {
 public:
  // The DOM stops the process when it copies a table with a bucket that was emptied.
  static void DropEmpty(DOMNamedNodeMap& map) {
    auto& table = static_cast<xercesc::DOMNamedNodeMapImpl&>(map);
    for (auto*& pBucket : table.*(&CBuckets::fBuckets)) {
      if (pBucket != nullptr && pBucket->size() == 0) pBucket = nullptr;
    }
  }
};

// To the DOM, items without a local name all have the same one, and so has an empty name
// asked for. Here they go by their whole name, and an empty one finds nothing.
constexpr auto kFindNS = [](auto& map, auto* pURI, auto* pName) -> DOMNode* {
  return *pName != 0 ? map.getNamedItemNS(pURI, pName) : nullptr;
};
constexpr auto kRemove = [](auto& map, auto* pName) {
  DOMNode* pRemoved = map.removeNamedItem(pName);
  if (pRemoved->getNodeType() != DOMNode::ATTRIBUTE_NODE) CBuckets::DropEmpty(map);
  return pRemoved;
};
constexpr auto kRemoveNS = [](auto& map, auto* pURI, auto* pName) {
  const DOMNode* pItem = kFindNS(map, pURI, pName);
  if (pItem == nullptr) return kRemove(map, u"");
  return pItem->getLocalName() != nullptr ? map.removeNamedItemNS(pURI, pName)
                                          : kRemove(map, pItem->getNodeName());
};
constexpr auto kSetNS = [](auto& map, auto& node) {
  const bool byName = node.getLocalName() == nullptr && !domimpl::IsOwned(node);
  return byName ? map.setNamedItem(&node) : map.setNamedItemNS(&node);
};

// Enters a node in a map.
template <class Call>
void SetItem(DOMNamedNodeMap& map, DOMNode& node, CDetachedNodeOut& out, Call set) {
  const DOMNode* pHolder = g_NamedNodeMapSessMap.HolderOf(&map);
  if (pHolder != nullptr) CheckItem(map, *pHolder, node);
  DOMNode* pReplaced = set(map, node);
  if (pReplaced == &node && pHolder != nullptr) {
    domimpl::Reclaim(node, const_cast<DOMNode&>(*pHolder));
  }
  out.Store(pReplaced);
  g_NodeDomMap.DeleteByNode(&node);
}

template <class Call>
TSXStatus SetNamedItem(TSXRefId map, TSXRefId node, TSXRefId* pReplacedOut, TSXStatus badMap,
                       TSXStatus badNode, Call set) {
  CDetachedNodeOut out(pReplacedOut);
  auto* pMap = FindObject<DOMNamedNodeMap>(map);
  auto* pNode = FindObject<DOMNode>(node);
  if (pMap == nullptr) return badMap;
  if (pNode == nullptr) return badNode;
  const TSXStatus status = CMapsSet::Run([&] { SetItem(*pMap, *pNode, out, set); });
  return status == 0 ? 0 : out.Fail(status);
}

}  // namespace

TSXStatus TSXGetAttributes(TSXRefId node, uint64_t, TSXRefId* mapOut) {
  return Get<DOMNode, Maps<>>(node, domErrRefGetAttributes, MapOut(mapOut), [](auto& n) {
    return CHeldMap{n.getAttributes(), &n};
  });
}

TSXStatus TSXGetEntities(TSXRefId documentType, uint64_t, TSXRefId* mapOut) {
  return Get<DOMDocumentType, Maps<>>(documentType, domErrRefGetEntities, MapOut(mapOut),
                                      [](auto& type) {
                                        return CHeldMap{type.getEntities(), &type};
                                      });
}

TSXStatus TSXGetNotations(TSXRefId documentType, uint64_t, TSXRefId* mapOut) {
  return Get<DOMDocumentType, Maps<>>(documentType, domErrRefGetNotations, MapOut(mapOut),
                                      [](auto& type) {
                                        return CHeldMap{type.getNotations(), &type};
                                      });
}

TSXStatus TSXGetArray(TSXRefId map, uint64_t, GenericRefObjSessionArray* nodesOut) {
  return Get<DOMNamedNodeMap, Maps<>>(map, domErrRefGetArray, CArrayOut(nodesOut),
                                      [](auto& m) { return &m; });
}

TSXStatus TSXGetNamedItem(TSXRefId map, HStr* name, TSXRefId* nodeOut) {
  return Get<DOMNamedNodeMap, Maps<>>(
      map, domErrRefGetNamedItem, CNodeOut(nodeOut),
      [](auto& m, auto* pName) { return m.getNamedItem(pName); }, name);
}

TSXStatus TSXGetNamedItemNS(TSXRefId map, HStr* namespaceURI, HStr* localName, TSXRefId* nodeOut) {
  return Get<DOMNamedNodeMap, Maps<>>(map, domErrRefGetNamedItemNS, CNodeOut(nodeOut), kFindNS,
                                      namespaceURI, localName);
}

TSXStatus TSXSetNamedItem(TSXRefId map, TSXRefId node, TSXRefId* replacedOut) {
  return SetNamedItem(map, node, replacedOut, domErrRefSetNamedItem, domErrRefSetNamedItemArg,
                      [](auto& m, auto& n) { return m.setNamedItem(&n); });
}

TSXStatus TSXSetNamedItemNS(TSXRefId map, TSXRefId node, TSXRefId* replacedOut) {
  return SetNamedItem(map, node, replacedOut, domErrRefSetNamedItemNS, domErrRefSetNamedItemNSArg,
                      kSetNS);
}

TSXStatus TSXRemoveNamedItem(TSXRefId map, HStr* name, TSXRefId* removedOut) {
  return Get<DOMNamedNodeMap, CMapsRemove>(map, domErrRefRemoveNamedItem,
                                           CDetachedNodeOut(removedOut), kRemove, name);
}

TSXStatus TSXRemoveNamedItemNS(TSXRefId map, HStr* namespaceURI, HStr* localName,
                               TSXRefId* removedOut) {
  return Get<DOMNamedNodeMap, CMapsRemove>(map, domErrRefRemoveNamedItemNS,
                                           CDetachedNodeOut(removedOut), kRemoveNS, namespaceURI,
                                           localName);
}

TSXStatus TSXGetNamedNodeMapItem(TSXRefId map, int32_t index, TSXRefId* nodeOut) {
  return Get<DOMNamedNodeMap, Maps<>>(map, domErrRefGetNamedNodeMapItem, CNodeOut(nodeOut),
                                      [&](auto& m) -> DOMNode* {
                                        if (index < 0) return nullptr;
                                        return m.item(static_cast<XMLSize_t>(index));
                                      });
}

TSXStatus TSXGetNamedNodeMapLength(TSXRefId map, uint64_t, int32_t* lengthOut) {
  return Get<DOMNamedNodeMap, Maps<>>(map, domErrRefGetNamedNodeMapLength, CCountOut(lengthOut),
                                      [](auto& m) { return m.getLength(); });
}

void TSXNamedNodeMapClose(TSXRefId map) { g_NamedNodeMapSessMap.DeleteBySess(map); }
