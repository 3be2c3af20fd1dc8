#include "io/domwriter.h"

#include <xercesc/dom/impl/DOMDocumentImpl.hpp>
#include <xercesc/util/XMLUni.hpp>

using xercesc::DOMConfiguration;
using xercesc::XMLUni;

CDOMWriter::CDOMWriter(xercesc::DOMImplementation& implementation)
    : m_pSerializer(implementation.createLSSerializer()),
      m_pOutput(implementation.createLSOutput()) {}

void CDOMWriter::SetPrettyPrint() {
  DOMConfiguration* pConfig = m_pSerializer->getDomConfig();
  if (pConfig->canSetParameter(XMLUni::fgDOMWRTFormatPrettyPrint, true)) {
    pConfig->setParameter(XMLUni::fgDOMWRTFormatPrettyPrint, true);
  }
}

void CDOMWriter::SetErrorHandler(xercesc::DOMErrorHandler* pHandler) {
  m_pSerializer->getDomConfig()->setParameter(XMLUni::fgDOMErrorHandler, pHandler);
}

void CDOMWriter::SetEncoding(const XMLCh* pEncoding) { m_pOutput->setEncoding(pEncoding); }

bool CDOMWriter::WriteNode(xercesc::XMLFormatTarget& target, const xercesc::DOMNode& node) {
  m_pOutput->setByteStream(&target);
  return m_pSerializer->write(&node, m_pOutput.get());
}

const XMLCh* GetDocumentEncoding(const xercesc::DOMDocument& document) {
  return document.getXmlEncoding();
}

void SetDocumentEncoding(xercesc::DOMDocument& document, const XMLCh* pEncoding) {
  static_cast<xercesc::DOMDocumentImpl&>(document).setXmlEncoding(pEncoding);
}
