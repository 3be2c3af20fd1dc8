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
  std::map<DOMNode*, DOMDocument*> owner;
  if (DOMDocument* pDoc = pNode->getOwnerDocument()) owner.emplace(pNode, pDoc);
  const unsigned long id = Register(pNode);
  if (owner.empty()) {
    RecordKind(pNode, id);
  } else {
    m_NodeToDoc.erase(pNode);
    m_NodeToDoc.merge(owner);
  }
  return id;
}

bool CDOMNodeSessMap::DeleteBySess(unsigned long id) {
  CHostLock lock(m_Mutex);
  TakeAdoptions();
  if (!CountBack(id)) return false;
  if (const DOMDocument* pDoc = DocumentOf(id)) {
    SweepDocument(pDoc);
    m_DocumentIds.erase(id);
  } else {
    m_NodeToDoc.erase(Find(id));
  }
  Erase(id);
  return true;
}

CDOMNodeSessMap::CEntry CDOMNodeSessMap::GetEntryBySess(unsigned long id) {
  CHostLock lock(m_Mutex);
  const auto document = m_DocumentIds.find(id);
  return {Find(id), document != m_DocumentIds.end() ? document->second.m_Kind : ENodeKind::kNode};
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
  DOMNode* pOld = Find(id);
  if (pOld == nullptr) return;
  m_PtrToSess.erase(pOld);
  m_PtrToSess.emplace(pNewNode, id);
  m_SessToPtr[id] = pNewNode;
  DOMDocument* pDoc = m_NodeToDoc[pOld];
  m_NodeToDoc.erase(pOld);
  m_NodeToDoc.emplace(pNewNode, pDoc);
  m_DocumentIds.erase(id);
  if (pNewNode != nullptr) RecordKind(pNewNode, id);
}

void CDOMNodeSessMap::Withdraw(const std::vector<DOMNode*>& nodes) {
  if (nodes.empty()) return;
  CHostLock lock(m_Mutex);
  TakeAdoptions();
  if (m_PtrToSess.empty()) return;
  for (DOMNode* pNode : nodes) {
    WithdrawNode(pNode);
    m_NodeToDoc.erase(pNode);
  }
}

void CDOMNodeSessMap::Forget(DOMNode* pNode) {
  CHostLock lock(m_Mutex);
  TakeAdoptions();
  ForgetPtr(pNode);
  m_NodeToDoc.erase(pNode);
}

void CDOMNodeSessMap::WithdrawDocument(DOMDocument* pDoc) {
  CHostLock lock(m_Mutex);
  TakeAdoptions();
  SweepDocument(pDoc);
  ForgetPtr(pDoc);
}

void CDOMNodeSessMap::ForgetDocument(DOMDocument* pDoc) {
  CHostLock lock(m_Mutex);
  TakeAdoptions();
  std::erase_if(m_NodeToDoc, [&](const auto& entry) TESSEL_REQUIRES(m_Mutex) {
    if (entry.second != pDoc) return false;
    ForgetPtr(entry.first);
    return true;
  });
  ForgetPtr(pDoc);
}

void CDOMNodeSessMap::TakeAdoptions() {
  if (!m_HasAdoptions) return;
  std::vector<std::pair<DOMNode*, DOMDocument*>> adoptions;
  {
    const std::lock_guard<std::mutex> lock(m_AdoptionMutex);
    adoptions.swap(m_Adoptions);
    m_HasAdoptions = false;
  }
  for (const auto& [pNode, pDoc] : adoptions) m_NodeToDoc.insert_or_assign(pNode, pDoc);
}

// The tree that closing this id takes along; null for a plain node.
DOMDocument* CDOMNodeSessMap::DocumentOf(unsigned long id) const {
  const auto document = m_DocumentIds.find(id);
  if (document == m_DocumentIds.end()) return nullptr;
  if (document->second.m_Kind == ENodeKind::kBareDocument) return document->second.m_pDoc;
  return static_cast<CXercesDOM*>(Find(id))->m_pDoc;
}

void CDOMNodeSessMap::SweepDocument(const DOMDocument* pDoc) noexcept {
  std::erase_if(m_NodeToDoc, [&](const auto& entry) TESSEL_REQUIRES(m_Mutex) {
    if (entry.second != pDoc) return false;
    WithdrawNode(entry.first);
    return true;
  });
}

void CDOMNodeSessMap::WithdrawNode(DOMNode* pNode) {
  const auto found = m_PtrToSess.find(pNode);
  if (found == m_PtrToSess.end()) return;
  m_DocumentIds.erase(found->second);
  m_SessToPtr.erase(found->second);
  m_SessRefCount.erase(found->second);
  m_PtrToSess.erase(found);
}

void CDOMNodeSessMap::RecordKind(DOMNode* pNode, unsigned long id) {
  if (pNode->getNodeType() != DOMNode::DOCUMENT_NODE) return;
  if (dynamic_cast<CXercesDOM*>(pNode) != nullptr) {
    m_DocumentIds.insert({id, {ENodeKind::kDocumentObject, nullptr}});
  } else {
    m_DocumentIds.insert({id, {ENodeKind::kBareDocument, dynamic_cast<DOMDocument*>(pNode)}});
  }
}
