// Values and text of nodes of every kind.
#pragma once

#include <string>

#include "dom/parts.h"

namespace dom {

// As the DOM defines the text content of a node. The DOM's own operation keeps a copy in
// the document at every call, recurses, and crashes for a document type that no document
// has taken.
std::u16string TextContent(DOMNode& node);

// Sets the value of a node that can have one; all others stay as they are.
void SetNodeValue(DOMNode& node, const XMLCh* pValue);

// The children of an element, an entity reference or a fragment are taken out and live
// on; the nodes that made an attribute's value are freed.
void SetTextContent(DOMNode& node, const XMLCh* pText);

// A run of a text. The DOM copies as many units as it is told into a buffer sized for
// the text, so it is told no more than there are; a bad offset it refuses.
const XMLCh* Substring(const xercesc::DOMCharacterData& data, XMLSize_t offset, XMLSize_t count);

// Cuts a text or a CDATA section in two and gives the second part, the next sibling.
xercesc::DOMText& SplitText(xercesc::DOMText& text, XMLSize_t offset);

// Merges neighbouring texts below a node into the first of them. Those that were merged
// hang nowhere then.
void Normalize(DOMNode& root);

}  // namespace dom
