#include "document/depth.h"

#include <algorithm>
#include <vector>
#include <xercesc/dom/impl/DOMCasts.hpp>
#include <xercesc/dom/impl/DOMNodeImpl.hpp>

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

bool IsReadOnly(const DOMNode& node) { return xercesc::castToNodeImpl(&node)->isReadOnly(); }

std::size_t LevelsThatFit(std::size_t bytesPerLevel) { return StackRoom() / bytesPerLevel; }

}  // namespace

void RequireRoom(const DOMNode& root, std::size_t bytesPerLevel) {
  const std::size_t most = LevelsThatFit(bytesPerLevel);
  ForEach(root, [&](const DOMNode&, std::size_t level) {
    if (level > most) throw CTooDeep();
  });
}

void Release(DOMNode& root) {
  // Cut at regular levels, from the deepest: each piece is then shallow. What is inside
  // an entity reference is read-only and stays there; the parser keeps it shallow.
  constexpr std::size_t kPiece = 400;
  std::vector<DOMNode*> pieces;
  std::size_t deepest = 0;
  ForEach(root, [&](const DOMNode& node, std::size_t level) {
    deepest = std::max(deepest, level);
    if (level != 0 && level % kPiece == 0 && node.getNodeType() == DOMNode::ELEMENT_NODE &&
        !IsReadOnly(*node.getParentNode())) {
      pieces.push_back(const_cast<DOMNode*>(&node));
    }
  });
  if (deepest > LevelsThatFit(kReleaseLevel)) {
    for (auto piece = pieces.rbegin(); piece != pieces.rend(); ++piece) {
      (*piece)->getParentNode()->removeChild(*piece)->release();
    }
  }
  root.release();
}

}  // namespace depth
