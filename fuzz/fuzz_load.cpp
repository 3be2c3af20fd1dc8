// An XML text with parser options of any kind: loads, writes, loads what was written.
#include <algorithm>

#include "harness.h"

namespace {

// Each expansion of an entity has a reader of its own, which the address sanitizer
// makes slow: nested ones would run into the time limit before the parser's limit.
constexpr auto kMostReferences = 24;

void SetOptions(TSXRefId document, uint8_t bits) {
  const uint8_t namespaces = bits & 1, schema = bits & 2, externalDTD = bits & 4,
                whitespace = bits & 8, fullChecking = bits & 16;
  const int32_t scheme = bits >> 5;
  fuzz::RequireKnown(TSXSetDoNamespaces(document, 0, &namespaces));
  fuzz::RequireKnown(TSXSetDoSchema(document, 0, &schema));
  fuzz::RequireKnown(TSXSetLoadExternalDTD(document, 0, &externalDTD));
  fuzz::RequireKnown(TSXSetPreserveWhitespace(document, 0, &whitespace));
  fuzz::RequireKnown(TSXSetValidationSchemaFullChecking(document, 0, &fullChecking));
  fuzz::RequireKnown(TSXSetValidateOnLoad(document, 0, &scheme));
  fuzz::RequireKnown(TSXSetKeepPositions(document, 0, &whitespace));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t size) {
  fuzz::CBytes bytes(pData, size);
  const uint8_t options = bytes.Byte();
  const std::string_view xml = bytes.Rest();
  if (!fuzz::IsTame(xml)) return 0;
  if (std::count(xml.begin(), xml.end(), '&') > kMostReferences) return 0;
  fuzz::CLedger ledger;
  fuzz::CDoc document;
  SetOptions(document.Id(), options);
  const TSXStatus loaded = document.Load(xml);
  if (loaded != 0 && loaded != domErrParse) fuzz::Fail("load gave " + std::to_string(loaded));
  fuzz::CText text, pretty, content, errors, exception;
  fuzz::RequireKnown(TSXGetXML(document.Id(), text.Out()));
  fuzz::RequireKnown(TSXGetXMLPP(document.Id(), pretty.Out()));
  fuzz::RequireKnown(TSXGetText(document.Id(), content.Out()));
  fuzz::RequireKnown(TSXLoadString(document.Id(), text.Out(), errors.Out(), exception.Out()));
  return 0;
}
