#include <tessel/io.h>
#include <tessel/status.h>

#include "document/find.h"
#include "dom/copy.h"
#include "dom/edit.h"
#include "dom/look.h"
#include "dom/release.h"
#include "io/parse.h"
#include "io/parseguard.h"

using xercesc::DOMDocument;
using xercesc::DOMElement;
using xercesc::DOMNode;

namespace {

// Contract: spelt "seting", and both end with a full stop.
constexpr CParseTexts kTexts{"SAXParseException caught while seting element XML.",
                             "Error occurred while seting element XML."};

// Puts a copy of the parsed root in the element's place; the id moves with it.
void ReplaceElement(TSXRefId id, DOMElement& element, DOMNode& parent, DOMElement& parsedRoot) {
  dom::RemoveChild(*dom::OwnerDocument(parsedRoot), parsedRoot);
  dom::CNodeOwner imported(dom::Import(*dom::OwnerDocument(element), parsedRoot, true));
  dom::ReplaceChild(parent, *imported, element);
  g_NodeSessMap.ResetPtr(imported.release(), id);
  dom::Release(element);
}

}  // namespace

TSXStatus TSXElementSetXML(TSXRefId element, HStr* xmlText, HStr* parseErrors,
                           HStr* exceptionText) {
  auto* pElement = FindObject<DOMElement>(element);
  if (pElement == nullptr) return domErrRefDocument;
  CXercesDOM* pDom = g_NodeDomMap.GetDomByNode(dom::OwnerDocument(*pElement));
  if (pDom == nullptr) return domErrRefDocument;
  return RunParse(kTexts, exceptionText, [&]() -> TSXStatus {
    const CStringSource source(xmlText, EBytes::kToNul, "SetXMLString");
    const CDOMOwner<DOMDocument> parsed = ParseAndTake(*pDom, source.Get());
    DOMElement* pParsedRoot = parsed != nullptr ? parsed->getDocumentElement() : nullptr;
    if (parsed != nullptr) {
      DOMNode* pParent = dom::Parent(*pElement);
      if (pParent == nullptr) return domErrRefDocument;
      if (pParsedRoot != nullptr) ReplaceElement(element, *pElement, *pParent, *pParsedRoot);
    }
    return ReportParse(*pDom, parseErrors);
  });
}
