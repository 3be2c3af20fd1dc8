// Lists of nodes: children, and elements by name.
#pragma once

#include <vector>

#include "dom/parts.h"

namespace dom {

// The DOM's own live lists by tag name. It keeps one for every node and name that were
// asked for, with the member last given. A freed element leaves its list, and that
// member, to the next element at its address; so each list is sent back to its front.
xercesc::DOMNodeList* ListByName(DOMNode& root, const XMLCh* pName);
xercesc::DOMNodeList* ListByNameNS(DOMNode& root, const XMLCh* pURI, const XMLCh* pLocalName);

// The members of such a list in one walk; the DOM's would look for every member anew from
// where it stands. The name "*" is every name; the URI "*" is every namespace, and none.
std::vector<DOMNode*> ElementsByName(const DOMNode& root, const XMLCh* pName);
std::vector<DOMNode*> ElementsByNameNS(const DOMNode& root, const XMLCh* pURI,
                                       const XMLCh* pLocalName);

// All members of a list, in one pass: a child list walks from the first child at every
// index, a list by name through its whole subtree for its length.
std::vector<DOMNode*> MembersOf(const xercesc::DOMNodeList& list);

}  // namespace dom
