#include <tessel/collections.h>
#include <tessel/status.h>

#include "api/frame.h"
#include "collections/outs.h"

using xercesc::DOMDocumentType;
using xercesc::DOMNamedNodeMap;
using xercesc::DOMNode;

namespace {

using CHeldMap = CHeld<DOMNamedNodeMap>;

CHeldOut<DOMNamedNodeMap> MapOut(TSXRefId* pId) { return {pId, g_NamedNodeMapSessMap}; }

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
  return Get<dom::CMap, Maps<>>(map, domErrRefGetNamedItemNS, CNodeOut(nodeOut), dom::FindItemNS,
                                namespaceURI, localName);
}

TSXStatus TSXSetNamedItem(TSXRefId map, TSXRefId node, TSXRefId* replacedOut) {
  return GetAll<CMapsSetItem>(CDetachedNodeOut(replacedOut),
                              std::tuple{CRef<dom::CMap>{map, domErrRefSetNamedItem},
                                         CRef<DOMNode>{node, domErrRefSetNamedItemArg}},
                              kReplacing<dom::SetItem>);
}

TSXStatus TSXSetNamedItemNS(TSXRefId map, TSXRefId node, TSXRefId* replacedOut) {
  return GetAll<CMapsSetItem>(CDetachedNodeOut(replacedOut),
                              std::tuple{CRef<dom::CMap>{map, domErrRefSetNamedItemNS},
                                         CRef<DOMNode>{node, domErrRefSetNamedItemNSArg}},
                              kReplacing<dom::SetItemNS>);
}

TSXStatus TSXRemoveNamedItem(TSXRefId map, HStr* name, TSXRefId* removedOut) {
  return Get<dom::CMap, CMapsRemove>(map, domErrRefRemoveNamedItem, CDetachedNodeOut(removedOut),
                                     dom::RemoveItem, name);
}

TSXStatus TSXRemoveNamedItemNS(TSXRefId map, HStr* namespaceURI, HStr* localName,
                               TSXRefId* removedOut) {
  return Get<dom::CMap, CMapsRemove>(map, domErrRefRemoveNamedItemNS, CDetachedNodeOut(removedOut),
                                     dom::RemoveItemNS, namespaceURI, localName);
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

void TSXNamedNodeMapClose(TSXRefId map) { g_NamedNodeMapSessMap.CloseKnown(map); }
