// Freeing nodes and trees.
#pragma once

#include <memory>
#include <vector>

#include "dom/parts.h"

namespace dom {

// The nodes that a coming call frees. Collecting may throw, and has changed nothing then;
// freeing does not throw where the heap has room for the list of nodes to use again.
class CDoomedNodes {
 public:
  // A node that no tree owns, with all that is released with it.
  void AddWhole(DOMNode& root);
  // The children of a node, with all that is released with them.
  void AddBelow(DOMNode& parent);

  // Tells the listener, then frees.
  void Free();

 private:
  void Collect(DOMNode& root);

  std::vector<DOMNode*> m_Roots;
  std::vector<DOMNode*> m_Marked;
  std::vector<xercesc::DOMAttr*> m_Ids;
  std::vector<DOMNode*> m_Models;
};

// Frees a node that no tree owns and all below it, however deep. Where the DOM refuses,
// because the node is owned, its exception leaves and nothing has changed.
void Release(DOMNode& node);

// Owns a node that hangs nowhere yet, or a document that belongs to nobody yet.
struct CReleaseNode {
  void operator()(DOMNode* pNode) const;
};
using CNodeOwner = std::unique_ptr<DOMNode, CReleaseNode>;

// Frees a whole tree.
void ReleaseTree(xercesc::DOMDocument& document);

// What would stay behind of a tree that somebody else is about to free.
void BeforeTreeGoes(xercesc::DOMDocument& document);

}  // namespace dom
