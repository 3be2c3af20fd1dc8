#include <tessel/io.h>
#include <tessel/status.h>

#include <limits>
#include <optional>
#include <xercesc/dom/DOMImplementationRegistry.hpp>

#include "document/depth.h"
#include "document/find.h"
#include "host/guards.h"
#include "host/text.h"
#include "io/domwriter.h"
#include "io/filetarget.h"
#include "io/memorytarget.h"
#include "io/nativepath.h"

using xercesc::DOMDocument;
using xercesc::DOMNode;

namespace {

// A null document for a document type that no document has taken.
DOMDocument* DocumentOf(DOMNode* pNode) {
  if (pNode->getNodeType() == DOMNode::DOCUMENT_NODE) return dynamic_cast<DOMDocument*>(pNode);
  return pNode->getOwnerDocument();
}

// What to write for a registered node: a document object stands for its document.
DOMNode* WrittenNode(const CDOMNodeSessMap::CEntry& entry) {
  if (entry.m_Kind != ENodeKind::kDocumentObject) return entry.m_pNode;
  return static_cast<CXercesDOM*>(entry.m_pNode)->DocumentNode();
}

TSXStatus StoreBytes(const CMemoryTarget& target, HStr* pOut) {
  if (target.Count() > static_cast<XMLSize_t>(std::numeric_limits<int32_t>::max())) {
    return CNativePath::kRefused;
  }
  return HostStringFromPtr(pOut, static_cast<int32_t>(target.Count()), target.Bytes());
}

TSXStatus WriteToString(DOMNode* pNode, CDOMWriter& writer, HStr* pOut) {
  std::optional<CMemoryTarget> target;
  bool written = false;
  const TSXStatus status = Always<domErrSerialize>::Run([&] {
    if (const DOMDocument* pDoc = DocumentOf(pNode)) writer.SetEncoding(GetDocumentEncoding(*pDoc));
    written = writer.WriteNode(target.emplace(), *pNode);
    // What is too deep is that before anything else that the writer finds fault with.
    if (!written) depth::RequireRoom(*pNode, depth::kWriteLevel);
  });
  if (status != 0) return status;
  return written ? StoreBytes(*target, pOut) : domErrInvalidCharacter;
}

// Writes the document and says whether the writer was content. The reporter keeps
// what the writer complained of.
bool WriteToFile(CXercesDOM& dom, CDOMWriter& writer, const char* pPath) {
  writer.SetEncoding(GetDocumentEncoding(*dom.m_pDoc));
  writer.SetErrorHandler(dom.m_pErrorReporter);
  dom.m_pErrorReporter->setDOMEHCode(0);
  depth::RequireRoom(*dom.DocumentNode(), depth::kWriteLevel);
  CFileTarget target(pPath);
  const bool written = writer.WriteNode(target, *dom.DocumentNode());
  target.Close();
  return written;
}

using CPrepare = void (*)(CDOMWriter&);
void Plain(CDOMWriter&) {}
void PrettyPrint(CDOMWriter& writer) { writer.SetPrettyPrint(); }

TSXStatus SaveFile(TSXRefId document, HostPath path, HStr* pErrorText, CPrepare prepare) {
  CHostLock lock(g_MutexInitializer.m_Mutex);
  auto* pDom = FindObject<CXercesDOM>(document);
  if (pDom == nullptr) return domErrRefSaveFilePP;
  if (!IsUsablePath(path)) return domErrPathSaveFile;
  const CNativePath native(path);
  if (native.Get() == nullptr) return CNativePath::kRefused;
  bool written = false;
  TSXStatus status = Always<domErrSaveFile>::Run([&] {
    CDOMWriter writer(*pDom->m_pDoc->getImplementation());
    prepare(writer);
    written = WriteToFile(*pDom, writer, native.Get());
  });
  if (pDom->m_pErrorReporter->getDOMEHCode() != 0) status = domErrSaveFile;
  // Contract: every failure leaves this one text, and so does a writer that gave up
  // without an error, where the status is 0.
  if (status != 0 || !written) CStrToHStr("Failed to write file", pErrorText);
  return status;
}

}  // namespace

TSXStatus TSIGetXMLCommon(TSXRefId node, HStr* xmlOut, bool prettyPrint) {
  const auto entry = g_NodeSessMap.GetEntryBySess(node);
  if (entry.m_pNode == nullptr) {
    ClearString(xmlOut);
    return domErrRefGetXMLCommon;
  }
  const XMLCh features[] = u"LS";
  xercesc::DOMImplementation* pImplementation =
      xercesc::DOMImplementationRegistry::getDOMImplementation(features);
  if (pImplementation == nullptr) return domErrUnexpected;
  CDOMWriter writer(*pImplementation);
  if (!writer.IsMade()) return domErrUnexpected;
  if (prettyPrint) writer.SetPrettyPrint();
  return WriteToString(WrittenNode(entry), writer, xmlOut);
}

TSXStatus TSXGetXML(TSXRefId node, HStr* xmlOut) { return TSIGetXMLCommon(node, xmlOut, false); }

TSXStatus TSXGetXMLPP(TSXRefId node, HStr* xmlOut) { return TSIGetXMLCommon(node, xmlOut, true); }

TSXStatus TSXSaveFile(TSXRefId document, HostPath path, HStr* errorText) {
  return SaveFile(document, path, errorText, Plain);
}

TSXStatus TSXSaveFilePP(TSXRefId document, HostPath path, HStr* errorText) {
  return SaveFile(document, path, errorText, PrettyPrint);
}

TSXStatus TSXSetEncoding(TSXRefId document, uint64_t, HStr* encoding) {
  auto* pDom = FindObject<CXercesDOM>(document);
  if (pDom == nullptr) return domErrRefDocument;
  const CWideText name(encoding);
  if (!xercesc::XMLString::isValidEncName(name.Get())) return domErrInvalidCharacter;
  SetDocumentEncoding(*pDom->m_pDoc, name.Get());
  return 0;
}

TSXStatus TSXGetEncoding(TSXRefId document, uint64_t, HStr* encodingOut) {
  auto* pDom = FindObject<CXercesDOM>(document);
  if (pDom == nullptr) return domErrRefDocument;
  return StoreText(GetDocumentEncoding(*pDom->m_pDoc), encodingOut);
}
