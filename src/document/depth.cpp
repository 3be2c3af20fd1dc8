#include "document/depth.h"

#include "host/stackroom.h"

using xercesc::DOMNode;

namespace depth {

namespace {

// Visits the tree below `root`, children only, with the depth of each node. The level
// tells the end: above the children of a document object stands its document node.
template <class Visit>
void ForEach(const DOMNode& root, Visit visit) {
  const DOMNode* pNode = &root;
  std::size_t level = 0;
  while (true) {
    visit(*pNode, level);
    if (const DOMNode* pChild = pNode->getFirstChild()) {
      pNode = pChild;
      ++level;
      continue;
    }
    while (level != 0 && pNode->getNextSibling() == nullptr) {
      pNode = pNode->getParentNode();
      --level;
    }
    if (level == 0) return;
    pNode = pNode->getNextSibling();
  }
}

std::size_t LevelsThatFit(std::size_t bytesPerLevel) { return StackRoom() / bytesPerLevel; }

}  // namespace

void RequireRoom(const DOMNode& root, std::size_t bytesPerLevel) {
  const std::size_t most = LevelsThatFit(bytesPerLevel);
  ForEach(root, [&](const DOMNode&, std::size_t level) {
    if (level > most) throw CTooDeep();
  });
}

}  // namespace depth
