#include "document/takentypes.h"

#include <absl/container/btree_map.h>

#include <atomic>
#include <mutex>

#include "registry/globals.h"

using xercesc::DOMDocument;
using xercesc::DOMNode;

namespace {

// Few programs make document types, so all others pass by the mutex.
std::atomic<bool> s_HasAny = false;
std::mutex s_Mutex;

// Guarded by s_Mutex.
absl::btree_multimap<const DOMDocument*, DOMNode*>& Types() {
  static absl::btree_multimap<const DOMDocument*, DOMNode*> s_Types;
  return s_Types;
}

}  // namespace

void COfferedNode::Tie() const {
  if (m_pFreeType == nullptr || m_pFreeType->getOwnerDocument() == nullptr) return;
  DOMDocument* pTaker = m_pFreeType->getOwnerDocument();
  g_NodeSessMap.InsertDocNodeMapEntry(pTaker, m_pFreeType);
  const std::lock_guard<std::mutex> lock(s_Mutex);
  Types().emplace(pTaker, m_pFreeType);
  s_HasAny = true;
}

namespace takentypes {

void Forget(DOMNode& node) {
  if (!s_HasAny || node.getNodeType() != DOMNode::DOCUMENT_TYPE_NODE) return;
  const std::lock_guard<std::mutex> lock(s_Mutex);
  const auto [first, last] = Types().equal_range(node.getOwnerDocument());
  for (auto entry = first; entry != last; ++entry) {
    if (entry->second != &node) continue;
    Types().erase(entry);
    return;
  }
}

std::vector<DOMNode*> TakeOf(const DOMDocument* pDoc) {
  std::vector<DOMNode*> types;
  if (!s_HasAny) return types;
  const std::lock_guard<std::mutex> lock(s_Mutex);
  const auto [first, last] = Types().equal_range(pDoc);
  for (auto entry = first; entry != last; ++entry) types.push_back(entry->second);
  Types().erase(first, last);
  s_HasAny = !Types().empty();
  return types;
}

}  // namespace takentypes
