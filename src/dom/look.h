// Looking at a tree: neighbours, owners and attributes of a node, by its parts. The
// answers are those of the DOM's own operations, at a fraction of their cost.
#pragma once

#include <string_view>

#include "dom/parts.h"

namespace dom {

// The document that a node of document type stands for: itself, or for a document object
// the document that it wraps. Both answer with the same list of children, which knows
// the document whose it is.
xercesc::DOMDocument& DocumentBehind(const DOMNode& node);

inline bool IsReadOnly(const DOMNode& node) { return NodePart(node).isReadOnly(); }

// Whether a tree, an element or a map owns the node.
inline bool IsOwned(const DOMNode& node) { return NodePart(node).isOwned(); }

// The first child that is there. An entity makes its children when it is first asked for
// them, which this does not do.
inline DOMNode* MadeFirstChild(const DOMNode& node) {
  const xercesc::DOMParentNode* pParent = ParentPart(node);
  return pParent != nullptr ? pParent->fFirstChild : nullptr;
}
inline DOMNode* FirstChildAs(const DOMNode& node, DOMNode::NodeType type) {
  if (type == DOMNode::ENTITY_NODE) return node.getFirstChild();
  const xercesc::DOMParentNode* pParent = ParentPart(node, type);
  return pParent != nullptr ? pParent->fFirstChild : nullptr;
}
inline DOMNode* FirstChild(const DOMNode& node) { return FirstChildAs(node, node.getNodeType()); }

inline DOMNode* NextSiblingAs(const DOMNode& node, DOMNode::NodeType type) {
  const xercesc::DOMChildNode* pChild = ChildPart(node, type);
  return pChild != nullptr ? pChild->nextSibling : nullptr;
}
inline DOMNode* NextSibling(const DOMNode& node) { return NextSiblingAs(node, node.getNodeType()); }

// The last child is found from the first one, whose link to a previous sibling it takes.
inline DOMNode* LastChild(const DOMNode& node) {
  const DOMNode* pFirst = FirstChild(node);
  return pFirst != nullptr ? ChildPart(*pFirst)->previousSibling : nullptr;
}

inline DOMNode* PreviousSibling(const DOMNode& node) {
  const xercesc::DOMChildNode* pChild = ChildPart(node);
  if (pChild == nullptr || NodePart(node).isFirstChild()) return nullptr;
  return pChild->previousSibling;
}

// Null for a document, an attribute, and a node that hangs nowhere.
inline DOMNode* Parent(const DOMNode& node) {
  if (!IsOneOf(node, kChildTypes)) return nullptr;
  const xercesc::DOMNodeImpl& part = NodePart(node);
  return part.isOwned() ? part.fOwnerNode : nullptr;
}

// The element of an attribute; null for a detached one.
inline xercesc::DOMElement* OwnerElement(const xercesc::DOMAttr& attribute) {
  const xercesc::DOMNodeImpl& part = NodePart(attribute);
  return part.isOwned() ? static_cast<xercesc::DOMElement*>(part.fOwnerNode) : nullptr;
}

// The parent, for an attribute its element; null at the top of a tree.
inline DOMNode* ParentOrElement(const DOMNode& node) {
  if (node.getNodeType() != DOMNode::ATTRIBUTE_NODE) return Parent(node);
  return OwnerElement(static_cast<const xercesc::DOMAttr&>(node));
}

// Null for a document and a document type that no document has taken.
inline xercesc::DOMDocument* OwnerDocumentAs(const DOMNode& node, DOMNode::NodeType type) {
  switch (type) {
    case DOMNode::TEXT_NODE:
      return As<xercesc::DOMTextImpl>(node).fCharacterData.fDoc;
    case DOMNode::CDATA_SECTION_NODE:
      return (As<xercesc::DOMCDATASectionImpl>(node).*reveal::CCData::kData).fDoc;
    case DOMNode::COMMENT_NODE:
      return As<xercesc::DOMCommentImpl>(node).fCharacterData.fDoc;
    case DOMNode::PROCESSING_INSTRUCTION_NODE:
      return (As<xercesc::DOMProcessingInstructionImpl>(node).*reveal::CInstruction::kData).fDoc;
    case DOMNode::DOCUMENT_NODE:
      return nullptr;
    case DOMNode::NOTATION_NODE:
      return node.getOwnerDocument();
    default:
      return ParentPart(node, type)->fOwnerDocument;
  }
}
inline xercesc::DOMDocument* OwnerDocument(const DOMNode& node) {
  return OwnerDocumentAs(node, node.getNodeType());
}

// The document of a node, the node itself for a document; null as for OwnerDocument.
inline xercesc::DOMDocument* TreeOf(const DOMNode& node) {
  if (node.getNodeType() != DOMNode::DOCUMENT_NODE) return OwnerDocument(node);
  return &As<xercesc::DOMDocumentImpl>(node);
}

// -- Attributes -------------------------------------------------------------------

// Null for none.
xercesc::DOMAttr* Attribute(const xercesc::DOMElement& element, const XMLCh* pName);
xercesc::DOMAttr* AttributeNS(const xercesc::DOMElement& element, const XMLCh* pURI,
                              const XMLCh* pLocalName);

// The value of an attribute; the document keeps it.
inline const XMLCh* Value(const xercesc::DOMAttr& attribute) {
  const DOMNode* pText = As<xercesc::DOMAttrImpl>(attribute).fParent.fFirstChild;
  if (pText == nullptr) return u"";
  if (pText->getNodeType() != DOMNode::TEXT_NODE) return attribute.getValue();
  const auto& text = As<xercesc::DOMTextImpl>(*pText);
  return text.fChild.nextSibling == nullptr ? text.fCharacterData.fDataBuf->getRawBuffer()
                                            : attribute.getValue();
}

// -- Walking ----------------------------------------------------------------------

// The node behind `node` and all that is below it, in document order within the subtree of
// `root`, children only; null at the end.
inline DOMNode* After(const DOMNode& node, const DOMNode& root) {
  for (const DOMNode* pUp = &node; pUp != nullptr && pUp != &root; pUp = Parent(*pUp)) {
    if (DOMNode* pSibling = NextSibling(*pUp)) return pSibling;
  }
  return nullptr;
}

// The node after `node`, which may be below it. Needs no stack, however deep the tree.
// Whoever begins at an entity has asked for its first child before.
inline DOMNode* Next(const DOMNode& node, const DOMNode& root) {
  DOMNode* pChild = MadeFirstChild(node);
  return pChild != nullptr ? pChild : After(node, root);
}

// Visits a node and everything below it, children only, in document order.
template <class Visit>
void ForEachBelow(DOMNode& root, Visit visit) {
  for (DOMNode* pNode = &root; pNode != nullptr; pNode = Next(*pNode, root)) visit(*pNode);
}

// The same with the attributes, entities and notations that hang beside the tree, each
// with all that is in it. It calls itself for these, never deeper than an entity that
// holds an element that holds an attribute. An entity that nobody looked into stays so.
template <class Visit>
void ForEachWithin(DOMNode& root, const Visit& visit) {
  const auto forEachItem = [&](const xercesc::DOMNamedNodeMap* pMap) {
    for (XMLSize_t i = 0; pMap != nullptr && i < pMap->getLength(); ++i) {
      ForEachWithin(*pMap->item(i), visit);
    }
  };
  ForEachBelow(root, [&](DOMNode& node) {
    visit(node);
    if (node.getNodeType() == DOMNode::ELEMENT_NODE) {
      forEachItem(As<xercesc::DOMElementImpl>(node).fAttributes);
    } else if (node.getNodeType() == DOMNode::DOCUMENT_TYPE_NODE) {
      forEachItem(As<xercesc::DOMDocumentType>(node).getEntities());
      forEachItem(As<xercesc::DOMDocumentType>(node).getNotations());
    }
  });
}

}  // namespace dom
