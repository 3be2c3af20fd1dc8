#include <algorithm>
#include <cmath>

#include "xpath/nodetext.h"
#include "xpath/plainevaluation.h"

using xercesc::DOMNode;

namespace plain {

namespace {

constexpr auto kNowhere = std::u16string_view::npos;

bool IsSmallWhole(double number) { return std::fabs(number) < 1e9 && number == std::trunc(number); }

}  // namespace

std::u16string_view CPlainEvaluation::Text(const CExpression& expression, const CFocus& focus,
                                           std::u16string& buffer) {
  switch (expression.m_Type) {
    case EType::kText:
      return TextOfFunction(expression, focus, buffer);
    case EType::kNumber:
      return buffer = ToText(Limited(Number(expression, focus)));
    case EType::kTruth:
      return Truth(expression, focus) ? u"true" : u"false";
    case EType::kNodes:
      break;
  }
  const DOMNode* pNode = First(expression, focus);
  return pNode == nullptr ? std::u16string_view() : TextOf(*pNode, buffer);
}

std::u16string_view CPlainEvaluation::TextOfFunction(const CExpression& expression,
                                                     const CFocus& focus, std::u16string& buffer) {
  const auto& arguments = expression.m_Arguments;
  if (expression.m_Kind == EKind::kBefore || expression.m_Kind == EKind::kAfter) {
    std::u16string other;
    const std::u16string_view text = Text(arguments[0], focus, buffer);
    const std::u16string_view sought = Text(arguments[1], focus, other);
    const std::size_t at = text.find(sought);
    if (at == kNowhere) return {};
    // What is after nothing keeps its type for Xalan-C.
    if (sought.empty() && expression.m_Kind == EKind::kAfter) GiveUp();
    return expression.m_Kind == EKind::kBefore ? text.substr(0, at)
                                               : text.substr(at + sought.size());
  }
  switch (expression.m_Kind) {
    case EKind::kLiteral:
      return expression.m_Text;
    case EKind::kToText:
      return Text(arguments[0], focus, buffer);
    case EKind::kNormalized:
      return Normalized(Text(arguments[0], focus, buffer), buffer);
    case EKind::kConcat:
      return Concatenated(expression, focus, buffer);
    case EKind::kPart:
      return Part(expression, focus, buffer);
    case EKind::kTranslated:
      return Translated(expression, focus, buffer);
    default:
      return Name(expression, focus);
  }
}

std::u16string_view CPlainEvaluation::Name(const CExpression& expression, const CFocus& focus) {
  const DOMNode* pNode = First(expression.m_Arguments[0], focus);
  if (pNode == nullptr) return {};
  // To Xalan-C a declaration has its prefix for a name.
  if (pNode->getNodeType() == DOMNode::ATTRIBUTE_NODE && IsDeclaration(*pNode)) GiveUp();
  if (expression.m_Kind == EKind::kNamespace) return View(pNode->getNamespaceURI());
  return expression.m_Kind == EKind::kName ? NameOf(*pNode) : LocalNameOf(*pNode);
}

std::u16string_view CPlainEvaluation::Concatenated(const CExpression& expression,
                                                   const CFocus& focus, std::u16string& buffer) {
  std::u16string all;
  for (const CExpression& argument : expression.m_Arguments) all += Text(argument, focus, buffer);
  return buffer = std::move(all);
}

// Bounds that have to be rounded are left to Xalan-C.
std::u16string_view CPlainEvaluation::Part(const CExpression& expression, const CFocus& focus,
                                           std::u16string& buffer) {
  const auto& arguments = expression.m_Arguments;
  const std::u16string_view text = Text(arguments[0], focus, buffer);
  const auto size = static_cast<double>(text.size());
  const double begin = Number(arguments[1], focus) - 1;
  const double count = arguments.size() == 3 ? Number(arguments[2], focus) : size - begin;
  if (!IsSmallWhole(begin) || !IsSmallWhole(count)) {
    GiveUp();
    return {};
  }
  const double from = std::clamp(begin, 0.0, size);
  const double end = std::clamp(begin + count, from, size);
  return text.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(end - from));
}

std::u16string_view CPlainEvaluation::Translated(const CExpression& expression, const CFocus& focus,
                                                 std::u16string& buffer) {
  std::u16string fromBuffer;
  std::u16string toBuffer;
  const auto& arguments = expression.m_Arguments;
  const std::u16string_view text = Text(arguments[0], focus, buffer);
  const std::u16string_view from = Text(arguments[1], focus, fromBuffer);
  const std::u16string_view to = Text(arguments[2], focus, toBuffer);
  std::u16string all;
  for (const char16_t unit : text) {
    const std::size_t at = from.find(unit);
    if (at == kNowhere) {
      all += unit;
    } else if (at < to.size()) {
      all += to[at];
    }
  }
  return buffer = std::move(all);
}

}  // namespace plain
