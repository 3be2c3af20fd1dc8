// The parts that a node of the DOM is made of, by static cast.
//
// Every node carries a node part (owner and flags); what may have children carries a
// parent part, what may be a child a child part (the links to its siblings). The XML
// library finds them by run-time casts, which cost more than what is done with them.
// Here the type of a node says where they are.
//
// Whatever is passed in is a node of the DOM itself. A document object is none: it
// stands for its document, and DocumentBehind gives that.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/dom/impl/DOMAttrImpl.hpp>
#include <xercesc/dom/impl/DOMAttrMapImpl.hpp>
#include <xercesc/dom/impl/DOMCDATASectionImpl.hpp>
#include <xercesc/dom/impl/DOMCommentImpl.hpp>
#include <xercesc/dom/impl/DOMDocumentFragmentImpl.hpp>
#include <xercesc/dom/impl/DOMDocumentImpl.hpp>
#include <xercesc/dom/impl/DOMDocumentTypeImpl.hpp>
#include <xercesc/dom/impl/DOMElementImpl.hpp>
#include <xercesc/dom/impl/DOMEntityImpl.hpp>
#include <xercesc/dom/impl/DOMEntityReferenceImpl.hpp>
#include <xercesc/dom/impl/DOMNodeVector.hpp>
#include <xercesc/dom/impl/DOMNotationImpl.hpp>
#include <xercesc/dom/impl/DOMProcessingInstructionImpl.hpp>
#include <xercesc/dom/impl/DOMTextImpl.hpp>
#include <xercesc/util/XercesVersion.hpp>

static_assert(XERCES_VERSION_MAJOR == 3 && XERCES_VERSION_MINOR == 2,
              "src/dom knows the implementation of Xerces-C 3.2 only");

namespace dom {

using xercesc::DOMNode;

// The members that the implementation protects, named by classes that inherit from it.
namespace reveal {

struct CCData : xercesc::DOMCDATASectionImpl {
  static constexpr auto kNode = &CCData::fNode;
  static constexpr auto kChild = &CCData::fChild;
  static constexpr auto kData = &CCData::fCharacterData;
};
struct CInstruction : xercesc::DOMProcessingInstructionImpl {
  static constexpr auto kNode = &CInstruction::fNode;
  static constexpr auto kChild = &CInstruction::fChild;
  static constexpr auto kData = &CInstruction::fCharacterData;
};
struct CType : xercesc::DOMDocumentTypeImpl {
  static constexpr auto kNode = &CType::fNode;
  static constexpr auto kParent = &CType::fParent;
  static constexpr auto kChild = &CType::fChild;
};
struct CEntity : xercesc::DOMEntityImpl {
  static constexpr auto kNode = &CEntity::fNode;
  static constexpr auto kParent = &CEntity::fParent;
};
struct CReference : xercesc::DOMEntityReferenceImpl {
  static constexpr auto kNode = &CReference::fNode;
  static constexpr auto kParent = &CReference::fParent;
  static constexpr auto kChild = &CReference::fChild;
};
struct CFragment : xercesc::DOMDocumentFragmentImpl {
  static constexpr auto kNode = &CFragment::fNode;
  static constexpr auto kParent = &CFragment::fParent;
};
struct CAttributes : xercesc::DOMAttrMapImpl {
  static constexpr auto kItems = &CAttributes::fNodes;
};
struct CDocument : xercesc::DOMDocumentImpl {
  static constexpr auto kElement = &CDocument::fDocElement;
  static constexpr auto kType = &CDocument::fDocType;
  static constexpr auto kChanges = &CDocument::fChanges;
};

}  // namespace reveal

// -- Kinds ------------------------------------------------------------------------

constexpr unsigned Bit(DOMNode::NodeType type) { return 1u << type; }
inline bool IsOneOf(const DOMNode& node, unsigned types) {
  return (Bit(node.getNodeType()) & types) != 0;
}

inline constexpr unsigned kCharacterTypes =
    Bit(DOMNode::TEXT_NODE) | Bit(DOMNode::CDATA_SECTION_NODE) | Bit(DOMNode::COMMENT_NODE);

// Kinds with a parent part.
inline constexpr unsigned kParentTypes =
    Bit(DOMNode::ELEMENT_NODE) | Bit(DOMNode::ATTRIBUTE_NODE) |
    Bit(DOMNode::ENTITY_REFERENCE_NODE) | Bit(DOMNode::ENTITY_NODE) | Bit(DOMNode::DOCUMENT_NODE) |
    Bit(DOMNode::DOCUMENT_TYPE_NODE) | Bit(DOMNode::DOCUMENT_FRAGMENT_NODE);

// Kinds with a child part.
inline constexpr unsigned kChildTypes =
    kCharacterTypes | Bit(DOMNode::ELEMENT_NODE) | Bit(DOMNode::ENTITY_REFERENCE_NODE) |
    Bit(DOMNode::PROCESSING_INSTRUCTION_NODE) | Bit(DOMNode::DOCUMENT_TYPE_NODE);

inline xercesc::DOMDocumentImpl& Impl(xercesc::DOMDocument& document) {
  return static_cast<xercesc::DOMDocumentImpl&>(document);
}
inline xercesc::DOMElementImpl& Impl(xercesc::DOMElement& element) {
  return static_cast<xercesc::DOMElementImpl&>(element);
}
inline xercesc::DOMAttrImpl& Impl(xercesc::DOMAttr& attribute) {
  return static_cast<xercesc::DOMAttrImpl&>(attribute);
}

// The node as the class of its type. The type must fit.
template <class Interface>
Interface& As(const DOMNode& node) {
  return static_cast<Interface&>(const_cast<DOMNode&>(node));
}

// -- Parts ------------------------------------------------------------------------

// For whoever knows the type already: asking a node for it takes as long as all else.
inline xercesc::DOMNodeImpl& NodePart(const DOMNode& constNode, DOMNode::NodeType type) {
  auto& node = const_cast<DOMNode&>(constNode);
  switch (type) {
    case DOMNode::ELEMENT_NODE:
      return static_cast<xercesc::DOMElementImpl&>(node).fNode;
    case DOMNode::ATTRIBUTE_NODE:
      return static_cast<xercesc::DOMAttrImpl&>(node).fNode;
    case DOMNode::TEXT_NODE:
      return static_cast<xercesc::DOMTextImpl&>(node).fNode;
    case DOMNode::CDATA_SECTION_NODE:
      return static_cast<xercesc::DOMCDATASectionImpl&>(node).*reveal::CCData::kNode;
    case DOMNode::ENTITY_REFERENCE_NODE:
      return static_cast<xercesc::DOMEntityReferenceImpl&>(node).*reveal::CReference::kNode;
    case DOMNode::ENTITY_NODE:
      return static_cast<xercesc::DOMEntityImpl&>(node).*reveal::CEntity::kNode;
    case DOMNode::PROCESSING_INSTRUCTION_NODE:
      return static_cast<xercesc::DOMProcessingInstructionImpl&>(node).*reveal::CInstruction::kNode;
    case DOMNode::COMMENT_NODE:
      return static_cast<xercesc::DOMCommentImpl&>(node).fNode;
    case DOMNode::DOCUMENT_NODE:
      return static_cast<xercesc::DOMDocumentImpl&>(node).fNode;
    case DOMNode::DOCUMENT_TYPE_NODE:
      return static_cast<xercesc::DOMDocumentTypeImpl&>(node).*reveal::CType::kNode;
    case DOMNode::DOCUMENT_FRAGMENT_NODE:
      return static_cast<xercesc::DOMDocumentFragmentImpl&>(node).*reveal::CFragment::kNode;
    default:
      return static_cast<xercesc::DOMNotationImpl&>(node).fNode;
  }
}

inline xercesc::DOMNodeImpl& NodePart(const DOMNode& node) {
  return NodePart(node, node.getNodeType());
}

// Null for the kinds that cannot have children; as above.
inline xercesc::DOMParentNode* ParentPart(const DOMNode& constNode, DOMNode::NodeType type) {
  auto& node = const_cast<DOMNode&>(constNode);
  switch (type) {
    case DOMNode::ELEMENT_NODE:
      return &static_cast<xercesc::DOMElementImpl&>(node).fParent;
    case DOMNode::ATTRIBUTE_NODE:
      return &static_cast<xercesc::DOMAttrImpl&>(node).fParent;
    case DOMNode::ENTITY_REFERENCE_NODE:
      return &(static_cast<xercesc::DOMEntityReferenceImpl&>(node).*reveal::CReference::kParent);
    case DOMNode::ENTITY_NODE:
      return &(static_cast<xercesc::DOMEntityImpl&>(node).*reveal::CEntity::kParent);
    case DOMNode::DOCUMENT_NODE:
      return &static_cast<xercesc::DOMDocumentImpl&>(node).fParent;
    case DOMNode::DOCUMENT_TYPE_NODE:
      return &(static_cast<xercesc::DOMDocumentTypeImpl&>(node).*reveal::CType::kParent);
    case DOMNode::DOCUMENT_FRAGMENT_NODE:
      return &(static_cast<xercesc::DOMDocumentFragmentImpl&>(node).*reveal::CFragment::kParent);
    default:
      return nullptr;
  }
}

inline xercesc::DOMParentNode* ParentPart(const DOMNode& node) {
  return ParentPart(node, node.getNodeType());
}

// Null for the kinds that are nobody's child; as above.
inline xercesc::DOMChildNode* ChildPart(const DOMNode& constNode, DOMNode::NodeType type) {
  auto& node = const_cast<DOMNode&>(constNode);
  switch (type) {
    case DOMNode::ELEMENT_NODE:
      return &static_cast<xercesc::DOMElementImpl&>(node).fChild;
    case DOMNode::TEXT_NODE:
      return &static_cast<xercesc::DOMTextImpl&>(node).fChild;
    case DOMNode::CDATA_SECTION_NODE:
      return &(static_cast<xercesc::DOMCDATASectionImpl&>(node).*reveal::CCData::kChild);
    case DOMNode::ENTITY_REFERENCE_NODE:
      return &(static_cast<xercesc::DOMEntityReferenceImpl&>(node).*reveal::CReference::kChild);
    case DOMNode::PROCESSING_INSTRUCTION_NODE:
      return &(static_cast<xercesc::DOMProcessingInstructionImpl&>(node).*
               reveal::CInstruction::kChild);
    case DOMNode::COMMENT_NODE:
      return &static_cast<xercesc::DOMCommentImpl&>(node).fChild;
    case DOMNode::DOCUMENT_TYPE_NODE:
      return &(static_cast<xercesc::DOMDocumentTypeImpl&>(node).*reveal::CType::kChild);
    default:
      return nullptr;
  }
}

inline xercesc::DOMChildNode* ChildPart(const DOMNode& node) {
  return ChildPart(node, node.getNodeType());
}

// Has the memory of a node come that will soon be looked at: large trees are beyond every
// cache. The parts of a node lie in its first two lines.
inline void Fetch(const DOMNode& node, std::uintptr_t distance = 0) {
  const auto address = reinterpret_cast<std::uintptr_t>(&node) + distance;
  // NOLINTNEXTLINE(performance-no-int-to-ptr): a guess, where nothing need be
  const auto* pGuess = reinterpret_cast<const char*>(address);
  __builtin_prefetch(pGuess);
  __builtin_prefetch(pGuess + 64);
}

// From one node to another, for Fetch.
inline std::uintptr_t Distance(const DOMNode& from, const DOMNode& to) {
  return reinterpret_cast<std::uintptr_t>(&to) - reinterpret_cast<std::uintptr_t>(&from);
}

// The attributes of an element, in the order of the map; null while there was none yet.
inline xercesc::DOMNodeVector* AttributesOf(xercesc::DOMElementImpl& element) {
  return element.fAttributes->*reveal::CAttributes::kItems;
}

// -- Marks ------------------------------------------------------------------------
//
// What the registries keep for a node, noted in flags that the XML library leaves free:
// freeing a node without them needs no look at any registry. A mark means "may have"; it
// is set when something is registered and never taken back.

inline constexpr unsigned short kHasId = 1u << 13;          // a reference id
inline constexpr unsigned short kHasCollection = 1u << 14;  // lists or maps with ids
inline constexpr unsigned short kHasEntry = 1u << 15;       // an entry of an owner
inline constexpr unsigned short kMarks = kHasId | kHasCollection | kHasEntry;

// Says that the document may know where the node stood in its source. It is a flag of trees
// that are made piece by piece, which the XML library never makes. Freeing needs not know it.
inline constexpr unsigned short kHasPosition = 1u << 1;

inline void Mark(const DOMNode& node, unsigned short mark) {
  unsigned short& flags = NodePart(node).flags;
  flags = static_cast<unsigned short>(flags | mark);
}
inline void Unmark(const DOMNode& node) {
  unsigned short& flags = NodePart(node).flags;
  flags = static_cast<unsigned short>(flags & ~(kMarks | kHasPosition));
}
inline bool IsMarked(const DOMNode& node, unsigned short mark) {
  return (NodePart(node).flags & mark) != 0;
}
inline unsigned short MarksOf(const DOMNode& node) {
  return static_cast<unsigned short>(NodePart(node).flags & kMarks);
}

// -- The noted id -------------------------------------------------------------------
//
// A node part ends in six bytes that the XML library leaves free. Whoever keeps ids notes
// that of a node there, so that no index need lead from nodes to ids. A note is believed
// only beside kHasId, and only by who knows the id for this very node: memory that served
// another node, and the flags of a copy, may say anything.

inline constexpr unsigned long kMostNoted = (1ul << 48) - 1;
inline constexpr std::size_t kNote = offsetof(xercesc::DOMNodeImpl, flags) + sizeof(short);
static_assert(sizeof(xercesc::DOMNodeImpl) == kNote + 6, "a node part has no room for a note");

// 0 for none.
inline unsigned long NotedId(const xercesc::DOMNodeImpl& part) {
  if ((part.flags & kHasId) == 0) return 0;
  const auto* pNote = reinterpret_cast<const unsigned char*>(&part) + kNote;
  std::uint16_t high;
  std::uint32_t low;
  std::memcpy(&high, pNote, sizeof high);
  std::memcpy(&low, pNote + sizeof high, sizeof low);
  return static_cast<unsigned long>(high) << 32 | low;
}

// Marks the node as well. The id is at most kMostNoted.
inline void NoteId(xercesc::DOMNodeImpl& part, unsigned long id) {
  auto* pNote = reinterpret_cast<unsigned char*>(&part) + kNote;
  const auto high = static_cast<std::uint16_t>(id >> 32);
  const auto low = static_cast<std::uint32_t>(id);
  std::memcpy(pNote, &high, sizeof high);
  std::memcpy(pNote + sizeof high, &low, sizeof low);
  part.flags = static_cast<unsigned short>(part.flags | kHasId);
}

// Throws std::logic_error where the XML library at hand is not laid out as this header
// says. Called once, when the library is loaded.
void CheckLayout();

}  // namespace dom
