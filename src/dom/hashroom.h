// A document's hash tables, which the DOM does not let grow and hides.
#pragma once

#include <xercesc/dom/DOM.hpp>

namespace dom {

// The table of names has 257 chains whatever their length, so that names which all differ
// take a time that grows with the square.
class CNameRoom {
 public:
  void Begin();  // of a document
  // So many names are about to be used, each maybe a new one.
  void Need(xercesc::DOMDocument& document, XMLSize_t names);

 private:
  XMLSize_t m_Names = 0;     // needed since the table was looked at
  XMLSize_t m_Patience = 0;  // how many of them until the next look
};

// Room for so many more IDs. The DOM refuses to go beyond some 720,000, and leaves a table
// without size behind when it does.
void NeedIds(xercesc::DOMDocument& document, XMLSize_t ids);

// Takes an ID out of the table wherever it is, also under another value than its own.
void DropId(xercesc::DOMDocument& document, const xercesc::DOMAttr& id);

}  // namespace dom
