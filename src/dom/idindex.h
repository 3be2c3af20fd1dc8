// A document's index of IDs.
#pragma once

#include <xercesc/dom/DOM.hpp>

namespace dom {

// Files an ID attribute under the value that it has. The DOM files a clone under no value
// and does not follow an edit of the text below; it then fails to find the entry when the
// attribute goes, and the entry dangles. Whoever is about to free or change an ID
// attribute calls this first.
void Refile(xercesc::DOMAttr& attribute);

// Takes an ID attribute that is filed under its value out of the index, where the DOM
// leaves it when it frees an element or removes an attribute by namespace. It is no ID
// any more.
void RemoveFromIndex(xercesc::DOMAttr& attribute);

}  // namespace dom
