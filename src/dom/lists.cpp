#include "dom/lists.h"

#include <limits>
#include <xercesc/util/XMLString.hpp>

#include "dom/look.h"

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

bool IsChildList(const DOMNodeList& list, const DOMNode* pHolder) {
  const xercesc::DOMParentNode* pParent = pHolder != nullptr ? ParentPart(*pHolder) : nullptr;
  return pParent != nullptr && &pParent->fChildNodeList == &list;
}

// A document type that no document has taken counts no changes, and has no children.
bool KeepsPlace(const DOMNodeList& list, const DOMNode* pHolder) {
  return IsChildList(list, pHolder) && TreeOf(*pHolder) != nullptr;
}

void ForgetWhatChanged(CPlace& place, const DOMNode& holder) {
  const int changes = Impl(*TreeOf(holder)).*reveal::CDocument::kChanges;
  if (place.m_Changes != changes) place = {.m_Changes = changes};
}

// From the first child, or from the place where that is nearer.
DOMNode* Walk(const DOMNode& holder, XMLSize_t index, CPlace& place) {
  const bool isNearer = place.m_pNode != nullptr && index >= place.m_Index / 2;
  DOMNode* pNode = isNearer ? place.m_pNode : MadeFirstChild(holder);
  XMLSize_t at = isNearer ? place.m_Index : 0;
  for (; at > index; --at) pNode = ChildPart(*pNode)->previousSibling;
  for (; at < index && pNode != nullptr; ++at) pNode = NextSibling(*pNode);
  if (pNode == nullptr) {
    place.m_Length = at;
  } else {
    place.m_pNode = pNode;
    place.m_Index = at;
  }
  return pNode;
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

DOMNode* Member(const DOMNodeList& list, const DOMNode* pHolder, CPlace& place, XMLSize_t index) {
  if (!KeepsPlace(list, pHolder)) return list.item(index);
  ForgetWhatChanged(place, *pHolder);
  return index < place.m_Length ? Walk(*pHolder, index, place) : nullptr;
}

XMLSize_t Length(const DOMNodeList& list, const DOMNode* pHolder, CPlace& place) {
  if (!KeepsPlace(list, pHolder)) return list.getLength();
  ForgetWhatChanged(place, *pHolder);
  if (place.m_Length == CPlace::kUnknown) {
    XMLSize_t length = 0;
    const DOMNode* pChild = MadeFirstChild(*pHolder);
    for (; pChild != nullptr; pChild = NextSibling(*pChild)) ++length;
    place.m_Length = length;
  }
  return place.m_Length;
}

std::vector<DOMNode*> MembersOf(const DOMNodeList& list) {
  std::vector<DOMNode*> members;
  DOMNode* pNode = list.item(0);
  if (pNode == nullptr) return members;
  if (IsChildList(list, Parent(*pNode))) {
    for (; pNode != nullptr; pNode = NextSibling(*pNode)) members.push_back(pNode);
  } else {
    for (XMLSize_t i = 1; pNode != nullptr; pNode = list.item(i++)) members.push_back(pNode);
  }
  return members;
}

}  // namespace dom
