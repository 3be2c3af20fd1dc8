#include "registry/nodedommap.h"

#include "dom/look.h"

using xercesc::DOMDocument;
using xercesc::DOMNode;

void CNodeDomMap::Insert(DOMNode* pNode, CXercesDOM* pDom) {
  const CEntry entry{pDom, pNode != nullptr ? dom::TreeOf(*pNode) : nullptr};
  CHostLock lock(m_Mutex);
  if (pNode == nullptr || pDom == nullptr || m_NodeToDom.contains(pNode)) return;
  // The entry comes last. What a failure leaves in an index only, EraseAll drops.
  m_ByDom.emplace(pDom, pNode);
  m_ByTree.emplace(entry.m_pTree, pNode);
  m_NodeToDom.emplace(pNode, entry);
  dom::Mark(*pNode, dom::kHasEntry);
}

CXercesDOM* CNodeDomMap::GetDomByNode(DOMNode* pNode) {
  CHostLock lock(m_Mutex);
  const auto found = m_NodeToDom.find(pNode);
  return found != m_NodeToDom.end() ? found->second.m_pDom : nullptr;
}

bool CNodeDomMap::DeleteByNode(DOMNode* pNode) {
  CHostLock lock(m_Mutex);
  return Erase(pNode);
}

bool CNodeDomMap::DeleteByDom(CXercesDOM* pDom) {
  CHostLock lock(m_Mutex);
  return pDom != nullptr && EraseAll(m_ByDom, &CEntry::m_pDom, pDom);
}

void CNodeDomMap::DeleteByTree(const DOMDocument* pDoc) {
  CHostLock lock(m_Mutex);
  EraseAll(m_ByTree, &CEntry::m_pTree, pDoc);
}

void CNodeDomMap::Delete(std::span<DOMNode* const> nodes) {
  CHostLock lock(m_Mutex);
  for (DOMNode* pNode : nodes) Erase(pNode);
}

bool CNodeDomMap::Erase(DOMNode* pNode) {
  const auto found = m_NodeToDom.find(pNode);
  if (found == m_NodeToDom.end()) return false;
  m_ByDom.erase({found->second.m_pDom, pNode});
  m_ByTree.erase({found->second.m_pTree, pNode});
  m_NodeToDom.erase(found);
  return true;
}

template <class Owner>
bool CNodeDomMap::EraseAll(CIndex<Owner>& index, Owner CEntry::*pOwner, Owner owner) {
  bool erased = false;
  while (true) {
    const auto first = index.lower_bound({owner, nullptr});
    if (first == index.end() || first->first != owner) return erased;
    const auto entry = m_NodeToDom.find(first->second);
    if (entry != m_NodeToDom.end() && entry->second.*pOwner == owner) {
      erased = Erase(first->second);
    } else {
      index.erase(first);
    }
  }
}

size_t CNodeDomMap::EntryCount() {
  CHostLock lock(m_Mutex);
  return m_NodeToDom.size();
}
