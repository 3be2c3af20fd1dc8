// Where line breaks and indentation may be added.
#pragma once

#include <xercesc/dom/DOM.hpp>

namespace layout {

// What the children of an element may have between them.
enum class EContent {
  kElements,  // elements, and nothing that a reader would take for text
  kText,      // text somewhere: white space may belong to it, here and further down
  kNone,      // neither: nothing is added, and what is there stays
};
EContent ContentOf(const xercesc::DOMNode& parent);

// Whether white space must stay as it is inside: what xml:space says, or where it says
// nothing, what holds around.
bool IsPreserved(const xercesc::DOMElement& element, bool isPreservedAround);
// The same for what stands around a node.
bool IsPreservedAround(const xercesc::DOMNode& node);

}  // namespace layout
