// The neighbours of a node.
#pragma once

#include <xercesc/dom/DOM.hpp>

// The parent, for an attribute its element; null at the top of a tree.
inline xercesc::DOMNode* DomParent(const xercesc::DOMNode& node) {
  if (node.getNodeType() == xercesc::DOMNode::ATTRIBUTE_NODE) {
    return static_cast<const xercesc::DOMAttr&>(node).getOwnerElement();
  }
  return node.getParentNode();
}

// The top of the tree that a node hangs in; for what is in an attribute, the attribute.
inline xercesc::DOMNode* DomTop(xercesc::DOMNode& node) {
  xercesc::DOMNode* pTop = &node;
  while (xercesc::DOMNode* pUp = DomParent(*pTop)) {
    pTop = pUp;
    if (pTop->getNodeType() == xercesc::DOMNode::ATTRIBUTE_NODE) break;
  }
  return pTop;
}

// Whether a top is one that "/" selects in any case.
inline bool DomIsRoot(const xercesc::DOMNode& top) {
  const xercesc::DOMNode::NodeType type = top.getNodeType();
  return type == xercesc::DOMNode::DOCUMENT_NODE ||
         type == xercesc::DOMNode::DOCUMENT_FRAGMENT_NODE;
}

inline xercesc::DOMNode* DomFirstChild(const xercesc::DOMNode& node) {
  return node.getFirstChild();
}

inline xercesc::DOMNode* DomNextSibling(const xercesc::DOMNode& node) {
  return node.getNextSibling();
}

inline xercesc::DOMNode* DomPreviousSibling(const xercesc::DOMNode& node) {
  return node.getPreviousSibling();
}

// What getNodeValue gives, at less cost where one text holds it.
inline const XMLCh* DomAttributeValue(const xercesc::DOMNode& attribute) {
  const xercesc::DOMNode* pText = DomFirstChild(attribute);
  if (pText == nullptr || pText->getNodeType() != xercesc::DOMNode::TEXT_NODE ||
      DomNextSibling(*pText) != nullptr) {
    return attribute.getNodeValue();
  }
  return pText->getNodeValue();
}
