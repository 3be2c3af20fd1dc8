// The one place that frees nodes and trees, so that no id and no map entry goes
// on pointing at them.
#pragma once

#include <vector>
#include <xercesc/dom/DOM.hpp>

class CXercesDOM;

// The nodes that the coming call frees. Collect them before the call and withdraw
// them when it has worked: an exception leaves everything as it was. Within one document the host's
// threading rule keeps other threads away, so the addresses may be withdrawn once the nodes are
// gone.
class CDoomedNodes {
 public:
  // The node and all that is released with it; null is nothing.
  static CDoomedNodes Whole(xercesc::DOMNode* pNode);

  // The children of the node, with all below them.
  static CDoomedNodes Below(xercesc::DOMNode* pNode);

  // Takes the ID attributes out of the document's index.
  void RemoveFromIndex() const;

  // Lets the DOM release the elements in entity references.
  void MakeReleasable() const;

  // Takes the entity references that entities copy from out of the tree, with all that
  // is in them: they stay behind till the document goes. False where the root is one.
  bool LeaveModels() const;

  // Takes back their ids, erases their map entries and forgets their collections.
  void Withdraw();

 private:
  void Collect(xercesc::DOMNode* pNode);

  std::vector<xercesc::DOMNode*> m_Nodes;
};

// Runs a call that sets a node's value or text content. The DOM frees the children
// of an attribute as it does so; other nodes keep theirs or only detach them.
template <class Call>
void SetReplacingChildren(xercesc::DOMNode& node, Call set) {
  const bool frees = node.getNodeType() == xercesc::DOMNode::ATTRIBUTE_NODE;
  auto doomed = CDoomedNodes::Below(frees ? &node : nullptr);
  set();
  doomed.Withdraw();
}

// Frees a node that no tree owns and all below it, and withdraws their ids. Where the DOM
// refuses (the node is owned) its exception leaves and nothing has changed.
void ReleaseNode(xercesc::DOMNode* pNode);

// Frees a whole tree. The ids of its nodes are withdrawn, and every map entry that dies
// with the tree goes.
void ReleaseTree(xercesc::DOMDocument* pDoc);

// Frees a document object that has left the map and whose nodes have no ids any
// more, with its tree.
void DeleteDocumentObject(CXercesDOM* pDom);
