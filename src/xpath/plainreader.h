// Reads plain expressions.
#pragma once

#include <vector>

#include "xpath/expressionlexer.h"
#include "xpath/plainform.h"

namespace plain {

// Every Read gives false for what is not plain; then the form is of no use.
class CReader {
 public:
  CReader(CForm& form, const CLexedExpression& expression)
      : m_Form(form), m_Text(expression.Text()), m_Tokens(expression.Tokens()) {}
  bool ReadAll();

 private:
  // -- Tokens
  bool AtEnd() const { return m_At == m_Tokens.size(); }
  bool IsNext(std::u16string_view text) const { return !AtEnd() && m_Tokens[m_At].Is(text); }
  bool IsNextKind(EToken kind) const { return !AtEnd() && m_Tokens[m_At].m_Kind == kind; }
  bool IsAfterNext(std::u16string_view text) const {
    return m_At + 1 < m_Tokens.size() && m_Tokens[m_At + 1].Is(text);
  }
  bool Take(std::u16string_view text) {
    const bool isNext = IsNext(text);
    if (isNext) ++m_At;
    return isNext;
  }
  bool StandsApart(const CToken& token) const;

  // -- Values (plainreader.cpp)
  bool ReadExpression(CExpression& expression);
  bool ReadLevel(std::size_t level, CExpression& expression);
  bool ReadUnion(CExpression& expression);
  bool ReadOperand(CExpression& expression);
  bool ReadLiteral(CExpression& expression);
  bool ReadNumber(CExpression& expression);
  bool ReadNegative(CExpression& expression);
  bool ReadCall(CExpression& expression);
  bool ReadBrackets(CExpression& expression);

  // -- Paths (plainpathreader.cpp)
  bool ReadPath(CPath& path);
  bool ReadSteps(CPath& path, bool isAfterSlash);
  bool ReadStep(CStep& step);
  bool ReadTest(CStep& step);
  bool ReadName(std::u16string_view name, CTest& test);
  bool ReadPredicates(std::vector<CPredicate>& predicates);
  int NumberOf(std::u16string_view prefix);

  CForm& m_Form;
  const std::u16string& m_Text;
  const std::vector<CToken>& m_Tokens;
  std::size_t m_At = 0;
  int m_Nested = 0;
  int m_Steps = 0;
};

}  // namespace plain
