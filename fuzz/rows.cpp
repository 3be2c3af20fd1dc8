// The exported functions as the decoder sees them.
#include <array>
#include <cstring>
#include <memory>

#include "decoder.h"
#include "registry/globals.h"

namespace fuzz {

namespace {

template <auto kFunction>
void Run(CCall& call) {
  call.Run(kFunction);
}

// -- Functions whose arguments are no host's variables, in a form that has them --

void CleanUp(TSXRefId document) {
  unsigned char data[sizeof document];
  std::memcpy(data, &document, sizeof document);
  CleanupProcCXercesDOM(data);
}

void FillFromList(TSXRefId list, GenericRefObjSessionArray* pArray) {
  TSUNodeListToArray(pArray, g_NodeListSessMap.GetPtrBySess(list));
}

void FillFromMap(TSXRefId map, GenericRefObjSessionArray* pArray) {
  auto* pMap = g_NamedNodeMapSessMap.GetPtrBySess(map);
  if (pMap != nullptr) TSUNamedNodeMapToArray(pArray, pMap);
}

int32_t CopyString(HStr* pSource, HStr* pDestination) {
  return domCopyHStr(*pSource, pDestination);
}

int32_t AppendBytes(HStr* pString, HStr* pAddition) {
  const std::unique_ptr<char[]> bytes(HStrToCStr(pAddition));
  return domHStrAppendCStr(pString, reinterpret_cast<const unsigned char*>(bytes.get()));
}

int32_t Concatenate(HStr* pString, HStr* pAddition, bool trims) {
  if (*pString == nullptr || *pAddition == nullptr) return 0;
  return (trims ? domHStrCat : domHStrCatEfficient)(*pString, **pAddition);
}

// A block of which the string fills only a part.
int32_t ResizeString(HStr* pString, HStr* pAddition, int32_t spare) {
  if (*pString == nullptr || *pAddition == nullptr || spare < 0 || spare > 100) return 0;
  const int32_t size = static_cast<int32_t>(sizeof(int32_t)) + (**pString)->count + spare;
  const int32_t status = domSetHandleSizeOrNewHandle(pString, size);
  return status != 0 ? status : domHStrCatEfficient(*pString, **pAddition);
}

int32_t CStringAndBack(HStr* pSource, HStr* pDestination) {
  const std::unique_ptr<char[]> bytes(HStrToCStr(pSource));
  return CStrToHStr(bytes.get(), pDestination);
}

void EmptyArray(GenericRefObjSessionArray* pArray, int32_t count) {
  if (count > 0 && count < 100) domSetHandleSizeOrNewHandle(pArray, 8 + 8 * count);
  ClearSessionArray(pArray);
}

int32_t Versions() {
  HStrArray versions = nullptr;
  const int32_t status = nKelVersion_TESSEL_getVersionStringArray(&versions);
  if (versions == nullptr) return status;
  for (int32_t i = 0; i < (*versions)->count; ++i) ClearString(&(*versions)->items[i]);
  ClearArray(&versions);
  return status;
}

}  // namespace

const std::vector<CRow>& Rows() {
  static const std::vector<CRow> s_Rows{
      // clang-format off
      {"TSXGetParentNode", Run<TSXGetParentNode>, domErrRefGetParentNode, kAnyNode},
      {"TSXGetFirstChild", Run<TSXGetFirstChild>, domErrRefGetFirstChild, kAnyNode},
      {"TSXGetLastChild", Run<TSXGetLastChild>, domErrRefGetLastChild, kAnyNode},
      {"TSXGetNextSibling", Run<TSXGetNextSibling>, domErrRefGetNextSibling, kAnyNode},
      {"TSXGetPreviousSibling", Run<TSXGetPreviousSibling>, domErrRefGetPreviousSibling, kAnyNode},
      {"TSXGetOwnerDocument", Run<TSXGetOwnerDocument>, domErrRefGetOwnerDocument, kAnyNode, Gives::kDocument},
      {"TSXGetDocumentElement", Run<TSXGetDocumentElement>, domErrRefGetDocumentElement, kDocument},
      {"TSXGetDocType", Run<TSXGetDocType>, domErrRefGetDocType, kDocument},
      {"TSXOwnerElement", Run<TSXOwnerElement>, domErrRefOwnerElement, kAttribute},
      {"TSXCloneNode", Run<TSXCloneNode>, domErrRefCloneNode, kAnyNode, Gives::kFreshNode},
      {"TSXHasAttributes", Run<TSXHasAttributes>, domErrRefHasAttributes, kAnyNode},
      {"TSXHasChildNodes", Run<TSXHasChildNodes>, domErrRefHasAttributes, kAnyNode},
      {"TSXGetSpecified", Run<TSXGetSpecified>, domErrRefGetSpecified, kAttribute},
      {"TSXIsSupported", Run<TSXIsSupported>, domErrRefIsSupported, kAnyNode},
      {"TSXGetNodeType", Run<TSXGetNodeType>, domErrRefGetNodeType, kAnyNode},
      {"TSXGetSourcePosition", Run<TSXGetSourcePosition>, domErrRefGetSourcePosition, kAnyNode},
      {"TSXNormalize", Run<TSXNormalize>, domErrRefNormalize, kAnyNode},
      {"TSXGetNodeName", Run<TSXGetNodeName>, domErrRefGetNodeName, kAnyNode},
      {"TSXGetNamespaceName", Run<TSXGetNamespaceName>, domErrRefGetNamespaceName, kAnyNode},
      {"TSXGetPrefixName", Run<TSXGetPrefixName>, domErrRefGetPrefixName, kAnyNode},
      {"TSXGetBaseName", Run<TSXGetBaseName>, domErrRefGetBaseName, kAnyNode},
      {"TSXGetNodeValue", Run<TSXGetNodeValue>, domErrRefGetNodeValue, kAnyNode},
      {"TSXGetTagName", Run<TSXGetTagName>, domErrRefGetTagName, kElement},
      {"TSXName", Run<TSXName>, domErrRefName, kAttribute},
      {"TSXGetAttrValue", Run<TSXGetAttrValue>, domErrRefGetAttrValue, kAttribute},
      {"TSXGetTarget", Run<TSXGetTarget>, domErrRefGetTarget, kInstruction},
      {"TSXGetName", Run<TSXGetName>, domErrRefGetName, kType},
      {"TSXGetDocTypePublicID", Run<TSXGetDocTypePublicID>, domErrRefGetDocTypePublicID, kType},
      {"TSXGetDocTypeSystemID", Run<TSXGetDocTypeSystemID>, domErrRefGetDocTypeSystemID, kType},
      {"TSXGetInternalSubset", Run<TSXGetInternalSubset>, domErrRefGetInternalSubset, kType},
      {"TSXGetNotationPublicID", Run<TSXGetNotationPublicID>, domErrRefGetNotationPublicID, kNotation},
      {"TSXGetNotationSystemID", Run<TSXGetNotationSystemID>, domErrRefGetNotationSystemID, kNotation},
      {"TSXGetEntityPublicId", Run<TSXGetEntityPublicId>, domErrRefGetEntityPublicId, kEntity},
      {"TSXGetEntitySystemId", Run<TSXGetEntitySystemId>, domErrRefGetEntitySystemId, kEntity},
      {"TSXGetNotationName", Run<TSXGetNotationName>, domErrRefGetNotationName, kEntity},
      {"TSXSetNodeValue", Run<TSXSetNodeValue>, domErrRefSetNodeValue, kAnyNode, Gives::kNode, Ends::kTextOfAttribute},
      {"TSXSetPrefixName", Run<TSXSetPrefixName>, domErrRefSetPrefixName, kAnyNode},
      {"TSXSetAttrValue", Run<TSXSetAttrValue>, domErrRefSetAttrValue, kAttribute, Gives::kNode, Ends::kTextOfAttribute},
      {"TSXGetCharacterDataLength", Run<TSXGetCharacterDataLength>, domErrRefGetCharacterDataLength, kCharacters},
      {"TSXGetCharacterDataData", Run<TSXGetCharacterDataData>, domErrRefGetCharacterDataData, kCharacters},
      {"TSXSetCharacterDataData", Run<TSXSetCharacterDataData>, domErrRefSetCharacterDataData, kCharacters},
      {"TSXGetSubstringData", Run<TSXGetSubstringData>, domErrRefGetSubstringData, kCharacters},
      {"TSXAppendData", Run<TSXAppendData>, domErrRefAppendData, kCharacters},
      {"TSXInsertData", Run<TSXInsertData>, domErrRefInsertData, kCharacters},
      {"TSXDeleteData", Run<TSXDeleteData>, domErrRefDeleteData, kCharacters},
      {"TSXReplaceData", Run<TSXReplaceData>, domErrRefReplaceData, kCharacters},
      {"TSXSplitText", Run<TSXSplitText>, domErrRefSplitText, kTextNode | kCData, Gives::kFreshNode},
      {"TSXGetText", Run<TSXGetText>, domErrRefGetText, kAnyNode},
      {"TSXSetText", Run<TSXSetText>, domErrRefSetText, kAnyNode, Gives::kNode, Ends::kTextOfAttribute},
      {"TSXGetData", Run<TSXGetData>, domErrRefGetData, kInstruction},
      {"TSXSetData", Run<TSXSetData>, domErrRefSetData, kInstruction},
      {"TSXHasAttribute", Run<TSXHasAttribute>, domErrRefHasAttribute, kElement},
      {"TSXHasAttributeNS", Run<TSXHasAttributeNS>, domErrRefHasAttributeNS, kElement},
      {"TSXGetAttribute", Run<TSXGetAttribute>, domErrRefGetAttribute, kElement},
      {"TSXGetAttributeNS", Run<TSXGetAttributeNS>, domErrRefGetAttributeNS, kElement},
      {"TSXSetAttribute", Run<TSXSetAttribute>, domErrRefSetAttribute, kElement, Gives::kNode, Ends::kAttributes},
      {"TSXSetAttributeNS", Run<TSXSetAttributeNS>, domErrRefSetAttributeNS, kElement, Gives::kNode, Ends::kAttributes},
      {"TSXRemoveAttribute", Run<TSXRemoveAttribute>, domErrRefRemoveAttribute, kElement, Gives::kNode, Ends::kAttributes},
      {"TSXRemoveAttributeNS", Run<TSXRemoveAttributeNS>, domErrRefRemoveAttributeNS, kElement, Gives::kNode, Ends::kAttributes},
      {"TSXGetAttributeNode", Run<TSXGetAttributeNode>, domErrRefGetAttributeNode, kElement},
      {"TSXGetAttributeNodeNS", Run<TSXGetAttributeNodeNS>, domErrRefGetAttributeNodeNS, kElement},
      {"TSXSetAttributeNode", Run<TSXSetAttributeNode>, domErrRefSetAttribute, kElement},
      {"TSXSetAttributeNodeNS", Run<TSXSetAttributeNodeNS>, domErrRefSetAttributeNodeNS, kElement},
      {"TSXRemoveAttributeNode", Run<TSXRemoveAttributeNode>, domErrRefRemoveAttributeNode, kElement, Gives::kNode, Ends::kAttribute},
      {"TSXGetElementById", Run<TSXGetElementById>, domErrRefGetElementById, kDocument},
      {"TSXCreateElement", Run<TSXCreateElement>, domErrRefCreateElement, kDocument, Gives::kFreshNode},
      {"TSXCreateElementNS", Run<TSXCreateElementNS>, domErrRefCreateElementNS, kDocument, Gives::kFreshNode},
      {"TSXCreateAttribute", Run<TSXCreateAttribute>, 0, kDocument, Gives::kFreshNode},
      {"TSXCreateAttributeNS", Run<TSXCreateAttributeNS>, domErrRefCreateAttributeNS, kDocument, Gives::kFreshNode},
      {"TSXCreateTextNode", Run<TSXCreateTextNode>, domErrRefCreateTextNode, kDocument, Gives::kFreshNode},
      {"TSXCreateComment", Run<TSXCreateComment>, domErrRefCreateComment, kDocument, Gives::kFreshNode},
      {"TSXCreateCDATASection", Run<TSXCreateCDATASection>, domErrRefCreateCDATASection, kDocument, Gives::kFreshNode},
      {"TSXCreateProcessingInstruction", Run<TSXCreateProcessingInstruction>, domErrRefCreateProcessingInstruction, kDocument, Gives::kFreshNode},
      {"TSXCreateEntityReference", Run<TSXCreateEntityReference>, domErrRefCreateEntityReference, kDocument, Gives::kFreshNode},
      {"TSXCreateDocumentFragment", Run<TSXCreateDocumentFragment>, domErrRefCreateDocumentFragment, kDocument, Gives::kFreshNode},
      {"TSXImportNode", Run<TSXImportNode>, domErrRefImportNode, kDocument, Gives::kFreshNode},
      {"TSXAppendChild", Run<TSXAppendChild>, domErrRefAppendChild, kAnyNode},
      {"TSXInsertBefore", Run<TSXInsertBefore>, domErrRefImportNode, kAnyNode},
      {"TSXReplaceChild", Run<TSXReplaceChild>, domErrRefReplaceChild, kAnyNode},
      {"TSXRemoveChild", Run<TSXRemoveChild>, domErrRefRemoveChild, kAnyNode, Gives::kNode, Ends::kRemoved},
      {"TSXLoadFile", Run<TSXLoadFile>, domErrRefLoadFile, kDocument, Gives::kNode, Ends::kOldTree},
      {"TSXLoadString", Run<TSXLoadString>, domErrRefDocument, kDocument, Gives::kNode, Ends::kOldTree, Registry::kNode, Strings::kDocuments},
      {"TSXLoadBytes", Run<TSXLoadBytes>, domErrRefDocument, kDocument, Gives::kNode, Ends::kOldTree, Registry::kNode, Strings::kDocuments},
      {"TSXElementSetXML", Run<TSXElementSetXML>, domErrRefDocument, kElement, Gives::kNode, Ends::kBelow, Registry::kNode, Strings::kDocuments},
      {"TSIGetXMLCommon", Run<TSIGetXMLCommon>, domErrRefGetXMLCommon, kAnyNode},
      {"TSXGetXML", Run<TSXGetXML>, domErrRefGetXMLCommon, kAnyNode},
      {"TSXGetXMLPP", Run<TSXGetXMLPP>, domErrRefGetXMLCommon, kAnyNode},
      {"TSXSaveFile", Run<TSXSaveFile>, domErrRefSaveFilePP, kDocument},
      {"TSXSaveFilePP", Run<TSXSaveFilePP>, domErrRefSaveFilePP, kDocument},
      {"TSXGetEncoding", Run<TSXGetEncoding>, domErrRefDocument, kDocument},
      {"TSXSetEncoding", Run<TSXSetEncoding>, domErrRefDocument, kDocument},
      {"TSXGetWriteDeclaration", Run<TSXGetWriteDeclaration>, domErrRefDocument, kDocument},
      {"TSXSetWriteDeclaration", Run<TSXSetWriteDeclaration>, domErrRefDocument, kDocument},
      {"TSXGetDoNamespaces", Run<TSXGetDoNamespaces>, domErrRefGetDoNamespaces, kDocument},
      {"TSXSetDoNamespaces", Run<TSXSetDoNamespaces>, domErrRefSetDoNamespaces, kDocument},
      {"TSXGetValidateOnLoad", Run<TSXGetValidateOnLoad>, domErrRefGetDoNamespaces, kDocument},
      {"TSXSetValidateOnLoad", Run<TSXSetValidateOnLoad>, domErrRefSetDoNamespaces, kDocument},
      {"TSXGetDoSchema", Run<TSXGetDoSchema>, domErrRefGetDoSchema, kDocument},
      {"TSXSetDoSchema", Run<TSXSetDoSchema>, domErrRefSetDoSchema, kDocument},
      {"TSXGetValidationSchemaFullChecking", Run<TSXGetValidationSchemaFullChecking>, domErrRefGetValidationSchemaFullChecking, kDocument},
      {"TSXSetValidationSchemaFullChecking", Run<TSXSetValidationSchemaFullChecking>, domErrRefSetValidationSchemaFullChecking, kDocument},
      {"TSXGetLoadExternalDTD", Run<TSXGetLoadExternalDTD>, domErrRefGetLoadExternalDTD, kDocument},
      {"TSXSetLoadExternalDTD", Run<TSXSetLoadExternalDTD>, domErrRefSetLoadExternalDTD, kDocument},
      {"TSXGetPreserveWhitespace", Run<TSXGetPreserveWhitespace>, domErrRefGetPreserveWhitespace, kDocument},
      {"TSXSetPreserveWhitespace", Run<TSXSetPreserveWhitespace>, domErrRefSetPreserveWhitespace, kDocument},
      {"TSXGetExternalAccess", Run<TSXGetExternalAccess>, domErrRefDocument, kDocument},
      {"TSXSetExternalAccess", Run<TSXSetExternalAccess>, domErrRefDocument, kDocument},
      {"TSXGetEntityTextLimit", Run<TSXGetEntityTextLimit>, domErrRefDocument, kDocument},
      {"TSXSetEntityTextLimit", Run<TSXSetEntityTextLimit>, domErrRefDocument, kDocument},
      {"TSXGetKeepPositions", Run<TSXGetKeepPositions>, domErrRefDocument, kDocument},
      {"TSXSetKeepPositions", Run<TSXSetKeepPositions>, domErrRefDocument, kDocument},
      {"TSXGetSchemaLocation", Run<TSXGetSchemaLocation>, domErrRefDocument, kDocument},
      {"TSXSetSchemaLocation", Run<TSXSetSchemaLocation>, domErrRefDocument, kDocument},
      {"TSXGetNoNamespaceSchemaLocation", Run<TSXGetNoNamespaceSchemaLocation>, domErrRefDocument, kDocument},
      {"TSXSetNoNamespaceSchemaLocation", Run<TSXSetNoNamespaceSchemaLocation>, domErrRefDocument, kDocument},
      {"TSXGetChildNodeList", Run<TSXGetChildNodeList>, domErrRefGetChildNodeList, kAnyNode, Gives::kList},
      {"TSXGetChildNodes", Run<TSXGetChildNodes>, domErrRefGetChildNodeList, kAnyNode},
      {"TSXGetElementsByTagNameList", Run<TSXGetElementsByTagNameList>, domErrRefGetElementsByTagNameList, kDocument, Gives::kList},
      {"TSXGetElementsByTagName", Run<TSXGetElementsByTagName>, domErrRefGetElementsByTagNameList, kDocument},
      {"TSXGetElementsByTagNameNS", Run<TSXGetElementsByTagNameNS>, domErrRefGetElementsByTagNameNS, kDocument, Gives::kList},
      {"TSXGetElementsByTagNameNSArray", Run<TSXGetElementsByTagNameNSArray>, domErrRefGetElementsByTagNameList, kDocument},
      {"TSXElementGetElementsByTagName", Run<TSXElementGetElementsByTagName>, domErrRefElementGetElementsByTagName, kElement, Gives::kList},
      {"TSXElementGetElementsByTagNameArray", Run<TSXElementGetElementsByTagNameArray>, domErrRefElementGetElementsByTagName, kElement},
      {"TSXElementGetElementsByTagNameNS", Run<TSXElementGetElementsByTagNameNS>, domErrRefElementGetElementsByTagNameNS, kElement, Gives::kList},
      {"TSXElementGetElementsByTagNameNSArray", Run<TSXElementGetElementsByTagNameNSArray>, domErrRefElementGetElementsByTagNameNS, kElement},
      {"TSXGetItem", Run<TSXGetItem>, domErrRefGetItem, 0, Gives::kNode, Ends::kNone, Registry::kList},
      {"TSXGetListLength", Run<TSXGetListLength>, domErrRefGetListLength, 0, Gives::kNode, Ends::kNone, Registry::kList},
      {"TSXGetNodeListArray", Run<TSXGetNodeListArray>, domErrRefGetItem, 0, Gives::kNode, Ends::kNone, Registry::kList},
      {"TSXGetAttributes", Run<TSXGetAttributes>, domErrRefGetAttributes, kAnyNode, Gives::kMap},
      {"TSXGetEntities", Run<TSXGetEntities>, domErrRefGetEntities, kType, Gives::kMap},
      {"TSXGetNotations", Run<TSXGetNotations>, domErrRefGetNotations, kType, Gives::kMap},
      {"TSXGetArray", Run<TSXGetArray>, domErrRefGetArray, 0, Gives::kNode, Ends::kNone, Registry::kMap},
      {"TSXGetNamedItem", Run<TSXGetNamedItem>, domErrRefGetNamedItem, 0, Gives::kNode, Ends::kNone, Registry::kMap},
      {"TSXGetNamedItemNS", Run<TSXGetNamedItemNS>, domErrRefGetNamedItemNS, 0, Gives::kNode, Ends::kNone, Registry::kMap},
      {"TSXSetNamedItem", Run<TSXSetNamedItem>, domErrRefSetNamedItem, 0, Gives::kNode, Ends::kNone, Registry::kMap},
      {"TSXSetNamedItemNS", Run<TSXSetNamedItemNS>, domErrRefSetNamedItemNS, 0, Gives::kNode, Ends::kNone, Registry::kMap},
      {"TSXRemoveNamedItem", Run<TSXRemoveNamedItem>, domErrRefRemoveNamedItem, 0, Gives::kNode, Ends::kNone, Registry::kMap},
      {"TSXRemoveNamedItemNS", Run<TSXRemoveNamedItemNS>, domErrRefRemoveNamedItemNS, 0, Gives::kNode, Ends::kNone, Registry::kMap},
      {"TSXGetNamedNodeMapItem", Run<TSXGetNamedNodeMapItem>, domErrRefGetNamedNodeMapItem, 0, Gives::kNode, Ends::kNone, Registry::kMap},
      {"TSXGetNamedNodeMapLength", Run<TSXGetNamedNodeMapLength>, domErrRefGetNamedNodeMapLength, 0, Gives::kNode, Ends::kNone, Registry::kMap},
      {"TSXGetImplementation", Run<TSXGetImplementation>, domErrRefGetImplementation, kDocument, Gives::kImpl},
      {"TSXHasFeature", Run<TSXHasFeature>, domErrRefHasFeature, 0, Gives::kNode, Ends::kNone, Registry::kImplementation},
      {"TSXCreateDocumentType", Run<TSXCreateDocumentType>, domErrRefCreateDocumentType, 0, Gives::kFreshNode, Ends::kNone, Registry::kImplementation},
      {"XPathEvaluateContextToNode", Run<XPathEvaluateContextToNode>, domErrXPathContext, kAnyNode, Gives::kNode, Ends::kNone, Registry::kNode, Strings::kPaths},
      {"XPathEvaluateContextToNodeArray", Run<XPathEvaluateContextToNodeArray>, domErrXPathContext, kAnyNode, Gives::kNode, Ends::kNone, Registry::kNode, Strings::kPaths},
      {"XPathEvaluateContextToString", Run<XPathEvaluateContextToString>, domErrXPathContext, kAnyNode, Gives::kNode, Ends::kNone, Registry::kNode, Strings::kPaths},
      {"XPathEvaluateContextToNumber", Run<XPathEvaluateContextToNumber>, domErrXPathContext, kAnyNode, Gives::kNode, Ends::kNone, Registry::kNode, Strings::kPaths},
      {"XPathEvaluateContextToBoolean", Run<XPathEvaluateContextToBoolean>, domErrXPathContext, kAnyNode, Gives::kNode, Ends::kNone, Registry::kNode, Strings::kPaths},
      {"XPathGetExpressionType", Run<XPathGetExpressionType>, domErrXPathContext, kAnyNode, Gives::kNode, Ends::kNone, Registry::kNode, Strings::kPaths},
      {"XPathBindPrefix", Run<XPathBindPrefix>, domErrRefDocument, kDocument},
      {"TSXDocumentOpen", Run<TSXDocumentOpen>, 0, 0, Gives::kFreshDocument},
      {"TSXCreateDocument", Run<TSXCreateDocument>, domErrRefCreateDocument, 0, Gives::kFreshDocument, Ends::kNone, Registry::kImplementation},
      {"TSXNodeClose", Run<TSXNodeClose>, 0, kAnyNode, Gives::kNode, Ends::kOneNode},
      {"TSXDocumentClose", Run<TSXDocumentClose>, 0, kDocument, Gives::kNode, Ends::kOneDocument},
      {"CleanupProcCXercesDOM", Run<CleanUp>, 0, kDocument, Gives::kNode, Ends::kCleanup},
      {"TSXNodeListClose", Run<TSXNodeListClose>, 0, 0, Gives::kNode, Ends::kHandOut, Registry::kList},
      {"TSXNamedNodeMapClose", Run<TSXNamedNodeMapClose>, 0, 0, Gives::kNode, Ends::kHandOut, Registry::kMap},
      {"TSXImplementationClose", Run<TSXImplementationClose>, 0, 0, Gives::kNode, Ends::kHandOut, Registry::kImplementation},
      {"TSUNodeListToArray", Run<FillFromList>, 0, 0, Gives::kNode, Ends::kNone, Registry::kList},
      {"TSUNamedNodeMapToArray", Run<FillFromMap>, 0, 0, Gives::kNode, Ends::kNone, Registry::kMap},
      {"domCopyHStr", Run<CopyString>, 0, 0},
      {"domHStrAppendCStr", Run<AppendBytes>, 0, 0},
      {"domHStrCat", Run<Concatenate>, 0, 0},
      {"domSetHandleSizeOrNewHandle", Run<ResizeString>, 0, 0},
      {"CStrToHStr", Run<CStringAndBack>, 0, 0},
      {"ClearSessionArray", Run<EmptyArray>, 0, 0},
      {"nKelVersion_TESSEL_getVersionStringArray", Run<Versions>, 0, 0},
      // clang-format on
  };
  return s_Rows;
}

bool OnlyReads(const CRow& row) {
  const std::string_view name = row.m_pName;
  return row.m_Ends == Ends::kNone && row.m_Gives != Gives::kFreshNode &&
         std::ranges::any_of(std::array{"TSXGet", "TSXHas", "TSXIs", "TSXName", "TSXOwner", "TSU",
                                        "XPathEvaluate", "XPathGet", "TSIGet"},
                             [&](const char* pStart) { return name.starts_with(pStart); });
}

}  // namespace fuzz
