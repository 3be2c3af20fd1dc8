// Walks every node that is released together with a given one.
#pragma once

#include <xercesc/dom/DOM.hpp>

namespace nodetree {

// The node after `pNode` in document order within the subtree of `pRoot`,
// children only; null at the end. Needs no stack, however deep the tree.
inline xercesc::DOMNode* Next(const xercesc::DOMNode* pNode, const xercesc::DOMNode* pRoot) {
  if (xercesc::DOMNode* pChild = pNode->getFirstChild()) return pChild;
  while (pNode != pRoot) {
    if (xercesc::DOMNode* pSibling = pNode->getNextSibling()) return pSibling;
    pNode = pNode->getParentNode();
    if (pNode == nullptr) return nullptr;
  }
  return nullptr;
}

template <class Visit>
void ForEachChild(xercesc::DOMNode* pRoot, Visit visit) {
  for (xercesc::DOMNode* pNode = pRoot; pNode != nullptr; pNode = Next(pNode, pRoot)) visit(pNode);
}

// Visits `pRoot`, everything below it, and the attributes, entities and notations
// that hang beside the tree, each with all that is released with it. Calls itself for
// these, but never deep: what an entity holds has attributes, and those hold text.
template <class Visit>
void ForEach(xercesc::DOMNode* pRoot, const Visit& visit) {
  const auto forEachItem = [&](const xercesc::DOMNamedNodeMap* pMap) {
    for (XMLSize_t i = 0; pMap != nullptr && i < pMap->getLength(); ++i) {
      ForEach(pMap->item(i), visit);
    }
  };
  ForEachChild(pRoot, [&](xercesc::DOMNode* pNode) {
    visit(pNode);
    const auto type = pNode->getNodeType();
    if (type == xercesc::DOMNode::ELEMENT_NODE) {
      forEachItem(pNode->getAttributes());
    } else if (type == xercesc::DOMNode::DOCUMENT_TYPE_NODE) {
      const auto* pType = static_cast<xercesc::DOMDocumentType*>(pNode);
      forEachItem(pType->getEntities());
      forEachItem(pType->getNotations());
    }
  });
}

}  // namespace nodetree
