#include "dom/maps.h"

#include <xercesc/dom/impl/DOMNamedNodeMapImpl.hpp>

#include "dom/attributes.h"
#include "dom/checks.h"

using xercesc::DOMElement;
using xercesc::DOMException;

namespace dom {

namespace {

bool IsOfElement(const CMap& map) { return map.m_Holder.getNodeType() == DOMNode::ELEMENT_NODE; }

// The hash table behind a map of a document type.
struct CBuckets : xercesc::DOMNamedNodeMapImpl {
  static constexpr auto kBuckets = &CBuckets::fBuckets;
};

// The DOM stops the process when it copies a table with a bucket that was emptied.
void DropEmptyBuckets(xercesc::DOMNamedNodeMap& map) {
  auto& table = static_cast<xercesc::DOMNamedNodeMapImpl&>(map);
  for (auto*& pBucket : table.*CBuckets::kBuckets) {
    if (pBucket != nullptr && pBucket->size() == 0) pBucket = nullptr;
  }
}

// The one kind of node that a map of a document type may hold.
DOMNode::NodeType KindOf(const CMap& map) {
  const auto* pEntities = As<xercesc::DOMDocumentType>(map.m_Holder).getEntities();
  return pEntities == &map.m_Map ? DOMNode::ENTITY_NODE : DOMNode::NOTATION_NODE;
}

// The DOM would take any node, tear it out of its tree or leave it in two maps. Before
// that it makes checks of its own.
void CheckTypeItem(const CMap& map, const DOMNode& node, bool ownedIsRefused) {
  CheckItem(map.m_Holder, node);
  if (ownedIsRefused && IsOwned(node)) Refuse(DOMException::INUSE_ATTRIBUTE_ERR);
  if (node.getNodeType() != KindOf(map)) Refuse(DOMException::HIERARCHY_REQUEST_ERR);
  if (IsOwned(node) && map.m_Map.getNamedItem(node.getNodeName()) != &node) {
    Refuse(DOMException::INUSE_ATTRIBUTE_ERR);
  }
}

}  // namespace

DOMNode* FindItemNS(const CMap& map, const XMLCh* pURI, const XMLCh* pLocalName) {
  return *pLocalName != 0 ? map.m_Map.getNamedItemNS(pURI, pLocalName) : nullptr;
}

DOMNode* SetItem(const CMap& map, DOMNode& node) {
  if (IsOfElement(map)) return SetInMap(As<DOMElement>(map.m_Holder), node);
  CheckTypeItem(map, node, node.getNodeType() == DOMNode::ATTRIBUTE_NODE);
  if (IsOwned(node)) return &node;
  return map.m_Map.setNamedItem(&node);
}

// Items of a document type have no local name.
DOMNode* SetItemNS(const CMap& map, DOMNode& node) {
  if (IsOfElement(map)) return SetInMapNS(As<DOMElement>(map.m_Holder), node);
  CheckTypeItem(map, node, true);
  return map.m_Map.setNamedItem(&node);
}

DOMNode* RemoveItem(const CMap& map, const XMLCh* pName) {
  DOMNode* pRemoved = map.m_Map.removeNamedItem(pName);
  if (!IsOfElement(map)) DropEmptyBuckets(map.m_Map);
  return pRemoved;
}

DOMNode* RemoveItemNS(const CMap& map, const XMLCh* pURI, const XMLCh* pLocalName) {
  const DOMNode* pItem = FindItemNS(map, pURI, pLocalName);
  if (pItem == nullptr) return RemoveItem(map, u"");
  if (pItem->getLocalName() == nullptr) return RemoveItem(map, pItem->getNodeName());
  return map.m_Map.removeNamedItemNS(pURI, pLocalName);
}

}  // namespace dom
