// What the builder does for elements and attributes alike.
#pragma once

#include <xercesc/dom/impl/DOMAttrNSImpl.hpp>
#include <xercesc/dom/impl/DOMElementNSImpl.hpp>

#include "dom/pooledname.h"

namespace dom {

struct CElementNames : xercesc::DOMElementNSImpl {
  static constexpr auto kURI = &CElementNames::fNamespaceURI;
  static constexpr auto kLocal = &CElementNames::fLocalName;
  static constexpr auto kPrefix = &CElementNames::fPrefix;
};
struct CAttributeNames : xercesc::DOMAttrNSImpl {
  static constexpr auto kURI = &CAttributeNames::fNamespaceURI;
  static constexpr auto kLocal = &CAttributeNames::fLocalName;
  static constexpr auto kPrefix = &CAttributeNames::fPrefix;
};

// An element's names and those of its attributes have slots one behind the other.
inline constexpr std::size_t kSlotsOfNode = 3;

inline bool IsEmpty(const XMLCh* pText) { return pText == nullptr || *pText == 0; }

// Names a node of a namespace, which was made without a name.
template <class Names, class Node>
void SetNames(Node& node, CPooledNames& pool, std::size_t slot, const XMLCh* pURI,
              const XMLCh* pPrefix, const XMLCh* pLocal, const XMLCh* pName) {
  node.fName = pool.Of(pName, slot);
  node.*Names::kLocal = node.fName;
  if (!IsEmpty(pPrefix)) {
    node.*Names::kLocal = pool.Of(pLocal, slot + 1);
    node.*Names::kPrefix = pool.Of(pPrefix, slot + 2);
    // Gives what it gets, where it does not throw.
    static_cast<void>(xercesc::DOMNodeImpl::mapPrefix(pPrefix, pURI, node.getNodeType()));
  }
  node.*Names::kURI = pURI;
}

// As Append, for a node whose parts are at hand and that is no document's.
template <class Node>
void Hang(DOMNode& owner, xercesc::DOMParentNode& parent, Node& child) {
  child.fNode.fOwnerNode = &owner;
  child.fNode.isOwned(true);
  if (parent.fFirstChild == nullptr) {
    parent.fFirstChild = child.fChild.previousSibling = &child;
    child.fNode.isFirstChild(true);
    return;
  }
  DOMNode*& pLast = ChildPart(*parent.fFirstChild)->previousSibling;
  ChildPart(*pLast)->nextSibling = &child;
  child.fChild.previousSibling = pLast;
  pLast = &child;
}

// A text in memory as the parser of the XML library makes it.
xercesc::DOMTextImpl& MakeText(xercesc::DOMDocumentImpl& document, const XMLCh* pText,
                               XMLSize_t length);

}  // namespace dom
