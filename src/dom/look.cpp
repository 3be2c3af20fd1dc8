#include "dom/look.h"

#include <xercesc/dom/impl/DOMNodeListImpl.hpp>
#include <xercesc/util/XMLString.hpp>

using xercesc::DOMAttr;
using xercesc::DOMElement;
using xercesc::XMLString;

namespace dom {

namespace {

struct CList : xercesc::DOMNodeListImpl {
  static constexpr auto kParent = &CList::fNode;
};

// As the XML library compares names that are not null.
int Compare(const XMLCh* pName, const XMLCh* pOther) {
  for (; *pName != 0 && *pName == *pOther; ++pName) ++pOther;
  return int{*pName} - int{*pOther};
}

}  // namespace

xercesc::DOMDocument& DocumentBehind(const DOMNode& node) {
  const auto& list = static_cast<const xercesc::DOMNodeListImpl&>(*node.getChildNodes());
  return *(list.*CList::kParent)->fOwnerDocument;
}

// The map is in the order of the names.
DOMAttr* Attribute(const DOMElement& element, const XMLCh* pName) {
  xercesc::DOMNodeVector* pItems = AttributesOf(As<xercesc::DOMElementImpl>(element));
  if (pItems == nullptr) return nullptr;
  XMLSize_t first = 0;
  XMLSize_t end = pItems->size();
  while (first < end) {
    const XMLSize_t middle = (first + end - 1) / 2;  // as the DOM, of several equal names
    auto& attribute = As<xercesc::DOMAttrImpl>(*pItems->elementAt(middle));
    const int order = Compare(pName, attribute.fName);
    if (order == 0) return &attribute;
    (order < 0 ? end : first) = order < 0 ? middle : middle + 1;
  }
  return nullptr;
}

// Those without a local name go by their whole name.
// Contract: an empty local name finds one without a local name, as the DOM finds it.
DOMAttr* AttributeNS(const DOMElement& element, const XMLCh* pURI, const XMLCh* pLocalName) {
  xercesc::DOMNodeVector* pItems = AttributesOf(As<xercesc::DOMElementImpl>(element));
  const XMLSize_t count = pItems != nullptr ? pItems->size() : 0;
  for (XMLSize_t i = 0; i < count; ++i) {
    auto& attribute = As<xercesc::DOMAttrImpl>(*pItems->elementAt(i));
    const XMLCh* pLocal = attribute.getLocalName();
    const bool fits = XMLString::equals(pLocalName, pLocal) ||
                      (pLocal == nullptr && XMLString::equals(pLocalName, attribute.fName));
    if (fits && XMLString::equals(attribute.getNamespaceURI(), pURI)) return &attribute;
  }
  return nullptr;
}

}  // namespace dom
