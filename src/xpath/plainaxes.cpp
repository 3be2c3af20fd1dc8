#include <algorithm>

#include "dom/look.h"
#include "xpath/nodetext.h"
#include "xpath/plainevaluation.h"

using xercesc::DOMNode;

namespace plain {

namespace {

bool AreEqual(const XMLCh* pText, std::u16string_view other) {
  for (const char16_t unit : other) {
    if (*pText++ != unit) return false;
  }
  return *pText == 0;
}

// Fetches a sibling, and its first child where that lies as far from it as the node's own:
// documents lie in memory as they were read.
void FetchNext(const DOMNode& node, DOMNode::NodeType type, const DOMNode& next) {
  dom::Fetch(next);
  const DOMNode* pChild = dom::FirstChildAs(node, type);
  if (pChild != nullptr) dom::Fetch(*pChild, dom::Distance(node, next));
}

}  // namespace

bool CPlainEvaluation::Matches(const CTest& test, const DOMNode& node, DOMNode::NodeType type,
                               DOMNode::NodeType principal) const {
  switch (test.m_Kind) {
    case ETest::kNode:
      return true;
    case ETest::kText:
      return type == DOMNode::TEXT_NODE;
    case ETest::kComment:
      return type == DOMNode::COMMENT_NODE;
    case ETest::kInstruction:
      return type == DOMNode::PROCESSING_INSTRUCTION_NODE &&
             (!test.m_Local || AreEqual(node.getNodeName(), *test.m_Local));
    case ETest::kName:
      break;
  }
  if (type != principal) return false;
  if (test.m_Local) {
    const XMLCh* pLocal = node.getLocalName();
    if (!AreEqual(pLocal != nullptr ? pLocal : node.getNodeName(), *test.m_Local)) return false;
  }
  if (test.m_Namespace == kAnyNamespace) return true;
  const XMLCh* pURI = node.getNamespaceURI();
  if (test.m_Namespace == kNoNamespace) return pURI == nullptr || *pURI == 0;
  return View(pURI) == m_Namespaces[static_cast<std::size_t>(test.m_Namespace)];
}

bool CPlainEvaluation::Matches(const CStep& step, const DOMNode& node,
                               DOMNode::NodeType type) const {
  const bool isAttributes = step.m_Axis == EAxis::kAttribute;
  const auto principal = isAttributes ? DOMNode::ATTRIBUTE_NODE : DOMNode::ELEMENT_NODE;
  for (const CTest& test : step.m_Tests) {
    if (Matches(test, node, type, principal)) return !isAttributes || !IsDeclaration(node);
  }
  return false;
}

bool CPlainEvaluation::Walk(const CStep& step, DOMNode& from, CVisitor visit, CDepth* pDepth) {
  const auto pass = [&](DOMNode& node) {
    return !Matches(step, node, node.getNodeType()) || visit(node);
  };
  const auto passUp = [&](DOMNode* pNode) {
    for (; pNode != nullptr; pNode = dom::ParentOrElement(*pNode)) {
      if (!pass(*pNode)) return false;
    }
    return true;
  };
  const auto passOn = [&](DOMNode* pNode) {
    while (pNode != nullptr) {
      const DOMNode::NodeType type = pNode->getNodeType();
      DOMNode* pNext = dom::NextSiblingAs(*pNode, type);
      if (pNext != nullptr) FetchNext(*pNode, type, *pNext);
      if (Matches(step, *pNode, type) && !visit(*pNode)) return false;
      pNode = pNext;
    }
    return true;
  };
  switch (step.m_Axis) {
    case EAxis::kSelf:
      return pass(from);
    case EAxis::kParent: {
      DOMNode* pParent = dom::ParentOrElement(from);
      return pParent == nullptr || pass(*pParent);
    }
    case EAxis::kAncestor:
      return passUp(dom::ParentOrElement(from));
    case EAxis::kAncestorOrSelf:
      return passUp(&from);
    case EAxis::kChild:
    case EAxis::kChildOfEach:
      return passOn(FirstBelow(from));
    case EAxis::kFollowingSibling:
      return IsAttribute(from) || passOn(dom::NextSibling(from));
    case EAxis::kPrecedingSibling:
      for (DOMNode* p = IsAttribute(from) ? nullptr : dom::PreviousSibling(from); p != nullptr;
           p = dom::PreviousSibling(*p)) {
        if (!pass(*p)) return false;
      }
      return true;
    case EAxis::kFollowing:
      return WalkFollowing(step, from, visit);
    case EAxis::kPreceding:
      return WalkPreceding(step, from, visit);
    case EAxis::kDescendantOrSelf:
      return pass(from) && WalkBelow(step, from, visit, pDepth);
    case EAxis::kDescendant:
      return WalkBelow(step, from, visit, pDepth);
    case EAxis::kAttribute:
      break;
  }
  const xercesc::DOMNamedNodeMap* pMap = from.getAttributes();
  const XMLSize_t count = pMap == nullptr ? 0 : pMap->getLength();
  for (XMLSize_t i = 0; i < count; ++i) {
    if (!pass(*pMap->item(i))) return false;
  }
  return true;
}

bool CPlainEvaluation::WalkBelow(const CStep& step, DOMNode& from, CVisitor visit, CDepth* pDepth) {
  CDepth unused;
  CDepth& depth = pDepth == nullptr ? unused : *pDepth;
  long level = 0;
  for (DOMNode* pNode = FirstBelow(from); pNode != nullptr;) {
    depth.m_Now = level + 1;
    depth.m_Least = std::min(depth.m_Least, depth.m_Now);
    DOMNode::NodeType type = pNode->getNodeType();
    if (Matches(step, *pNode, type) && !visit(*pNode)) return false;
    DOMNode* pChild = dom::FirstChildAs(*pNode, type);
    DOMNode* pNext = dom::NextSiblingAs(*pNode, type);
    if (pChild != nullptr) {
      if (pNext != nullptr) FetchNext(*pNode, type, *pNext);
      pNext = pChild;
      ++level;
    }
    for (; pNext == nullptr && level > 0; --level) {
      pNode = dom::NodePart(*pNode, type).fOwnerNode;
      type = pNode->getNodeType();
      pNext = dom::NextSiblingAs(*pNode, type);
    }
    pNode = pNext;
  }
  return true;
}

// The children of an attribute's element come after the attribute.
bool CPlainEvaluation::WalkFollowing(const CStep& step, DOMNode& from, CVisitor visit) {
  const auto passWhole = [&](DOMNode* pNode) {
    for (; pNode != nullptr; pNode = dom::NextSibling(*pNode)) {
      if (Matches(step, *pNode, pNode->getNodeType()) && !visit(*pNode)) return false;
      if (!WalkBelow(step, *pNode, visit, nullptr)) return false;
    }
    return true;
  };
  for (DOMNode* pUp = &from; pUp != nullptr; pUp = dom::ParentOrElement(*pUp)) {
    DOMNode* pElement = IsAttribute(*pUp) ? dom::ParentOrElement(*pUp) : nullptr;
    DOMNode* pNext = pElement != nullptr ? dom::FirstChild(*pElement) : dom::NextSibling(*pUp);
    if (!passWhole(pNext)) return false;
  }
  return true;
}

// Each subtree from its last node to its top.
bool CPlainEvaluation::WalkPreceding(const CStep& step, DOMNode& from, CVisitor visit) {
  const auto lastBelow = [](DOMNode* pNode) {
    while (DOMNode* pLast = dom::LastChild(*pNode)) pNode = pLast;
    return pNode;
  };
  for (DOMNode* pUp = &from; pUp != nullptr; pUp = dom::ParentOrElement(*pUp)) {
    DOMNode* pTop = IsAttribute(*pUp) ? nullptr : dom::PreviousSibling(*pUp);
    for (; pTop != nullptr; pTop = dom::PreviousSibling(*pTop)) {
      for (DOMNode* pNode = lastBelow(pTop);;) {
        if (Matches(step, *pNode, pNode->getNodeType()) && !visit(*pNode)) return false;
        if (pNode == pTop) break;
        DOMNode* pPrevious = dom::PreviousSibling(*pNode);
        pNode = pPrevious != nullptr ? lastBelow(pPrevious) : dom::Parent(*pNode);
      }
    }
  }
  return true;
}

}  // namespace plain
