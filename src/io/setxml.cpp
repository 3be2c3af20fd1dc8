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
TSXStatus ReplaceElement(TSXRefId id, DOMElement& element, DOMDocument& parsed) {
  DOMNode* pParent = dom::Parent(element);
  if (pParent == nullptr) return domErrRefDocument;
  DOMElement* pRoot = parsed.getDocumentElement();
  if (pRoot == nullptr) return 0;
  dom::RemoveChild(parsed, *pRoot);
  dom::CNodeOwner imported(dom::Import(*dom::OwnerDocument(element), *pRoot, true));
  dom::ReplaceChild(*pParent, *imported, element);
  g_NodeSessMap.ResetPtr(imported.release(), id);
  dom::Release(element);
  return 0;
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
    const CDOMOwner<DOMDocument> parsed = ParseAndTake(*pDom, source.Get(), source.Bytes());
    const TSXStatus status = parsed != nullptr ? ReplaceElement(element, *pElement, *parsed) : 0;
    return status != 0 ? status : ReportParse(*pDom, parseErrors);
  });
}
