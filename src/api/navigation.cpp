#include <tessel/navigation.h>
#include <tessel/status.h>

#include "api/frame.h"
#include "api/outs.h"
#include "document/depth.h"

using xercesc::DOMAttr;
using xercesc::DOMDocumentType;
using xercesc::DOMNode;

namespace {

// The DOM crashes when it is to clone a document type that no document has taken.
// Such a type is no more than its names, so one made of them is its clone.
DOMNode* Clone(const DOMNode& node, bool deep) {
  if (deep) depth::RequireRoom(node, depth::kCloneLevel);
  if (node.getNodeType() != DOMNode::DOCUMENT_TYPE_NODE || node.getOwnerDocument() != nullptr) {
    return node.cloneNode(deep);
  }
  const auto& type = static_cast<const DOMDocumentType&>(node);
  return xercesc::DOMImplementation::getImplementation()->createDocumentType(
      type.getName(), type.getPublicId(), type.getSystemId());
}

}  // namespace

TSXStatus TSXGetParentNode(TSXRefId node, uint64_t, TSXRefId* parentOut) {
  return Get<DOMNode, Unguarded>(node, domErrRefGetParentNode, CNodeOut(parentOut),
                                 [](auto& n) { return n.getParentNode(); });
}

TSXStatus TSXGetFirstChild(TSXRefId node, uint64_t, TSXRefId* childOut) {
  return Get<DOMNode, Unguarded>(node, domErrRefGetFirstChild, CNodeOut(childOut),
                                 [](auto& n) { return n.getFirstChild(); });
}

TSXStatus TSXGetLastChild(TSXRefId node, uint64_t, TSXRefId* childOut) {
  return Get<DOMNode, Unguarded>(node, domErrRefGetLastChild, CNodeOut(childOut),
                                 [](auto& n) { return n.getLastChild(); });
}

TSXStatus TSXGetNextSibling(TSXRefId node, uint64_t, TSXRefId* siblingOut) {
  return Get<DOMNode, Unguarded>(node, domErrRefGetNextSibling, CNodeOut(siblingOut),
                                 [](auto& n) { return n.getNextSibling(); });
}

TSXStatus TSXGetPreviousSibling(TSXRefId node, uint64_t, TSXRefId* siblingOut) {
  return Get<DOMNode, Unguarded>(node, domErrRefGetPreviousSibling, CNodeOut(siblingOut),
                                 [](auto& n) { return n.getPreviousSibling(); });
}

// The document object, not the document node: what the host may pass on to the
// functions that ask for a document.
TSXStatus TSXGetOwnerDocument(TSXRefId node, uint64_t, TSXRefId* documentOut) {
  return Get<DOMNode, Unguarded>(
      node, domErrRefGetOwnerDocument, CNodeOut(documentOut),
      [](auto& n) -> DOMNode* { return g_NodeDomMap.GetDomByNode(n.getOwnerDocument()); });
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
                                 [](auto& attr) { return attr.getOwnerElement(); });
}

TSXStatus TSXCloneNode(TSXRefId node, const uint8_t* deep, TSXRefId* cloneOut) {
  return Get<DOMNode, GuardsDepth>(node, domErrRefCloneNode, CUntouchedNodeOut(cloneOut),
                                   [&](auto& n) { return Clone(n, *deep != 0); });
}

TSXStatus TSXHasAttributes(TSXRefId node, uint8_t* flagOut) {
  return Get<DOMNode, Unguarded>(node, domErrRefHasAttributes, CFlagOut(flagOut),
                                 [](auto& n) { return n.hasAttributes(); });
}

// Contract: shares its reference code with TSXHasAttributes.
TSXStatus TSXHasChildNodes(TSXRefId node, uint8_t* flagOut) {
  return Get<DOMNode, Unguarded>(node, domErrRefHasAttributes, CFlagOut(flagOut),
                                 [](auto& n) { return n.hasChildNodes(); });
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

TSXStatus TSXNormalize(TSXRefId node) {
  return Do<DOMNode, Unguarded>(node, domErrRefNormalize, [](auto& n) { n.normalize(); });
}
