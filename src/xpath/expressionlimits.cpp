#include "xpath/expressionlimits.h"

#include <tessel/status.h>

#include <string>

#include "xpath/xpathmanager.h"

namespace {

[[noreturn]] void Refuse(const char* pWhat, int most) {
  const std::string text =
      "The expression has " + std::string(pWhat) + "; the limit is " + std::to_string(most) + ".";
  throw KelXPathException(domErrXPathParse, std::u16string(text.begin(), text.end()));
}

}  // namespace

void CheckExpression(const CLexedExpression& expression) {
  int nested = 0;
  int operators = 0;
  for (const CToken& token : expression.Tokens()) {
    if (token.m_Kind == EToken::kOperator && ++operators > kMostOperators) {
      Refuse("too many operators", kMostOperators);
    }
    if (token.m_Kind == EToken::kNumber && token.m_Text.size() > kMostDigits) {
      Refuse("a number with too many digits", kMostDigits);
    }
    if (token.Is(u")") || token.Is(u"]")) --nested;
    if ((token.Is(u"(") || token.Is(u"[")) && ++nested > kMostNested) {
      Refuse("too many nested brackets", kMostNested);
    }
  }
}
