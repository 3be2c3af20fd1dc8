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

// Visits each item of a map with the nodes below it.
template <class Visit>
void ForEachItem(const xercesc::DOMNamedNodeMap* pMap, Visit visit) {
  if (pMap == nullptr) return;
  for (XMLSize_t i = 0; i < pMap->getLength(); ++i) ForEachChild(pMap->item(i), visit);
}

// Visits `pRoot`, everything below it, and the attributes, entities and
// notations that hang beside the tree.
template <class Visit>
void ForEach(xercesc::DOMNode* pRoot, Visit visit) {
  ForEachChild(pRoot, [&](xercesc::DOMNode* pNode) {
    visit(pNode);
    const auto type = pNode->getNodeType();
    if (type == xercesc::DOMNode::ELEMENT_NODE) {
      ForEachItem(pNode->getAttributes(), visit);
    } else if (type == xercesc::DOMNode::DOCUMENT_TYPE_NODE) {
      const auto* pType = static_cast<xercesc::DOMDocumentType*>(pNode);
      ForEachItem(pType->getEntities(), visit);
      ForEachItem(pType->getNotations(), visit);
    }
  });
}

}  // namespace nodetree
