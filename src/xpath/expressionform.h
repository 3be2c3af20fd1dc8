// The form of an expression that Xalan-C gets to evaluate.
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "xpath/expressionlexer.h"

// Rewrites an expression that has been found correct, without changing its value:
//
// - A calculated argument of string, string-length and concat goes through
//   translate, as those three turn numbers into text past CNumberGuard.
// - A calculated right side of "mod" loses its sign, which means nothing: Xalan-C
//   divides integers, and the smallest one by -1 ends the process.
class CExpressionForm {
 public:
  explicit CExpressionForm(const CLexedExpression& expression) : m_Text(expression.Text()) {
    for (const CToken& token : expression.Tokens()) m_Pieces.push_back({token});
    for (std::size_t i = 0; i < m_Pieces.size(); ++i) {
      TakeTextFunction(i);
      TakeModulus(i);
    }
  }

  // Nothing where the expression can stay as it is.
  std::optional<std::u16string> Rewritten() const {
    if (!m_IsChanged) return std::nullopt;
    std::u16string result;
    std::size_t done = 0;
    for (const CPiece& piece : m_Pieces) {
      const auto offset = static_cast<std::size_t>(piece.m_Token.m_Text.data() - m_Text.data());
      result.append(m_Text, done, offset - done);
      done = offset + piece.m_Token.m_Text.size();
      result.append(piece.m_Before).append(piece.m_Token.m_Text);
      result.append(piece.m_After);
    }
    return result;
  }

 private:
  struct CPiece {
    CToken m_Token;
    std::u16string m_Before = {};
    std::u16string m_After = {};
  };

  bool Is(std::size_t i, std::u16string_view text) const {
    return i < m_Pieces.size() && m_Pieces[i].m_Token.Is(text);
  }
  bool IsKind(std::size_t i, EToken kind) const {
    return i < m_Pieces.size() && m_Pieces[i].m_Token.m_Kind == kind;
  }
  bool IsOneOf(std::size_t i, std::initializer_list<std::u16string_view> texts) const {
    return std::ranges::any_of(texts, [&](auto text) { return Is(i, text); });
  }
  bool IsCall(std::size_t i, std::initializer_list<std::u16string_view> names) const {
    return IsKind(i, EToken::kName) && Is(i + 1, u"(") && IsOneOf(i, names);
  }

  // The first token from `i` on, outside brackets opened there, that ends an
  // argument, or an operand if operators end it too.
  std::size_t EndFrom(std::size_t i, bool atOperator) const {
    for (int nested = 0; i < m_Pieces.size(); ++i) {
      if (nested == 0 && IsOneOf(i, {u")", u"]", u","})) break;
      if (nested == 0 && atOperator && IsKind(i, EToken::kOperator)) break;
      if (IsOneOf(i, {u"(", u"["})) ++nested;
      if (IsOneOf(i, {u")", u"]"})) --nested;
    }
    return i;
  }

  // Puts a call around the tokens. Of two that begin or end together, the one that
  // comes first is the outer one.
  void Wrap(std::size_t first, std::size_t end, std::u16string_view open,
            std::u16string_view close) {
    m_Pieces[first].m_Before += open;
    m_Pieces[end - 1].m_After.insert(0, close);
    m_IsChanged = true;
  }

  void TakeTextFunction(std::size_t i) {
    if (!IsCall(i, {u"string", u"string-length", u"concat"})) return;
    std::size_t end = i + 1;
    do {
      const std::size_t first = end + 1;
      end = EndFrom(first, false);
      if (IsCalculated(first, end)) Wrap(first, end, u"translate(", u",'','')");
    } while (Is(end, u","));
  }

  bool IsCalculated(std::size_t i, std::size_t end) const {
    if (Is(i, u"(") || IsCall(i, {u"number", u"sum", u"floor", u"ceiling", u"round"})) return true;
    while ((i = EndFrom(i, true)) < end) {
      if (IsOneOf(i, {u"+", u"-", u"*", u"div", u"mod"})) return true;
      ++i;
    }
    return false;
  }

  void TakeModulus(std::size_t i) {
    if (!IsKind(i, EToken::kOperator) || !Is(i, u"mod") || IsKind(i + 1, EToken::kNumber)) return;
    std::size_t end = i + 1;
    while (Is(end, u"-")) ++end;
    end = EndFrom(end, true);
    if (end > i + 1) Wrap(i + 1, end, u"translate((", u"),'-','')");
  }

  std::u16string_view m_Text;
  std::vector<CPiece> m_Pieces;
  bool m_IsChanged = false;
};
