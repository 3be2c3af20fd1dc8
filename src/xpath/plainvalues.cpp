#include <cmath>

#include "xpath/nodetext.h"
#include "xpath/plainevaluation.h"

using xercesc::DOMNode;

namespace plain {

namespace {

// From here on Xalan-C ends the evaluation, or has integers of its own.
constexpr double kTooLarge = 1e80;
constexpr double kMostWhole = 1e15;

bool IsWhole(double number) {
  return std::fabs(number) < kMostWhole && number == std::trunc(number);
}

// To the nearest whole number; of two, as Xalan-C does, to the greater one, never to -0.
double Rounded(double number) {
  if (!(std::fabs(number) < kMostWhole)) return number;
  if (number > 0) return std::floor(number + 0.5);
  const double whole = std::trunc(number);
  return (number - whole == -0.5 ? whole : std::trunc(number - 0.5)) + 0.0;
}

// NaN has no sign here.
double Negated(double number) { return std::isnan(number) ? number : -number; }

}  // namespace

// -- Of the form -------------------------------------------------------------------------

std::optional<std::u16string> CPlainEvaluation::Text() {
  std::u16string buffer;
  const std::u16string_view text = Text(m_Form.Expression(), {m_Context}, buffer);
  if (m_GaveUp) return std::nullopt;
  return std::u16string(text);
}

std::optional<double> CPlainEvaluation::Number() {
  const double number = Number(m_Form.Expression(), {m_Context});
  if (m_GaveUp) return std::nullopt;
  return number;
}

std::optional<bool> CPlainEvaluation::Truth() {
  const bool truth = Truth(m_Form.Expression(), {m_Context});
  if (m_GaveUp) return std::nullopt;
  return truth;
}

// -- Of nodes --------------------------------------------------------------------------

std::u16string_view CPlainEvaluation::TextOf(const DOMNode& node, std::u16string& buffer) {
  const auto text = StringValue(node, buffer);
  if (!text) GiveUp();
  return text.value_or(u"");
}

double CPlainEvaluation::Limited(double number) {
  if (!(std::fabs(number) >= kTooLarge)) return number;
  GiveUp();
  return 0;
}

double CPlainEvaluation::NumberIn(std::u16string_view text) {
  return Limited(ToNumber(text).value_or(kTooLarge));
}

bool CPlainEvaluation::Exists(const CExpression& expression, const CFocus& focus) {
  bool isFound = false;
  const auto find = [&](DOMNode&) { return !(isFound = true); };
  for (const CPath& path : expression.m_Paths) {
    if (!isFound && !m_GaveUp) Visit(path, focus, find);
  }
  return isFound;
}

DOMNode* CPlainEvaluation::First(const CExpression& expression, const CFocus& focus) {
  if (expression.m_Paths.size() == 1 && expression.m_Paths.front().m_IsInOrder) {
    DOMNode* pFirst = nullptr;
    const auto take = [&](DOMNode& node) { return (pFirst = &node) == nullptr; };
    Visit(expression.m_Paths.front(), focus, take);
    return pFirst;
  }
  const CNodes nodes = Select(expression, focus, 1);
  return nodes.m_Nodes.empty() ? nullptr : nodes.m_Nodes.front();
}

void CPlainEvaluation::ForAll(const CExpression& expression, const CFocus& focus, CVisitor visit) {
  if (expression.m_Paths.size() == 1 && expression.m_Paths.front().m_IsInOrder) {
    Visit(expression.m_Paths.front(), focus, visit);
  } else {
    for (DOMNode* pNode : Select(expression, focus, static_cast<std::size_t>(-1)).m_Nodes)
      visit(*pNode);
  }
}

double CPlainEvaluation::Sum(const CExpression& expression, const CFocus& focus) {
  double sum = 0;
  std::u16string buffer;
  ForAll(expression, focus, [&](DOMNode& node) {
    sum += NumberIn(TextOf(node, buffer));
    return !m_GaveUp;
  });
  return Limited(sum);
}

// -- Values ------------------------------------------------------------------------------

bool CPlainEvaluation::Truth(const CExpression& expression, const CFocus& focus) {
  const auto& arguments = expression.m_Arguments;
  const auto isTrue = [&](const CExpression& argument) { return Truth(argument, focus); };
  std::u16string buffer;
  std::u16string other;
  switch (expression.m_Kind) {
    case EKind::kNodes:
      return Exists(expression, focus);
    case EKind::kOr:
      return isTrue(arguments[0]) || isTrue(arguments[1]);
    case EKind::kAnd:
      return isTrue(arguments[0]) && isTrue(arguments[1]);
    case EKind::kNot:
      return !isTrue(arguments[0]);
    case EKind::kToTruth:
      return isTrue(arguments[0]);
    case EKind::kTrue:
      return true;
    case EKind::kFalse:
      return false;
    case EKind::kContains:
      return Text(arguments[0], focus, buffer).find(Text(arguments[1], focus, other)) !=
             std::u16string_view::npos;
    case EKind::kStartsWith:
      return Text(arguments[0], focus, buffer).starts_with(Text(arguments[1], focus, other));
    default:
      break;
  }
  if (expression.m_Type == EType::kTruth) return Compare(expression, focus);
  if (expression.m_Type == EType::kText) return !Text(expression, focus, buffer).empty();
  const double number = Number(expression, focus);
  return number != 0 && !std::isnan(number);
}

double CPlainEvaluation::Number(const CExpression& expression, const CFocus& focus) {
  const auto& arguments = expression.m_Arguments;
  std::u16string buffer;
  switch (expression.m_Kind) {
    case EKind::kNumber:
      return expression.m_Number;
    case EKind::kPosition:
      return static_cast<double>(focus.m_Position);
    case EKind::kLast:
      return static_cast<double>(focus.m_Size);
    case EKind::kCount: {
      double count = 0;
      ForAll(arguments[0], focus, [&](DOMNode&) { return ++count > 0; });
      return count;
    }
    case EKind::kSum:
      return Sum(arguments[0], focus);
    case EKind::kFloor:
      return std::floor(Number(arguments[0], focus));
    case EKind::kCeiling:
      return std::ceil(Number(arguments[0], focus));
    case EKind::kRound:
      return Rounded(Number(arguments[0], focus));
    case EKind::kNegate:
      return Negated(Number(arguments[0], focus));
    case EKind::kToNumber:
      return Number(arguments[0], focus);
    case EKind::kLength:
      return static_cast<double>(Text(arguments[0], focus, buffer).size());
    default:
      break;
  }
  if (expression.m_Type == EType::kTruth) return Truth(expression, focus) ? 1 : 0;
  if (expression.m_Type == EType::kNumber) return Calculate(expression, focus);
  return NumberIn(Text(expression, focus, buffer));
}

double CPlainEvaluation::Calculate(const CExpression& expression, const CFocus& focus) {
  const double left = Number(expression.m_Arguments[0], focus);
  const double right = Number(expression.m_Arguments[1], focus);
  switch (expression.m_Kind) {
    case EKind::kPlus:
      return Limited(left + right);
    case EKind::kMinus:
      return Limited(left - right);
    case EKind::kTimes:
      return Limited(left * right);
    case EKind::kDivide:
      return Limited(left / right);
    default:
      break;
  }
  if (!IsWhole(left) || !IsWhole(right) || right == 0) {
    GiveUp();
    return 0;
  }
  return static_cast<double>(static_cast<long>(left) % static_cast<long>(right));
}

}  // namespace plain
