// Reference ids for DOM nodes, each tied to the document that owns its node.
#pragma once

#include <map>
#include <span>
#include <xercesc/dom/DOM.hpp>

#include "registry/ptrsessmap.h"

// What an id stands for. It is recorded when the id is issued: by the time the
// id comes back, the node may be gone.
enum class ENodeKind : uint8_t { kNode, kDocumentObject, kBareDocument };

// What the node registry keeps for an id. The ids of one document's nodes form a
// list through their slots.
struct CNodeSlot : CSessSlot<xercesc::DOMNode> {
  ENodeKind m_Kind = ENodeKind::kNode;
  xercesc::DOMDocument* m_pOwner = nullptr;  // null for none; of a bare document: itself
  unsigned long m_Previous = 0;
  unsigned long m_Next = 0;
};

// The nodes of the DOM note their ids themselves; documents and document objects, which
// are few, stand in an index by address.
class CNodeIndex {
 public:
  unsigned long Find(const xercesc::DOMNode& node) const;
  void Insert(const CNodeSlot& slot, unsigned long id);
  // For a node of the DOM that is no document.
  static void Note(xercesc::DOMNodeImpl& part, unsigned long id);
  void Erase(const CNodeSlot& slot) {
    if (slot.m_Kind != ENodeKind::kNode) m_Documents.Erase(slot.m_pObject);
  }

 private:
  CPointerIndex m_Documents;
};

template <>
struct CKept<xercesc::DOMNode> {
  using Slot = CNodeSlot;
  using Index = CNodeIndex;
};

// On top of CPtrSessMap, each id has the owner document that its node had when the id was
// issued, and:
// - m_OwnedBy leads from a document to the first id of its nodes' list, so that
//   closing a document costs its own nodes and no others.
// - No id points at a node that is gone: the registry is told of nodes before they are
//   freed and withdraws their ids, however often they were handed out.
class TESSEL_DATA CDOMNodeSessMap : public CPtrSessMap<xercesc::DOMNode> {
 public:
  using CPtrSessMap::CPtrSessMap;

  struct CEntry {
    xercesc::DOMNode* m_pNode = nullptr;
    ENodeKind m_Kind = ENodeKind::kNode;
  };

  unsigned long Insert(xercesc::DOMNode* pNode);

  // As Insert for each of these nodes, none of them null. Where memory runs out on the
  // way, those before have their ids.
  void Insert(std::span<xercesc::DOMNode* const> nodes, uint64_t* pIds);

  // As the base's, and the last hand-out of a document's id takes the ids of all
  // nodes of that document with it.
  bool DeleteBySess(unsigned long id) { return Close(id).m_IsLast; }

  // The same, with what the id stood for.
  struct CClosed : CEntry {
    bool m_IsLast = false;
    bool m_IsOwned = false;  // whether a document owned the node when the id was issued
  };
  CClosed Close(unsigned long id);

  // As GetPtrBySess, with what the id stands for.
  CEntry GetEntryBySess(unsigned long id);

  // Ties the id of a document type, where it has one, to the document that took it.
  void Tie(xercesc::DOMDocumentType& type, xercesc::DOMDocument& document);

  // Makes an id name another node, which is no document. The id, its count and its owner
  // stay.
  void ResetPtr(xercesc::DOMNode* pNewNode, unsigned long id);

  // Takes back the ids of those of these nodes that have one, however often they
  // were handed out.
  void Withdraw(std::span<xercesc::DOMNode* const> nodes) noexcept;

  // The same for a document object.
  void Withdraw(xercesc::DOMNode* pNode) noexcept { Withdraw({&pNode, 1}); }

  // For a tree that is about to be released: withdraws the ids of its nodes and the
  // document node's own.
  void WithdrawDocument(xercesc::DOMDocument& document) noexcept;

 private:
  unsigned long InsertNode(xercesc::DOMNode& node) TESSEL_REQUIRES(m_Mutex);
  unsigned long InsertDocument(xercesc::DOMNode& node) TESSEL_REQUIRES(m_Mutex);
  // The tree that closing this id takes along; null for a plain node.
  static xercesc::DOMDocument* DocumentOf(const CSlot& slot);

  // The first id of a document's nodes, 0 for none. May throw where there was none.
  unsigned long& FirstOwnedBy(xercesc::DOMDocument* pDoc) TESSEL_REQUIRES(m_Mutex);

  // Puts the id into the document's list, whose first id is given.
  void Link(xercesc::DOMDocument* pDoc, unsigned long& first, unsigned long id)
      TESSEL_REQUIRES(m_Mutex);
  void Unlink(CSlot& slot) TESSEL_REQUIRES(m_Mutex);

  void WithdrawNode(xercesc::DOMNode* pNode) TESSEL_REQUIRES(m_Mutex);

  void SweepDocument(xercesc::DOMDocument* pDoc) TESSEL_REQUIRES(m_Mutex);

  using COwnedBy = std::map<xercesc::DOMDocument*, unsigned long>;
  COwnedBy m_OwnedBy TESSEL_GUARDED_BY(m_Mutex);
  // The list that was asked for last, which alone may be empty.
  COwnedBy::value_type* m_pLastOwned TESSEL_GUARDED_BY(m_Mutex) = nullptr;
};
