// Where in a prolog or an internal subset one is.
#pragma once

#include <xercesc/util/XercesDefs.hpp>

// Takes a text unit by unit, from a place between declarations, and tells comments,
// instructions, declarations and the literals in them apart. The text is one that the
// parser takes: what is malformed is not noticed.
class CSubsetLexer {
 public:
  void Take(XMLCh unit);

  bool IsOutside() const { return m_State == EState::kOutside; }            // between declarations
  bool IsInDeclaration() const { return m_State == EState::kDeclaration; }  // not in a literal
  bool IsInLiteral() const { return m_State == EState::kLiteral; }

 private:
  enum class EState {
    kOutside,
    kOpen,
    kBang,
    kDash,
    kComment,
    kInstruction,
    kDeclaration,
    kLiteral
  };

  EState m_State = EState::kOutside;
  XMLCh m_Quote = 0;
  // The last two units of a comment or an instruction.
  XMLCh m_Last = 0;
  XMLCh m_BeforeLast = 0;
};
