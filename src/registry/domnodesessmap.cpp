#include "registry/domnodesessmap.h"

#include "dom/look.h"

using xercesc::DOMDocument;
using xercesc::DOMNode;

unsigned long CDOMNodeSessMap::Insert(DOMNode* pNode) {
  CHostLock lock(m_Mutex);
  if (pNode == nullptr) return 0;
  if (const unsigned long known = CountAgain(pNode)) return known;
  CSlot slot;
  SetKind(slot, *pNode);
  if (slot.m_Kind != ENodeKind::kNode) return Register(pNode, slot);
  // The owner is asked under the lock; no other registry operation calls the DOM.
  DOMDocument* pOwner = dom::OwnerDocument(*pNode);
  // Everything that may throw comes before the first change that would stay. An empty
  // list is kept until it is next unlinked.
  if (pOwner != nullptr) m_OwnedBy.try_emplace(pOwner, 0);
  const unsigned long id = Register(pNode, slot);
  InsertDocNodeMapEntry(pOwner, id);
  return id;
}

bool CDOMNodeSessMap::DeleteBySess(unsigned long id) {
  CHostLock lock(m_Mutex);
  CSlot* pSlot = m_Slots.Find(id);
  if (pSlot == nullptr || !CountBack(*pSlot)) return false;
  if (DOMDocument* pDoc = DocumentOf(*pSlot)) {
    SweepDocument(pDoc);
  } else if (pSlot->m_pOwner != nullptr) {
    Unlink(*pSlot);
  }
  Erase(id, *pSlot);
  return true;
}

CDOMNodeSessMap::CEntry CDOMNodeSessMap::GetEntryBySess(unsigned long id) {
  CHostLock lock(m_Mutex);
  const CSlot* pSlot = m_Slots.Find(id);
  return pSlot != nullptr ? CEntry{pSlot->m_pObject, pSlot->m_Kind} : CEntry{};
}

void CDOMNodeSessMap::Tie(xercesc::DOMDocumentType& type, DOMDocument& document) {
  CHostLock lock(m_Mutex);
  const unsigned long id = m_PtrToSess.Find(static_cast<DOMNode*>(&type));
  if (id == 0 || m_Slots.Find(id)->m_pOwner != nullptr) return;
  InsertDocNodeMapEntry(&document, id);
}

void CDOMNodeSessMap::ResetPtr(DOMNode* pNewNode, unsigned long id) {
  CHostLock lock(m_Mutex);
  CSlot* pSlot = m_Slots.Find(id);
  if (pSlot == nullptr || pSlot->m_pObject == nullptr) return;
  m_PtrToSess.Erase(pSlot->m_pObject);
  if (m_PtrToSess.Find(pNewNode) == 0) m_PtrToSess.Insert(pNewNode, id);
  pSlot->m_pObject = pNewNode;
  if (pSlot->m_Kind != ENodeKind::kNode) pSlot->m_pOwner = nullptr;
  pSlot->m_Kind = ENodeKind::kNode;
  if (pNewNode != nullptr) dom::Mark(*pNewNode, dom::kHasId);
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

// A document object is no node of the DOM itself: it carries no mark.
void CDOMNodeSessMap::SetKind(CSlot& slot, DOMNode& node) {
  if (node.getNodeType() == DOMNode::DOCUMENT_NODE) {
    DOMDocument& document = dom::DocumentBehind(node);
    const bool isBare = static_cast<DOMNode*>(&document) == &node;
    slot.m_Kind = isBare ? ENodeKind::kBareDocument : ENodeKind::kDocumentObject;
    if (isBare) slot.m_pOwner = &document;
  }
  if (slot.m_Kind != ENodeKind::kDocumentObject) dom::Mark(node, dom::kHasId);
}

// The document of a document object changes with every load.
DOMDocument* CDOMNodeSessMap::DocumentOf(const CSlot& slot) {
  if (slot.m_Kind == ENodeKind::kNode) return nullptr;
  if (slot.m_Kind == ENodeKind::kBareDocument) return slot.m_pOwner;
  return &dom::DocumentBehind(*slot.m_pObject);
}

// In front of the list: the newest id comes first.
void CDOMNodeSessMap::InsertDocNodeMapEntry(DOMDocument* pDoc, unsigned long id) {
  if (pDoc == nullptr) return;
  unsigned long& first = m_OwnedBy[pDoc];
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
  } else if (slot.m_Next != 0) {
    m_OwnedBy[slot.m_pOwner] = slot.m_Next;
  } else {
    m_OwnedBy.erase(slot.m_pOwner);
  }
  slot.m_pOwner = nullptr;
}

void CDOMNodeSessMap::WithdrawNode(DOMNode* pNode) {
  const unsigned long id = m_PtrToSess.Find(pNode);
  if (id == 0) return;
  CSlot& slot = *m_Slots.Find(id);
  if (slot.m_Kind == ENodeKind::kNode && slot.m_pOwner != nullptr) Unlink(slot);
  Erase(id, slot);
}

// Nothing in here may throw: the close that it is a part of goes on.
void CDOMNodeSessMap::SweepDocument(DOMDocument* pDoc) {
  const auto list = m_OwnedBy.find(pDoc);
  if (list == m_OwnedBy.end()) return;
  unsigned long id = list->second;
  m_OwnedBy.erase(list);
  while (id != 0) {
    const CSlot& slot = *m_Slots.Find(id);
    const unsigned long next = slot.m_Next;
    Erase(id, slot);
    id = next;
  }
}
