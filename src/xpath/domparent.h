// The node that a node hangs on.
#pragma once

#include <xercesc/dom/DOM.hpp>

// The parent, for an attribute its element; null at the top of a tree.
inline xercesc::DOMNode* DomParent(const xercesc::DOMNode& node) {
  if (node.getNodeType() == xercesc::DOMNode::ATTRIBUTE_NODE) {
    return static_cast<const xercesc::DOMAttr&>(node).getOwnerElement();
  }
  return node.getParentNode();
}
