// Copying nodes, however deep.
#pragma once

#include "dom/parts.h"

namespace dom {

// A copy in the same document, which hangs nowhere. The copy of a document is a document
// of its own, and the copy of a document type that no document has taken is another one.
DOMNode* Clone(DOMNode& node, bool deep);

// A copy in another document, or the same. Throws where the DOM has no such copies.
DOMNode* Import(xercesc::DOMDocument& document, DOMNode& source, bool deep);

}  // namespace dom
