#include "dom/copy.h"

#include "dom/edit.h"
#include "dom/hashroom.h"
#include "dom/look.h"
#include "dom/release.h"
#include "dom/takentypes.h"

using xercesc::DOMDocument;
using xercesc::DOMDocumentImpl;

namespace dom {

namespace {

// What the DOM copies with all that is in it. It does so by recursion; the parser keeps
// the content of entities shallow.
constexpr unsigned kCopiedWhole = Bit(DOMNode::ATTRIBUTE_NODE) |
                                  Bit(DOMNode::ENTITY_REFERENCE_NODE) | Bit(DOMNode::ENTITY_NODE) |
                                  Bit(DOMNode::DOCUMENT_TYPE_NODE);

DOMNode* FirstToCopy(const DOMNode& node) {
  return IsOneOf(node, kCopiedWhole) ? nullptr : MadeFirstChild(node);
}

// Copies a node and what is below it; `copyOne` copies a node without its children.
template <class CopyOne>
DOMNode* CopyTree(DOMNode& source, bool deep, CopyOne copyOne) {
  CNodeOwner root(copyOne(source));
  DOMNode* pFrom = deep ? FirstToCopy(source) : nullptr;
  DOMNode* pInto = root.get();
  while (pFrom != nullptr) {
    DOMNode* pCopy = copyOne(*pFrom);
    Append(*pInto, *pCopy);
    if (DOMNode* pChild = FirstToCopy(*pFrom)) {
      pFrom = pChild;
      pInto = pCopy;
      continue;
    }
    while (NextSibling(*pFrom) == nullptr && Parent(*pFrom) != &source) {
      pFrom = Parent(*pFrom);
      pInto = Parent(*pInto);
    }
    pFrom = NextSibling(*pFrom);
  }
  return root.release();
}

// The copy of an element has copies of its attributes, and these have copies of their texts.
void UnmarkCopy(DOMNode& copy) {
  Unmark(copy);
  if (copy.getNodeType() == DOMNode::ATTRIBUTE_NODE) {
    for (DOMNode* pText = FirstChild(copy); pText != nullptr; pText = NextSibling(*pText)) {
      Unmark(*pText);
    }
  } else if (copy.getNodeType() == DOMNode::ELEMENT_NODE) {
    xercesc::DOMNodeVector* pItems = AttributesOf(As<xercesc::DOMElementImpl>(copy));
    const XMLSize_t count = pItems != nullptr ? pItems->size() : 0;
    for (XMLSize_t i = 0; i < count; ++i) UnmarkCopy(*pItems->elementAt(i));
  }
}

// The DOM's copy takes over the flags of its original, even that of a first child.
DOMNode* CloneOne(const DOMNode& node, bool deep) {
  DOMNode* pClone = node.cloneNode(deep);
  UnmarkCopy(*pClone);
  NodePart(*pClone).isFirstChild(false);
  return pClone;
}

// A copy of an ID is an ID of the document that it is made in.
void NeedIdsFor(DOMDocument& document, const DOMNode& part) {
  const xercesc::DOMNamedNodeMap* pAttributes = part.getAttributes();
  if (pAttributes != nullptr) NeedIds(document, pAttributes->getLength());
}

// The DOM crashes when it is to clone a document type that no document has taken. Such a
// type is no more than its names, so one made of them is its clone.
DOMNode* CloneFreeType(const xercesc::DOMDocumentType& type) {
  return xercesc::DOMImplementation::getImplementation()->createDocumentType(
      type.getName(), type.getPublicId(), type.getSystemId());
}

// With the attributes that defaults supplied and with document types, which an import
// from another document leaves out.
struct CImport : DOMDocumentImpl {
  using CMember = DOMNode* (DOMDocumentImpl::*)(const DOMNode*, bool, bool);
  static constexpr CMember kImport = &CImport::importNode;
};
DOMNode* CloneDocument(DOMNode& document, bool deep) {
  CNodeOwner copy(document.cloneNode(false));
  auto& into = As<DOMDocumentImpl>(*copy);
  const auto copyOne = [&](const DOMNode& node) {
    NeedIdsFor(into, node);
    return (into.*CImport::kImport)(&node, IsOneOf(node, kCopiedWhole), true);
  };
  for (DOMNode* pChild = deep ? FirstChild(document) : nullptr; pChild != nullptr;
       pChild = NextSibling(*pChild)) {
    InsertBefore(*copy, *CopyTree(*pChild, true, copyOne), nullptr);
  }
  return copy.release();
}

}  // namespace

DOMNode* Clone(DOMNode& node, bool deep) {
  if (node.getNodeType() == DOMNode::DOCUMENT_NODE) return CloneDocument(node, deep);
  if (IsFreeType(node)) return CloneFreeType(As<xercesc::DOMDocumentType>(node));
  return CopyTree(node, deep, [&](const DOMNode& part) {
    if (DOMDocument* pOwner = OwnerDocument(part)) NeedIdsFor(*pOwner, part);
    return CloneOne(part, deep && IsOneOf(part, kCopiedWhole));
  });
}

DOMNode* Import(DOMDocument& document, DOMNode& source, bool deep) {
  return CopyTree(source, deep, [&](const DOMNode& part) {
    NeedIdsFor(document, part);
    return document.importNode(&part, deep && IsOneOf(part, kCopiedWhole));
  });
}

}  // namespace dom
