#include <tessel/io.h>
#include <tessel/status.h>

#include <limits>

#include "document/find.h"
#include "host/guards.h"
#include "host/text.h"
#include "io/encoding.h"
#include "io/nativepath.h"
#include "io/outputfile.h"
#include "io/treewriter.h"
#include "io/writeguard.h"

using xercesc::DOMNode;

namespace {

TSXStatus StoreBytes(std::string_view bytes, HStr* pOut) {
  if (bytes.size() > static_cast<std::size_t>(std::numeric_limits<int32_t>::max())) {
    return CNativePath::kRefused;
  }
  return HostStringFromPtr(pOut, static_cast<int32_t>(bytes.size()), bytes.data());
}

TSXStatus SaveFile(TSXRefId document, HostPath path, HStr* pErrorText, bool isPretty) {
  CHostLock lock(g_MutexInitializer.m_Mutex);
  auto* pDom = FindObject<CXercesDOM>(document);
  if (pDom == nullptr) return domErrRefSaveFilePP;
  if (!IsUsablePath(path)) return domErrPathSaveFile;
  const CNativePath native(path);
  if (native.Get() == nullptr) return CNativePath::kRefused;
  DOMTreeErrorReporter& reporter = *pDom->m_pErrorReporter;
  reporter.setDOMEHCode(0);
  // The file is not touched before there is a text to write to it.
  const TSXStatus status = RunWrite(domErrSaveFile, &reporter, [&] {
    const CByteBuffer text = TextOf(*pDom->DocumentNode(), isPretty);
    WriteFile(native.Get(), text.View());
  });
  if (status == 0) return 0;
  // Contract: every failure leaves this one text. A problem of the document is one that
  // the reporter has kept; one that it has not has the status 0.
  CStrToHStr("Failed to write file", pErrorText);
  return status == domErrSaveFile || reporter.getDOMEHCode() != 0 ? domErrSaveFile : 0;
}

}  // namespace

TSXStatus TSIGetXMLCommon(TSXRefId node, HStr* xmlOut, bool prettyPrint) {
  const DOMNode* pNode = FindObject<DOMNode>(node);
  if (pNode == nullptr) {
    ClearString(xmlOut);
    return domErrRefGetXMLCommon;
  }
  CByteBuffer text;
  const TSXStatus status =
      RunWrite(domErrSerialize, nullptr, [&] { text = TextOf(*pNode, prettyPrint); });
  return status == 0 ? StoreBytes(text.View(), xmlOut) : status;
}

TSXStatus TSXGetXML(TSXRefId node, HStr* xmlOut) { return TSIGetXMLCommon(node, xmlOut, false); }

TSXStatus TSXGetXMLPP(TSXRefId node, HStr* xmlOut) { return TSIGetXMLCommon(node, xmlOut, true); }

TSXStatus TSXSaveFile(TSXRefId document, HostPath path, HStr* errorText) {
  return SaveFile(document, path, errorText, false);
}

TSXStatus TSXSaveFilePP(TSXRefId document, HostPath path, HStr* errorText) {
  return SaveFile(document, path, errorText, true);
}

TSXStatus TSXSetWriteDeclaration(TSXRefId document, uint64_t, const uint8_t* value) {
  auto* pDom = FindObject<CXercesDOM>(document);
  if (pDom == nullptr) return domErrRefDocument;
  pDom->m_WritesDeclaration = *value != 0;
  return 0;
}

TSXStatus TSXGetWriteDeclaration(TSXRefId document, uint64_t, uint8_t* value) {
  auto* pDom = FindObject<CXercesDOM>(document);
  if (pDom == nullptr) return domErrRefDocument;
  *value = pDom->m_WritesDeclaration ? 1 : 0;
  return 0;
}

TSXStatus TSXSetEncoding(TSXRefId document, uint64_t, HStr* encoding) {
  auto* pDom = FindObject<CXercesDOM>(document);
  if (pDom == nullptr) return domErrRefDocument;
  bool isValid = false;
  const TSXStatus status = Always<domErrUnexpected>::Run([&] {
    const CWideText name(encoding);
    isValid = xercesc::XMLString::isValidEncName(name.Get());
    if (isValid) SetDocumentEncoding(*pDom->m_pDoc, name.Get());
  });
  return status == 0 && !isValid ? domErrInvalidCharacter : status;
}

TSXStatus TSXGetEncoding(TSXRefId document, uint64_t, HStr* encodingOut) {
  auto* pDom = FindObject<CXercesDOM>(document);
  if (pDom == nullptr) return domErrRefDocument;
  return StoreText(GetDocumentEncoding(*pDom->m_pDoc), encodingOut);
}
