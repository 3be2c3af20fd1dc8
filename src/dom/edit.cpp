#include "dom/edit.h"

#include <optional>
#include <string_view>
#include <xercesc/util/XMLChar.hpp>

#include "dom/checks.h"
#include "dom/look.h"
#include "dom/takentypes.h"

using xercesc::DOMDocument;
using xercesc::DOMDocumentImpl;
using xercesc::DOMException;

namespace dom {

namespace {

constexpr unsigned kContent = kCharacterTypes | Bit(DOMNode::ELEMENT_NODE) |
                              Bit(DOMNode::PROCESSING_INSTRUCTION_NODE) |
                              Bit(DOMNode::ENTITY_REFERENCE_NODE);

// The kinds that a parent may have as children, by its own kind.
constexpr unsigned AllowedIn(DOMNode::NodeType parent) {
  switch (parent) {
    case DOMNode::ELEMENT_NODE:
    case DOMNode::ENTITY_NODE:
    case DOMNode::ENTITY_REFERENCE_NODE:
    case DOMNode::DOCUMENT_FRAGMENT_NODE:
      return kContent;
    case DOMNode::DOCUMENT_NODE:
      return Bit(DOMNode::ELEMENT_NODE) | Bit(DOMNode::PROCESSING_INSTRUCTION_NODE) |
             Bit(DOMNode::COMMENT_NODE) | Bit(DOMNode::DOCUMENT_TYPE_NODE);
    case DOMNode::ATTRIBUTE_NODE:
      return Bit(DOMNode::TEXT_NODE) | Bit(DOMNode::ENTITY_REFERENCE_NODE);
    default:
      return 0;
  }
}

// A document may also have white space.
bool MayHold(const DOMNode& parent, const DOMNode& child) {
  if (IsOneOf(child, AllowedIn(parent.getNodeType()))) return true;
  if (parent.getNodeType() != DOMNode::DOCUMENT_NODE) return false;
  if (child.getNodeType() != DOMNode::TEXT_NODE) return false;
  const std::u16string_view text = child.getNodeValue();
  const XMLCh* pVersion = As<DOMDocument>(parent).getXmlVersion();
  return xercesc::XMLString::equals(pVersion, u"1.1")
             ? xercesc::XMLChar1_1::isAllSpaces(text.data(), text.size())
             : xercesc::XMLChar1_0::isAllSpaces(text.data(), text.size());
}

bool Holds(const DOMNode& ancestor, const DOMNode* pBelow) {
  while (pBelow != nullptr && pBelow != &ancestor) pBelow = Parent(*pBelow);
  return pBelow != nullptr;
}

// -- A document's one element and one type ------------------------------------------

xercesc::DOMElement*& ElementOf(DOMNode& document) {
  return As<DOMDocumentImpl>(document).*reveal::CDocument::kElement;
}
xercesc::DOMDocumentType*& TypeOf(DOMNode& document) {
  return As<DOMDocumentImpl>(document).*reveal::CDocument::kType;
}

// Of the kinds of which a document has one at most, those that it would have twice with
// these children. One that goes makes room for another of its kind.
class CSingles {
 public:
  CSingles(DOMNode& document, const DOMNode* pGoing) {
    if (ElementOf(document) != nullptr) m_Taken |= Bit(DOMNode::ELEMENT_NODE);
    if (TypeOf(document) != nullptr) m_Taken |= Bit(DOMNode::DOCUMENT_TYPE_NODE);
    if (pGoing != nullptr) m_Taken &= ~Bit(pGoing->getNodeType());
  }
  void Add(const DOMNode& child) {
    const unsigned kind = Bit(child.getNodeType()) & kSingle;
    if ((m_Taken & kind) != 0) Refuse(DOMException::HIERARCHY_REQUEST_ERR);
    m_Taken |= kind;
  }

 private:
  static constexpr unsigned kSingle = Bit(DOMNode::ELEMENT_NODE) | Bit(DOMNode::DOCUMENT_TYPE_NODE);
  unsigned m_Taken = 0;
};

// The document remembers its element and its type.
void NoteAttached(DOMNode& parent, DOMNode& child) {
  if (parent.getNodeType() != DOMNode::DOCUMENT_NODE) return;
  if (child.getNodeType() == DOMNode::ELEMENT_NODE) {
    ElementOf(parent) = &As<xercesc::DOMElement>(child);
  } else if (child.getNodeType() == DOMNode::DOCUMENT_TYPE_NODE) {
    TypeOf(parent) = &As<xercesc::DOMDocumentType>(child);
  }
}
void NoteDetached(DOMNode& parent, const DOMNode& child) {
  if (parent.getNodeType() != DOMNode::DOCUMENT_NODE) return;
  if (static_cast<DOMNode*>(ElementOf(parent)) == &child) ElementOf(parent) = nullptr;
  if (static_cast<DOMNode*>(TypeOf(parent)) == &child) TypeOf(parent) = nullptr;
}

// -- Links ----------------------------------------------------------------------------

void Changed(DOMNode& parent) {
  if (DOMDocument* pDocument = TreeOf(parent)) ++(Impl(*pDocument).*reveal::CDocument::kChanges);
}

// The first child's link to the one before it leads to the last child.
void Link(DOMNode& parent, DOMNode& child, DOMNode* pNext) {
  xercesc::DOMNodeImpl& node = NodePart(child);
  node.fOwnerNode = &parent;
  node.isOwned(true);
  xercesc::DOMChildNode& links = *ChildPart(child);
  DOMNode*& pFirst = ParentPart(parent)->fFirstChild;
  if (pFirst == nullptr) {
    pFirst = links.previousSibling = &child;
    node.isFirstChild(true);
    return;
  }
  xercesc::DOMChildNode& after = *ChildPart(pNext != nullptr ? *pNext : *pFirst);
  links.nextSibling = pNext;
  links.previousSibling = after.previousSibling;
  if (pNext == pFirst) {
    NodePart(*pFirst).isFirstChild(false);
    node.isFirstChild(true);
    pFirst = &child;
  } else {
    ChildPart(*after.previousSibling)->nextSibling = &child;
  }
  after.previousSibling = &child;
}

void Unlink(DOMNode& parent, DOMNode& child) {
  xercesc::DOMChildNode& links = *ChildPart(child);
  DOMNode*& pFirst = ParentPart(parent)->fFirstChild;
  if (&child == pFirst) {
    pFirst = links.nextSibling;
    if (pFirst != nullptr) NodePart(*pFirst).isFirstChild(true);
  } else {
    ChildPart(*links.previousSibling)->nextSibling = links.nextSibling;
  }
  if (links.nextSibling != nullptr) {
    ChildPart(*links.nextSibling)->previousSibling = links.previousSibling;
  } else if (pFirst != nullptr) {
    ChildPart(*pFirst)->previousSibling = links.previousSibling;
  }
  links.previousSibling = links.nextSibling = nullptr;
  xercesc::DOMNodeImpl& node = NodePart(child);
  node.isFirstChild(false);
  node.isOwned(false);
  node.fOwnerNode = ParentPart(parent)->fOwnerDocument;
}

void Attach(DOMNode& parent, DOMNode& child, DOMNode* pNext) {
  Link(parent, child, pNext);
  NoteAttached(parent, child);
}
void Detach(DOMNode& parent, DOMNode& child) {
  Unlink(parent, child);
  NoteDetached(parent, child);
  Changed(parent);
}

// -- Checks -----------------------------------------------------------------------------

// A parent that can have no children at all refuses with `code`.
void RequireParent(const DOMNode& parent, short code) {
  if (!IsOneOf(parent, kParentTypes)) Refuse(code);
  if (parent.getNodeType() == DOMNode::ENTITY_NODE) static_cast<void>(FirstChild(parent));
}

// A type that no document has taken belongs to the document that it is offered to.
bool IsOfSameDocument(const DOMNode& parent, const DOMNode& child) {
  if (parent.getNodeType() == DOMNode::DOCUMENT_NODE && IsFreeType(child)) return true;
  return OwnerDocument(child) == ParentPart(parent)->fOwnerDocument;
}

void CheckPlace(const DOMNode& parent, const DOMNode& newChild, const DOMNode* pReference) {
  RequireWritable(parent);
  if (!IsOfSameDocument(parent, newChild)) Refuse(DOMException::WRONG_DOCUMENT_ERR);
  if (FirstChild(newChild) != nullptr && Holds(newChild, Parent(parent))) {
    Refuse(DOMException::HIERARCHY_REQUEST_ERR);
  }
  if (pReference != nullptr && Parent(*pReference) != &parent) Refuse(DOMException::NOT_FOUND_ERR);
  // The DOM looks from the parent's parent upwards only, and would make a ring of a node
  // that is put into itself.
  if (&newChild == &parent) Refuse(DOMException::HIERARCHY_REQUEST_ERR);
}

// A node that is moved leaves its old parent, which may refuse.
void CheckKind(const DOMNode& parent, const DOMNode& newChild) {
  if (!MayHold(parent, newChild)) Refuse(DOMException::HIERARCHY_REQUEST_ERR);
  const DOMNode* pOldParent = Parent(newChild);
  if (pOldParent != nullptr && IsReadOnly(*pOldParent)) {
    Refuse(DOMException::NO_MODIFICATION_ALLOWED_ERR);
  }
}

void CheckFragment(const DOMNode& parent, const DOMNode& fragment,
                   std::optional<CSingles>& singles) {
  for (DOMNode* pChild = FirstChild(fragment); pChild != nullptr; pChild = NextSibling(*pChild)) {
    if (!MayHold(parent, *pChild)) Refuse(DOMException::HIERARCHY_REQUEST_ERR);
    if (singles) singles->Add(*pChild);
  }
}

// -- Inserting --------------------------------------------------------------------------

void Move(DOMNode& parent, DOMNode& newChild, DOMNode* pReference) {
  if (DOMNode* pOldParent = Parent(newChild)) Detach(*pOldParent, newChild);
  Attach(parent, newChild, pReference);
}

void MoveAll(DOMNode& parent, DOMNode& fragment, DOMNode* pReference) {
  while (DOMNode* pChild = FirstChild(fragment)) {
    Move(parent, *pChild, pReference);
    Changed(parent);
  }
}

void Take(DOMNode& document, DOMNode& type) {
  auto& taken = As<xercesc::DOMDocumentTypeImpl>(type);
  taken.setOwnerDocument(&As<DOMDocument>(document));
  takentypes::Note(taken);
}

// Checks everything, then inserts. `pGoing` is a child that the new one replaces.
void Insert(DOMNode& parent, DOMNode& newChild, DOMNode* pReference, const DOMNode* pGoing) {
  RequireParent(parent, DOMException::HIERARCHY_REQUEST_ERR);
  std::optional<CSingles> singles;
  if (parent.getNodeType() == DOMNode::DOCUMENT_NODE) {
    singles.emplace(parent, pGoing).Add(newChild);
  }
  CheckPlace(parent, newChild, pReference);
  if (&newChild == pReference) return;
  if (newChild.getNodeType() == DOMNode::DOCUMENT_FRAGMENT_NODE) {
    CheckFragment(parent, newChild, singles);
    MoveAll(parent, newChild, pReference);
  } else {
    CheckKind(parent, newChild);
    if (IsFreeType(newChild)) Take(parent, newChild);
    Move(parent, newChild, pReference);
  }
  Changed(parent);
}

}  // namespace

void InsertBefore(DOMNode& parent, DOMNode& newChild, const DOMNode* pReference) {
  Insert(parent, newChild, const_cast<DOMNode*>(pReference), nullptr);
}

void ReplaceChild(DOMNode& parent, DOMNode& newChild, DOMNode& oldChild) {
  Insert(parent, newChild, &oldChild, &oldChild);
  Detach(parent, oldChild);
}

void RemoveChild(DOMNode& parent, DOMNode& child) {
  RequireParent(parent, DOMException::NOT_FOUND_ERR);
  RequireWritable(parent);
  if (Parent(child) != &parent) Refuse(DOMException::NOT_FOUND_ERR);
  Detach(parent, child);
}

void Append(DOMNode& parent, DOMNode& newChild) { Attach(parent, newChild, nullptr); }

void RemoveChildren(DOMNode& parent) {
  while (DOMNode* pChild = FirstChild(parent)) Detach(parent, *pChild);
}

}  // namespace dom
