// The functions of XPath.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "xpath/plainform.h"

namespace plain {

struct CFunction {
  std::u16string_view m_Name;
  EType m_Type;
  EKind m_Kind = EKind::kForeign;
  std::uint8_t m_Least = 0;  // arguments; a single one that is missing is the context node
  std::uint8_t m_Most = 0;
  bool m_TakesNodes = false;
};

inline constexpr CFunction kFunctions[] = {
    {u"last", EType::kNumber, EKind::kLast},
    {u"position", EType::kNumber, EKind::kPosition},
    {u"count", EType::kNumber, EKind::kCount, 1, 1, true},
    {u"id", EType::kNodes},
    {u"local-name", EType::kText, EKind::kLocalName, 0, 1, true},
    {u"namespace-uri", EType::kText, EKind::kNamespace, 0, 1, true},
    {u"name", EType::kText, EKind::kName, 0, 1, true},
    {u"string", EType::kText, EKind::kToText, 0, 1},
    {u"concat", EType::kText, EKind::kConcat, 2, 100},
    {u"starts-with", EType::kTruth, EKind::kStartsWith, 2, 2},
    {u"contains", EType::kTruth, EKind::kContains, 2, 2},
    {u"substring-before", EType::kText, EKind::kBefore, 2, 2},
    {u"substring-after", EType::kText, EKind::kAfter, 2, 2},
    {u"substring", EType::kText, EKind::kPart, 2, 3},
    {u"string-length", EType::kNumber, EKind::kLength, 0, 1},
    {u"normalize-space", EType::kText, EKind::kNormalized, 0, 1},
    {u"translate", EType::kText, EKind::kTranslated, 3, 3},
    {u"boolean", EType::kTruth, EKind::kToTruth, 1, 1},
    {u"not", EType::kTruth, EKind::kNot, 1, 1},
    {u"true", EType::kTruth, EKind::kTrue},
    {u"false", EType::kTruth, EKind::kFalse},
    {u"lang", EType::kTruth},
    {u"number", EType::kNumber, EKind::kToNumber, 0, 1},
    {u"sum", EType::kNumber, EKind::kSum, 1, 1, true},
    {u"floor", EType::kNumber, EKind::kFloor, 1, 1},
    {u"ceiling", EType::kNumber, EKind::kCeiling, 1, 1},
    {u"round", EType::kNumber, EKind::kRound, 1, 1},
};

// Null for a name that is no function's.
inline const CFunction* FindFunction(std::u16string_view name) {
  const auto* pFound = std::ranges::find(kFunctions, name, &CFunction::m_Name);
  return pFound == std::end(kFunctions) ? nullptr : pFound;
}

}  // namespace plain
