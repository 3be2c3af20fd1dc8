#include "xpath/xpathtree.h"

#include <new>

#include "xpath/treetop.h"
#include "xpath/xpathnodes.h"

using xalanc::XalanNode;
using xercesc::DOMNode;

namespace {

bool StandsAtRoot(const DOMNode& top, const DOMNode& context) {
  return IsRoot(top) || (top.getNodeType() == DOMNode::ATTRIBUTE_NODE && &top != &context);
}

bool IsAttributeAfter(const DOMNode& attribute, const DOMNode& other) {
  const xercesc::DOMNamedNodeMap* pMap = dom::ParentOrElement(attribute)->getAttributes();
  XMLSize_t at = 0;
  while (pMap->item(at) != &attribute && pMap->item(at) != &other) ++at;
  return pMap->item(at) == &other;
}

XalanNode* NextInOrder(const XalanNode& node) {
  if (XalanNode* pChild = node.getFirstChild()) return pChild;
  for (const XalanNode* pUp = &node; pUp != nullptr; pUp = pUp->getParentNode()) {
    if (XalanNode* pNext = pUp->getNextSibling()) return pNext;
  }
  return nullptr;
}

}  // namespace

// -- CWrapped --------------------------------------------------------------------

void CWrapped::Link(XalanNode* pParent, XalanNode* pFirstChild) {
  m_pParent = pParent;
  m_pFirstChild = pFirstChild;
  m_KnowsParent = m_KnowsFirstChild = true;
}

bool CWrapped::HasNodesBelow() const {
  return m_pNode != nullptr && m_Type != XalanNode::ATTRIBUTE_NODE;
}

bool CWrapped::HasNodesBeside() const { return HasNodesBelow() && m_pNode != m_Tree.m_pTop; }

XalanNode* CWrapped::Parent() {
  if (!m_KnowsParent) {
    m_KnowsParent = true;
    m_pParent = m_Tree.Wrap(dom::ParentOrElement(*m_pNode));
  }
  return m_pParent;
}

XalanNode* CWrapped::FirstChild() {
  if (!m_KnowsFirstChild) {
    m_KnowsFirstChild = true;
    if (HasNodesBelow()) m_pFirstChild = m_Tree.Wrap(m_pNode->getFirstChild());
  }
  return m_pFirstChild;
}

XalanNode* CWrapped::LastChild() const {
  return HasNodesBelow() ? m_Tree.Wrap(m_pNode->getLastChild()) : m_pFirstChild;
}

XalanNode* CWrapped::PreviousSibling() const {
  return HasNodesBeside() ? m_Tree.Wrap(m_pNode->getPreviousSibling()) : nullptr;
}

XalanNode* CWrapped::NextSibling() {
  if (!m_KnowsNextSibling) {
    m_KnowsNextSibling = true;
    if (HasNodesBeside()) m_pNextSibling = m_Tree.Wrap(m_pNode->getNextSibling());
  }
  return m_pNextSibling;
}

const xalanc::XalanDOMString& CWrapped::Value() {
  if (m_pValue == nullptr) {
    m_pValue = &m_Tree.KeepValue(m_pNode == nullptr ? nullptr : m_pNode->getNodeValue());
  }
  return *m_pValue;
}

// -- CXPathTree ------------------------------------------------------------------

CXPathTree::CXPathTree(DOMNode& context) : m_pTop(TopOf(context)) {
  MakeRoot(StandsAtRoot(*m_pTop, context));
  m_pContext = Wrap(&context);
}

template <class Node>
Node* CXPathTree::Make(DOMNode* pNode, XalanNode::NodeType type) {
  void* pMemory = m_Memory.allocate(sizeof(Node), alignof(Node));
  return ::new (pMemory) Node(CWrapped(*this, pNode, type));
}

void CXPathTree::MakeRoot(bool standsForItself) {
  CRootNode* pRoot = Make<CRootNode>(standsForItself ? m_pTop : nullptr, XalanNode::DOCUMENT_NODE);
  pRoot->Wrapped().m_KnowsParent = true;  // there is nothing above the tree
  m_pRoot = pRoot;
  if (standsForItself) {
    m_Nodes[m_pTop] = pRoot;
  } else if (m_pTop->getNodeType() == DOMNode::ATTRIBUTE_NODE) {
    CElementNode* pNoElement = Make<CElementNode>(nullptr, XalanNode::ELEMENT_NODE);
    pNoElement->Wrapped().Link(nullptr, nullptr);
    WrappedOf(*Wrap(m_pTop)).Link(pNoElement, nullptr);
    pRoot->Wrapped().Link(nullptr, pNoElement);
  } else {
    pRoot->Wrapped().Link(nullptr, Wrap(m_pTop));
  }
}

xalanc::XalanElement& CXPathTree::WholeContent() {
  if (m_pWholeContent == nullptr) {
    CElementNode* pElement = Make<CElementNode>(nullptr, XalanNode::ELEMENT_NODE);
    pElement->Wrapped().Link(nullptr, m_pRoot->getFirstChild());
    m_pWholeContent = pElement;
  }
  return *m_pWholeContent;
}

XalanNode* CXPathTree::Wrap(DOMNode* pNode) {
  if (pNode == nullptr) return nullptr;
  XalanNode*& pWrapping = m_Nodes[pNode];
  if (pWrapping == nullptr) pWrapping = MakeNode(*pNode);
  return pWrapping;
}

XalanNode* CXPathTree::MakeNode(DOMNode& node) {
  switch (node.getNodeType()) {
    case DOMNode::ELEMENT_NODE:
      return Make<CElementNode>(&node, XalanNode::ELEMENT_NODE);
    case DOMNode::ATTRIBUTE_NODE:
      return Make<CAttributeNode>(&node, XalanNode::ATTRIBUTE_NODE);
    case DOMNode::TEXT_NODE:
      return Make<CTextNode>(&node, XalanNode::TEXT_NODE);
    case DOMNode::CDATA_SECTION_NODE:
      return Make<CCDATANode>(&node, XalanNode::CDATA_SECTION_NODE);
    case DOMNode::COMMENT_NODE:
      return Make<CCommentNode>(&node, XalanNode::COMMENT_NODE);
    case DOMNode::PROCESSING_INSTRUCTION_NODE:
      return Make<CInstructionNode>(&node, XalanNode::PROCESSING_INSTRUCTION_NODE);
    default:  // the two interfaces number the kinds alike
      return Make<COtherNode>(&node, static_cast<XalanNode::NodeType>(node.getNodeType()));
  }
}

DOMNode* CXPathTree::Unwrap(const XalanNode& node) { return WrappedOf(node).Node(); }

XalanNode* CXPathTree::FindById(const XMLCh* pId) {
  const xercesc::DOMDocument* pDocument = m_pTop->getNodeType() == DOMNode::DOCUMENT_NODE
                                              ? static_cast<const xercesc::DOMDocument*>(m_pTop)
                                              : m_pTop->getOwnerDocument();
  if (pDocument == nullptr) return nullptr;
  DOMNode* pElement = pDocument->getElementById(pId);
  return pElement != nullptr && TopOf(*pElement) == m_pTop ? Wrap(pElement) : nullptr;
}

const xalanc::XalanDOMString& CXPathTree::Name(const XMLCh* pName) {
  return pName == nullptr ? m_NoText : m_Names.try_emplace(pName, pName).first->second;
}

const xalanc::XalanDOMString& CXPathTree::KeepValue(const XMLCh* pValue) {
  return pValue == nullptr ? m_NoText : m_Values.emplace_back(pValue);
}

// -- Order -----------------------------------------------------------------------

bool CXPathTree::IsNumbered() {
  if (!m_Numbered && ++m_Asks > kFreeAsks) NumberAll();
  return m_Numbered;
}

bool CXPathTree::IsAfter(const XalanNode& node, const XalanNode& other) {
  const CWrapped& wrapped = WrappedOf(node);
  const CWrapped& otherWrapped = WrappedOf(other);
  if (!m_Numbered && wrapped.Node() != nullptr && otherWrapped.Node() != nullptr) {
    const bool isAfter = IsAfterByWay(*wrapped.Node(), *otherWrapped.Node());
    if (m_Steps <= kFreeSteps) return isAfter;
  }
  NumberAll();
  return wrapped.m_Index > otherWrapped.m_Index;
}

void CXPathTree::NumberAll() {
  if (m_Numbered) return;
  m_Numbered = true;
  for (XalanNode* pNode = m_pRoot; pNode != nullptr; pNode = NextInOrder(*pNode)) {
    NumberNode(*pNode);
  }
}

void CXPathTree::NumberNode(const XalanNode& node) {
  WrappedOf(node).m_Index = ++m_LastIndex;
  const xalanc::XalanNamedNodeMap* pAttributes = node.getAttributes();
  if (pAttributes == nullptr) return;
  const xalanc::XalanSize_t count = pAttributes->getLength();
  for (xalanc::XalanSize_t i = 0; i < count; ++i) {
    WrappedOf(*pAttributes->item(i)).m_Index = ++m_LastIndex;
  }
}

bool CXPathTree::Pass(long nodes) {
  m_Steps += nodes;
  return m_Steps <= kFreeSteps;
}

long CXPathTree::Depth(const DOMNode& node) {
  long depth = 0;
  for (const DOMNode* pUp = dom::ParentOrElement(node); pUp != nullptr && Pass(1);
       pUp = dom::ParentOrElement(*pUp)) {
    ++depth;
  }
  return depth;
}

// Lifts both nodes to where they hang on the same parent. Meaningless once too
// many nodes were passed.
bool CXPathTree::IsAfterByWay(const DOMNode& node, const DOMNode& other) {
  const DOMNode* pNode = &node;
  const DOMNode* pOther = &other;
  const long nodeDepth = Depth(node);
  const long otherDepth = Depth(other);
  for (long depth = nodeDepth; depth > otherDepth && Pass(1); --depth)
    pNode = dom::ParentOrElement(*pNode);
  for (long depth = otherDepth; depth > nodeDepth && Pass(1); --depth)
    pOther = dom::ParentOrElement(*pOther);
  if (pNode == pOther) return nodeDepth > otherDepth;
  while (Pass(1) && dom::ParentOrElement(*pNode) != dom::ParentOrElement(*pOther)) {
    pNode = dom::ParentOrElement(*pNode);
    pOther = dom::ParentOrElement(*pOther);
  }
  return Pass(0) && IsAfterBeside(*pNode, *pOther);
}

bool CXPathTree::IsAfterBeside(const DOMNode& node, const DOMNode& other) {
  const bool isAttribute = node.getNodeType() == DOMNode::ATTRIBUTE_NODE;
  const bool otherIsAttribute = other.getNodeType() == DOMNode::ATTRIBUTE_NODE;
  if (isAttribute != otherIsAttribute) return otherIsAttribute;
  if (isAttribute) return IsAttributeAfter(node, other);
  // Both look for the other, so the cost is the distance between them.
  const DOMNode* pNode = &node;
  const DOMNode* pOther = &other;
  while (Pass(1)) {
    pNode = pNode->getNextSibling();
    if (pNode == &other) return false;
    pOther = pOther->getNextSibling();
    if (pOther == &node || pNode == nullptr) return true;
    if (pOther == nullptr) return false;
  }
  return false;
}
