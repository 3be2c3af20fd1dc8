// The XML library's writer, and the encoding of a document, under the names and
// in the steps that this library uses. What changed between generations of the
// XML library's interface is bridged here and nowhere else.
#pragma once

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/XMLFormatter.hpp>

#include "host/domowner.h"

class CDOMWriter {
 public:
  // May fail: check before use.
  explicit CDOMWriter(xercesc::DOMImplementation& implementation);
  bool IsMade() const { return m_pSerializer != nullptr && m_pOutput != nullptr; }

  // Asks for line breaks and indentation, where the writer has them.
  void SetPrettyPrint();
  void SetErrorHandler(xercesc::DOMErrorHandler* pHandler);

  // Null leaves the choice to the writer: the encoding the document was read in,
  // or UTF-8.
  void SetEncoding(const XMLCh* pEncoding);

  // False when the writer could not write the node.
  bool WriteNode(xercesc::XMLFormatTarget& target, const xercesc::DOMNode& node);

 private:
  CDOMOwner<xercesc::DOMLSSerializer> m_pSerializer;
  CDOMOwner<xercesc::DOMLSOutput> m_pOutput;
};

// The encoding that a document declares; null for none.
const XMLCh* GetDocumentEncoding(const xercesc::DOMDocument& document);
void SetDocumentEncoding(xercesc::DOMDocument& document, const XMLCh* pEncoding);
