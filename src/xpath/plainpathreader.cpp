#include <algorithm>
#include <cmath>
#include <utility>
#include <xercesc/util/XMLChar.hpp>

#include "xpath/plainreader.h"

namespace plain {

namespace {

constexpr int kMostSteps = 48;

constexpr std::pair<std::u16string_view, EAxis> kAxes[] = {
    {u"self", EAxis::kSelf},
    {u"parent", EAxis::kParent},
    {u"ancestor", EAxis::kAncestor},
    {u"ancestor-or-self", EAxis::kAncestorOrSelf},
    {u"child", EAxis::kChild},
    {u"attribute", EAxis::kAttribute},
    {u"following-sibling", EAxis::kFollowingSibling},
    {u"preceding-sibling", EAxis::kPrecedingSibling},
    {u"following", EAxis::kFollowing},
    {u"preceding", EAxis::kPreceding},
    {u"descendant", EAxis::kDescendant},
    {u"descendant-or-self", EAxis::kDescendantOrSelf}};

bool ReadAxis(std::u16string_view name, EAxis& axis) {
  const auto* pFound =
      std::ranges::find(kAxes, name, &std::pair<std::u16string_view, EAxis>::first);
  if (pFound == std::end(kAxes)) return false;
  axis = pFound->second;
  return true;
}

bool LooksUp(EAxis axis) {
  constexpr EAxis kUp[] = {
      EAxis::kParent,           EAxis::kAncestor,  EAxis::kAncestorOrSelf, EAxis::kFollowingSibling,
      EAxis::kPrecedingSibling, EAxis::kFollowing, EAxis::kPreceding};
  return std::ranges::find(kUp, axis) != std::end(kUp);
}

// Words that are operators elsewhere, and ends that Xalan-C may take for other tokens,
// are left to it.
bool IsPlainName(std::u16string_view name) {
  constexpr std::u16string_view kWords[] = {u"or", u"and", u"div", u"mod"};
  return xercesc::XMLChar1_0::isValidNCName(name.data(), name.size()) && name.back() != u'-' &&
         name.back() != u'.' && std::ranges::find(kWords, name) == std::end(kWords);
}

std::optional<ETest> KindOfNode(std::u16string_view name) {
  if (name == u"node") return ETest::kNode;
  if (name == u"text") return ETest::kText;
  if (name == u"comment") return ETest::kComment;
  if (name == u"processing-instruction") return ETest::kInstruction;
  return std::nullopt;
}

bool IsPosition(double number) {
  return number >= 1 && number < 1e9 && number == std::floor(number);
}

// Where a predicate can stop looking.
void Bound(CPredicate& predicate) {
  const CExpression& expression = predicate.m_Expression;
  const auto isNumber = [](const CExpression& e) {
    return e.m_Kind == EKind::kNumber && IsPosition(e.m_Number);
  };
  const auto set = [&](double most, bool isExact) {
    if (most < 1) return;
    predicate.m_Most = static_cast<std::size_t>(most);
    predicate.m_IsExact = isExact;
  };
  if (isNumber(expression)) return set(expression.m_Number, true);
  if (expression.m_Arguments.size() != 2) return;
  const CExpression& left = expression.m_Arguments[0];
  const CExpression& right = expression.m_Arguments[1];
  if (left.m_Kind != EKind::kPosition || !isNumber(right)) return;
  if (expression.m_Kind == EKind::kEqual) set(right.m_Number, true);
  if (expression.m_Kind == EKind::kLessOrEqual) set(right.m_Number, false);
  if (expression.m_Kind == EKind::kLess) set(right.m_Number - 1, false);
}

// The two slashes are short for a step to every node. With the one after it, if that
// is to children and counts none, it is the same as one step to the descendants.
void AppendAfterTwoSlashes(CPath& path, CStep&& step) {
  if (step.m_Axis == EAxis::kChild) {
    step.m_Axis = step.m_Counts ? EAxis::kChildOfEach : EAxis::kDescendant;
  } else {
    path.m_Steps.push_back({.m_Axis = EAxis::kDescendantOrSelf, .m_Tests = {CTest{}}});
  }
  path.m_Steps.push_back(std::move(step));
}

// See CPath::m_IsInOrder: up, then down in steps to one depth, then once to any depth.
bool IsInOrder(const CPath& path) {
  if (path.m_Start == EStart::kNodes) return false;
  int phase = 0;
  for (const CStep& step : path.m_Steps) {
    const EAxis axis = step.m_Axis;
    if (axis == EAxis::kSelf || (axis == EAxis::kParent && phase == 0)) continue;
    if (axis == EAxis::kChild && phase <= 1) {
      phase = 1;
    } else if (axis >= EAxis::kDescendant && phase <= 1) {
      phase = 2;
    } else if (axis == EAxis::kAttribute && phase <= 2) {
      phase = 3;
    } else {
      return false;
    }
  }
  return true;
}

}  // namespace

bool CReader::ReadPath(CPath& path) {
  const bool isAbsolute = Take(u"/");
  if (isAbsolute) {
    path.m_Start = EStart::kRoot;
    path.m_IsInOrder = m_Form.m_LooksUp = true;
    if (AtEnd() || IsNext(u")")) return true;
  }
  return ReadSteps(path, isAbsolute);
}

bool CReader::ReadSteps(CPath& path, bool isAfterSlash) {
  do {
    const bool isAfterTwo = isAfterSlash && Take(u"/");
    isAfterSlash = true;
    CStep step;
    if (++m_Steps > kMostSteps || !ReadStep(step)) return false;
    if (isAfterTwo) {
      AppendAfterTwoSlashes(path, std::move(step));
    } else {
      path.m_Steps.push_back(std::move(step));
    }
  } while (Take(u"/"));
  path.m_IsInOrder = IsInOrder(path);
  return true;
}

bool CReader::ReadStep(CStep& step) {
  step.m_Tests.resize(1);
  if (Take(u".")) {
    step.m_Axis = EAxis::kSelf;
    return true;
  }
  if (Take(u"..")) {
    step.m_Axis = EAxis::kParent;
    m_Form.m_LooksUp = true;
    return true;
  }
  if (Take(u"@")) step.m_Axis = EAxis::kAttribute;
  if (!ReadTest(step) || !ReadPredicates(step.m_Predicates)) return false;
  m_Form.m_LooksUp = m_Form.m_LooksUp || LooksUp(step.m_Axis);
  for (const CPredicate& predicate : step.m_Predicates) {
    const CExpression& expression = predicate.m_Expression;
    step.m_Counts = step.m_Counts || expression.m_Counts || expression.m_Type == EType::kNumber;
    step.m_AsksForLast = step.m_AsksForLast || expression.m_AsksForLast;
  }
  return true;
}

// A name token may begin with the axis.
bool CReader::ReadTest(CStep& step) {
  CTest& test = step.m_Tests.front();
  std::u16string_view name;
  if (IsNextKind(EToken::kName)) name = m_Tokens[m_At++].m_Text;
  const std::size_t axisEnd = name.find(u"::");
  if (axisEnd != name.npos) {
    const bool isShort = step.m_Axis == EAxis::kAttribute;
    if (isShort || !ReadAxis(name.substr(0, axisEnd), step.m_Axis)) return false;
    name.remove_prefix(axisEnd + 2);
  }
  if (Take(u"(")) {
    const auto kind = KindOfNode(name);
    test.m_Kind = kind.value_or(ETest::kNode);
    if (test.m_Kind == ETest::kInstruction && IsNextKind(EToken::kLiteral)) {
      CExpression target;
      if (!ReadLiteral(target)) return false;
      test.m_Local = target.m_Text;
    }
    // To Xalan-C "@node()" is declarations, too.
    return kind && step.m_Axis != EAxis::kAttribute && Take(u")");
  }
  test.m_Kind = ETest::kName;
  return name.empty() ? Take(u"*") : ReadName(name, test);
}

bool CReader::ReadName(std::u16string_view name, CTest& test) {
  const std::size_t colon = name.find(u':');
  test.m_Namespace = kNoNamespace;
  if (colon != name.npos) {
    const std::u16string_view prefix = name.substr(0, colon);
    if (!IsPlainName(prefix)) return false;
    test.m_Namespace = NumberOf(prefix);
    name.remove_prefix(colon + 1);
    if (name.empty()) return IsNext(u"*") && m_Tokens[m_At++].m_Text.data() == name.data();
  }
  test.m_Local = name;
  return IsPlainName(name);
}

int CReader::NumberOf(std::u16string_view prefix) {
  auto& prefixes = m_Form.m_Prefixes;
  const auto at = std::ranges::find(prefixes, prefix) - prefixes.begin();
  if (at == std::ssize(prefixes)) prefixes.emplace_back(prefix);
  return static_cast<int>(at);
}

bool CReader::ReadPredicates(std::vector<CPredicate>& predicates) {
  while (Take(u"[")) {
    CPredicate& predicate = predicates.emplace_back();
    if (predicates.size() > CStep::kMostPredicates || !ReadExpression(predicate.m_Expression) ||
        !Take(u"]")) {
      return false;
    }
    Bound(predicate);
  }
  return true;
}

}  // namespace plain
