// From a reference id to the object of the kind that a function needs.
#pragma once

#include <tessel/export.h>

#include <optional>

#include "document/xercesdom.h"
#include "dom/maps.h"
#include "registry/globals.h"

namespace nodekind {

// A node's type says which interface it has, at a fraction of a run-time cast.
template <class Interface>
inline constexpr unsigned kTypes = 0;
template <>
inline constexpr unsigned kTypes<xercesc::DOMElement> = dom::Bit(xercesc::DOMNode::ELEMENT_NODE);
template <>
inline constexpr unsigned kTypes<xercesc::DOMAttr> = dom::Bit(xercesc::DOMNode::ATTRIBUTE_NODE);
template <>
inline constexpr unsigned kTypes<xercesc::DOMText> =
    dom::Bit(xercesc::DOMNode::TEXT_NODE) | dom::Bit(xercesc::DOMNode::CDATA_SECTION_NODE);
template <>
inline constexpr unsigned kTypes<xercesc::DOMCharacterData> = dom::kCharacterTypes;
template <>
inline constexpr unsigned kTypes<xercesc::DOMProcessingInstruction> =
    dom::Bit(xercesc::DOMNode::PROCESSING_INSTRUCTION_NODE);
template <>
inline constexpr unsigned kTypes<xercesc::DOMDocumentType> =
    dom::Bit(xercesc::DOMNode::DOCUMENT_TYPE_NODE);
template <>
inline constexpr unsigned kTypes<xercesc::DOMNotation> = dom::Bit(xercesc::DOMNode::NOTATION_NODE);
template <>
inline constexpr unsigned kTypes<xercesc::DOMEntity> = dom::Bit(xercesc::DOMNode::ENTITY_NODE);

}  // namespace nodekind

// Null for an id that is 0 or unknown, and for the wrong kind of
// node: the host gets one answer for all of them.
template <class Interface>
auto FindObject(TSXRefId id) {
  xercesc::DOMNode* pNode = g_NodeSessMap.GetPtrBySess(id);
  static_assert(nodekind::kTypes<Interface> != 0);
  const bool fits = pNode != nullptr && dom::IsOneOf(*pNode, nodekind::kTypes<Interface>);
  return fits ? static_cast<Interface*>(pNode) : nullptr;
}

// The node of the DOM behind a registered one: a document object stands for its document.
inline xercesc::DOMNode* NodeBehind(const CDOMNodeSessMap::CEntry& entry) {
  if (entry.m_Kind != ENodeKind::kDocumentObject) return entry.m_pNode;
  return static_cast<CXercesDOM*>(entry.m_pNode)->DocumentNode();
}

template <>
inline auto FindObject<xercesc::DOMNode>(TSXRefId id) {
  return NodeBehind(g_NodeSessMap.GetEntryBySess(id));
}

template <>
inline auto FindObject<xercesc::DOMNodeList>(TSXRefId id) {
  return g_NodeListSessMap.GetPtrBySess(id);
}

// A list with its holder and its last reading.
template <>
inline auto FindObject<CHeld<xercesc::DOMNodeList>>(TSXRefId id) {
  const auto held = g_NodeListSessMap.GetHeldBySess(id);
  return held.m_pCollection != nullptr ? std::optional(held) : std::nullopt;
}

template <>
inline auto FindObject<xercesc::DOMNamedNodeMap>(TSXRefId id) {
  return g_NamedNodeMapSessMap.GetPtrBySess(id);
}

// A map with the node that holds it.
template <>
inline auto FindObject<dom::CMap>(TSXRefId id) {
  const auto held = g_NamedNodeMapSessMap.GetHeldBySess(id);
  std::optional<dom::CMap> map;
  if (held.m_pHolder != nullptr) map.emplace(dom::CMap{*held.m_pCollection, *held.m_pHolder});
  return map;
}

template <>
inline auto FindObject<xercesc::DOMImplementation>(TSXRefId id) {
  return g_DOMImplSessMap.GetPtrBySess(id);
}

// Document objects only: the bare document node is refused.
template <>
inline auto FindObject<CXercesDOM>(TSXRefId id) {
  const auto entry = g_NodeSessMap.GetEntryBySess(id);
  return entry.m_Kind == ENodeKind::kDocumentObject ? static_cast<CXercesDOM*>(entry.m_pNode)
                                                    : nullptr;
}
