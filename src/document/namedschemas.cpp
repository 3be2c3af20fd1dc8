#include "document/namedschemas.h"

#include <string_view>
#include <xercesc/sax/ErrorHandler.hpp>
#include <xercesc/sax/SAXParseException.hpp>

#include "document/externalsource.h"
#include "host/text.h"

using xercesc::XercesDOMParser;

namespace {

std::vector<std::u16string> Words(std::u16string_view text) {
  constexpr const XMLCh* kSpace = u" \t\r\n";
  std::vector<std::u16string> words;
  for (std::size_t end = 0;;) {
    const std::size_t begin = text.find_first_not_of(kSpace, end);
    if (begin == text.npos) return words;
    end = std::min(text.find_first_of(kSpace, begin), text.size());
    words.emplace_back(text.substr(begin, end - begin));
  }
}

bool IsValidating(const XercesDOMParser& parser) {
  return parser.getDoSchema() && parser.getDoNamespaces() &&
         parser.getValidationScheme() != XercesDOMParser::Val_Never;
}

// The document's address from the root on: a text has a name in the current folder.
std::u16string WholeName(const XMLCh* pDocument) {
  const CPlaceOfName place = CPlaceOfName::OfDocument(CLocalText(pDocument).Get());
  return place.m_pSource != nullptr ? place.m_pSource->getSystemId() : pDocument;
}

}  // namespace

CNamedSchemas::CUse::CUse(CNamedSchemas& schemas, XercesDOMParser& parser, const XMLCh* pDocument,
                          int32_t accessMode)
    : CUse(schemas, parser) {  // so whatever is thrown from here on ends the use
  schemas.m_FaultCount = 0;
  schemas.m_IsSpoiled = false;
  if (!IsValidating(parser)) return;
  if (schemas.m_Pairs.empty() && schemas.m_NoNamespace.empty()) return;
  CSchemaOrder order;
  order.m_Schemas = schemas.List(pDocument, parser);
  order.m_IsFullyChecked = parser.getValidationSchemaFullChecking();
  order.m_Mode = accessMode;
  schemas.m_pSet = schemastore::Take(order);
  for (const CSchemaFault& fault : schemas.m_pSet->Faults()) schemas.Report(fault, parser);
  schemas.Announce(order.m_Schemas, parser);
  parser.useCachedGrammarInParse(true);
  parser.setIgnoreCachedDTD(true);  // there is none
  schemas.m_Grammars.Lend(&schemas.m_pSet->Grammars());
}

CNamedSchemas::CUse::~CUse() {
  if (m_Schemas.m_pSet == nullptr) return;
  constexpr const XMLCh* kNone = nullptr;
  m_Parser.setExternalSchemaLocation(kNone);
  m_Parser.setExternalNoNamespaceSchemaLocation(kNone);
  m_Parser.useCachedGrammarInParse(false);
  m_Schemas.m_Grammars.Lend(nullptr);
  m_Parser.resetCachedGrammarPool();  // what it remembers of those
  if (!m_Schemas.m_IsSpoiled) schemastore::Give(std::move(m_Schemas.m_pSet));
  m_Schemas.m_pSet.reset();
}

std::vector<CNamedSchema> CNamedSchemas::List(const XMLCh* pDocument, XercesDOMParser& parser) {
  const std::u16string base = WholeName(pDocument);
  std::vector<CNamedSchema> schemas;
  const auto add = [&](const std::u16string& nameSpace, const std::u16string& name) {
    const CPlaceOfName place = CPlaceOfName::InDocument(base.c_str(), name.c_str());
    schemas.push_back({nameSpace, name, place.m_pSource->getSystemId()});
  };
  const std::vector<std::u16string> words = Words(m_Pairs);
  if (words.size() % 2 != 0) {
    Report({u"no pairs of namespace and schema: '" + m_Pairs + u"'"}, parser);
  } else {
    for (std::size_t i = 0; i < words.size(); i += 2) add(words[i], words[i + 1]);
  }
  if (!m_NoNamespace.empty()) add(u"", m_NoNamespace);
  return schemas;
}

void CNamedSchemas::Report(const CSchemaFault& fault, XercesDOMParser& parser) {
  ++m_FaultCount;
  const XMLCh* pNone = xercesc::XMLUni::fgZeroLenString;
  parser.getErrorHandler()->error(
      xercesc::SAXParseException(fault.m_Text.c_str(), pNone, pNone, fault.m_Line, fault.m_Column));
}

// At a root element the parser looks for what was named before it, finds that it has it, and
// validates by it.
void CNamedSchemas::Announce(const std::vector<CNamedSchema>& schemas,
                             XercesDOMParser& parser) const {
  std::u16string pairs;
  for (const CNamedSchema& schema : schemas) {
    if (!m_pSet->Has(schema.m_Namespace)) continue;
    if (schema.m_Namespace.empty()) {
      parser.setExternalNoNamespaceSchemaLocation(u"-");
    } else {
      pairs += schema.m_Namespace + u" - ";
    }
  }
  if (!pairs.empty()) parser.setExternalSchemaLocation(pairs.c_str());
}
