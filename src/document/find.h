// From a reference id to the object of the kind that a function needs.
#pragma once

#include <tessel/export.h>

#include "document/xercesdom.h"
#include "registry/globals.h"

namespace nodekind {

// A node's type says which interface it has, at a fraction of a run-time cast.
constexpr unsigned Bit(xercesc::DOMNode::NodeType type) { return 1u << type; }

template <class Interface>
inline constexpr unsigned kTypes = 0;
template <>
inline constexpr unsigned kTypes<xercesc::DOMElement> = Bit(xercesc::DOMNode::ELEMENT_NODE);
template <>
inline constexpr unsigned kTypes<xercesc::DOMAttr> = Bit(xercesc::DOMNode::ATTRIBUTE_NODE);
template <>
inline constexpr unsigned kTypes<xercesc::DOMText> = Bit(xercesc::DOMNode::TEXT_NODE) |
                                                     Bit(xercesc::DOMNode::CDATA_SECTION_NODE);
template <>
inline constexpr unsigned kTypes<xercesc::DOMCharacterData> = kTypes<xercesc::DOMText> |
                                                              Bit(xercesc::DOMNode::COMMENT_NODE);
template <>
inline constexpr unsigned kTypes<xercesc::DOMProcessingInstruction> =
    Bit(xercesc::DOMNode::PROCESSING_INSTRUCTION_NODE);
template <>
inline constexpr unsigned kTypes<xercesc::DOMDocumentType> =
    Bit(xercesc::DOMNode::DOCUMENT_TYPE_NODE);
template <>
inline constexpr unsigned kTypes<xercesc::DOMNotation> = Bit(xercesc::DOMNode::NOTATION_NODE);
template <>
inline constexpr unsigned kTypes<xercesc::DOMEntity> = Bit(xercesc::DOMNode::ENTITY_NODE);

}  // namespace nodekind

// Null for an id that is 0 or unknown, and for the wrong kind of
// node: the host gets one answer for all of them.
template <class Interface>
Interface* FindObject(TSXRefId id) {
  xercesc::DOMNode* pNode = g_NodeSessMap.GetPtrBySess(id);
  if (pNode == nullptr) return nullptr;
  static_assert(nodekind::kTypes<Interface> != 0);
  const bool fits = (nodekind::Bit(pNode->getNodeType()) & nodekind::kTypes<Interface>) != 0;
  return fits ? static_cast<Interface*>(pNode) : nullptr;
}

template <>
inline xercesc::DOMNode* FindObject<xercesc::DOMNode>(TSXRefId id) {
  return g_NodeSessMap.GetPtrBySess(id);
}

template <>
inline xercesc::DOMNodeList* FindObject<xercesc::DOMNodeList>(TSXRefId id) {
  return g_NodeListSessMap.GetPtrBySess(id);
}

template <>
inline xercesc::DOMNamedNodeMap* FindObject<xercesc::DOMNamedNodeMap>(TSXRefId id) {
  return g_NamedNodeMapSessMap.GetPtrBySess(id);
}

template <>
inline xercesc::DOMImplementation* FindObject<xercesc::DOMImplementation>(TSXRefId id) {
  return g_DOMImplSessMap.GetPtrBySess(id);
}

// Document objects only: the bare document node is refused.
template <>
inline CXercesDOM* FindObject<CXercesDOM>(TSXRefId id) {
  const auto entry = g_NodeSessMap.GetEntryBySess(id);
  return entry.m_Kind == ENodeKind::kDocumentObject ? static_cast<CXercesDOM*>(entry.m_pNode)
                                                    : nullptr;
}
