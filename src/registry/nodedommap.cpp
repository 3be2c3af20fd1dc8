#include "registry/nodedommap.h"

using xercesc::DOMDocument;
using xercesc::DOMNode;

namespace {

// A document node is its own tree; it has no owner document.
const DOMDocument* TreeOf(const DOMNode* pNode) {
  if (const DOMDocument* pOwner = pNode->getOwnerDocument()) return pOwner;
  return dynamic_cast<const DOMDocument*>(pNode);
}

}  // namespace

void CNodeDomMap::Insert(DOMNode* pNode, CXercesDOM* pDom) {
  if (pNode == nullptr || pDom == nullptr) return;
  const CEntry entry{pDom, TreeOf(pNode)};
  CHostLock lock(m_Mutex);
  if (m_NodeToDom.contains(pNode)) return;
  // The entry comes last: an index that runs ahead of it does no harm.
  m_ByDom.emplace(pDom, pNode);
  m_ByTree.emplace(entry.m_pTree, pNode);
  m_NodeToDom.emplace(pNode, entry);
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
  return pDom != nullptr && EraseAll(m_ByDom, pDom);
}

void CNodeDomMap::DeleteByTree(const DOMDocument* pDoc) {
  CHostLock lock(m_Mutex);
  EraseAll(m_ByTree, pDoc);
}

void CNodeDomMap::Delete(const std::vector<DOMNode*>& nodes) {
  if (nodes.empty()) return;
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
bool CNodeDomMap::EraseAll(const CIndex<Owner>& index, Owner owner) {
  std::vector<DOMNode*> nodes;
  for (auto entry = index.lower_bound({owner, nullptr});
       entry != index.end() && entry->first == owner; ++entry) {
    nodes.push_back(entry->second);
  }
  for (DOMNode* pNode : nodes) Erase(pNode);
  return !nodes.empty();
}

size_t CNodeDomMap::EntryCount() {
  CHostLock lock(m_Mutex);
  return m_NodeToDom.size();
}
