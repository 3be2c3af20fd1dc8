#include <tessel/attributes.h>
#include <tessel/status.h>

#include "api/detached.h"
#include "api/frame.h"
#include "api/outs.h"
#include "dom/attributes.h"
#include "dom/look.h"

using xercesc::DOMElement;
using xercesc::DOMNode;

namespace {

const XMLCh* ValueOf(const xercesc::DOMAttr* pAttribute) {
  return pAttribute != nullptr ? dom::Value(*pAttribute) : u"";
}

}  // namespace

TSXStatus TSXHasAttribute(TSXRefId element, HStr* name, uint8_t* flagOut) {
  return Get<DOMElement, Unguarded>(
      element, domErrRefHasAttribute, CFlagOut(flagOut),
      [](auto& e, auto* pName) { return dom::Attribute(e, pName) != nullptr; }, name);
}

TSXStatus TSXHasAttributeNS(TSXRefId element, HStr* namespaceURI, HStr* localName,
                            uint8_t* flagOut) {
  return Get<DOMElement, Unguarded>(
      element, domErrRefHasAttributeNS, CFlagOut(flagOut),
      [](auto& e, auto* pURI, auto* pName) { return dom::AttributeNS(e, pURI, pName) != nullptr; },
      namespaceURI, localName);
}

TSXStatus TSXGetAttribute(TSXRefId element, HStr* name, HStr* valueOut) {
  return Get<DOMElement, Unguarded>(
      element, domErrRefGetAttribute, CStringOut(valueOut),
      [](auto& e, auto* pName) { return ValueOf(dom::Attribute(e, pName)); }, name);
}

TSXStatus TSXGetAttributeNS(TSXRefId element, HStr* namespaceURI, HStr* localName, HStr* valueOut) {
  return Get<DOMElement, Unguarded>(
      element, domErrRefGetAttributeNS, CStringOut(valueOut),
      [](auto& e, auto* pURI, auto* pName) { return ValueOf(dom::AttributeNS(e, pURI, pName)); },
      namespaceURI, localName);
}

TSXStatus TSXSetAttribute(TSXRefId element, HStr* name, HStr* value) {
  return Do<DOMElement, CMapsSetName>(element, domErrRefSetAttribute, dom::SetAttribute, name,
                                      value);
}

TSXStatus TSXSetAttributeNS(TSXRefId element, HStr* namespaceURI, HStr* qualifiedName,
                            HStr* value) {
  return Do<DOMElement, CMapsSetQualifiedName>(
      element, domErrRefSetAttributeNS, dom::SetAttributeNS, namespaceURI, qualifiedName, value);
}

TSXStatus TSXRemoveAttribute(TSXRefId element, HStr* name) {
  return Do<DOMElement, CMapsReadOnly>(element, domErrRefRemoveAttribute, dom::RemoveAttribute,
                                       name);
}

TSXStatus TSXRemoveAttributeNS(TSXRefId element, HStr* namespaceURI, HStr* localName) {
  return Do<DOMElement, CMapsReadOnly>(element, domErrRefRemoveAttributeNS, dom::RemoveAttributeNS,
                                       namespaceURI, localName);
}

TSXStatus TSXGetAttributeNode(TSXRefId element, HStr* name, TSXRefId* attributeOut) {
  return Get<DOMElement, Unguarded>(
      element, domErrRefGetAttributeNode, CNodeOut(attributeOut),
      [](auto& e, auto* pName) { return dom::Attribute(e, pName); }, name);
}

TSXStatus TSXGetAttributeNodeNS(TSXRefId element, HStr* namespaceURI, HStr* localName,
                                TSXRefId* attributeOut) {
  return Get<DOMElement, Unguarded>(
      element, domErrRefGetAttributeNodeNS, CNodeOut(attributeOut),
      [](auto& e, auto* pURI, auto* pName) { return dom::AttributeNS(e, pURI, pName); },
      namespaceURI, localName);
}

// Contract: the element's code is the one of TSXSetAttribute. The attribute's kind has no
// code of its own; another kind gets what the DOM answers.
TSXStatus TSXSetAttributeNode(TSXRefId element, TSXRefId attribute, TSXRefId* replacedOut) {
  return GetAll<CMapsSetItem>(CDetachedNodeOut(replacedOut),
                              std::tuple{CRef<DOMElement>{element, domErrRefSetAttribute},
                                         CRef<DOMNode>{attribute, domErrRefSetAttributeNodeArg}},
                              kReplacing<dom::SetAttributeNode>);
}

TSXStatus TSXSetAttributeNodeNS(TSXRefId element, TSXRefId attribute, TSXRefId* replacedOut) {
  return GetAll<CMapsSetItem>(CDetachedNodeOut(replacedOut),
                              std::tuple{CRef<DOMElement>{element, domErrRefSetAttributeNodeNS},
                                         CRef<DOMNode>{attribute, domErrRefSetAttributeNodeNSArg}},
                              kReplacing<dom::SetAttributeNodeNS>);
}

// Contract: the attribute is freed however many hand-outs of its id are open. They are
// dead from here on.
TSXStatus TSXRemoveAttributeNode(TSXRefId element, TSXRefId attribute) {
  return DoAll<CMapsRemove>(std::tuple{CRef<DOMElement>{element, domErrRefRemoveAttributeNode},
                                       CRef<DOMNode>{attribute, domErrRefRemoveAttributeNodeArg}},
                            dom::RemoveAttributeNode);
}

TSXStatus TSXGetElementById(TSXRefId document, HStr* elementId, TSXRefId* elementOut) {
  return Get<CXercesDOM, Unguarded>(
      document, domErrRefGetElementById, CNodeOut(elementOut),
      [](auto& dom, auto* pId) { return dom.m_pDoc->getElementById(pId); }, elementId);
}
