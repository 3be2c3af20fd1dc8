#include "xpath/plainreader.h"

#include <algorithm>
#include <charconv>
#include <xercesc/util/XMLChar.hpp>

#include "xpath/plainfunctions.h"

namespace plain {

namespace {

// Each step and each bracket is a recursion of the evaluation.
constexpr std::size_t kMostTokens = 500;
constexpr int kMostNested = 8;
constexpr std::size_t kMostDigits = 15;

// -- Operators -----------------------------------------------------------------------

struct COperator {
  std::u16string_view m_Text;
  EKind m_Kind;
};

struct CLevel {
  EType m_Type;
  bool m_Chains;
  bool m_TakesTruth;  // Xalan-C takes "<=" between truth values for "<"
  std::vector<COperator> m_Operators;
};

// Those that bind least come first.
const std::vector<CLevel>& Levels() {
  using enum EKind;
  static const std::vector<CLevel> s_Levels = {
      {EType::kTruth, true, true, {{u"or", kOr}}},
      {EType::kTruth, true, true, {{u"and", kAnd}}},
      {EType::kTruth, false, true, {{u"=", kEqual}, {u"!=", kUnequal}}},
      {EType::kTruth,
       false,
       false,
       {{u"<", kLess}, {u"<=", kLessOrEqual}, {u">", kGreater}, {u">=", kGreaterOrEqual}}},
      {EType::kNumber, true, true, {{u"+", kPlus}, {u"-", kMinus}}},
      {EType::kNumber, true, true, {{u"*", kTimes}, {u"div", kDivide}, {u"mod", kModulo}}},
  };
  return s_Levels;
}

bool CanBe(const CExpression& operand, const CLevel& level) {
  return level.m_TakesTruth || operand.m_Type != EType::kTruth;
}

void Adopt(CExpression& expression, CExpression&& argument) {
  expression.m_Counts = expression.m_Counts || argument.m_Counts;
  expression.m_AsksForLast = expression.m_AsksForLast || argument.m_AsksForLast;
  expression.m_Arguments.push_back(std::move(argument));
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

// Xalan-C takes a word before a bracket for a function, and dots before a minus for a part
// of what comes then.
bool CReader::StandsApart(const CToken& token) const {
  const auto isSpaceAt = [&](std::size_t at) {
    return at < m_Text.size() && kSpaces.find(m_Text[at]) != kSpaces.npos;
  };
  const auto begin = static_cast<std::size_t>(token.m_Text.data() - m_Text.data());
  const bool isBehindSpace = isSpaceAt(begin - 1);
  if (token.Is(u"-")) return isBehindSpace || m_Tokens[m_At - 1].m_Kind != EToken::kDots;
  const bool isWord = xercesc::XMLChar1_0::isNCNameChar(token.m_Text.front());
  return !isWord || (isBehindSpace && isSpaceAt(begin + token.m_Text.size()));
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
    if ((count > 1 && !level.m_Chains) || !StandsApart(token)) return false;
    ++m_At;
    CExpression right;
    if (!ReadLevel(number + 1, right)) return false;
    if (!CanBe(expression, level) || !CanBe(right, level)) return false;
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
  if (IsNext(u"-")) return ReadNegative(expression);
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
  if (text.size() > kMostDigits || isPoint(text.back()) ||
      std::ranges::count_if(text, isPoint) > 1) {
    return false;
  }
  const std::string digits(text.begin(), text.end());
  expression.m_Kind = EKind::kNumber;
  expression.m_Type = EType::kNumber;
  std::from_chars(digits.data(), digits.data() + digits.size(), expression.m_Number);
  return true;
}

// One minus; Xalan-C refuses a second.
bool CReader::ReadNegative(CExpression& expression) {
  ++m_At;
  CExpression operand;
  if (IsNext(u"-") || !ReadUnion(operand)) return false;
  expression.m_Kind = EKind::kNegate;
  expression.m_Type = EType::kNumber;
  Adopt(expression, std::move(operand));
  return true;
}

bool CReader::ReadCall(CExpression& expression) {
  const CFunction* pFunction = FindFunction(m_Tokens[m_At].m_Text);
  if (pFunction == nullptr || pFunction->m_Kind == EKind::kForeign) return false;
  m_At += 2;
  expression.m_Kind = pFunction->m_Kind;
  expression.m_Type = pFunction->m_Type;
  expression.m_AsksForLast = expression.m_Kind == EKind::kLast;
  expression.m_Counts = expression.m_AsksForLast || expression.m_Kind == EKind::kPosition;
  if (!Take(u")")) {
    do {
      CExpression argument;
      if (!ReadExpression(argument)) return false;
      if (pFunction->m_TakesNodes && argument.m_Type != EType::kNodes) return false;
      Adopt(expression, std::move(argument));
    } while (Take(u","));
    if (!Take(u")")) return false;
  }
  const std::size_t count = expression.m_Arguments.size();
  if (count < pFunction->m_Least || count > pFunction->m_Most) return false;
  if (count == 0 && pFunction->m_Most == 1) Adopt(expression, ContextNode());
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
