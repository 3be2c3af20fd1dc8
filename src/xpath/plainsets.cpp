#include <algorithm>
#include <limits>
#include <utility>

#include "dom/look.h"
#include "xpath/documentorder.h"
#include "xpath/nodetable.h"
#include "xpath/plainevaluation.h"

using xercesc::DOMNode;

namespace plain {

namespace {

constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

bool IsDeep(EAxis axis) { return axis >= EAxis::kDescendant; }

bool IsReverse(EAxis axis) {
  return axis == EAxis::kAncestor || axis == EAxis::kAncestorOrSelf ||
         axis == EAxis::kPrecedingSibling || axis == EAxis::kPreceding;
}

bool IsSibling(EAxis axis) {
  return axis == EAxis::kFollowingSibling || axis == EAxis::kPrecedingSibling;
}

bool KeepsDepth(EAxis axis) {
  return axis == EAxis::kSelf || axis == EAxis::kChild || axis == EAxis::kAttribute;
}

// Where the steps end that, from nodes of which none is below another, come to their
// results in document order: to one depth, once to any depth, and no further down.
const CStep* EndOfOrder(const CStep* pStep, const CStep* pEnd) {
  while (pStep != pEnd && KeepsDepth(pStep->m_Axis)) ++pStep;
  if (pStep == pEnd || !IsDeep(pStep->m_Axis)) return pStep;
  const auto staysThere = [](const CStep& step) {
    return step.m_Axis == EAxis::kSelf || step.m_Axis == EAxis::kAttribute;
  };
  return std::find_if_not(pStep + 1, pEnd, staysThere);
}

// Follows how nodes hang while a walk comes to them in document order.
class CShape {
 public:
  explicit CShape(CNodes& nodes) : m_Nodes(nodes) {}

  CDepth* Begin() {
    m_Depth = {0, -1};
    return &m_Depth;
  }
  void Add(DOMNode& node) {
    if (m_Nodes.m_Nodes.empty()) {
      m_Last = m_Depth.m_Now;
    } else if (m_Depth.m_Least > m_Last) {
      m_Nodes.m_IsFlat = m_Nodes.m_IsLevel = false;
    } else if (m_Depth.m_Now != m_Last) {
      m_Nodes.m_IsLevel = false;
      m_Last = m_Depth.m_Now;
    }
    m_Depth.m_Least = std::numeric_limits<long>::max();
    m_Nodes.m_Nodes.push_back(&node);
  }

 private:
  CNodes& m_Nodes;
  CDepth m_Depth;
  long m_Last = 0;
};

void Sort(CNodes& set) {
  set.m_IsFlat = SortInDocumentOrder(set.m_Nodes);
  set.m_IsLevel = set.m_Nodes.size() < 2;
}

// Drops what is below another node of the set. Each node above is looked at once.
void KeepOutermost(CNodes& set) {
  enum class EPlace : std::uint8_t { kUnknown, kOutside, kInside };
  CNodeTable<EPlace> places;
  const auto isInside = [&](DOMNode* pNode) {
    const DOMNode* pUp = pNode;
    EPlace place = EPlace::kUnknown;
    while (place == EPlace::kUnknown && (pUp = dom::ParentOrElement(*pUp)) != nullptr)
      place = places[pUp];
    if (place == EPlace::kUnknown) place = EPlace::kOutside;
    for (const DOMNode* p = dom::ParentOrElement(*pNode); p != pUp; p = dom::ParentOrElement(*p))
      places[p] = place;
    places[pNode] = EPlace::kInside;  // so is what follows below it
    return place == EPlace::kInside;
  };
  std::erase_if(set.m_Nodes, isInside);
  set.m_IsFlat = true;
  set.m_IsLevel = false;
}

bool IsBelow(const DOMNode& node, const DOMNode& above) {
  const DOMNode* pUp = dom::ParentOrElement(node);
  while (pUp != nullptr && pUp != &above) pUp = dom::ParentOrElement(*pUp);
  return pUp != nullptr;
}

// What follows any node of a set follows the one that ends first; that is the first one, or
// hangs in it.
void KeepFirstToEnd(CNodes& set) {
  DOMNode* pFirst = set.m_Nodes.front();
  for (DOMNode* pNode : set.m_Nodes) {
    if (pNode == pFirst) continue;
    if (!IsBelow(*pNode, *pFirst)) break;
    pFirst = pNode;
  }
  set.m_Nodes.assign(1, pFirst);
}

// What precedes any node of a set precedes the last one.
void KeepLast(CNodes& set) { set.m_Nodes.assign(1, set.m_Nodes.back()); }

void DropRepeated(CNodes& set) {
  set.m_Nodes.erase(std::unique(set.m_Nodes.begin(), set.m_Nodes.end()), set.m_Nodes.end());
}

}  // namespace

std::optional<std::vector<DOMNode*>> CPlainEvaluation::Select(std::size_t most) {
  if (m_Form.Expression().m_Type != EType::kNodes) return std::nullopt;
  CNodes set = Select(m_Form.Expression(), {m_Context}, most);
  if (m_GaveUp) return std::nullopt;
  return std::move(set.m_Nodes);
}

CNodes CPlainEvaluation::Select(const CExpression& expression, const CFocus& focus,
                                std::size_t most) {
  if (expression.m_Paths.size() == 1) return Select(expression.m_Paths.front(), focus, most);
  CNodes all;
  for (const CPath& path : expression.m_Paths) {
    const CNodes set = Select(path, focus, kAll);
    all.m_Nodes.insert(all.m_Nodes.end(), set.m_Nodes.begin(), set.m_Nodes.end());
  }
  Sort(all);
  if (all.m_Nodes.size() > most) all.m_Nodes.resize(most);
  return all;
}

CNodes CPlainEvaluation::Start(const CPath& path, const CFocus& focus) {
  if (path.m_Start == EStart::kContext) return {{&focus.m_Node}};
  if (path.m_Start == EStart::kRoot) return {{m_pRoot}};
  const bool isOne = !path.m_Predicates.empty() && path.m_Predicates.front().m_Most != 0;
  const std::size_t most = isOne ? path.m_Predicates.front().m_Most : kAll;
  CNodes set = Select(path.m_From.front(), focus, most);
  Filter(path.m_Predicates, set.m_Nodes);
  return set;
}

CNodes CPlainEvaluation::Select(const CPath& path, const CFocus& focus, std::size_t most) {
  CNodes set = Start(path, focus);
  const CStep* pEnd = path.m_Steps.data() + path.m_Steps.size();
  for (const CStep* pStep = path.m_Steps.data(); pStep != pEnd && !m_GaveUp;) {
    const bool isForAll = !pStep->m_Counts || pStep->m_Axis == EAxis::kChildOfEach;
    if (!set.m_IsFlat && IsDeep(pStep->m_Axis) && isForAll) KeepOutermost(set);
    const CStep* pNext = set.m_IsFlat ? EndOfOrder(pStep, pEnd) : pStep;
    if (pNext != pStep) {
      RunInOrder(pStep, pNext, set, pNext == pEnd ? most : kAll);
    } else {
      TakeStep(*pStep, set);
      pNext = pStep + 1;
    }
    pStep = pNext;
  }
  if (set.m_Nodes.size() > most) set.m_Nodes.resize(most);
  return set;
}

void CPlainEvaluation::RunInOrder(const CStep* pStep, const CStep* pEnd, CNodes& set,
                                  std::size_t most) {
  CNodes next;
  CShape shape(next);
  next.m_IsLevel = set.m_IsLevel;
  const auto add = [&](DOMNode& node) {
    shape.Add(node);
    return next.m_Nodes.size() < most;
  };
  for (DOMNode* pNode : set.m_Nodes) {
    if (!Run(pStep, pEnd, *pNode, add, shape.Begin())) break;
  }
  const auto isOutOfSight = [](const CStep& step) {
    return IsDeep(step.m_Axis) && step.m_Axis != EAxis::kChildOfEach && step.m_AsksForLast;
  };
  const bool isDeep = std::any_of(pStep, pEnd, [](const CStep& s) { return IsDeep(s.m_Axis); });
  if (!isDeep) next.m_IsFlat = true, next.m_IsLevel = set.m_IsLevel;
  if (std::any_of(pStep, pEnd, isOutOfSight)) next.m_IsFlat = next.m_IsLevel = false;
  if ((pEnd - 1)->m_Axis == EAxis::kAttribute) next.m_IsFlat = true;
  set = std::move(next);
}

// -- A step by itself -----------------------------------------------------------------

void CPlainEvaluation::TakeStep(const CStep& step, CNodes& set) {
  if (IsSibling(step.m_Axis))
    std::erase_if(set.m_Nodes, [](const DOMNode* p) { return IsAttribute(*p); });
  if (set.m_Nodes.empty()) return;
  if (step.m_Axis == EAxis::kFollowing && !step.m_Counts) KeepFirstToEnd(set);
  if (step.m_Axis == EAxis::kPreceding && !step.m_Counts) KeepLast(set);
  if (set.m_Nodes.size() == 1) return TakeFromOne(step, set);
  const bool isSimpleParent = step.m_Axis == EAxis::kParent && set.m_IsLevel;
  const bool isNext = IsSibling(step.m_Axis) && set.m_IsLevel && step.m_Predicates.size() == 1 &&
                      step.m_Predicates.front().m_IsExact;
  if (step.m_Counts || isSimpleParent) {
    TakeEach(step, set);
  } else {
    TakeOnce(step, set);
  }
  // What stands at one depth has its parents, or its next siblings, in its own order.
  if (isSimpleParent || isNext) {
    DropRepeated(set);
  } else if (step.m_Axis != EAxis::kSelf && step.m_Axis != EAxis::kAttribute) {
    Sort(set);
  }
}

void CPlainEvaluation::TakeEach(const CStep& step, CNodes& set) {
  std::vector<DOMNode*> next;
  const auto add = [&](DOMNode& node) {
    next.push_back(&node);
    return true;
  };
  for (DOMNode* pNode : set.m_Nodes) Apply(step, *pNode, add, nullptr);
  set.m_Nodes.swap(next);
}

void CPlainEvaluation::TakeFromOne(const CStep& step, CNodes& set) {
  TakeEach(step, set);
  if (IsReverse(step.m_Axis)) std::ranges::reverse(set.m_Nodes);
  set.m_IsFlat = step.m_Axis == EAxis::kParent || IsSibling(step.m_Axis);
  set.m_IsLevel = set.m_IsFlat;
}

// Where no predicate counts, what was passed from one node need not be passed again from
// another.
void CPlainEvaluation::TakeOnce(const CStep& step, CNodes& set) {
  std::vector<DOMNode*> next;
  const auto add = [&](DOMNode& node) {
    next.push_back(&node);
    return true;
  };
  CNodeTable<bool> passed;
  const auto isFirst = [&](const DOMNode* pNode) {
    return pNode != nullptr && !std::exchange(passed[pNode], true);
  };
  const CStep alone{
      .m_Axis = EAxis::kSelf, .m_Tests = step.m_Tests, .m_Predicates = step.m_Predicates};
  if (step.m_Axis == EAxis::kPrecedingSibling) std::ranges::reverse(set.m_Nodes);
  for (DOMNode* pNode : set.m_Nodes) {
    if (step.m_Axis == EAxis::kAncestor || step.m_Axis == EAxis::kAncestorOrSelf) {
      DOMNode* pUp = step.m_Axis == EAxis::kAncestor ? dom::ParentOrElement(*pNode) : pNode;
      for (; isFirst(pUp); pUp = dom::ParentOrElement(*pUp)) {
        Apply(alone, *pUp, add, nullptr);
      }
    } else if (!IsSibling(step.m_Axis) || isFirst(dom::ParentOrElement(*pNode))) {
      Apply(step, *pNode, add, nullptr);
    }
  }
  set.m_Nodes.swap(next);
}

}  // namespace plain
