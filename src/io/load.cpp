#include <tessel/io.h>
#include <tessel/status.h>

#include <utility>

#include "document/find.h"
#include "dom/release.h"
#include "io/nativepath.h"
#include "io/parse.h"
#include "io/parseguard.h"

using xercesc::DOMDocument;

namespace {

// Contract: the first text of each pair has no full stop, the second has one.
constexpr CParseTexts kFileTexts{"SAXParseException caught while loading file",
                                 "Error occurred while loading file."};
constexpr CParseTexts kStringTexts{"SAXParseException caught while loading XML string",
                                   "Error occurred while loading XML string."};

// The new tree is known by its document node before the old one goes, so that no
// moment is without a document.
void ReplaceTree(CXercesDOM& dom, CDOMOwner<DOMDocument> parsed, CPositions positions) {
  g_NodeDomMap.Insert(parsed.get(), &dom);
  DOMDocument* pOld = dom.m_pDoc;
  dom.m_Positions = std::move(positions);
  dom.m_pDoc = parsed.release();
  dom::ReleaseTree(*pOld);
}

template <class Parse>
TSXStatus Load(CXercesDOM& dom, const CParseTexts& texts, HStr* pParseErrors, HStr* pExceptionText,
               Parse parse) {
  return RunParse(texts, pExceptionText, [&] {
    const CTreeParser::CLoading loading(*dom.m_pParser);
    CDOMOwner<DOMDocument> parsed = parse();
    if (parsed != nullptr) {
      CPositions positions = loading.FindPositions(*parsed);
      ReplaceTree(dom, std::move(parsed), std::move(positions));
    }
    return ReportParse(dom, pParseErrors);
  });
}

// Contract: no file lock here, unlike the load of a file.
TSXStatus LoadText(TSXRefId document, HStr* pText, EBytes bytes, HStr* pParseErrors,
                   HStr* pExceptionText) {
  auto* pDom = FindObject<CXercesDOM>(document);
  if (pDom == nullptr) return domErrRefDocument;
  return Load(*pDom, kStringTexts, pParseErrors, pExceptionText, [&] {
    const CStringSource source(pText, bytes, "LoadXMLString");
    return ParseAndTake(*pDom, source.Get(), source.Bytes());
  });
}

}  // namespace

TSXStatus TSXLoadFile(TSXRefId document, HostPath path, HStr* parseErrors, HStr* exceptionText) {
  CHostLock lock(g_MutexInitializer.m_Mutex);
  auto* pDom = FindObject<CXercesDOM>(document);
  if (pDom == nullptr) return domErrRefLoadFile;
  if (!IsUsablePath(path)) return domErrPathLoadFile;
  const CNativePath native(path);
  if (native.Get() == nullptr) return CNativePath::kRefused;
  return Load(*pDom, kFileTexts, parseErrors, exceptionText,
              [&] { return ParseAndTake(*pDom, native.Get()); });
}

TSXStatus TSXLoadString(TSXRefId document, HStr* xmlText, HStr* parseErrors, HStr* exceptionText) {
  return LoadText(document, xmlText, EBytes::kToNul, parseErrors, exceptionText);
}

TSXStatus TSXLoadBytes(TSXRefId document, HStr* bytes, HStr* parseErrors, HStr* exceptionText) {
  return LoadText(document, bytes, EBytes::kAll, parseErrors, exceptionText);
}
