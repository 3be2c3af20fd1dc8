// Reference ids for DOM nodes, each tied to the document that owns its node.
#pragma once

#include <absl/container/btree_map.h>

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

template <>
struct CSlotOf<xercesc::DOMNode> {
  using Type = CNodeSlot;
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

  // As the base's, and the last hand-out of a document's id takes the ids of all
  // nodes of that document with it.
  bool DeleteBySess(unsigned long id);

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
  static void SetKind(CSlot& slot, xercesc::DOMNode& node);
  // The tree that closing this id takes along; null for a plain node.
  static xercesc::DOMDocument* DocumentOf(const CSlot& slot);

  // Puts the id into the document's list; nothing for a null document.
  void InsertDocNodeMapEntry(xercesc::DOMDocument* pDoc, unsigned long id) TESSEL_REQUIRES(m_Mutex);
  void Unlink(CSlot& slot) TESSEL_REQUIRES(m_Mutex);

  void WithdrawNode(xercesc::DOMNode* pNode) TESSEL_REQUIRES(m_Mutex);

  void SweepDocument(xercesc::DOMDocument* pDoc) TESSEL_REQUIRES(m_Mutex);

  absl::btree_map<xercesc::DOMDocument*, unsigned long> m_OwnedBy TESSEL_GUARDED_BY(m_Mutex);
};
