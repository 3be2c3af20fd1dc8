// Where a tree ends above.
#pragma once

#include "dom/look.h"

// The top of the tree that a node hangs in; for what is in an attribute, the attribute.
inline xercesc::DOMNode* TopOf(xercesc::DOMNode& node) {
  xercesc::DOMNode* pTop = &node;
  while (xercesc::DOMNode* pUp = dom::ParentOrElement(*pTop)) {
    pTop = pUp;
    if (pTop->getNodeType() == xercesc::DOMNode::ATTRIBUTE_NODE) break;
  }
  return pTop;
}

// Whether a top is one that "/" selects in any case.
inline bool IsRoot(const xercesc::DOMNode& top) {
  return dom::IsOneOf(top, dom::Bit(xercesc::DOMNode::DOCUMENT_NODE) |
                               dom::Bit(xercesc::DOMNode::DOCUMENT_FRAGMENT_NODE));
}
