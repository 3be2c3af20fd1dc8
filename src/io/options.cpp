#include <tessel/options.h>
#include <tessel/status.h>

#include "document/find.h"
#include "host/guards.h"
#include "host/text.h"

using xercesc::XercesDOMParser;

namespace {

// A setter or getter reaches the parser of the document; the value travels by
// pointer and is left alone where the id is refused.
template <class Call>
TSXStatus WithParser(TSXRefId document, TSXStatus badReference, Call call) {
  auto* pDom = FindObject<CXercesDOM>(document);
  if (pDom == nullptr) return badReference;
  call(*pDom->m_pParser);
  return 0;
}

using CSetFlag = void (XercesDOMParser::*)(bool);
using CGetFlag = bool (XercesDOMParser::*)() const;

// One flag of the parser with the codes of its two functions. The accessors are
// inherited, hence the conversion to members of the parser that is used.
struct CFlagOption {
  CSetFlag m_Set;
  CGetFlag m_Get;
  TSXStatus m_BadSet;
  TSXStatus m_BadGet;

  TSXStatus Set(TSXRefId document, const uint8_t* pValue) const {
    return WithParser(document, m_BadSet, [&](auto& parser) { (parser.*m_Set)(*pValue != 0); });
  }
  TSXStatus Get(TSXRefId document, uint8_t* pValue) const {
    return WithParser(document, m_BadGet,
                      [&](auto& parser) { *pValue = (parser.*m_Get)() ? 1 : 0; });
  }
};

constexpr CFlagOption kDoNamespaces{&XercesDOMParser::setDoNamespaces,
                                    &XercesDOMParser::getDoNamespaces, domErrRefSetDoNamespaces,
                                    domErrRefGetDoNamespaces};
constexpr CFlagOption kDoSchema{&XercesDOMParser::setDoSchema, &XercesDOMParser::getDoSchema,
                                domErrRefSetDoSchema, domErrRefGetDoSchema};
constexpr CFlagOption kFullChecking{&XercesDOMParser::setValidationSchemaFullChecking,
                                    &XercesDOMParser::getValidationSchemaFullChecking,
                                    domErrRefSetValidationSchemaFullChecking,
                                    domErrRefGetValidationSchemaFullChecking};
constexpr CFlagOption kLoadExternalDTD{&XercesDOMParser::setLoadExternalDTD,
                                       &XercesDOMParser::getLoadExternalDTD,
                                       domErrRefSetLoadExternalDTD, domErrRefGetLoadExternalDTD};
constexpr CFlagOption kPreserveWhitespace{&XercesDOMParser::setIncludeIgnorableWhitespace,
                                          &XercesDOMParser::getIncludeIgnorableWhitespace,
                                          domErrRefSetPreserveWhitespace,
                                          domErrRefGetPreserveWhitespace};

// A text of the schemas that the host names.
struct CSchemaOption {
  std::u16string CNamedSchemas::*m_pText;

  TSXStatus Set(TSXRefId document, HStr* pValue) const {
    TSXStatus status = 0;
    const TSXStatus found = WithParser(document, domErrRefDocument, [&](auto& parser) {
      status = Always<domErrUnexpected>::Run(
          [&] { parser.Schemas().*m_pText = CWideText(pValue).Get(); });
    });
    return found != 0 ? found : status;
  }
  TSXStatus Get(TSXRefId document, HStr* pValue) const {
    TSXStatus status = 0;
    const TSXStatus found = WithParser(document, domErrRefDocument, [&](auto& parser) {
      const std::u16string& text = parser.Schemas().*m_pText;
      status = StoreText(text.empty() ? nullptr : text.c_str(), pValue);
    });
    return found != 0 ? found : status;
  }
};

constexpr CSchemaOption kSchemaLocation{&CNamedSchemas::m_Pairs};
constexpr CSchemaOption kNoNamespaceSchemaLocation{&CNamedSchemas::m_NoNamespace};

}  // namespace

TSXStatus TSXSetDoNamespaces(TSXRefId document, uint64_t, const uint8_t* value) {
  return kDoNamespaces.Set(document, value);
}
TSXStatus TSXGetDoNamespaces(TSXRefId document, uint64_t, uint8_t* value) {
  return kDoNamespaces.Get(document, value);
}
TSXStatus TSXSetDoSchema(TSXRefId document, uint64_t, const uint8_t* value) {
  return kDoSchema.Set(document, value);
}
TSXStatus TSXGetDoSchema(TSXRefId document, uint64_t, uint8_t* value) {
  return kDoSchema.Get(document, value);
}
TSXStatus TSXSetValidationSchemaFullChecking(TSXRefId document, uint64_t, const uint8_t* value) {
  return kFullChecking.Set(document, value);
}
TSXStatus TSXGetValidationSchemaFullChecking(TSXRefId document, uint64_t, uint8_t* value) {
  return kFullChecking.Get(document, value);
}
TSXStatus TSXSetLoadExternalDTD(TSXRefId document, uint64_t, const uint8_t* value) {
  return kLoadExternalDTD.Set(document, value);
}
TSXStatus TSXGetLoadExternalDTD(TSXRefId document, uint64_t, uint8_t* value) {
  return kLoadExternalDTD.Get(document, value);
}
TSXStatus TSXSetPreserveWhitespace(TSXRefId document, uint64_t, const uint8_t* value) {
  return kPreserveWhitespace.Set(document, value);
}
TSXStatus TSXGetPreserveWhitespace(TSXRefId document, uint64_t, uint8_t* value) {
  return kPreserveWhitespace.Get(document, value);
}

// Contract: the scheme shares its codes with the namespace option, and any value
// goes to the parser as it stands.
TSXStatus TSXSetValidateOnLoad(TSXRefId document, uint64_t, const int32_t* value) {
  return WithParser(document, domErrRefSetDoNamespaces, [&](auto& parser) {
    parser.setValidationScheme(static_cast<XercesDOMParser::ValSchemes>(*value));
  });
}
TSXStatus TSXGetValidateOnLoad(TSXRefId document, uint64_t, int32_t* value) {
  return WithParser(document, domErrRefGetDoNamespaces, [&](auto& parser) {
    *value = static_cast<int32_t>(parser.getValidationScheme());
  });
}

TSXStatus TSXSetExternalAccess(TSXRefId document, uint64_t, const int32_t* value) {
  return WithParser(document, domErrRefDocument,
                    [&](auto& parser) { parser.Policy().SetMode(*value); });
}
TSXStatus TSXGetExternalAccess(TSXRefId document, uint64_t, int32_t* value) {
  return WithParser(document, domErrRefDocument,
                    [&](auto& parser) { *value = parser.Policy().Mode(); });
}
TSXStatus TSXSetEntityTextLimit(TSXRefId document, uint64_t, const int64_t* value) {
  return WithParser(document, domErrRefDocument,
                    [&](auto& parser) { parser.Limits().SetTextLimit(*value); });
}
TSXStatus TSXGetEntityTextLimit(TSXRefId document, uint64_t, int64_t* value) {
  return WithParser(document, domErrRefDocument,
                    [&](auto& parser) { *value = parser.Limits().TextLimit(); });
}

TSXStatus TSXSetKeepPositions(TSXRefId document, uint64_t, const uint8_t* value) {
  return WithParser(document, domErrRefDocument,
                    [&](auto& parser) { parser.SetKeepPositions(*value != 0); });
}
TSXStatus TSXGetKeepPositions(TSXRefId document, uint64_t, uint8_t* value) {
  return WithParser(document, domErrRefDocument,
                    [&](auto& parser) { *value = parser.GetKeepPositions() ? 1 : 0; });
}

TSXStatus TSXSetSchemaLocation(TSXRefId document, uint64_t, HStr* value) {
  return kSchemaLocation.Set(document, value);
}
TSXStatus TSXGetSchemaLocation(TSXRefId document, uint64_t, HStr* value) {
  return kSchemaLocation.Get(document, value);
}
TSXStatus TSXSetNoNamespaceSchemaLocation(TSXRefId document, uint64_t, HStr* value) {
  return kNoNamespaceSchemaLocation.Set(document, value);
}
TSXStatus TSXGetNoNamespaceSchemaLocation(TSXRefId document, uint64_t, HStr* value) {
  return kNoNamespaceSchemaLocation.Get(document, value);
}
