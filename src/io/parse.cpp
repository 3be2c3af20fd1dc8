#include "io/parse.h"

#include <tessel/status.h>

#include <cstring>

#include "document/xercesdom.h"

CStringSource::CStringSource(HStr* pText, const char* pSystemId)
    : m_Text(pText),
      m_Source(reinterpret_cast<const XMLByte*>(m_Text.Get()), std::strlen(m_Text.Get()),
               pSystemId) {}

CDOMOwner<xercesc::DOMDocument> TakeParsed(CXercesDOM& dom) {
  return CDOMOwner<xercesc::DOMDocument>(dom.m_pParser->adoptDocument());
}

TSXStatus ReportParse(CXercesDOM& dom, HStr* pParseErrors) {
  if (dom.m_pParser->getErrorCount() == 0) {
    ClearString(pParseErrors);
    return 0;
  }
  domCopyHStr(dom.m_pErrorReporter->getEHMsg(), pParseErrors);
  dom.m_pErrorReporter->resetEHMsg();
  return domErrParse;
}
