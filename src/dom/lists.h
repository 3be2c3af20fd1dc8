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

// Where a child list was read last, so that the next member is a step away. What it knows
// holds while its document does not change; a new one knows nothing.
struct CPlace {
  static constexpr XMLSize_t kUnknown = ~XMLSize_t{0};

  int m_Changes = 0;           // of the document, as it counts them
  DOMNode* m_pNode = nullptr;  // the member at m_Index; null for none
  XMLSize_t m_Index = 0;
  XMLSize_t m_Length = kUnknown;

  bool operator==(const CPlace&) const = default;
};

// The member at an index, null behind the last one, and the number of members. A child
// list starts from the place and leaves the new one in it; the holder is its parent. Any
// other list answers for itself.
DOMNode* Member(const xercesc::DOMNodeList& list, const DOMNode* pHolder, CPlace& place,
                XMLSize_t index);
XMLSize_t Length(const xercesc::DOMNodeList& list, const DOMNode* pHolder, CPlace& place);

// All members of a list, in one pass: a child list walks from the first child at every
// index, a list by name through its whole subtree for its length.
std::vector<DOMNode*> MembersOf(const xercesc::DOMNodeList& list);

}  // namespace dom
