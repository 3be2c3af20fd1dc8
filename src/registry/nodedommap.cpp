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
  m_NodeToDom.emplace(pNode, entry);
}

CXercesDOM* CNodeDomMap::GetDomByNode(DOMNode* pNode) {
  CHostLock lock(m_Mutex);
  const auto found = m_NodeToDom.find(pNode);
  return found != m_NodeToDom.end() ? found->second.m_pDom : nullptr;
}

bool CNodeDomMap::DeleteByNode(DOMNode* pNode) {
  CHostLock lock(m_Mutex);
  return m_NodeToDom.erase(pNode) != 0;
}

bool CNodeDomMap::DeleteByDom(CXercesDOM* pDom) {
  CHostLock lock(m_Mutex);
  if (pDom == nullptr) return false;
  return std::erase_if(m_NodeToDom,
                       [&](const auto& entry) { return entry.second.m_pDom == pDom; }) != 0;
}

void CNodeDomMap::DeleteByTree(const DOMDocument* pDoc) {
  CHostLock lock(m_Mutex);
  std::erase_if(m_NodeToDom, [&](const auto& entry) { return entry.second.m_pTree == pDoc; });
}

void CNodeDomMap::Delete(const std::vector<DOMNode*>& nodes) {
  if (nodes.empty()) return;
  CHostLock lock(m_Mutex);
  for (DOMNode* pNode : nodes) m_NodeToDom.erase(pNode);
}

size_t CNodeDomMap::EntryCount() {
  CHostLock lock(m_Mutex);
  return m_NodeToDom.size();
}
