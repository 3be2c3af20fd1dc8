#include <algorithm>

#include "dom/look.h"
#include "xpath/plainevaluation.h"

using xercesc::DOMNode;

namespace plain {

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
