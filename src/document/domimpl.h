// The few questions that the DOM interface does not answer, asked of the XML
// library's implementation classes.
#pragma once

#include <xercesc/dom/DOM.hpp>

namespace domimpl {

bool IsReadOnly(const xercesc::DOMNode& node);

// Whether a tree, an element or a map owns the node: the DOM then refuses to
// release it.
bool IsOwned(const xercesc::DOMNode& node);

// Files an ID attribute in its document's index of IDs under the value it has. The DOM
// files a clone under no value and does not follow an edit of the text below; it then
// fails to find the entry when the attribute goes, and the entry dangles.
void Refile(xercesc::DOMAttr& attribute);

// Takes an ID attribute out of its document's index of IDs, where the DOM leaves it
// when it releases the element.
void RemoveFromIndex(xercesc::DOMAttr& attribute);

// Lets the DOM release an element that is read-only, as in an entity reference: the
// attributes would stop it halfway, with children freed and still linked.
void MakeReleasable(xercesc::DOMElement& element);

// Setting an item that a map holds already leaves it in the map but marked as
// free; this marks it as the holder's again.
void Reclaim(xercesc::DOMNode& item, xercesc::DOMNode& holder);

// Whether this entity reference may be the one that its entity copies its content from,
// when it is first asked for it, and that later references copy theirs from: the last
// one that the parser met. An entity that is no longer in its document may have any.
bool MayBeModel(const xercesc::DOMNode& reference);

// Takes a node out of its parent, if it has one, even of a read-only one.
void Detach(xercesc::DOMNode& node);

}  // namespace domimpl
