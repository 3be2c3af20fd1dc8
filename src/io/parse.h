// What every parse of a document object has in common.
#pragma once

#include <tessel/export.h>
#include <tessel/host.h>

#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>

#include "host/domowner.h"
#include "host/text.h"

class CXercesDOM;

// The bytes of a host string up to the first NUL, as the parser wants them.
class CStringSource {
 public:
  CStringSource(HStr* pText, const char* pSystemId);
  const xercesc::InputSource& Get() const { return m_Source; }

 private:
  CHostText m_Text;
  xercesc::MemBufInputSource m_Source;
};

// The document that the parser's last parse produced; null for none.
CDOMOwner<xercesc::DOMDocument> TakeParsed(CXercesDOM& dom);

// The parser's lines and the status of its last parse.
TSXStatus ReportParse(CXercesDOM& dom, HStr* pParseErrors);
