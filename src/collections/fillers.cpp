#include "collections/fillers.h"

#include <tessel/collections.h>
#include <tessel/values.h>

#include <cstddef>
#include <limits>
#include <vector>

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

// A child list walks from the first child at every index, so its members are found
// by their siblings. It is the list that its first member's parent gives.
bool IsChildList(const DOMNodeList& list, const DOMNode* pFirst) {
  const DOMNode* pParent = pFirst->getParentNode();
  return pParent != nullptr && pParent->getChildNodes() == &list;
}

// One pass, without asking for the length: a list by tag name would walk its whole
// subtree for that alone.
std::vector<DOMNode*> MembersOf(const DOMNodeList& list) {
  std::vector<DOMNode*> members;
  DOMNode* pNode = list.item(0);
  if (pNode == nullptr) return members;
  if (IsChildList(list, pNode)) {
    for (; pNode != nullptr; pNode = pNode->getNextSibling()) members.push_back(pNode);
  } else {
    for (XMLSize_t i = 1; pNode != nullptr; pNode = list.item(i++)) members.push_back(pNode);
  }
  return members;
}

}  // namespace

void StoreNodes(std::span<DOMNode* const> nodes, GenericRefObjSessionArray* pArray) {
  if (!Resize(pArray, nodes.size())) {
    ClearArray(pArray);
    return;
  }
  (**pArray)->count = static_cast<int32_t>(nodes.size());
  (**pArray)->zero = 0;
  uint64_t* pId = IdsOf(*pArray);
  for (DOMNode* pNode : nodes) *pId++ = g_NodeSessMap.Insert(pNode);
}

void TSUNodeListToArray(GenericRefObjSessionArray* array, void* nodeList) {
  if (nodeList == nullptr) return;
  StoreNodes(MembersOf(*static_cast<const DOMNodeList*>(nodeList)), array);
}

void TSUNamedNodeMapToArray(GenericRefObjSessionArray* array, void* namedNodeMap) {
  const auto& map = *static_cast<const DOMNamedNodeMap*>(namedNodeMap);
  std::vector<DOMNode*> items(map.getLength());
  for (XMLSize_t i = 0; i < items.size(); ++i) items[i] = map.item(i);
  StoreNodes(items, array);
}
