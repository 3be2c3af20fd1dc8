// The few questions that the DOM interface does not answer, asked of the XML
// library's implementation classes.
#pragma once

#include <xercesc/dom/DOM.hpp>

namespace domimpl {

bool IsReadOnly(const xercesc::DOMNode& node);

// Setting an item that a map holds already leaves it in the map but marked as
// free; this marks it as the holder's again.
void Reclaim(xercesc::DOMNode& item, xercesc::DOMNode& holder);

}  // namespace domimpl
