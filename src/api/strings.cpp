#include <tessel/status.h>
#include <tessel/strings.h>

#include "api/frame.h"
#include "api/outs.h"
#include "dom/attributes.h"
#include "dom/look.h"
#include "dom/text.h"

using xercesc::DOMAttr;
using xercesc::DOMDocumentType;
using xercesc::DOMElement;
using xercesc::DOMEntity;
using xercesc::DOMNode;
using xercesc::DOMNotation;
using xercesc::DOMProcessingInstruction;

namespace {

// The getters of one string without a handler.
template <class Interface, class Call>
TSXStatus GetString(TSXRefId id, TSXStatus badReference, HStr* pString, Call domCall) {
  return Get<Interface, Unguarded>(id, badReference, CStringOut(pString), domCall);
}

}  // namespace

TSXStatus TSXGetNodeName(TSXRefId node, uint64_t, HStr* nameOut) {
  return GetString<DOMNode>(node, domErrRefGetNodeName, nameOut,
                            [](auto& n) { return n.getNodeName(); });
}

TSXStatus TSXGetNamespaceName(TSXRefId node, uint64_t, HStr* uriOut) {
  return GetString<DOMNode>(node, domErrRefGetNamespaceName, uriOut,
                            [](auto& n) { return n.getNamespaceURI(); });
}

TSXStatus TSXGetPrefixName(TSXRefId node, uint64_t, HStr* prefixOut) {
  return GetString<DOMNode>(node, domErrRefGetPrefixName, prefixOut,
                            [](auto& n) { return n.getPrefix(); });
}

TSXStatus TSXGetBaseName(TSXRefId node, uint64_t, HStr* nameOut) {
  return GetString<DOMNode>(node, domErrRefGetBaseName, nameOut,
                            [](auto& n) { return n.getLocalName(); });
}

// Contract: the mapped code is dropped; the host sees an empty string.
TSXStatus TSXGetNodeValue(TSXRefId node, uint64_t, HStr* valueOut) {
  return Get<DOMNode, CMapsText>(node, domErrRefGetNodeValue, CForgivingStringOut(valueOut),
                                 [](auto& n) { return n.getNodeValue(); });
}

TSXStatus TSXGetTagName(TSXRefId element, uint64_t, HStr* nameOut) {
  return GetString<DOMElement>(element, domErrRefGetTagName, nameOut,
                               [](auto& e) { return e.getTagName(); });
}

TSXStatus TSXName(TSXRefId attribute, uint64_t, HStr* nameOut) {
  return GetString<DOMAttr>(attribute, domErrRefName, nameOut,
                            [](auto& attr) { return attr.getName(); });
}

TSXStatus TSXGetAttrValue(TSXRefId attribute, uint64_t, HStr* valueOut) {
  return GetString<DOMAttr>(attribute, domErrRefGetAttrValue, valueOut, dom::Value);
}

TSXStatus TSXGetTarget(TSXRefId instruction, uint64_t, HStr* targetOut) {
  return GetString<DOMProcessingInstruction>(instruction, domErrRefGetTarget, targetOut,
                                             [](auto& pi) { return pi.getTarget(); });
}

TSXStatus TSXGetName(TSXRefId documentType, uint64_t, HStr* nameOut) {
  return GetString<DOMDocumentType>(documentType, domErrRefGetName, nameOut,
                                    [](auto& type) { return type.getName(); });
}

TSXStatus TSXGetDocTypePublicID(TSXRefId documentType, uint64_t, HStr* idOut) {
  return GetString<DOMDocumentType>(documentType, domErrRefGetDocTypePublicID, idOut,
                                    [](auto& type) { return type.getPublicId(); });
}

TSXStatus TSXGetDocTypeSystemID(TSXRefId documentType, uint64_t, HStr* idOut) {
  return GetString<DOMDocumentType>(documentType, domErrRefGetDocTypeSystemID, idOut,
                                    [](auto& type) { return type.getSystemId(); });
}

TSXStatus TSXGetInternalSubset(TSXRefId documentType, uint64_t, HStr* subsetOut) {
  return GetString<DOMDocumentType>(documentType, domErrRefGetInternalSubset, subsetOut,
                                    [](auto& type) { return type.getInternalSubset(); });
}

TSXStatus TSXGetNotationPublicID(TSXRefId notation, uint64_t, HStr* idOut) {
  return GetString<DOMNotation>(notation, domErrRefGetNotationPublicID, idOut,
                                [](auto& n) { return n.getPublicId(); });
}

TSXStatus TSXGetNotationSystemID(TSXRefId notation, uint64_t, HStr* idOut) {
  return GetString<DOMNotation>(notation, domErrRefGetNotationSystemID, idOut,
                                [](auto& n) { return n.getSystemId(); });
}

TSXStatus TSXGetEntityPublicId(TSXRefId entity, uint64_t, HStr* idOut) {
  return GetString<DOMEntity>(entity, domErrRefGetEntityPublicId, idOut,
                              [](auto& e) { return e.getPublicId(); });
}

TSXStatus TSXGetEntitySystemId(TSXRefId entity, uint64_t, HStr* idOut) {
  return GetString<DOMEntity>(entity, domErrRefGetEntitySystemId, idOut,
                              [](auto& e) { return e.getSystemId(); });
}

TSXStatus TSXGetNotationName(TSXRefId entity, uint64_t, HStr* nameOut) {
  return GetString<DOMEntity>(entity, domErrRefGetNotationName, nameOut,
                              [](auto& e) { return e.getNotationName(); });
}

TSXStatus TSXSetNodeValue(TSXRefId node, uint64_t, HStr* value) {
  return Do<DOMNode, CMapsReadOnly>(node, domErrRefSetNodeValue, dom::SetNodeValue, value);
}

// Contract: only the namespace error keeps its number; an invalid character or a
// read-only node is unexpected here.
TSXStatus TSXSetPrefixName(TSXRefId node, uint64_t, HStr* prefix) {
  return Do<DOMNode, Maps<DOMException::NAMESPACE_ERR>>(
      node, domErrRefSetPrefixName, [](auto& n, auto* pPrefix) { n.setPrefix(pPrefix); }, prefix);
}

TSXStatus TSXSetAttrValue(TSXRefId attribute, uint64_t, HStr* value) {
  return Do<DOMAttr, CMapsReadOnly>(attribute, domErrRefSetAttrValue, dom::SetValue, value);
}
