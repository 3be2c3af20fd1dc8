#include <algorithm>

#include "dom/look.h"
#include "xpath/nodetext.h"
#include "xpath/plainevaluation.h"

using xercesc::DOMNode;

namespace plain {

namespace {

bool IsAttribute(const DOMNode& node) { return node.getNodeType() == DOMNode::ATTRIBUTE_NODE; }

bool AreEqual(const XMLCh* pText, std::u16string_view other) {
  for (const char16_t unit : other) {
    if (*pText++ != unit) return false;
  }
  return *pText == 0;
}

// Attributes have no children here.
// Fetches a sibling, and its first child where that lies as far from it as the node's own:
// documents lie in memory as they were read.
void FetchNext(const DOMNode& node, DOMNode::NodeType type, const DOMNode& next) {
  dom::Fetch(next);
  const DOMNode* pChild = dom::FirstChildAs(node, type);
  if (pChild != nullptr) dom::Fetch(*pChild, dom::Distance(node, next));
}

DOMNode* FirstBelow(const DOMNode& node) {
  return IsAttribute(node) ? nullptr : dom::FirstChild(node);
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
      return type == DOMNode::PROCESSING_INSTRUCTION_NODE;
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

// -- Axes ------------------------------------------------------------------------------

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

// -- Predicates --------------------------------------------------------------------------

bool CPlainEvaluation::Holds(const CPredicate& predicate, const CFocus& focus) {
  if (predicate.m_IsExact) return focus.m_Position == predicate.m_Most;
  const CExpression& expression = predicate.m_Expression;
  if (expression.m_Type != EType::kNumber) return Truth(expression, focus);
  return Number(expression, focus) == static_cast<double>(focus.m_Position);
}

bool CPlainEvaluation::Apply(const CStep& step, DOMNode& from, CVisitor visit, CDepth* pDepth) {
  if (step.m_Axis == EAxis::kChildOfEach) return ApplyToEach(step, from, visit, pDepth);
  if (step.m_Predicates.empty()) return Walk(step, from, visit, pDepth);
  if (step.m_AsksForLast) return ApplyToList(step, from, visit);
  return ApplyCounting(step, from, visit, pDepth);
}

bool CPlainEvaluation::ApplyCounting(const CStep& step, DOMNode& from, CVisitor visit,
                                     CDepth* pDepth) {
  std::size_t counts[CStep::kMostPredicates] = {};
  bool goesOn = true;
  const auto filter = [&](DOMNode& node) {
    bool isLast = false;
    std::size_t* pCount = counts;
    for (const CPredicate& predicate : step.m_Predicates) {
      const std::size_t position = ++*pCount++;
      isLast = isLast || position == predicate.m_Most;
      if (!Holds(predicate, {node, position})) return !isLast && !m_GaveUp;
    }
    goesOn = visit(node) && !m_GaveUp;
    return goesOn && !isLast;
  };
  Walk(step, from, filter, pDepth);
  return goesOn && !m_GaveUp;
}

void CPlainEvaluation::Filter(const std::vector<CPredicate>& predicates,
                              std::vector<DOMNode*>& nodes) {
  for (const CPredicate& predicate : predicates) {
    const std::size_t size = nodes.size();
    std::size_t position = 0;
    std::erase_if(nodes, [&](DOMNode* pNode) {
      return !Holds(predicate, {*pNode, ++position, size});
    });
  }
}

bool CPlainEvaluation::ApplyToList(const CStep& step, DOMNode& from, CVisitor visit) {
  std::vector<DOMNode*> nodes;
  const auto collect = [&](DOMNode& node) {
    nodes.push_back(&node);
    return true;
  };
  Walk(step, from, collect, nullptr);
  Filter(step.m_Predicates, nodes);
  return !m_GaveUp && std::ranges::all_of(nodes, [&](DOMNode* p) { return visit(*p); });
}

// Chooses among the children of each node before it goes down to them.
bool CPlainEvaluation::ApplyToEach(const CStep& step, DOMNode& from, CVisitor visit,
                                   CDepth* pDepth) {
  struct CLevel {
    DOMNode* m_pChild;
    std::size_t m_Begin;  // of its chosen siblings
    std::size_t m_Next;   // of these
  };
  CDepth unused;
  CDepth& depth = pDepth == nullptr ? unused : *pDepth;
  std::vector<DOMNode*> chosen;
  std::vector<CLevel> open;
  const auto choose = [&](DOMNode& node) {
    chosen.push_back(&node);
    return true;
  };
  const auto enter = [&](DOMNode& node) {
    DOMNode* pChild = FirstBelow(node);
    if (pChild == nullptr) return true;
    open.push_back({pChild, chosen.size(), chosen.size()});
    return step.m_AsksForLast ? ApplyToList(step, node, choose)
                              : ApplyCounting(step, node, choose, nullptr);
  };
  if (!enter(from)) return false;
  while (!open.empty()) {
    CLevel& level = open.back();
    DOMNode* pNode = level.m_pChild;
    if (pNode == nullptr) {
      chosen.resize(level.m_Begin);
      open.pop_back();
      continue;
    }
    level.m_pChild = dom::NextSibling(*pNode);
    depth.m_Now = static_cast<long>(open.size());
    depth.m_Least = std::min(depth.m_Least, depth.m_Now);
    if (level.m_Next < chosen.size() && chosen[level.m_Next] == pNode) {
      ++level.m_Next;
      if (!visit(*pNode)) return false;
    }
    if (!enter(*pNode)) return false;
  }
  return true;
}

// -- Paths -------------------------------------------------------------------------------

bool CPlainEvaluation::Run(const CStep* pStep, const CStep* pEnd, DOMNode& from, CVisitor visit,
                           CDepth* pDepth) {
  if (pStep == pEnd) return visit(from);
  CDepth* pOwn = pStep->m_Axis >= EAxis::kDescendant ? pDepth : nullptr;
  if (pStep + 1 == pEnd) return Apply(*pStep, from, visit, pOwn);
  const auto next = [&](DOMNode& node) { return Run(pStep + 1, pEnd, node, visit, pDepth); };
  return Apply(*pStep, from, next, pOwn);
}

bool CPlainEvaluation::Visit(const CPath& path, const CFocus& focus, CVisitor visit) {
  const CStep* pStep = path.m_Steps.data();
  const CStep* pEnd = pStep + path.m_Steps.size();
  switch (path.m_Start) {
    case EStart::kContext:
      return Run(pStep, pEnd, focus.m_Node, visit, nullptr);
    case EStart::kRoot:
      return Run(pStep, pEnd, *m_pRoot, visit, nullptr);
    case EStart::kNodes:
      break;
  }
  const CNodes start = Start(path, focus);
  return std::ranges::all_of(start.m_Nodes,
                             [&](DOMNode* p) { return Run(pStep, pEnd, *p, visit, nullptr); });
}

}  // namespace plain
