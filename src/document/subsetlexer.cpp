#include "document/subsetlexer.h"

void CSubsetLexer::Take(XMLCh unit) {
  switch (m_State) {
    case EState::kOutside:
      if (unit == u'<') m_State = EState::kOpen;
      break;
    case EState::kOpen:
      m_State = unit == u'!' ? EState::kBang : EState::kInstruction;
      m_Last = m_BeforeLast = 0;
      break;
    case EState::kBang:
      m_State = unit == u'-' ? EState::kDash : EState::kDeclaration;
      break;
    case EState::kDash:
      m_State = EState::kComment;
      return;  // its hyphen is no part of the comment's end
    case EState::kComment:
      if (unit == u'>' && m_Last == u'-' && m_BeforeLast == u'-') m_State = EState::kOutside;
      break;
    case EState::kInstruction:
      if (unit == u'>' && m_Last == u'?') m_State = EState::kOutside;
      break;
    case EState::kDeclaration:
      if (unit == u'>') m_State = EState::kOutside;
      if (unit == u'"' || unit == u'\'') {
        m_State = EState::kLiteral;
        m_Quote = unit;
      }
      break;
    case EState::kLiteral:
      if (unit == m_Quote) m_State = EState::kDeclaration;
      break;
  }
  if (m_State == EState::kComment || m_State == EState::kInstruction) {
    m_BeforeLast = m_Last;
    m_Last = unit;
  }
}
