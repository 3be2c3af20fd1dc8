#include "dom/takentypes.h"

#include <absl/container/btree_map.h>

#include <atomic>
#include <mutex>

#include "dom/listener.h"
#include "dom/look.h"

using xercesc::DOMDocument;
using xercesc::DOMDocumentType;
using xercesc::DOMNode;

namespace dom {

namespace {

// Few programs make document types, so all others pass by the mutex.
std::atomic<bool> s_HasAny = false;
std::mutex s_Mutex;

// Guarded by s_Mutex.
absl::btree_multimap<const DOMDocument*, DOMDocumentType*>& Types() {
  static absl::btree_multimap<const DOMDocument*, DOMDocumentType*> s_Types;
  return s_Types;
}

}  // namespace

bool IsFreeType(const DOMNode& node) {
  return node.getNodeType() == DOMNode::DOCUMENT_TYPE_NODE && OwnerDocument(node) == nullptr;
}

namespace takentypes {

void Note(DOMDocumentType& type) {
  DOMDocument& taker = *OwnerDocument(type);
  {
    const std::lock_guard<std::mutex> lock(s_Mutex);
    Types().emplace(&taker, &type);
    s_HasAny = true;
  }
  Listener().TypeIsTaken(type, taker);
}

void Forget(const DOMNode& node) {
  if (!s_HasAny || node.getNodeType() != DOMNode::DOCUMENT_TYPE_NODE) return;
  const std::lock_guard<std::mutex> lock(s_Mutex);
  const auto [first, last] = Types().equal_range(OwnerDocument(node));
  for (auto entry = first; entry != last; ++entry) {
    if (entry->second != &node) continue;
    Types().erase(entry);
    return;
  }
}

std::vector<DOMDocumentType*> TakeOf(const DOMDocument& document) {
  std::vector<DOMDocumentType*> types;
  if (!s_HasAny) return types;
  const std::lock_guard<std::mutex> lock(s_Mutex);
  const auto [first, last] = Types().equal_range(&document);
  for (auto entry = first; entry != last; ++entry) types.push_back(entry->second);
  Types().erase(first, last);
  s_HasAny = !Types().empty();
  return types;
}

}  // namespace takentypes

}  // namespace dom
