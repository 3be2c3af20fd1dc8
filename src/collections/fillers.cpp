#include "collections/fillers.h"

#include <tessel/collections.h>
#include <tessel/values.h>

#include <cstddef>
#include <limits>
#include <vector>

#include "dom/lists.h"
#include "registry/globals.h"

using xercesc::DOMNamedNodeMap;
using xercesc::DOMNode;
using xercesc::DOMNodeList;

namespace {

constexpr size_t kHeader = offsetof(GenericRefObjSessionArrayRecord, ids);

// Gives the array room for `count` ids; false where the host refuses.
bool Resize(GenericRefObjSessionArray* pArray, size_t count) {
  if (count > static_cast<size_t>(std::numeric_limits<int32_t>::max())) return false;
  const size_t size = kHeader + count * sizeof(uint64_t);
  if (*pArray != nullptr) return HostSetHandleSizeClear(*pArray, size) == 0;
  *pArray = static_cast<GenericRefObjSessionArray>(HostNewHandleClear(size));
  return *pArray != nullptr;
}

uint64_t* IdsOf(GenericRefObjSessionArray array) {
  return reinterpret_cast<uint64_t*>(reinterpret_cast<unsigned char*>(*array) + kHeader);
}

}  // namespace

void StoreNodes(std::span<DOMNode* const> nodes, GenericRefObjSessionArray* pArray) {
  if (!Resize(pArray, nodes.size())) {
    ClearArray(pArray);
    return;
  }
  (**pArray)->count = static_cast<int32_t>(nodes.size());
  (**pArray)->zero = 0;
  g_NodeSessMap.Insert(nodes, IdsOf(*pArray));
}

void TSUNodeListToArray(GenericRefObjSessionArray* array, void* nodeList) {
  if (nodeList == nullptr) return;
  StoreNodes(dom::MembersOf(*static_cast<const DOMNodeList*>(nodeList)), array);
}

void TSUNamedNodeMapToArray(GenericRefObjSessionArray* array, void* namedNodeMap) {
  const auto& map = *static_cast<const DOMNamedNodeMap*>(namedNodeMap);
  std::vector<DOMNode*> items(map.getLength());
  for (XMLSize_t i = 0; i < items.size(); ++i) items[i] = map.item(i);
  StoreNodes(items, array);
}
