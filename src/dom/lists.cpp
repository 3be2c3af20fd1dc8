#include "dom/lists.h"

#include <limits>
#include <xercesc/util/XMLString.hpp>

#include "dom/look.h"

using xercesc::DOMDocumentImpl;
using xercesc::DOMNodeList;
using xercesc::XMLString;

namespace dom {

namespace {

bool IsAny(const XMLCh* pText) { return XMLString::equals(pText, u"*"); }

// Asking for an index before the first forgets the place.
DOMNodeList* FromItsFront(DOMNodeList* pList) {
  pList->item(std::numeric_limits<XMLSize_t>::max());
  return pList;
}

template <class Test>
std::vector<DOMNode*> ElementsBelow(const DOMNode& root, Test test) {
  std::vector<DOMNode*> elements;
  for (DOMNode* pNode = Next(root, root); pNode != nullptr; pNode = Next(*pNode, root)) {
    if (pNode->getNodeType() == DOMNode::ELEMENT_NODE && test(*pNode)) elements.push_back(pNode);
  }
  return elements;
}

// It is the list that its first member's parent gives.
bool IsChildList(const DOMNodeList& list, const DOMNode& first) {
  const DOMNode* pParent = Parent(first);
  return pParent != nullptr && &ParentPart(*pParent)->fChildNodeList == &list;
}

}  // namespace

DOMNodeList* ListByName(DOMNode& root, const XMLCh* pName) {
  return FromItsFront(Impl(*TreeOf(root)).getDeepNodeList(&root, pName));
}

DOMNodeList* ListByNameNS(DOMNode& root, const XMLCh* pURI, const XMLCh* pLocalName) {
  return FromItsFront(Impl(*TreeOf(root)).getDeepNodeList(&root, pURI, pLocalName));
}

std::vector<DOMNode*> ElementsByName(const DOMNode& root, const XMLCh* pName) {
  return ElementsBelow(root, [pName, any = IsAny(pName)](const DOMNode& element) {
    return any || XMLString::equals(As<xercesc::DOMElementImpl>(element).fName, pName);
  });
}

std::vector<DOMNode*> ElementsByNameNS(const DOMNode& root, const XMLCh* pURI,
                                       const XMLCh* pLocalName) {
  const auto isIn = [pURI, any = IsAny(pURI)](const DOMNode& element) {
    return any || XMLString::equals(element.getNamespaceURI(), pURI);
  };
  return ElementsBelow(root, [&, any = IsAny(pLocalName)](const DOMNode& element) {
    return isIn(element) && (any || XMLString::equals(element.getLocalName(), pLocalName));
  });
}

std::vector<DOMNode*> MembersOf(const DOMNodeList& list) {
  std::vector<DOMNode*> members;
  DOMNode* pNode = list.item(0);
  if (pNode == nullptr) return members;
  if (IsChildList(list, *pNode)) {
    for (; pNode != nullptr; pNode = NextSibling(*pNode)) members.push_back(pNode);
  } else {
    for (XMLSize_t i = 1; pNode != nullptr; pNode = list.item(i++)) members.push_back(pNode);
  }
  return members;
}

}  // namespace dom
