#include <algorithm>
#include <string>
#include <vector>

#include "xpath/plainevaluation.h"

using xercesc::DOMNode;

namespace plain {

namespace {

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
