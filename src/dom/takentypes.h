// Document types that were made for no document and taken by one later.
//
// The DOM frees such a type with its document only where it is the document's child by
// then. One that was removed or replaced is freed from here.
#pragma once

#include <vector>
#include <xercesc/dom/DOM.hpp>

namespace dom {

// Whether this is a document type that no document has taken.
bool IsFreeType(const xercesc::DOMNode& node);

namespace takentypes {

// Notes a type that has just been taken by its owner document, and tells the listener.
void Note(xercesc::DOMDocumentType& type);

// The node is about to be freed.
void Forget(const xercesc::DOMNode& node);

// The types of a document that is about to go. They are the caller's to free, except for
// the document's child.
std::vector<xercesc::DOMDocumentType*> TakeOf(const xercesc::DOMDocument& document);

}  // namespace takentypes

}  // namespace dom
