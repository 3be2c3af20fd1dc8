// What every parse of a document object has in common.
#pragma once

#include <tessel/export.h>
#include <tessel/host.h>

#include <string_view>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>

#include "document/xercesdom.h"
#include "host/domowner.h"
#include "host/text.h"

// Which bytes of a host string are the text.
enum class EBytes { kToNul, kAll };

// The bytes of a host string, as the parser wants them.
class CStringSource {
 public:
  CStringSource(HStr* pText, EBytes bytes, const char* pSystemId);
  const xercesc::InputSource& Get() const { return m_Source; }
  std::string_view Bytes() const { return m_Bytes; }

 private:
  CHostText m_Text;
  std::string_view m_Bytes;
  xercesc::MemBufInputSource m_Source;
};

// Parses and takes what the parse produced; null for none. The parser goes on naming
// a document that was taken from it, and a parse that fails before it begins would
// offer that one a second time: hence the reset.
template <class... Source>
CDOMOwner<xercesc::DOMDocument> ParseAndTake(CXercesDOM& dom, const Source&... source) {
  dom.m_pParser->resetDocumentPool();
  dom.m_pParser->ParseLimited(source...);
  return CDOMOwner<xercesc::DOMDocument>(dom.m_pParser->adoptDocument());
}

// The parser's lines and the status of its last parse.
TSXStatus ReportParse(CXercesDOM& dom, HStr* pParseErrors);
