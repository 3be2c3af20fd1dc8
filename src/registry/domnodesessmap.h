// Reference ids for DOM nodes, each tied to the document that owns its node.
#pragma once

#include <absl/container/btree_map.h>

#include <atomic>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>
#include <xercesc/dom/DOM.hpp>

#include "registry/ptrsessmap.h"

// What an id stands for. It is recorded when the id is issued: by the time the
// id comes back, the node may be gone.
enum class ENodeKind : uint8_t { kNode, kDocumentObject, kBareDocument };

// What the node registry keeps for an id. The ids of one document's nodes form a
// list through their slots.
struct CNodeSlot : CSessSlot<xercesc::DOMNode> {
  ENodeKind m_Kind = ENodeKind::kNode;
  bool m_HasOwner = false;                   // an owner may be recorded as null
  xercesc::DOMDocument* m_pOwner = nullptr;  // of a bare document: itself
  unsigned long m_Previous = 0;
  unsigned long m_Next = 0;
};

template <>
struct CSlotOf<xercesc::DOMNode> {
  using Type = CNodeSlot;
};

// On top of CPtrSessMap, each node has the owner document that it had when it was
// registered, unless it had none, and:
// - m_OwnedBy leads from a document to the first id of its nodes' list, so that
//   closing a document costs its own nodes and no others.
// - m_LooseOwners holds the owners recorded for nodes that have no id.
// - No id points at a node that is gone: whoever frees nodes withdraws their
//   ids, however often they were handed out.
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

  // Records or replaces the owner of a node; nothing for a null argument.
  // Contract: takes no registry lock, so the owner is handed over beside it and
  // entered by the next operation that holds the lock.
  void InsertDocNodeMapEntry(xercesc::DOMDocument* pDoc, xercesc::DOMNode* pNode);

  // Makes an id name another node. The id, its count and its owner stay.
  void ResetPtr(xercesc::DOMNode* pNewNode, unsigned long id);

  // Takes back the ids of those of these nodes that have one, however often they
  // were handed out. The nodes may be gone: their addresses serve as keys only.
  void Withdraw(const std::vector<xercesc::DOMNode*>& nodes);

  void Withdraw(xercesc::DOMNode* pNode);

  // For a tree that is about to be released: withdraws the ids of its nodes and the
  // document node's own.
  void WithdrawDocument(xercesc::DOMDocument* pDoc);

 private:
  static void SetKind(CSlot& slot, xercesc::DOMNode& node);
  // The tree that closing this id takes along; null for a plain node.
  static xercesc::DOMDocument* DocumentOf(const CSlot& slot);

  // A node's owner is kept in its slot while it has one. Take gives none where no
  // owner is recorded, which differs from a recorded null.
  void SetOwner(xercesc::DOMNode* pNode, xercesc::DOMDocument* pDoc) TESSEL_REQUIRES(m_Mutex);
  std::optional<xercesc::DOMDocument*> TakeOwner(xercesc::DOMNode* pNode) TESSEL_REQUIRES(m_Mutex);
  unsigned long& FirstOf(xercesc::DOMDocument* pDoc) TESSEL_REQUIRES(m_Mutex);
  void Link(unsigned long id, CSlot& slot, xercesc::DOMDocument* pDoc, unsigned long& first)
      TESSEL_REQUIRES(m_Mutex);
  void Unlink(CSlot& slot) TESSEL_REQUIRES(m_Mutex);
  void TakeAdoptions() TESSEL_REQUIRES(m_Mutex);

  void WithdrawNode(xercesc::DOMNode* pNode) TESSEL_REQUIRES(m_Mutex);

  void SweepDocument(xercesc::DOMDocument* pDoc) TESSEL_REQUIRES(m_Mutex);

  absl::btree_map<xercesc::DOMDocument*, unsigned long> m_OwnedBy TESSEL_GUARDED_BY(m_Mutex);
  absl::btree_map<xercesc::DOMNode*, xercesc::DOMDocument*> m_LooseOwners
      TESSEL_GUARDED_BY(m_Mutex);

  // Owners handed over without the registry's lock. Their own mutex is held for
  // a push or a swap, never while another lock is taken.
  std::mutex m_AdoptionMutex;
  std::vector<std::pair<xercesc::DOMNode*, xercesc::DOMDocument*>> m_Adoptions;
  std::atomic<bool> m_HasAdoptions = false;
};
