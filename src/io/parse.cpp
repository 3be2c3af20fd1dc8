#include "io/parse.h"

#include <tessel/status.h>

#include <algorithm>
#include <cstring>

namespace {

std::size_t CountOf(const HStr* pText) {
  return pText != nullptr && *pText != nullptr
             ? static_cast<std::size_t>(std::max((**pText)->count, 0))
             : 0;
}

}  // namespace

CStringSource::CStringSource(HStr* pText, EBytes bytes, const char* pSystemId)
    : m_Text(pText),
      m_Bytes(m_Text.Get(), bytes == EBytes::kAll ? CountOf(pText) : std::strlen(m_Text.Get())),
      m_Source(reinterpret_cast<const XMLByte*>(m_Bytes.data()), m_Bytes.size(), pSystemId) {
  m_Source.setCopyBufToStream(false);  // it lives as long as the stream
}

TSXStatus ReportParse(CXercesDOM& dom, HStr* pParseErrors) {
  if (dom.m_pParser->ErrorCount() == 0) {
    ClearString(pParseErrors);
    return 0;
  }
  // A host that refuses the lines must not take those of an earlier call for them.
  if (domCopyHStr(dom.m_pErrorReporter->getEHMsg(), pParseErrors) != 0) ClearString(pParseErrors);
  dom.m_pErrorReporter->resetEHMsg();
  return domErrParse;
}
