#include "dom/attributes.h"

#include <memory>
#include <xercesc/dom/impl/DOMNodeIDMap.hpp>

#include "dom/checks.h"
#include "dom/edit.h"
#include "dom/hashroom.h"
#include "dom/idindex.h"
#include "dom/look.h"
#include "dom/release.h"

using xercesc::DOMAttr;
using xercesc::DOMDocumentImpl;
using xercesc::DOMElement;
using xercesc::DOMElementImpl;
using xercesc::DOMException;

namespace dom {

namespace {

DOMDocumentImpl& DocumentOf(DOMElement& element) { return Impl(*OwnerDocument(element)); }

void Changed(DOMDocumentImpl& document) { ++(document.*reveal::CDocument::kChanges); }

// Frees an attribute that was made and not used.
struct CReleaseUnused {
  void operator()(DOMAttr* pAttribute) const { pAttribute->release(); }
};
using CNewAttribute = std::unique_ptr<DOMAttr, CReleaseUnused>;

CNewAttribute WithValue(DOMAttr* pMade, const XMLCh* pValue) {
  CNewAttribute attribute(pMade);
  Append(*attribute, *OwnerDocument(*attribute)->createTextNode(pValue));
  return attribute;
}

// The place of an attribute in the order of the names, or where it would stand.
XMLSize_t PlaceOf(DOMElementImpl& element, const XMLCh* pName) {
  const int place = element.fAttributes->findNamePoint(pName);
  return static_cast<XMLSize_t>(place >= 0 ? place : -1 - place);
}

xercesc::DOMNodeVector& ItemsOf(DOMElementImpl& element) {
  DOMDocumentImpl& document = DocumentOf(element);
  auto*& pItems = element.fAttributes->*reveal::CAttributes::kItems;
  if (pItems == nullptr) pItems = new (&document) xercesc::DOMNodeVector(&document, 4);
  return *pItems;
}

void Own(DOMElementImpl& element, DOMNode& attribute) {
  NodePart(attribute).fOwnerNode = &element;
  NodePart(attribute).isOwned(true);
}

void Disown(DOMElementImpl& element, DOMNode& attribute) {
  NodePart(attribute).fOwnerNode = OwnerDocument(element);
  NodePart(attribute).isOwned(false);
}

// Enters an attribute in the place of the one that is there, null for none. Where the
// list cannot grow nothing has changed.
DOMNode* Put(DOMElementImpl& element, DOMNode& attribute, DOMAttr* pReplaced) {
  xercesc::DOMNodeVector& items = ItemsOf(element);
  if (pReplaced == nullptr) {
    items.insertElementAt(&attribute, PlaceOf(element, attribute.getNodeName()));
  } else {
    XMLSize_t at = 0;
    while (items.elementAt(at) != pReplaced) ++at;
    items.setElementAt(&attribute, at);
    Disown(element, *pReplaced);
  }
  Own(element, attribute);
  return pReplaced;
}

// Takes an attribute out of its element, whether it is in the way of a default or not.
void TakeOut(DOMElementImpl& element, DOMAttr& attribute) {
  xercesc::DOMNodeVector& items = *AttributesOf(element);
  XMLSize_t at = 0;
  while (items.elementAt(at) != &attribute) ++at;
  element.fAttributes->removeNamedItemAt(at);
}

void FreeAttribute(DOMElementImpl& element, DOMAttr* pAttribute) {
  if (pAttribute == nullptr) return;
  CDoomedNodes doomed;
  doomed.AddWhole(*pAttribute);
  TakeOut(element, *pAttribute);
  doomed.Free();
}

// Whether the attribute's value is one text node, which can take another value.
xercesc::DOMTextImpl* OnlyText(DOMAttr& attribute) {
  DOMNode* pFirst = MadeFirstChild(attribute);
  if (pFirst == nullptr || pFirst->getNodeType() != DOMNode::TEXT_NODE) return nullptr;
  if (NextSibling(*pFirst) != nullptr || MarksOf(*pFirst) != 0) return nullptr;
  return &As<xercesc::DOMTextImpl>(*pFirst);
}

void ReplaceText(DOMAttr& attribute, const XMLCh* pValue) {
  if (xercesc::DOMTextImpl* pText = OnlyText(attribute)) {
    // Nobody knows this node, so it may as well be the new one.
    pText->fCharacterData.fDataBuf->set(pValue);
    pText->fNode.ignorableWhitespace(false);
    return;
  }
  DOMNode& text = *OwnerDocument(attribute)->createTextNode(pValue);
  CDoomedNodes doomed;
  doomed.AddBelow(attribute);
  RemoveChildren(attribute);
  doomed.Free();
  Append(attribute, text);
}

DOMAttr* SameName(DOMElement& element, const DOMNode& attribute) {
  return Attribute(element, attribute.getNodeName());
}
DOMAttr* SameNameNS(DOMElement& element, const DOMNode& attribute) {
  const XMLCh* pLocal = attribute.getLocalName();
  if (pLocal == nullptr) return SameName(element, attribute);
  return AttributeNS(element, attribute.getNamespaceURI(), pLocal);
}

}  // namespace

void SetValue(DOMAttr& attribute, const XMLCh* pValue) {
  RequireWritable(attribute);
  DOMDocumentImpl& document = Impl(*OwnerDocument(attribute));
  const bool isId = NodePart(attribute).isIdAttr();
  if (isId) {
    NeedIds(document, 1);
    Refile(attribute);
    document.getNodeIDMap()->remove(&attribute);
  }
  ReplaceText(attribute, pValue);
  NodePart(attribute).isSpecified(true);
  Changed(document);
  if (isId) document.getNodeIDMap()->add(&attribute);
}

void SetAttribute(DOMElement& element, const XMLCh* pName, const XMLCh* pValue) {
  RequireWritable(element);
  if (DOMAttr* pFound = Attribute(element, pName)) return SetValue(*pFound, pValue);
  CNewAttribute attribute = WithValue(DocumentOf(element).createAttribute(pName), pValue);
  Put(As<DOMElementImpl>(element), *attribute, nullptr);
  Changed(DocumentOf(element));
  static_cast<void>(attribute.release());
}

void SetAttributeNS(DOMElement& element, const XMLCh* pURI, const XMLCh* pQualifiedName,
                    const XMLCh* pValue) {
  RequireWritable(element);
  const int colon = DOMDocumentImpl::indexofQualifiedName(pQualifiedName);
  if (colon < 0) Refuse(DOMException::NAMESPACE_ERR);
  if (DOMAttr* pFound = AttributeNS(element, pURI, pQualifiedName + colon)) {
    return SetValue(*pFound, pValue);
  }
  CNewAttribute attribute =
      WithValue(DocumentOf(element).createAttributeNS(pURI, pQualifiedName), pValue);
  Put(As<DOMElementImpl>(element), *attribute, SameNameNS(element, *attribute));
  Changed(DocumentOf(element));
  static_cast<void>(attribute.release());
}

void RemoveAttribute(DOMElement& element, const XMLCh* pName) {
  RequireWritable(element);
  FreeAttribute(As<DOMElementImpl>(element), Attribute(element, pName));
}

void RemoveAttributeNS(DOMElement& element, const XMLCh* pURI, const XMLCh* pLocalName) {
  RequireWritable(element);
  FreeAttribute(As<DOMElementImpl>(element), AttributeNS(element, pURI, pLocalName));
}

void RemoveAttributeNode(DOMElement& element, DOMNode& node) {
  RequireWritable(element);
  if (node.getNodeType() != DOMNode::ATTRIBUTE_NODE ||
      OwnerElement(As<DOMAttr>(node)) != &element) {
    Refuse(DOMException::NOT_FOUND_ERR);
  }
  FreeAttribute(As<DOMElementImpl>(element), &As<DOMAttr>(node));
}

DOMNode* SetInMap(DOMElement& element, DOMNode& node) {
  if (node.getNodeType() != DOMNode::ATTRIBUTE_NODE) Refuse(DOMException::HIERARCHY_REQUEST_ERR);
  CheckItem(element, node);
  if (IsOwned(node) && NodePart(node).fOwnerNode != &element) {
    Refuse(DOMException::INUSE_ATTRIBUTE_ERR);
  }
  if (IsOwned(node)) return &node;
  return Put(As<DOMElementImpl>(element), node, SameName(element, node));
}

DOMNode* SetInMapNS(DOMElement& element, DOMNode& node) {
  if (node.getNodeType() != DOMNode::ATTRIBUTE_NODE) Refuse(DOMException::HIERARCHY_REQUEST_ERR);
  CheckItem(element, node);
  if (IsOwned(node)) Refuse(DOMException::INUSE_ATTRIBUTE_ERR);
  return Put(As<DOMElementImpl>(element), node, SameNameNS(element, node));
}

// Contract: what is no attribute gets the DOM's answers to a node of another document, or
// by namespace to one that may not stand there.
DOMNode* SetAttributeNode(DOMElement& element, DOMNode& node) {
  RequireWritable(element);
  if (node.getNodeType() != DOMNode::ATTRIBUTE_NODE) Refuse(DOMException::WRONG_DOCUMENT_ERR);
  return SetInMap(element, node);
}

DOMNode* SetAttributeNodeNS(DOMElement& element, DOMNode& node) {
  RequireWritable(element);
  if (OwnerDocument(node) != OwnerDocument(element)) Refuse(DOMException::WRONG_DOCUMENT_ERR);
  return SetInMapNS(element, node);
}

}  // namespace dom
