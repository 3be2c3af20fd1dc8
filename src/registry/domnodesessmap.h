// Reference ids for DOM nodes, each tied to the document that owns its node.
#pragma once

#include <atomic>
#include <map>
#include <mutex>
#include <utility>
#include <vector>
#include <xercesc/dom/DOM.hpp>

#include "registry/ptrsessmap.h"

// What an id stands for. It is recorded when the id is issued: by the time the
// id comes back, the node may be gone.
enum class ENodeKind { kNode, kDocumentObject, kBareDocument };

// On top of CPtrSessMap:
// - m_NodeToDoc names the owning document of each registered node that has one.
//   A document is never a key. An owner may be recorded as null.
// - m_DocumentIds holds the kind of the ids that are no plain nodes.
// - No id points at a node that is gone: whoever frees nodes withdraws their
//   ids (the ids are gone too) or forgets them (the ids stay, with no object).
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

  // Keeps the id of a node that is gone, with no object.
  void Forget(xercesc::DOMNode* pNode);

  // For a tree about to be released: withdraws the ids of its nodes and forgets
  // the document node's own.
  void WithdrawDocument(xercesc::DOMDocument* pDoc);

  // For a tree released under a host that stopped using its ids: keeps them all,
  // with no object.
  void ForgetDocument(xercesc::DOMDocument* pDoc);

 private:
  struct CDocumentId {
    ENodeKind m_Kind;
    xercesc::DOMDocument* m_pDoc;  // null for a document object: its tree changes
  };

  void SetOwner(xercesc::DOMNode* pNode, xercesc::DOMDocument* pDoc) TESSEL_REQUIRES(m_Mutex);
  void TakeAdoptions() TESSEL_REQUIRES(m_Mutex);
  xercesc::DOMDocument* DocumentOf(unsigned long id) const TESSEL_REQUIRES(m_Mutex);
  void SweepDocument(const xercesc::DOMDocument* pDoc) noexcept TESSEL_REQUIRES(m_Mutex);
  void WithdrawNode(xercesc::DOMNode* pNode) TESSEL_REQUIRES(m_Mutex);
  void RecordKind(xercesc::DOMNode* pNode, unsigned long id) TESSEL_REQUIRES(m_Mutex);

  std::map<xercesc::DOMNode*, xercesc::DOMDocument*> m_NodeToDoc TESSEL_GUARDED_BY(m_Mutex);
  std::map<unsigned long, CDocumentId> m_DocumentIds TESSEL_GUARDED_BY(m_Mutex);

  // Owners handed over without the registry's lock. Their own mutex is held for
  // a push or a swap, never while another lock is taken.
  std::mutex m_AdoptionMutex;
  std::vector<std::pair<xercesc::DOMNode*, xercesc::DOMDocument*>> m_Adoptions;
  std::atomic<bool> m_HasAdoptions = false;
};
