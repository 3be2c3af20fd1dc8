#include "libraries.h"

#include <cstring>
#include <stdexcept>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/util/XMLString.hpp>

namespace bench {

void Require(TSXStatus status, const char* pCall) {
  if (status != 0) throw std::runtime_error(std::string(pCall) + ": " + std::to_string(status));
}

void Load(const CDocument& document, CText& xml) {
  CText errors, exception;
  Require(TSXLoadString(document.Get(), xml.Get(), errors.Get(), exception.Get()), "TSXLoadString");
}

CDocument OpenDocument(const std::string& xml) {
  CDocument document;
  Require(TSXDocumentOpen(0, document.Out()), "TSXDocumentOpen");
  CText text(xml);
  Load(document, text);
  return document;
}

void CXercesDocument::Parse(const std::string& xml) {
  const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(xml.data()), xml.size(),
                                          "xml");
  m_pParser->parse(source);
}

void CXercesDocument::ParseFile(const std::string& path) { m_pParser->parse(path.c_str()); }

CLibxml2Document ParseLibxml2(const std::string& xml) {
  CLibxml2Document document(
      xmlReadMemory(xml.data(), static_cast<int>(xml.size()), nullptr, nullptr, XML_PARSE_NONET));
  if (document == nullptr) throw std::runtime_error("libxml2 cannot read the document");
  return document;
}

std::u16string Wide(const char* pText) {
  XMLCh* pWide = xercesc::XMLString::transcode(pText);
  std::u16string text(pWide);
  xercesc::XMLString::release(&pWide);
  return text;
}

uint64_t TranscodeOut(const XMLCh* pText) {
  char* pLocal = xercesc::XMLString::transcode(pText);
  const uint64_t length = std::strlen(pLocal);
  xercesc::XMLString::release(&pLocal);
  return length;
}

CDocuments::CDocuments(const std::string& xml)
    : m_Tessel(OpenDocument(xml)), m_Xerces(xml), m_Libxml2(ParseLibxml2(xml)) {
  Require(TSXGetDocumentElement(m_Tessel.Get(), 0, m_TesselRoot.Out()), "TSXGetDocumentElement");
  if (!m_Pugixml.load_buffer(xml.data(), xml.size())) {
    throw std::runtime_error("pugixml cannot read the document");
  }
}

}  // namespace bench
