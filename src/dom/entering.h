// Entering attributes in the map of a new element.
#pragma once

#include <vector>

#include "dom/parts.h"

namespace dom {

// Enters attributes in the order of their names, each in the place of one of the same name
// if there is one, and gives those that gave way. The map ends up as if they were entered
// one after the other, as the DOM does it; that takes a time that grows with the square.
// Where they must differ, the map is of no use once one gave way.
std::vector<xercesc::DOMAttrImpl*> EnterAll(xercesc::DOMElementImpl& element,
                                            xercesc::DOMAttrMapImpl& map,
                                            const std::vector<xercesc::DOMAttrImpl*>& attributes,
                                            bool hasNamespaces, bool mustDiffer = false);

// One of them.
xercesc::DOMAttrImpl* Enter(xercesc::DOMElementImpl& element, xercesc::DOMAttrMapImpl& map,
                            xercesc::DOMAttrImpl& attribute, bool hasNamespaces);

}  // namespace dom
