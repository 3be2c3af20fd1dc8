#include <tessel/collections.h>
#include <tessel/status.h>

#include "api/frame.h"
#include "collections/close.h"
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

// Enters a node in a map. The maps of a document type would take any node and tear
// it out of its tree, so every map refuses other kinds as the attribute maps do.
template <class Call>
void SetItem(DOMNamedNodeMap& map, DOMNode& node, CDetachedNodeOut& out, Call set) {
  const DOMNode* pHolder = g_NamedNodeMapSessMap.HolderOf(&map);
  if (pHolder != nullptr && node.getNodeType() != KindOf(map, *pHolder)) {
    throw DOMException(DOMException::HIERARCHY_REQUEST_ERR);
  }
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
  return Get<DOMNamedNodeMap, Maps<>>(
      map, domErrRefGetNamedItemNS, CNodeOut(nodeOut),
      [](auto& m, auto* pURI, auto* pName) { return m.getNamedItemNS(pURI, pName); }, namespaceURI,
      localName);
}

TSXStatus TSXSetNamedItem(TSXRefId map, TSXRefId node, TSXRefId* replacedOut) {
  return SetNamedItem(map, node, replacedOut, domErrRefSetNamedItem, domErrRefSetNamedItemArg,
                      [](auto& m, auto& n) { return m.setNamedItem(&n); });
}

TSXStatus TSXSetNamedItemNS(TSXRefId map, TSXRefId node, TSXRefId* replacedOut) {
  return SetNamedItem(map, node, replacedOut, domErrRefSetNamedItemNS, domErrRefSetNamedItemNSArg,
                      [](auto& m, auto& n) { return m.setNamedItemNS(&n); });
}

TSXStatus TSXRemoveNamedItem(TSXRefId map, HStr* name, TSXRefId* removedOut) {
  return Get<DOMNamedNodeMap, CMapsRemove>(
      map, domErrRefRemoveNamedItem, CDetachedNodeOut(removedOut),
      [](auto& m, auto* pName) { return m.removeNamedItem(pName); }, name);
}

TSXStatus TSXRemoveNamedItemNS(TSXRefId map, HStr* namespaceURI, HStr* localName,
                               TSXRefId* removedOut) {
  return Get<DOMNamedNodeMap, CMapsRemove>(
      map, domErrRefRemoveNamedItemNS, CDetachedNodeOut(removedOut),
      [](auto& m, auto* pURI, auto* pName) { return m.removeNamedItemNS(pURI, pName); },
      namespaceURI, localName);
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

void TSXNamedNodeMapClose(TSXRefId map) { CloseReference(g_NamedNodeMapSessMap, map); }
