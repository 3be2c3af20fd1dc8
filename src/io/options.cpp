#include <tessel/options.h>
#include <tessel/status.h>

#include "document/find.h"

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
