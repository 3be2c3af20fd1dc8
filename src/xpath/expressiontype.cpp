#include "xpath/expressiontype.h"

#include <tessel/status.h>

#include <algorithm>
#include <vector>

#include "xpath/expressionlexer.h"
#include "xpath/plainfunctions.h"
#include "xpath/xpathmanager.h"

namespace {

using plain::EType;

EType TypeOfCall(std::u16string_view name) {
  if (const auto* pFunction = plain::FindFunction(name)) return pFunction->m_Type;
  throw KelXPathException(domErrXPathXSL,
                          u"The function '" + std::u16string(name) + u"' is not implemented.");
}

class CTyper {
 public:
  explicit CTyper(const std::vector<CToken>& tokens) : m_Tokens(tokens), m_End(tokens.size()) {}

  EType Type() {
    while (m_Begin < m_End) {
      if (const auto type = TypeByOperators()) return *type;
      const std::size_t end = EndOfPrimary();
      if (end != m_End) return EType::kNodes;  // steps or predicates follow
      const CToken& first = m_Tokens[m_Begin];
      if (first.m_Kind == EToken::kLiteral) return EType::kText;
      if (first.m_Kind == EToken::kNumber) return EType::kNumber;
      if (first.Is(u"$")) throw KelXPathException(domErrXPathConversion, u"No variable is bound.");
      if (!first.Is(u"(")) return TypeOfCall(first.m_Text);
      ++m_Begin;
      --m_End;
    }
    return EType::kNodes;
  }

 private:
  // By the operators that stand outside of all brackets: those that bind least decide.
  std::optional<EType> TypeByOperators() const {
    constexpr std::u16string_view kCalculating[] = {u"+", u"-", u"*", u"div", u"mod"};
    std::optional<EType> type;
    int nested = 0;
    for (std::size_t i = m_Begin; i < m_End; ++i) {
      const CToken& token = m_Tokens[i];
      if (token.Is(u")") || token.Is(u"]")) --nested;
      if (nested == 0 && token.m_Kind == EToken::kOperator) {
        if (std::ranges::find(kCalculating, token.m_Text) == std::end(kCalculating)) {
          return EType::kTruth;
        }
        type = EType::kNumber;
      }
      if (nested == 0 && token.Is(u"|") && !type) type = EType::kNodes;
      if (token.Is(u"(") || token.Is(u"[")) ++nested;
    }
    return type;
  }

  // Where a literal, a number, a variable, a bracket or a call ends that comes first; the
  // beginning for the step of a path.
  std::size_t EndOfPrimary() const {
    const CToken& first = m_Tokens[m_Begin];
    if (first.m_Kind == EToken::kLiteral || first.m_Kind == EToken::kNumber) return m_Begin + 1;
    if (first.Is(u"$")) return m_Begin + 2;
    if (first.Is(u"(")) return EndOfBracket(m_Begin);
    const bool isCall = first.m_Kind == EToken::kName && m_Begin + 1 < m_End &&
                        m_Tokens[m_Begin + 1].Is(u"(") && !IsKindOfNode(first.m_Text) &&
                        first.m_Text.find(u':') == std::u16string_view::npos;
    return isCall ? EndOfBracket(m_Begin + 1) : m_Begin;
  }

  std::size_t EndOfBracket(std::size_t i) const {
    int nested = 0;
    for (; i < m_End; ++i) {
      if (m_Tokens[i].Is(u"(") || m_Tokens[i].Is(u"[")) ++nested;
      if (m_Tokens[i].Is(u")") || m_Tokens[i].Is(u"]")) --nested;
      if (nested == 0) return i + 1;
    }
    return m_End;
  }

  const std::vector<CToken>& m_Tokens;
  std::size_t m_Begin = 0;
  std::size_t m_End;
};

}  // namespace

plain::EType TypeOfExpression(const CLexedExpression& expression) {
  return CTyper(expression.Tokens()).Type();
}
