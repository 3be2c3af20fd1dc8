// A DOM tree in the form that Xalan-C evaluates on.
//
// Xalan-C's own wrapper needs a document with a root element, builds itself whole
// for any expression to be in order, and fails on fragments and loose attributes.
// This one takes the tree that a node hangs in, whatever that is, and wraps nodes
// as an expression reaches them.
//
// What stands at the root:
//   - a document or a fragment stands for itself;
//   - for the nodes inside an attribute it is the attribute that stands there;
//   - above any other top there is a root that stands for no node, so that "/"
//     selects nothing and "/x" or "//x" search the tree;
//   - above a loose attribute there is also an element that stands for no node.
// The top itself has no parent in the last two cases. Elsewhere attributes have no children.
//
// Order: two nodes are compared by their way up and along the DOM, and only when
// that has cost too much are all nodes wrapped and numbered, once.
#pragma once

#include <deque>
#include <memory_resource>
#include <unordered_map>
#include <vector>
#include <xalanc/XalanDOM/XalanDOMString.hpp>
#include <xalanc/XalanDOM/XalanDocument.hpp>
#include <xalanc/XalanDOM/XalanElement.hpp>
#include <xalanc/XalanDOM/XalanNode.hpp>
#include <xercesc/dom/DOM.hpp>

#include "xpath/nodetable.h"
#include "xpath/stackguard.h"

class CXPathTree;

// What a wrapping node holds. Links are found when first asked for.
class CWrapped {
 public:
  // Without a DOM node it stands for none, and has the links that Link gives it.
  CWrapped(CXPathTree& tree, xercesc::DOMNode* pNode, xalanc::XalanNode::NodeType type)
      : m_Tree(tree), m_pNode(pNode), m_Type(type) {}

  void Link(xalanc::XalanNode* pParent, xalanc::XalanNode* pFirstChild);

  CXPathTree& Tree() const { return m_Tree; }
  xercesc::DOMNode* Node() const { return m_pNode; }
  xalanc::XalanNode::NodeType Type() const { return m_Type; }
  xalanc::XalanNode* Parent();
  xalanc::XalanNode* FirstChild();
  xalanc::XalanNode* LastChild() const;
  xalanc::XalanNode* PreviousSibling() const;
  xalanc::XalanNode* NextSibling();
  const xalanc::XalanDOMString& Value();

  // Number in document order, from 1; 0 before the tree is numbered.
  xalanc::XalanNode::IndexType m_Index = 0;

 private:
  friend class CXPathTree;

  bool HasNodesBelow() const;
  bool HasNodesBeside() const;

  CXPathTree& m_Tree;
  xercesc::DOMNode* const m_pNode;
  xalanc::XalanNode* m_pParent = nullptr;
  xalanc::XalanNode* m_pFirstChild = nullptr;
  xalanc::XalanNode* m_pNextSibling = nullptr;
  const xalanc::XalanDOMString* m_pValue = nullptr;
  const xalanc::XalanNode::NodeType m_Type;
  bool m_KnowsParent = false;
  bool m_KnowsFirstChild = false;
  bool m_KnowsNextSibling = false;
};

class CXPathTree {
 public:
  // Wraps the tree that the node hangs in. The tree must not change meanwhile.
  explicit CXPathTree(xercesc::DOMNode& context);
  CXPathTree(const CXPathTree&) = delete;
  CXPathTree& operator=(const CXPathTree&) = delete;

  xalanc::XalanNode& Context() { return *m_pContext; }
  xalanc::XalanDocument& Root() { return *m_pRoot; }
  // An element that stands for no node and has the root's children. Xalan-C takes
  // the text of a document from its one element; a fragment's may be several.
  xalanc::XalanElement& WholeContent();
  xercesc::DOMNode* Top() { return m_pTop; }
  // The wrapping node, null for null. The node must hang in this tree.
  xalanc::XalanNode* Wrap(xercesc::DOMNode* pNode);
  // The DOM node, null for a node that stands for none.
  static xercesc::DOMNode* Unwrap(const xalanc::XalanNode& node);
  // The element with an ID, if it hangs in this tree.
  xalanc::XalanNode* FindById(const XMLCh* pId);

  // Whether nodes have numbers; being asked often numbers them.
  bool IsNumbered();
  bool IsAfter(const xalanc::XalanNode& node, const xalanc::XalanNode& other);

  // A name that the DOM holds; null is empty. Cached by address.
  const xalanc::XalanDOMString& Name(const XMLCh* pName);
  const xalanc::XalanDOMString& KeepValue(const XMLCh* pValue);
  void CheckStack() const { m_Stack.Check(); }

 private:
  static constexpr int kFreeAsks = 64;      // questions for a number
  static constexpr long kFreeSteps = 2048;  // nodes passed in comparisons

  template <class Node>
  Node* Make(xercesc::DOMNode* pNode, xalanc::XalanNode::NodeType type);
  xalanc::XalanNode* MakeNode(xercesc::DOMNode& node);
  void MakeRoot(bool standsForItself);
  void NumberAll();
  void NumberNode(const xalanc::XalanNode& node);
  bool Pass(long nodes);
  bool IsAfterByWay(const xercesc::DOMNode& node, const xercesc::DOMNode& other);
  bool IsAfterBeside(const xercesc::DOMNode& node, const xercesc::DOMNode& other);
  long Depth(const xercesc::DOMNode& node);

  CStackGuard m_Stack;
  std::pmr::monotonic_buffer_resource m_Memory;  // of the nodes; none owns anything
  CNodeTable<xalanc::XalanNode*> m_Nodes;
  std::unordered_map<const XMLCh*, xalanc::XalanDOMString> m_Names;
  std::deque<xalanc::XalanDOMString> m_Values;
  const xalanc::XalanDOMString m_NoText;
  xercesc::DOMNode* m_pTop;
  xalanc::XalanDocument* m_pRoot = nullptr;
  xalanc::XalanElement* m_pWholeContent = nullptr;
  xalanc::XalanNode* m_pContext = nullptr;
  xalanc::XalanNode::IndexType m_LastIndex = 0;
  int m_Asks = 0;
  long m_Steps = 0;
  bool m_Numbered = false;

  friend class CWrapped;
};
