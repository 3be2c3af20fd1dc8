#include "xpath/plainreader.h"

#include <algorithm>
#include <charconv>

namespace plain {

namespace {

// Each step and each bracket is a recursion of the evaluation.
constexpr std::size_t kMostTokens = 500;
constexpr int kMostNested = 8;
constexpr std::size_t kMostDigits = 15;

// -- Operators -----------------------------------------------------------------------

enum class EOperands : std::uint8_t { kAny, kSizes, kNumbers };

struct COperator {
  std::u16string_view m_Text;
  EKind m_Kind;
  EOperands m_Operands;
  bool m_IsSpaced;  // required, as letters, "-" and "*" are parts of other tokens, too
};

struct CLevel {
  EType m_Type;
  bool m_Chains;
  std::vector<COperator> m_Operators;
};

// Those that bind least come first.
const std::vector<CLevel>& Levels() {
  using enum EKind;
  using enum EOperands;
  static const std::vector<CLevel> s_Levels = {
      {EType::kTruth, true, {{u"or", kOr, kAny, true}}},
      {EType::kTruth, true, {{u"and", kAnd, kAny, true}}},
      {EType::kTruth, false, {{u"=", kEqual, kAny, false}, {u"!=", kUnequal, kAny, false}}},
      {EType::kTruth,
       false,
       {{u"<", kLess, kSizes, false},
        {u"<=", kLessOrEqual, kSizes, false},
        {u">", kGreater, kSizes, false},
        {u">=", kGreaterOrEqual, kSizes, false}}},
      {EType::kNumber, false, {{u"+", kPlus, kNumbers, true}, {u"-", kMinus, kNumbers, true}}},
      {EType::kNumber,
       false,
       {{u"*", kTimes, kNumbers, true},
        {u"div", kDivide, kNumbers, true},
        {u"mod", kModulo, kNumbers, true}}},
  };
  return s_Levels;
}

bool CanBe(const CExpression& operand, EOperands operands) {
  switch (operands) {
    case EOperands::kAny:
      return true;
    case EOperands::kSizes:  // Xalan-C takes "<=" between truth values for "<"
      return operand.m_Type != EType::kTruth;
    case EOperands::kNumbers:
      return operand.m_Type == EType::kNumber || operand.m_Type == EType::kNodes;
  }
  return false;
}

void Adopt(CExpression& expression, CExpression&& argument) {
  expression.m_Counts = expression.m_Counts || argument.m_Counts;
  expression.m_AsksForLast = expression.m_AsksForLast || argument.m_AsksForLast;
  expression.m_Arguments.push_back(std::move(argument));
}

// -- Functions -----------------------------------------------------------------------

enum class EParameter : std::uint8_t { kAny, kNodes, kText };

struct CFunction {
  std::u16string_view m_Name;
  EKind m_Kind;
  EType m_Type;
  std::uint8_t m_Least;
  std::uint8_t m_Most;
  EParameter m_Parameter = EParameter::kAny;
};

// Where an argument may be missing, it is the context node.
constexpr CFunction kFunctions[] = {
    {u"position", EKind::kPosition, EType::kNumber, 0, 0},
    {u"last", EKind::kLast, EType::kNumber, 0, 0},
    {u"true", EKind::kTrue, EType::kTruth, 0, 0},
    {u"false", EKind::kFalse, EType::kTruth, 0, 0},
    {u"not", EKind::kNot, EType::kTruth, 1, 1},
    {u"boolean", EKind::kToTruth, EType::kTruth, 1, 1},
    {u"count", EKind::kCount, EType::kNumber, 1, 1, EParameter::kNodes},
    {u"number", EKind::kToNumber, EType::kNumber, 0, 1, EParameter::kText},
    {u"string", EKind::kToText, EType::kText, 0, 1, EParameter::kText},
    {u"contains", EKind::kContains, EType::kTruth, 2, 2, EParameter::kText},
    {u"starts-with", EKind::kStartsWith, EType::kTruth, 2, 2, EParameter::kText},
    {u"string-length", EKind::kLength, EType::kNumber, 0, 1, EParameter::kText},
    {u"normalize-space", EKind::kNormalized, EType::kText, 0, 1, EParameter::kText},
    {u"name", EKind::kName, EType::kText, 0, 1, EParameter::kNodes},
    {u"local-name", EKind::kLocalName, EType::kText, 0, 1, EParameter::kNodes},
};

bool CanBe(const CExpression& argument, EParameter parameter) {
  if (parameter == EParameter::kAny || argument.m_Type == EType::kNodes) return true;
  return parameter == EParameter::kText && argument.m_Type == EType::kText;
}

CExpression ContextNode() {
  CExpression expression;
  CPath& path = expression.m_Paths.emplace_back();
  path.m_Steps.push_back({.m_Axis = EAxis::kSelf, .m_Tests = {CTest{}}});
  path.m_IsInOrder = true;
  return expression;
}

// Joins two paths that differ in the last node test alone, so that the tree is walked
// once.
bool Unite(CPath& path, const CPath& other) {
  if (path.m_Steps.empty() || other.m_Steps.empty()) return false;
  std::vector<CTest>& tests = path.m_Steps.back().m_Tests;
  const std::vector<CTest>& added = other.m_Steps.back().m_Tests;
  if (path.m_Steps.back().m_Counts || added.size() != 1) return false;
  CPath likeThis = other;
  likeThis.m_Steps.back().m_Tests = tests;
  if (!(likeThis == path)) return false;
  tests.push_back(added.front());
  return true;
}

}  // namespace

std::unique_ptr<const CForm> CForm::Read(const CLexedExpression& expression) {
  std::unique_ptr<CForm> pForm(new CForm);
  if (!CReader(*pForm, expression).ReadAll()) return nullptr;
  return pForm;
}

bool CReader::ReadAll() {
  return m_Tokens.size() <= kMostTokens && ReadExpression(m_Form.m_Expression) && AtEnd();
}

bool CReader::IsSpaced(const CToken& token) const {
  const std::u16string_view text = m_Text;
  const auto begin = static_cast<std::size_t>(token.m_Text.data() - text.data());
  const std::size_t end = begin + token.m_Text.size();
  return begin > 0 && end < text.size() && kSpaces.find(text[begin - 1]) != kSpaces.npos &&
         kSpaces.find(text[end]) != kSpaces.npos;
}

bool CReader::ReadExpression(CExpression& expression) {
  if (++m_Nested > kMostNested || !ReadLevel(0, expression)) return false;
  --m_Nested;
  return true;
}

bool CReader::ReadLevel(std::size_t number, CExpression& expression) {
  if (number == Levels().size()) return ReadUnion(expression);
  const CLevel& level = Levels()[number];
  if (!ReadLevel(number + 1, expression)) return false;
  for (int count = 1; IsNextKind(EToken::kOperator); ++count) {
    const CToken& token = m_Tokens[m_At];
    const auto pOperator = std::ranges::find(level.m_Operators, token.m_Text, &COperator::m_Text);
    if (pOperator == level.m_Operators.end()) return true;
    if ((count > 1 && !level.m_Chains) || (pOperator->m_IsSpaced && !IsSpaced(token))) return false;
    ++m_At;
    CExpression right;
    if (!ReadLevel(number + 1, right)) return false;
    const EOperands operands = pOperator->m_Operands;
    if (!CanBe(expression, operands) || !CanBe(right, operands)) return false;
    CExpression whole;
    whole.m_Kind = pOperator->m_Kind;
    whole.m_Type = level.m_Type;
    Adopt(whole, std::move(expression));
    Adopt(whole, std::move(right));
    expression = std::move(whole);
  }
  return true;
}

bool CReader::ReadUnion(CExpression& expression) {
  if (!ReadOperand(expression)) return false;
  while (Take(u"|")) {
    CExpression other;
    if (expression.m_Type != EType::kNodes || !ReadOperand(other)) return false;
    if (other.m_Type != EType::kNodes) return false;
    for (CPath& path : other.m_Paths) {
      if (!Unite(expression.m_Paths.back(), path)) expression.m_Paths.push_back(std::move(path));
    }
  }
  return true;
}

bool CReader::ReadOperand(CExpression& expression) {
  if (AtEnd()) return false;
  if (IsNextKind(EToken::kLiteral)) return ReadLiteral(expression);
  if (IsNextKind(EToken::kNumber)) return ReadNumber(expression);
  if (IsNext(u"-")) return ReadNegative(expression);
  if (IsNext(u"(")) return ReadBrackets(expression);
  if (IsNextKind(EToken::kName) && IsAfterNext(u"(") && !IsKindOfNode(m_Tokens[m_At].m_Text) &&
      m_Tokens[m_At].m_Text.find(u':') == std::u16string_view::npos) {
    return ReadCall(expression);
  }
  return ReadPath(expression.m_Paths.emplace_back());
}

bool CReader::ReadLiteral(CExpression& expression) {
  const std::u16string_view text = m_Tokens[m_At++].m_Text;
  if (text.size() < 2 || text.front() != text.back()) return false;
  expression.m_Kind = EKind::kLiteral;
  expression.m_Type = EType::kText;
  expression.m_Text = text.substr(1, text.size() - 2);
  return true;
}

bool CReader::ReadNumber(CExpression& expression) {
  const std::u16string_view text = m_Tokens[m_At++].m_Text;
  const auto isPoint = [](char16_t unit) { return unit == u'.'; };
  if (text.size() > kMostDigits || isPoint(text.front()) || isPoint(text.back()) ||
      std::ranges::count_if(text, isPoint) > 1) {
    return false;
  }
  const std::string digits(text.begin(), text.end());
  expression.m_Kind = EKind::kNumber;
  expression.m_Type = EType::kNumber;
  std::from_chars(digits.data(), digits.data() + digits.size(), expression.m_Number);
  return true;
}

// A minus before a number, after what cannot be its left side.
bool CReader::ReadNegative(CExpression& expression) {
  constexpr std::u16string_view kBefore[] = {u"=",  u"!=", u"<", u"<=", u">",
                                             u">=", u"(",  u"[", u","};
  const auto isBefore = [&](std::u16string_view text) { return m_Tokens[m_At - 1].Is(text); };
  if (m_At == 0 || std::ranges::none_of(kBefore, isBefore)) return false;
  ++m_At;
  if (!IsNextKind(EToken::kNumber) || !ReadNumber(expression)) return false;
  expression.m_Number = -expression.m_Number;
  return true;
}

bool CReader::ReadCall(CExpression& expression) {
  const auto* pFunction = std::ranges::find(kFunctions, m_Tokens[m_At].m_Text, &CFunction::m_Name);
  if (pFunction == std::end(kFunctions)) return false;
  m_At += 2;
  expression.m_Kind = pFunction->m_Kind;
  expression.m_Type = pFunction->m_Type;
  expression.m_AsksForLast = expression.m_Kind == EKind::kLast;
  expression.m_Counts = expression.m_AsksForLast || expression.m_Kind == EKind::kPosition;
  if (!Take(u")")) {
    do {
      CExpression argument;
      if (!ReadExpression(argument) || !CanBe(argument, pFunction->m_Parameter)) return false;
      Adopt(expression, std::move(argument));
    } while (Take(u","));
    if (!Take(u")")) return false;
  }
  const std::size_t count = expression.m_Arguments.size();
  if (count < pFunction->m_Least || count > pFunction->m_Most) return false;
  if (count < pFunction->m_Most) Adopt(expression, ContextNode());
  return !IsNext(u"[") && !IsNext(u"/");
}

bool CReader::ReadBrackets(CExpression& expression) {
  ++m_At;
  CExpression inner;
  if (!ReadExpression(inner) || !Take(u")")) return false;
  if (!IsNext(u"[") && !IsNext(u"/")) {
    expression = std::move(inner);
    return true;
  }
  if (inner.m_Type != EType::kNodes) return false;
  CPath& path = expression.m_Paths.emplace_back();
  path.m_Start = EStart::kNodes;
  path.m_From.push_back(std::move(inner));
  if (!ReadPredicates(path.m_Predicates)) return false;
  return !Take(u"/") || ReadSteps(path, true);
}

}  // namespace plain
