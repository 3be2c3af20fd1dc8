#include "registry/domnodesessmap.h"

#include <algorithm>
#include <stdexcept>

#include "dom/look.h"

using xercesc::DOMDocument;
using xercesc::DOMNode;

namespace {

// How many nodes are registered under one lock: others wait no longer than that takes.
constexpr size_t kAtOnce = 256;
// Nodes of a large result have left the cache by the time that they are registered, so
// they are fetched some way ahead.
constexpr size_t kAhead = 8;

}  // namespace

unsigned long CNodeIndex::Find(const DOMNode& node) const {
  const DOMNode::NodeType type = node.getNodeType();
  if (type == DOMNode::DOCUMENT_NODE) return m_Documents.Find(&node);
  return dom::NotedId(dom::NodePart(node, type));
}

void CNodeIndex::Insert(const CNodeSlot& slot, unsigned long id) {
  if (slot.m_Kind != ENodeKind::kNode) {
    m_Documents.Insert(slot.m_pObject, id);
  } else {
    Note(dom::NodePart(*slot.m_pObject), id);
  }
}

void CNodeIndex::Note(xercesc::DOMNodeImpl& part, unsigned long id) {
  if (id > dom::kMostNoted) throw std::length_error("no more ids");
  dom::NoteId(part, id);
}

unsigned long CDOMNodeSessMap::Insert(DOMNode* pNode) {
  CHostLock lock(m_Mutex);
  return pNode != nullptr ? InsertNode(*pNode) : 0;
}

void CDOMNodeSessMap::Insert(std::span<DOMNode* const> nodes, uint64_t* pIds) {
  for (size_t start = 0; start < nodes.size(); start += kAtOnce) {
    const size_t end = std::min(start + kAtOnce, nodes.size());
    CHostLock lock(m_Mutex);
    for (size_t i = start; i < end; ++i) {
      if (i + kAhead < nodes.size()) dom::Fetch(*nodes[i + kAhead]);
      pIds[i] = InsertNode(*nodes[i]);
    }
  }
}

unsigned long CDOMNodeSessMap::InsertNode(DOMNode& node) {
  const DOMNode::NodeType type = node.getNodeType();
  if (type == DOMNode::DOCUMENT_NODE) return InsertDocument(node);
  xercesc::DOMNodeImpl& part = dom::NodePart(node, type);
  const unsigned long noted = dom::NotedId(part);
  if (CSlot* pSlot = SlotOf(node, noted)) {
    ++pSlot->m_RefCount;
    return noted;
  }
  CSlot slot;
  slot.m_pObject = &node;
  // The owner is asked under the lock, as a document is for its nodes when its ids go.
  DOMDocument* pOwner = dom::OwnerDocumentAs(node, type);
  // Everything that may throw comes before the first change that would stay. An empty
  // list is kept until another is asked for.
  unsigned long* pFirst = pOwner != nullptr ? &FirstOwnedBy(pOwner) : nullptr;
  const unsigned long id = NextId();
  CNodeIndex::Note(part, id);
  Issue(id, slot);
  if (pFirst != nullptr) Link(pOwner, *pFirst, id);
  return id;
}

unsigned long CDOMNodeSessMap::InsertDocument(DOMNode& node) {
  if (const unsigned long known = CountAgain(&node)) return known;
  DOMDocument& document = dom::DocumentBehind(node);
  const bool isBare = static_cast<DOMNode*>(&document) == &node;
  CSlot slot;
  slot.m_pObject = &node;
  slot.m_Kind = isBare ? ENodeKind::kBareDocument : ENodeKind::kDocumentObject;
  if (isBare) {
    slot.m_pOwner = &document;
    dom::Mark(node, dom::kHasId);
  }
  return Register(slot);
}

CDOMNodeSessMap::CClosed CDOMNodeSessMap::Close(unsigned long id) {
  CHostLock lock(m_Mutex);
  CSlot* pSlot = m_Slots.Find(id);
  if (pSlot == nullptr || pSlot->m_pObject == nullptr) return {};
  const bool isOwned = pSlot->m_Kind == ENodeKind::kNode && pSlot->m_pOwner != nullptr;
  const CClosed closed{{pSlot->m_pObject, pSlot->m_Kind}, CountBack(*pSlot), isOwned};
  if (!closed.m_IsLast) return closed;
  if (DOMDocument* pDoc = DocumentOf(*pSlot)) {
    SweepDocument(pDoc);
  } else if (isOwned) {
    Unlink(*pSlot);
  }
  Erase(id, *pSlot);
  return closed;
}

CDOMNodeSessMap::CEntry CDOMNodeSessMap::GetEntryBySess(unsigned long id) {
  CHostLock lock(m_Mutex);
  const CSlot* pSlot = m_Slots.Find(id);
  return pSlot != nullptr ? CEntry{pSlot->m_pObject, pSlot->m_Kind} : CEntry{};
}

void CDOMNodeSessMap::Tie(xercesc::DOMDocumentType& type, DOMDocument& document) {
  CHostLock lock(m_Mutex);
  const unsigned long id = m_PtrToSess.Find(type);
  const CSlot* pSlot = SlotOf(type, id);
  if (pSlot == nullptr || pSlot->m_pOwner != nullptr) return;
  Link(&document, FirstOwnedBy(&document), id);
}

void CDOMNodeSessMap::ResetPtr(DOMNode* pNewNode, unsigned long id) {
  CHostLock lock(m_Mutex);
  CSlot* pSlot = m_Slots.Find(id);
  if (pSlot == nullptr || pSlot->m_pObject == nullptr) return;
  m_PtrToSess.Erase(*pSlot);
  if (pSlot->m_Kind != ENodeKind::kNode) pSlot->m_pOwner = nullptr;
  pSlot->m_Kind = ENodeKind::kNode;
  pSlot->m_pObject = pNewNode;
  if (pNewNode == nullptr || SlotOf(*pNewNode, m_PtrToSess.Find(*pNewNode)) != nullptr) return;
  m_PtrToSess.Insert(*pSlot, id);
}

void CDOMNodeSessMap::Withdraw(std::span<DOMNode* const> nodes) noexcept {
  CHostLock lock(m_Mutex);
  for (DOMNode* pNode : nodes) WithdrawNode(pNode);
}

void CDOMNodeSessMap::WithdrawDocument(DOMDocument& document) noexcept {
  CHostLock lock(m_Mutex);
  SweepDocument(&document);
  WithdrawNode(&document);
}

// The document of a document object changes with every load.
DOMDocument* CDOMNodeSessMap::DocumentOf(const CSlot& slot) {
  if (slot.m_Kind == ENodeKind::kNode) return nullptr;
  if (slot.m_Kind == ENodeKind::kBareDocument) return slot.m_pOwner;
  return &dom::DocumentBehind(*slot.m_pObject);
}

unsigned long& CDOMNodeSessMap::FirstOwnedBy(DOMDocument* pDoc) {
  if (m_pLastOwned == nullptr || m_pLastOwned->first != pDoc) {
    COwnedBy::value_type& list = *m_OwnedBy.try_emplace(pDoc, 0).first;
    if (m_pLastOwned != nullptr && m_pLastOwned->second == 0) m_OwnedBy.erase(m_pLastOwned->first);
    m_pLastOwned = &list;
  }
  return m_pLastOwned->second;
}

// In front of the list: the newest id comes first.
void CDOMNodeSessMap::Link(DOMDocument* pDoc, unsigned long& first, unsigned long id) {
  CSlot& slot = *m_Slots.Find(id);
  slot.m_pOwner = pDoc;
  slot.m_Previous = 0;
  slot.m_Next = first;
  if (first != 0) m_Slots.Find(first)->m_Previous = id;
  first = id;
}

void CDOMNodeSessMap::Unlink(CSlot& slot) {
  if (slot.m_Next != 0) m_Slots.Find(slot.m_Next)->m_Previous = slot.m_Previous;
  if (slot.m_Previous != 0) {
    m_Slots.Find(slot.m_Previous)->m_Next = slot.m_Next;
  } else {
    FirstOwnedBy(slot.m_pOwner) = slot.m_Next;
  }
  slot.m_pOwner = nullptr;
}

void CDOMNodeSessMap::WithdrawNode(DOMNode* pNode) {
  const unsigned long id = m_PtrToSess.Find(*pNode);
  CSlot* pSlot = SlotOf(*pNode, id);
  if (pSlot == nullptr) return;
  if (pSlot->m_Kind == ENodeKind::kNode && pSlot->m_pOwner != nullptr) Unlink(*pSlot);
  Erase(id, *pSlot);
}

// Nothing in here may throw: the close that it is a part of goes on.
void CDOMNodeSessMap::SweepDocument(DOMDocument* pDoc) {
  const auto list = m_OwnedBy.find(pDoc);
  if (list == m_OwnedBy.end()) return;
  unsigned long id = list->second;
  if (m_pLastOwned == &*list) m_pLastOwned = nullptr;
  m_OwnedBy.erase(list);
  while (id != 0) {
    const CSlot& slot = *m_Slots.Find(id);
    const unsigned long next = slot.m_Next;
    Erase(id, slot);
    id = next;
  }
}
