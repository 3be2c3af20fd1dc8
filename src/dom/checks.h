// Checks that edits have in common.
#pragma once

#include "dom/look.h"

namespace dom {

[[noreturn]] inline void Refuse(short code) { throw xercesc::DOMException(code); }

inline void RequireWritable(const DOMNode& node) {
  if (IsReadOnly(node)) Refuse(xercesc::DOMException::NO_MODIFICATION_ALLOWED_ERR);
}

// Whether a node may become an item of a map of the holder's, as far as all maps ask.
inline void CheckItem(const DOMNode& holder, const DOMNode& node) {
  if (OwnerDocument(node) != OwnerDocument(holder)) {
    Refuse(xercesc::DOMException::WRONG_DOCUMENT_ERR);
  }
  RequireWritable(holder);
}

}  // namespace dom
