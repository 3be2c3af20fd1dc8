#include "registry/domnodesessmap.h"

#include "document/xercesdom.h"

using xercesc::DOMDocument;
using xercesc::DOMNode;

unsigned long CDOMNodeSessMap::Insert(DOMNode* pNode) {
  CHostLock lock(m_Mutex);
  TakeAdoptions();
  if (pNode == nullptr) return 0;
  if (const unsigned long known = CountAgain(pNode)) return known;
  // The owner is asked under the lock; no other registry operation calls the DOM.
  DOMDocument* pOwner = pNode->getOwnerDocument();
  const auto loose = m_LooseOwners.find(pNode);
  const bool wasLoose = loose != m_LooseOwners.end();
  if (pOwner == nullptr && wasLoose) pOwner = loose->second;
  CSlot slot;
  SetKind(slot, *pNode);
  if (pOwner == nullptr && !wasLoose) return Register(pNode, slot);
  // Everything that may throw comes before the first change that would stay.
  unsigned long& first = FirstOf(pOwner);
  const unsigned long id = Register(pNode, slot);
  Link(id, *m_Slots.Find(id), pOwner, first);
  if (wasLoose) m_LooseOwners.erase(loose);
  return id;
}

bool CDOMNodeSessMap::DeleteBySess(unsigned long id) {
  CHostLock lock(m_Mutex);
  TakeAdoptions();
  CSlot* pSlot = m_Slots.Find(id);
  if (pSlot == nullptr || !CountBack(*pSlot)) return false;
  if (DOMDocument* pDoc = DocumentOf(*pSlot)) {
    SweepDocument(pDoc);
  } else if (pSlot->m_HasOwner) {
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

void CDOMNodeSessMap::InsertDocNodeMapEntry(DOMDocument* pDoc, DOMNode* pNode) {
  if (pDoc == nullptr || pNode == nullptr) return;
  const std::lock_guard<std::mutex> lock(m_AdoptionMutex);
  m_Adoptions.emplace_back(pNode, pDoc);
  m_HasAdoptions = true;
}

void CDOMNodeSessMap::ResetPtr(DOMNode* pNewNode, unsigned long id) {
  CHostLock lock(m_Mutex);
  TakeAdoptions();
  CSlot* pSlot = m_Slots.Find(id);
  if (pSlot == nullptr || pSlot->m_pObject == nullptr) return;
  DOMDocument* pOwner = TakeOwner(pSlot->m_pObject).value_or(nullptr);
  pOwner = TakeOwner(pNewNode).value_or(pOwner);
  m_PtrToSess.Erase(pSlot->m_pObject);
  if (m_PtrToSess.Find(pNewNode) == 0) m_PtrToSess.Insert(pNewNode, id);
  pSlot->m_pObject = pNewNode;
  pSlot->m_Kind = ENodeKind::kNode;
  if (pNewNode != nullptr) SetKind(*pSlot, *pNewNode);
  if (pSlot->m_Kind == ENodeKind::kNode) SetOwner(pNewNode, pOwner);
}

void CDOMNodeSessMap::Withdraw(const std::vector<DOMNode*>& nodes) {
  if (nodes.empty()) return;
  CHostLock lock(m_Mutex);
  TakeAdoptions();
  for (DOMNode* pNode : nodes) WithdrawNode(pNode);
}

void CDOMNodeSessMap::Withdraw(DOMNode* pNode) {
  CHostLock lock(m_Mutex);
  TakeAdoptions();
  WithdrawNode(pNode);
}

void CDOMNodeSessMap::WithdrawDocument(DOMDocument* pDoc) {
  CHostLock lock(m_Mutex);
  TakeAdoptions();
  SweepDocument(pDoc);
  WithdrawNode(pDoc);
}

void CDOMNodeSessMap::SetKind(CSlot& slot, DOMNode& node) {
  if (node.getNodeType() != DOMNode::DOCUMENT_NODE) return;
  if (dynamic_cast<CXercesDOM*>(&node) != nullptr) {
    slot.m_Kind = ENodeKind::kDocumentObject;
  } else {
    slot.m_Kind = ENodeKind::kBareDocument;
    slot.m_pOwner = dynamic_cast<DOMDocument*>(&node);
  }
}

DOMDocument* CDOMNodeSessMap::DocumentOf(const CSlot& slot) {
  if (slot.m_Kind == ENodeKind::kNode) return nullptr;
  if (slot.m_Kind == ENodeKind::kBareDocument) return slot.m_pOwner;
  return static_cast<CXercesDOM*>(slot.m_pObject)->m_pDoc;
}

void CDOMNodeSessMap::SetOwner(DOMNode* pNode, DOMDocument* pDoc) {
  TakeOwner(pNode);
  if (const unsigned long id = m_PtrToSess.Find(pNode)) {
    Link(id, *m_Slots.Find(id), pDoc, FirstOf(pDoc));
  } else {
    m_LooseOwners.emplace(pNode, pDoc);
  }
}

std::optional<DOMDocument*> CDOMNodeSessMap::TakeOwner(DOMNode* pNode) {
  if (const unsigned long id = m_PtrToSess.Find(pNode)) {
    CSlot& slot = *m_Slots.Find(id);
    if (!slot.m_HasOwner) return std::nullopt;
    DOMDocument* pOwner = slot.m_pOwner;
    Unlink(slot);
    return pOwner;
  }
  const auto loose = m_LooseOwners.find(pNode);
  if (loose == m_LooseOwners.end()) return std::nullopt;
  DOMDocument* pOwner = loose->second;
  m_LooseOwners.erase(loose);
  return pOwner;
}

// Where a document's list begins; an empty list is kept until it is next unlinked.
unsigned long& CDOMNodeSessMap::FirstOf(DOMDocument* pDoc) { return m_OwnedBy[pDoc]; }

// In front of the list: the newest id comes first.
void CDOMNodeSessMap::Link(unsigned long id, CSlot& slot, DOMDocument* pDoc, unsigned long& first) {
  slot.m_HasOwner = true;
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
  slot.m_HasOwner = false;
  slot.m_pOwner = nullptr;
}

void CDOMNodeSessMap::TakeAdoptions() {
  if (!m_HasAdoptions) return;
  std::vector<std::pair<DOMNode*, DOMDocument*>> adoptions;
  {
    const std::lock_guard<std::mutex> lock(m_AdoptionMutex);
    adoptions.swap(m_Adoptions);
    m_HasAdoptions = false;
  }
  for (const auto& [pNode, pDoc] : adoptions) SetOwner(pNode, pDoc);
}

void CDOMNodeSessMap::WithdrawNode(DOMNode* pNode) {
  TakeOwner(pNode);
  if (const unsigned long id = m_PtrToSess.Find(pNode)) Erase(id, *m_Slots.Find(id));
}

// Contract: nothing that happens in here stops the close that it is a part of.
void CDOMNodeSessMap::SweepDocument(DOMDocument* pDoc) {
  const auto list = m_OwnedBy.find(pDoc);
  if (list != m_OwnedBy.end()) {
    unsigned long id = list->second;
    m_OwnedBy.erase(list);
    while (id != 0) {
      const CSlot& slot = *m_Slots.Find(id);
      const unsigned long next = slot.m_Next;
      Erase(id, slot);
      id = next;
    }
  }
  for (auto loose = m_LooseOwners.begin(); loose != m_LooseOwners.end();) {
    loose = loose->second == pDoc ? m_LooseOwners.erase(loose) : std::next(loose);
  }
}
