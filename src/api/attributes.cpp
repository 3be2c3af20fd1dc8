#include <tessel/attributes.h>
#include <tessel/status.h>

#include "api/frame.h"
#include "api/outs.h"
#include "document/domimpl.h"
#include "document/release.h"

using xercesc::DOMAttr;
using xercesc::DOMElement;
using xercesc::DOMException;
using xercesc::DOMNode;

namespace {

using CMapsReadOnly = Maps<DOMException::NO_MODIFICATION_ALLOWED_ERR>;
using CMapsName =
    Maps<DOMException::INVALID_CHARACTER_ERR, DOMException::NO_MODIFICATION_ALLOWED_ERR>;
using CMapsQualifiedName =
    Maps<DOMException::INVALID_CHARACTER_ERR, DOMException::NO_MODIFICATION_ALLOWED_ERR,
         DOMException::NAMESPACE_ERR>;
using CMapsSetNode =
    Maps<DOMException::WRONG_DOCUMENT_ERR, DOMException::NO_MODIFICATION_ALLOWED_ERR,
         DOMException::INUSE_ATTRIBUTE_ERR>;
using CMapsRemoveNode =
    Maps<DOMException::NO_MODIFICATION_ALLOWED_ERR, DOMException::NOT_FOUND_ERR>;

// The element's attribute of this name space and qualified name; null for none.
DOMAttr* AttributeOf(const DOMElement& element, const XMLCh* pURI, const XMLCh* pQualifiedName) {
  const int colon = xercesc::XMLString::indexOf(pQualifiedName, u':');
  return element.getAttributeNodeNS(pURI, pQualifiedName + colon + 1);
}

// Contract: an attribute argument is not checked for its kind by a code of its own;
// another kind gets what the DOM answers. The DOM may not be asked, since it calls
// what only an attribute has, so its answer is given here.
DOMAttr& AsAttribute(const DOMElement& element, DOMNode& node, short answer) {
  if (node.getNodeType() == DOMNode::ATTRIBUTE_NODE) return static_cast<DOMAttr&>(node);
  if (domimpl::IsReadOnly(element)) answer = DOMException::NO_MODIFICATION_ALLOWED_ERR;
  throw DOMException(answer);
}

// Sets an attribute node. The one it replaced is detached from here on and belongs
// to the document object, the new one to the element. They are one where the
// element has the attribute already, hence the order.
template <class Call>
void ReplaceAttribute(DOMElement& element, DOMAttr& attribute, CNodeOut& out, Call setNode) {
  if (DOMAttr* pReplaced = setNode(element, attribute)) {
    if (pReplaced == &attribute) domimpl::Reclaim(attribute, element);
    out.Store(pReplaced);
    g_NodeDomMap.Insert(pReplaced, g_NodeDomMap.GetDomByNode(element.getOwnerDocument()));
  }
  g_NodeDomMap.DeleteByNode(&attribute);
}

template <class Call>
TSXStatus SetAttributeNode(TSXRefId element, TSXRefId attribute, TSXRefId* pReplacedOut,
                           TSXStatus badElement, TSXStatus badAttribute, short wrongKind,
                           Call setNode) {
  CNodeOut out(pReplacedOut);
  auto* pElement = FindObject<DOMElement>(element);
  auto* pAttribute = FindObject<DOMNode>(attribute);
  if (pElement == nullptr) return badElement;
  if (pAttribute == nullptr) return badAttribute;
  const TSXStatus status = CMapsSetNode::Run([&] {
    ReplaceAttribute(*pElement, AsAttribute(*pElement, *pAttribute, wrongKind), out, setNode);
  });
  return status == 0 ? 0 : out.Fail(status);
}

}  // namespace

TSXStatus TSXHasAttribute(TSXRefId element, HStr* name, uint8_t* flagOut) {
  return Get<DOMElement, Unguarded>(
      element, domErrRefHasAttribute, CFlagOut(flagOut),
      [](auto& e, auto* pName) { return e.hasAttribute(pName); }, name);
}

TSXStatus TSXHasAttributeNS(TSXRefId element, HStr* namespaceURI, HStr* localName,
                            uint8_t* flagOut) {
  return Get<DOMElement, Unguarded>(
      element, domErrRefHasAttributeNS, CFlagOut(flagOut),
      [](auto& e, auto* pURI, auto* pName) { return e.hasAttributeNS(pURI, pName); }, namespaceURI,
      localName);
}

TSXStatus TSXGetAttribute(TSXRefId element, HStr* name, HStr* valueOut) {
  return Get<DOMElement, Unguarded>(
      element, domErrRefGetAttribute, CStringOut(valueOut),
      [](auto& e, auto* pName) { return e.getAttribute(pName); }, name);
}

TSXStatus TSXGetAttributeNS(TSXRefId element, HStr* namespaceURI, HStr* localName, HStr* valueOut) {
  return Get<DOMElement, Unguarded>(
      element, domErrRefGetAttributeNS, CStringOut(valueOut),
      [](auto& e, auto* pURI, auto* pName) { return e.getAttributeNS(pURI, pName); }, namespaceURI,
      localName);
}

TSXStatus TSXSetAttribute(TSXRefId element, HStr* name, HStr* value) {
  return Do<DOMElement, CMapsName>(
      element, domErrRefSetAttribute,
      [](auto& e, auto* pName, auto* pValue) {
        auto doomed = CDoomedNodes::Below(e.getAttributeNode(pName));
        e.setAttribute(pName, pValue);
        doomed.Withdraw();
      },
      name, value);
}

TSXStatus TSXSetAttributeNS(TSXRefId element, HStr* namespaceURI, HStr* qualifiedName,
                            HStr* value) {
  return Do<DOMElement, CMapsQualifiedName>(
      element, domErrRefSetAttributeNS,
      [](auto& e, auto* pURI, auto* pName, auto* pValue) {
        auto doomed = CDoomedNodes::Below(AttributeOf(e, pURI, pName));
        e.setAttributeNS(pURI, pName, pValue);
        doomed.Withdraw();
      },
      namespaceURI, qualifiedName, value);
}

TSXStatus TSXRemoveAttribute(TSXRefId element, HStr* name) {
  return Do<DOMElement, CMapsReadOnly>(
      element, domErrRefRemoveAttribute,
      [](auto& e, auto* pName) {
        auto doomed = CDoomedNodes::Whole(e.getAttributeNode(pName));
        e.removeAttribute(pName);
        doomed.Withdraw();
      },
      name);
}

TSXStatus TSXRemoveAttributeNS(TSXRefId element, HStr* namespaceURI, HStr* localName) {
  return Do<DOMElement, CMapsReadOnly>(
      element, domErrRefRemoveAttributeNS,
      [](auto& e, auto* pURI, auto* pName) {
        auto doomed = CDoomedNodes::Whole(e.getAttributeNodeNS(pURI, pName));
        // Unlike by name, the DOM leaves the attribute in its index of IDs.
        if (!domimpl::IsReadOnly(e)) doomed.RemoveFromIndex();
        e.removeAttributeNS(pURI, pName);
        doomed.Withdraw();
      },
      namespaceURI, localName);
}

TSXStatus TSXGetAttributeNode(TSXRefId element, HStr* name, TSXRefId* attributeOut) {
  return Get<DOMElement, Unguarded>(
      element, domErrRefGetAttributeNode, CNodeOut(attributeOut),
      [](auto& e, auto* pName) { return e.getAttributeNode(pName); }, name);
}

TSXStatus TSXGetAttributeNodeNS(TSXRefId element, HStr* namespaceURI, HStr* localName,
                                TSXRefId* attributeOut) {
  return Get<DOMElement, Unguarded>(
      element, domErrRefGetAttributeNodeNS, CNodeOut(attributeOut),
      [](auto& e, auto* pURI, auto* pName) { return e.getAttributeNodeNS(pURI, pName); },
      namespaceURI, localName);
}

// Contract: the element's code is the one of TSXSetAttribute.
TSXStatus TSXSetAttributeNode(TSXRefId element, TSXRefId attribute, TSXRefId* replacedOut) {
  return SetAttributeNode(element, attribute, replacedOut, domErrRefSetAttribute,
                          domErrRefSetAttributeNodeArg, DOMException::WRONG_DOCUMENT_ERR,
                          [](auto& e, auto& attr) { return e.setAttributeNode(&attr); });
}

TSXStatus TSXSetAttributeNodeNS(TSXRefId element, TSXRefId attribute, TSXRefId* replacedOut) {
  return SetAttributeNode(element, attribute, replacedOut, domErrRefSetAttributeNodeNS,
                          domErrRefSetAttributeNodeNSArg, DOMException::HIERARCHY_REQUEST_ERR,
                          [](auto& e, auto& attr) { return e.setAttributeNodeNS(&attr); });
}

// Contract: the attribute is freed however many hand-outs of its id are open. They are
// dead from here on.
TSXStatus TSXRemoveAttributeNode(TSXRefId element, TSXRefId attribute) {
  auto* pElement = FindObject<DOMElement>(element);
  auto* pAttribute = FindObject<DOMNode>(attribute);
  if (pElement == nullptr) return domErrRefRemoveAttributeNode;
  if (pAttribute == nullptr) return domErrRefRemoveAttributeNodeArg;
  return CMapsRemoveNode::Run([&] {
    DOMAttr& attr = AsAttribute(*pElement, *pAttribute, DOMException::NOT_FOUND_ERR);
    domimpl::Refile(attr);
    ReleaseNode(pElement->removeAttributeNode(&attr));
  });
}

TSXStatus TSXGetElementById(TSXRefId document, HStr* elementId, TSXRefId* elementOut) {
  return Get<CXercesDOM, Unguarded>(
      document, domErrRefGetElementById, CNodeOut(elementOut),
      [](auto& dom, auto* pId) { return dom.m_pDoc->getElementById(pId); }, elementId);
}
