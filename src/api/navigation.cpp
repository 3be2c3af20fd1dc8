#include <tessel/navigation.h>
#include <tessel/status.h>

#include "api/frame.h"
#include "api/outs.h"
#include "dom/copy.h"
#include "dom/look.h"
#include "dom/text.h"

using xercesc::DOMAttr;
using xercesc::DOMNode;

namespace {

CPosition PositionOf(const DOMNode& node) {
  const CXercesDOM* pDom = g_NodeDomMap.GetDomByNode(dom::TreeOf(node));
  return pDom != nullptr ? pDom->m_Positions.Of(node) : CPosition();
}

}  // namespace

TSXStatus TSXGetParentNode(TSXRefId node, uint64_t, TSXRefId* parentOut) {
  return Get<DOMNode, Unguarded>(node, domErrRefGetParentNode, CNodeOut(parentOut), dom::Parent);
}

TSXStatus TSXGetFirstChild(TSXRefId node, uint64_t, TSXRefId* childOut) {
  return Get<DOMNode, Unguarded>(node, domErrRefGetFirstChild, CNodeOut(childOut), dom::FirstChild);
}

TSXStatus TSXGetLastChild(TSXRefId node, uint64_t, TSXRefId* childOut) {
  return Get<DOMNode, Unguarded>(node, domErrRefGetLastChild, CNodeOut(childOut), dom::LastChild);
}

TSXStatus TSXGetNextSibling(TSXRefId node, uint64_t, TSXRefId* siblingOut) {
  return Get<DOMNode, Unguarded>(node, domErrRefGetNextSibling, CNodeOut(siblingOut),
                                 dom::NextSibling);
}

TSXStatus TSXGetPreviousSibling(TSXRefId node, uint64_t, TSXRefId* siblingOut) {
  return Get<DOMNode, Unguarded>(node, domErrRefGetPreviousSibling, CNodeOut(siblingOut),
                                 dom::PreviousSibling);
}

// The document object, not the document node: what the host may pass on to the
// functions that ask for a document.
TSXStatus TSXGetOwnerDocument(TSXRefId node, uint64_t, TSXRefId* documentOut) {
  return Get<DOMNode, Unguarded>(
      node, domErrRefGetOwnerDocument, CNodeOut(documentOut),
      [](auto& n) -> DOMNode* { return g_NodeDomMap.GetDomByNode(dom::OwnerDocument(n)); });
}

TSXStatus TSXGetDocumentElement(TSXRefId document, uint64_t, TSXRefId* elementOut) {
  return Get<CXercesDOM, Unguarded>(document, domErrRefGetDocumentElement, CNodeOut(elementOut),
                                    [](auto& dom) { return dom.m_pDoc->getDocumentElement(); });
}

TSXStatus TSXGetDocType(TSXRefId document, uint64_t, TSXRefId* typeOut) {
  return Get<CXercesDOM, Unguarded>(document, domErrRefGetDocType, CNodeOut(typeOut),
                                    [](auto& dom) { return dom.m_pDoc->getDoctype(); });
}

TSXStatus TSXOwnerElement(TSXRefId attribute, uint64_t, TSXRefId* elementOut) {
  return Get<DOMAttr, Unguarded>(attribute, domErrRefOwnerElement, CNodeOut(elementOut),
                                 dom::OwnerElement);
}

TSXStatus TSXCloneNode(TSXRefId node, const uint8_t* deep, TSXRefId* cloneOut) {
  return Get<DOMNode, Unguarded>(node, domErrRefCloneNode, CUntouchedNodeOut(cloneOut),
                                 [&](auto& n) { return dom::Clone(n, *deep != 0); });
}

TSXStatus TSXHasAttributes(TSXRefId node, uint8_t* flagOut) {
  return Get<DOMNode, Unguarded>(node, domErrRefHasAttributes, CFlagOut(flagOut),
                                 [](auto& n) { return n.hasAttributes(); });
}

// Contract: shares its reference code with TSXHasAttributes.
TSXStatus TSXHasChildNodes(TSXRefId node, uint8_t* flagOut) {
  return Get<DOMNode, Unguarded>(node, domErrRefHasAttributes, CFlagOut(flagOut),
                                 [](auto& n) { return dom::FirstChild(n) != nullptr; });
}

TSXStatus TSXGetSpecified(TSXRefId attribute, uint64_t, uint8_t* flagOut) {
  return Get<DOMAttr, Unguarded>(attribute, domErrRefGetSpecified, CFlagOut(flagOut),
                                 [](auto& attr) { return attr.getSpecified(); });
}

TSXStatus TSXIsSupported(TSXRefId node, HStr* feature, HStr* version, uint8_t* flagOut) {
  return Get<DOMNode, Unguarded>(
      node, domErrRefIsSupported, CFlagOut(flagOut),
      [](auto& n, auto* pFeature, auto* pVersion) { return n.isSupported(pFeature, pVersion); },
      feature, version);
}

// Contract: any exception gives this function's own reference code.
TSXStatus TSXGetNodeType(TSXRefId node, uint64_t, int32_t* typeOut) {
  return Get<DOMNode, Always<domErrRefGetNodeType>>(
      node, domErrRefGetNodeType, CCountOut(typeOut),
      [](auto& n) { return static_cast<int16_t>(n.getNodeType()); });
}

TSXStatus TSXGetSourcePosition(TSXRefId node, int32_t* line, int32_t* column, int64_t* begin,
                               int64_t* end) {
  return Get<DOMNode, Unguarded>(node, domErrRefGetSourcePosition,
                                 CPositionOut(line, column, begin, end), PositionOf);
}

TSXStatus TSXNormalize(TSXRefId node) {
  return Do<DOMNode, Unguarded>(node, domErrRefNormalize, dom::Normalize);
}
