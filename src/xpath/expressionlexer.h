// The tokens of an expression.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// What separates tokens, and words of a text.
inline constexpr std::u16string_view kSpaces = u" \t\r\n";

enum class EToken {
  kLiteral,
  kNumber,
  kDots,      // "." or ".."
  kName,      // with prefix and axis as far as they hang together: "a", "p:", "child::a"
  kOperator,  // or and = != < <= > >= + - * div mod
  kMark,      // one unit of anything else: ( ) [ ] / | , @ $ and the name test *
};

struct CToken {
  EToken m_Kind;
  std::u16string_view m_Text;

  bool Is(std::u16string_view text) const { return m_Text == text; }
};

// Cuts any text into tokens, right or wrong. Whether a name or an asterisk is an
// operator depends on what comes before it.
class CExpressionLexer {
 public:
  explicit CExpressionLexer(std::u16string_view text) : m_Rest(text) { SkipSpace(); }

  bool AtEnd() const { return m_Rest.empty(); }

  // Not at the end.
  CToken Next() {
    const CToken token = Cut();
    SkipSpace();
    m_AfterOperand = EndsOperand(token);
    return token;
  }

 private:
  static constexpr std::u16string_view kNoName = u" \t\r\n()[]{}'\"@,|/=!<>+*$";
  static constexpr std::u16string_view kDigits = u"0123456789.";

  void SkipSpace() { Take(m_Rest.find_first_not_of(kSpaces)); }

  std::u16string_view Take(std::size_t length) {
    const std::u16string_view text = m_Rest.substr(0, length);
    m_Rest.remove_prefix(text.size());
    return text;
  }

  CToken Cut() {
    const char16_t first = m_Rest.front();
    if (first == u'\'' || first == u'"') return {EToken::kLiteral, Take(LiteralLength(first))};
    if (kDigits.find(first) != kDigits.npos) return CutDigits();
    if (m_Rest.starts_with(u"!=") || m_Rest.starts_with(u"<=") || m_Rest.starts_with(u">=")) {
      return {EToken::kOperator, Take(2)};
    }
    if (std::u16string_view(u"=<>+-").find(first) != kNoName.npos) {
      return {EToken::kOperator, Take(1)};
    }
    if (first == u'*') return {m_AfterOperand ? EToken::kOperator : EToken::kMark, Take(1)};
    if (kNoName.find(first) != kNoName.npos) return {EToken::kMark, Take(1)};
    return {m_AfterOperand ? EToken::kOperator : EToken::kName,
            Take(m_Rest.find_first_of(kNoName))};
  }

  std::size_t LiteralLength(char16_t quote) const {
    const std::size_t end = m_Rest.find(quote, 1);
    return end == m_Rest.npos ? end : end + 1;
  }

  CToken CutDigits() {
    const std::u16string_view text = Take(m_Rest.find_first_not_of(kDigits));
    return {text == u"." || text == u".." ? EToken::kDots : EToken::kNumber, text};
  }

  static bool EndsOperand(const CToken& token) {
    if (token.m_Kind == EToken::kName) return !token.m_Text.ends_with(u':');
    if (token.m_Kind == EToken::kMark) return token.Is(u")") || token.Is(u"]") || token.Is(u"*");
    return token.m_Kind != EToken::kOperator;
  }

  std::u16string_view m_Rest;
  bool m_AfterOperand = false;
};

// An expression and its tokens, cut once for all that read them.
class CLexedExpression {
 public:
  explicit CLexedExpression(std::u16string_view text) : m_Text(text) {
    for (CExpressionLexer lexer(m_Text); !lexer.AtEnd();) m_Tokens.push_back(lexer.Next());
  }
  CLexedExpression(const CLexedExpression&) = delete;  // the tokens are parts of the text
  CLexedExpression& operator=(const CLexedExpression&) = delete;

  const std::u16string& Text() const { return m_Text; }
  const std::vector<CToken>& Tokens() const { return m_Tokens; }

 private:
  const std::u16string m_Text;
  std::vector<CToken> m_Tokens;
};

// The name of a node test with brackets, which looks like a call.
inline bool IsKindOfNode(std::u16string_view name) {
  return name == u"node" || name == u"text" || name == u"comment" ||
         name == u"processing-instruction";
}
