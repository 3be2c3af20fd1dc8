#include <algorithm>
#include <cmath>
#include <functional>

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

template <class Value>
bool Is(EKind kind, const Value& left, const Value& right) {
  switch (kind) {
    case EKind::kEqual:
      return left == right;
    case EKind::kUnequal:
      return left != right;
    case EKind::kLess:
      return left < right;
    case EKind::kLessOrEqual:
      return left <= right;
    case EKind::kGreater:
      return left > right;
    default:
      return left >= right;
  }
}

bool IsEquality(EKind kind) { return kind == EKind::kEqual || kind == EKind::kUnequal; }

// The same comparison with its sides exchanged.
EKind Turned(EKind kind) {
  switch (kind) {
    case EKind::kLess:
      return EKind::kGreater;
    case EKind::kLessOrEqual:
      return EKind::kGreaterOrEqual;
    case EKind::kGreater:
      return EKind::kLess;
    case EKind::kGreaterOrEqual:
      return EKind::kLessOrEqual;
    default:
      return kind;
  }
}

}  // namespace

// -- Of the form -------------------------------------------------------------------------

std::optional<std::u16string> CPlainEvaluation::Text() {
  const CExpression& expression = m_Form.Expression();
  std::u16string text;
  if (expression.m_Type == EType::kTruth) {
    text = Truth(expression, {m_Context}) ? u"true" : u"false";
  } else if (expression.m_Type == EType::kNumber) {
    text = ToText(Limited(Number(expression, {m_Context})));
  } else {
    std::u16string buffer;
    text = Text(expression, {m_Context}, buffer);
  }
  if (m_GaveUp) return std::nullopt;
  return text;
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
  if (std::fabs(number) >= kTooLarge) GiveUp();
  return number;
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

double CPlainEvaluation::Count(const CExpression& expression, const CFocus& focus) {
  std::size_t count = 0;
  if (expression.m_Paths.size() == 1 && expression.m_Paths.front().m_IsInOrder) {
    const auto add = [&](DOMNode&) { return ++count != 0; };
    Visit(expression.m_Paths.front(), focus, add);
  } else {
    count = Select(expression, focus, static_cast<std::size_t>(-1)).m_Nodes.size();
  }
  return static_cast<double>(count);
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
  std::u16string buffer;
  switch (expression.m_Kind) {
    case EKind::kNumber:
      return expression.m_Number;
    case EKind::kPosition:
      return static_cast<double>(focus.m_Position);
    case EKind::kLast:
      return static_cast<double>(focus.m_Size);
    case EKind::kCount:
      return Count(expression.m_Arguments[0], focus);
    case EKind::kToNumber:
      return Number(expression.m_Arguments[0], focus);
    case EKind::kLength:
      return static_cast<double>(Text(expression.m_Arguments[0], focus, buffer).size());
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

std::u16string_view CPlainEvaluation::Text(const CExpression& expression, const CFocus& focus,
                                           std::u16string& buffer) {
  switch (expression.m_Kind) {
    case EKind::kLiteral:
      return expression.m_Text;
    case EKind::kToText:
      return Text(expression.m_Arguments[0], focus, buffer);
    case EKind::kNormalized:
      return Normalized(Text(expression.m_Arguments[0], focus, buffer), buffer);
    case EKind::kName:
    case EKind::kLocalName:
      return Name(expression, focus);
    default:
      break;
  }
  const DOMNode* pNode = First(expression, focus);
  return pNode == nullptr ? std::u16string_view() : TextOf(*pNode, buffer);
}

std::u16string_view CPlainEvaluation::Name(const CExpression& expression, const CFocus& focus) {
  const DOMNode* pNode = First(expression.m_Arguments[0], focus);
  if (pNode == nullptr) return {};
  // To Xalan-C a declaration has its prefix for a name.
  if (pNode->getNodeType() == DOMNode::ATTRIBUTE_NODE && IsDeclaration(*pNode)) GiveUp();
  return expression.m_Kind == EKind::kName ? NameOf(*pNode) : LocalNameOf(*pNode);
}

// -- Comparisons ---------------------------------------------------------------------------

bool CPlainEvaluation::Compare(const CExpression& expression, const CFocus& focus) {
  const EKind kind = expression.m_Kind;
  const CExpression& left = expression.m_Arguments[0];
  const CExpression& right = expression.m_Arguments[1];
  const auto isOf = [&](EType type) { return left.m_Type == type || right.m_Type == type; };
  if (isOf(EType::kTruth)) return Is(kind, Truth(left, focus), Truth(right, focus));
  if (left.m_Type == EType::kNodes && right.m_Type == EType::kNodes) {
    return CompareAll(kind, left, right, focus);
  }
  if (left.m_Type == EType::kNodes) return CompareNodes(kind, left, right, focus);
  if (right.m_Type == EType::kNodes) return CompareNodes(Turned(kind), right, left, focus);
  if (isOf(EType::kNumber) || !IsEquality(kind)) {
    return Is(kind, Number(left, focus), Number(right, focus));
  }
  std::u16string buffer;
  std::u16string other;
  return Is(kind, Text(left, focus, buffer), Text(right, focus, other));
}

// Whether it is true of any node.
bool CPlainEvaluation::CompareNodes(EKind kind, const CExpression& nodes, const CExpression& other,
                                    const CFocus& focus) {
  bool isFound = false;
  std::u16string buffer;
  std::u16string otherBuffer;
  const auto visitAll = [&](auto visit) {
    for (const CPath& path : nodes.m_Paths) {
      if (!isFound && !m_GaveUp) Visit(path, focus, visit);
    }
    return isFound;
  };
  if (other.m_Type == EType::kNumber || !IsEquality(kind)) {
    const double number = Number(other, focus);
    return visitAll([&](DOMNode& node) {
      isFound = Is(kind, NumberIn(TextOf(node, buffer)), number);
      return !isFound && !m_GaveUp;
    });
  }
  const std::u16string_view text = Text(other, focus, otherBuffer);
  return visitAll([&](DOMNode& node) {
    isFound = Is(kind, TextOf(node, buffer), text);
    return !isFound && !m_GaveUp;
  });
}

// Whether it is true of any pair of nodes.
bool CPlainEvaluation::CompareAll(EKind kind, const CExpression& nodes, const CExpression& others,
                                  const CFocus& focus) {
  std::vector<std::u16string> texts;
  std::u16string buffer;
  const auto collect = [&](DOMNode& node) {
    texts.emplace_back(TextOf(node, buffer));
    return !m_GaveUp;
  };
  for (const CPath& path : others.m_Paths) Visit(path, focus, collect);
  bool isFound = false;
  const auto compare = [&](DOMNode& node) {
    const std::u16string_view text = TextOf(node, buffer);
    isFound = std::ranges::any_of(texts, [&](std::u16string_view other) {
      return IsEquality(kind) ? Is(kind, text, other) : Is(kind, NumberIn(text), NumberIn(other));
    });
    return !isFound && !m_GaveUp;
  };
  for (const CPath& path : nodes.m_Paths) {
    if (!isFound && !m_GaveUp && !texts.empty()) Visit(path, focus, compare);
  }
  return isFound;
}

}  // namespace plain
