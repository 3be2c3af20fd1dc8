// Two XML texts, divided by a form feed: the second replaces the first child of the
// first one's root, or the root itself.
#include <algorithm>

#include "harness.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t size) {
  fuzz::CBytes bytes(pData, size);
  const uint8_t choice = bytes.Byte();
  const std::string_view input = bytes.Rest();
  const size_t cut = std::min(input.find('\f'), input.size());
  if (!fuzz::IsTame(input)) return 0;
  fuzz::CLedger ledger;
  fuzz::CDoc document;
  const uint8_t namespaces = choice & 1;
  fuzz::RequireKnown(TSXSetDoNamespaces(document.Id(), 0, &namespaces));
  fuzz::RequireKnown(document.Load(input.substr(0, cut)));
  TSXRefId root = 0, child = 0;
  fuzz::RequireKnown(TSXGetDocumentElement(document.Id(), 0, &root));
  if ((choice & 2) != 0) TSXGetFirstChild(root, 0, &child);
  const TSXRefId target = child != 0 ? child : root;
  fuzz::CText xml(input.substr(std::min(cut + 1, input.size()))), errors, exception, text;
  for (int round = 0; round < 2; ++round) {
    int32_t before = 0, after = 0;
    TSXGetNodeType(target, 0, &before);
    fuzz::RequireKnown(TSXElementSetXML(target, xml.Out(), errors.Out(), exception.Out()));
    TSXGetNodeType(target, 0, &after);
    if (before != after) fuzz::Fail("the id names another kind of node");
  }
  fuzz::RequireKnown(TSXGetXML(document.Id(), text.Out()));
  return 0;
}
