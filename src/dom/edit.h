// Moving nodes into, within and out of a tree.
//
// Each makes the DOM's checks with the DOM's codes in the DOM's order, and throws a
// DOMException before anything has changed. Nothing is freed here. There are no ranges
// and no iterators in this library, so none are told.
#pragma once

#include "dom/parts.h"

namespace dom {

// Appends where pReference is null. A document type that no document has taken is taken
// by the document that it is put into. A fragment is put in whole or not at all.
void InsertBefore(DOMNode& parent, DOMNode& newChild, const DOMNode* pReference);

// A child that takes its own place is removed.
void ReplaceChild(DOMNode& parent, DOMNode& newChild, DOMNode& oldChild);

void RemoveChild(DOMNode& parent, DOMNode& child);

// Hangs a node that hangs nowhere behind the last child. For nodes that were just made
// and are known to fit: nothing is checked.
void Append(DOMNode& parent, DOMNode& newChild);

// Takes all children out of a node. They live on and hang nowhere.
void RemoveChildren(DOMNode& parent);

}  // namespace dom
