#include "document/sourcelexer.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "document/subsetlexer.h"

namespace {

// NEL and the line separator are spaces in XML 1.1, and in 1.0 in no place where this asks.
bool IsSpace(XMLCh unit) {
  return unit == u' ' || unit == u'\n' || unit == u'\t' || unit == u'\r' || unit == 0x85 ||
         unit == 0x2028;
}

// The characters of names below the question mark do not end one.
bool EndsName(XMLCh unit) {
  if (unit > u'?') return IsSpace(unit);
  return unit != u'-' && unit != u'.' && unit != u':' && (unit < u'0' || unit > u'9');
}

// References that need no declaration.
bool IsCharacter(std::u16string_view name) {
  static constexpr std::array<std::u16string_view, 5> s_Names{u"lt", u"gt", u"amp", u"quot",
                                                              u"apos"};
  return std::ranges::find(s_Names, name) != s_Names.end();
}

}  // namespace

EPiece CSourceLexer::Next() {
  m_Begin = m_Text.Here();
  switch (m_Text.Next()) {
    case 0:
      return EPiece::kNone;
    case u'<':
      m_Text.Take();
      return Markup();
    case u'&':
      m_Text.Take();
      return Reference();
    default:
      return Text();
  }
}

EPiece CSourceLexer::Text() {
  bool isBlank = true;
  for (XMLCh unit = 0; (unit = m_Text.Next()) != 0 && unit != u'<' && unit != u'&'; m_Text.Take()) {
    isBlank = isBlank && IsSpace(unit);
  }
  return isBlank ? EPiece::kBlank : EPiece::kText;
}

EPiece CSourceLexer::Reference() {
  if (m_Text.Next() == u'#') return TakeThrough(u';') ? EPiece::kText : EPiece::kNone;
  TakeName(m_Name);
  if (!Take(u';')) return EPiece::kNone;
  return IsCharacter(m_Name) ? EPiece::kText : EPiece::kReference;
}

EPiece CSourceLexer::Markup() {
  if (Take(u'/')) return EndTag();
  if (Take(u'?')) return Instruction();
  if (!Take(u'!')) return StartTag();
  if (Take(u'-')) return Comment();
  return Take(u'[') ? CDATA() : DocumentType();
}

EPiece CSourceLexer::StartTag() {
  TakeName(m_Name);
  m_Attributes.clear();
  for (TakeSpaces(); m_Text.Next() != u'>' && m_Text.Next() != u'/'; TakeSpaces()) {
    if (!ReadAttribute()) return EPiece::kNone;
  }
  m_IsEmpty = Take(u'/');
  return Take(u'>') ? EPiece::kStartTag : EPiece::kNone;
}

bool CSourceLexer::ReadAttribute() {
  CAttribute& attribute = m_Attributes.emplace_back();
  attribute.m_Begin = m_Text.Here();
  TakeName(attribute.m_Name);
  TakeSpaces();
  if (!Take(u'=')) return false;
  TakeSpaces();
  const XMLCh quote = m_Text.Next();
  if ((quote != u'"' && quote != u'\'') || !Take(quote)) return false;
  attribute.m_ValueBegin = m_Text.Here();
  while (m_Text.Next() != quote && m_Text.Next() != 0) m_Text.Take();
  attribute.m_ValueEnd = m_Text.Here();
  if (!Take(quote)) return false;
  attribute.m_End = m_Text.Here();
  return true;
}

EPiece CSourceLexer::EndTag() {
  TakeName(m_Name);
  TakeSpaces();
  return Take(u'>') ? EPiece::kEndTag : EPiece::kNone;
}

EPiece CSourceLexer::Instruction() {
  TakeName(m_Name);
  const bool isDeclaration = m_Name == u"xml";
  if (!TakeThrough(u'?', u'>')) return EPiece::kNone;
  return isDeclaration ? EPiece::kDeclaration : EPiece::kInstruction;
}

EPiece CSourceLexer::Comment() {
  return Take(u'-') && TakeThrough(u'-', u'-') && Take(u'>') ? EPiece::kComment : EPiece::kNone;
}

EPiece CSourceLexer::CDATA() {
  if (!TakeThrough(u'[')) return EPiece::kNone;
  while (TakeThrough(u']', u']')) {
    while (Take(u']')) {
    }
    if (Take(u'>')) return EPiece::kCDATA;
  }
  return EPiece::kNone;
}

EPiece CSourceLexer::DocumentType() {
  CSubsetLexer lexer;
  lexer.Take(u'<');
  lexer.Take(u'!');
  for (XMLCh unit = 0; !lexer.IsOutside(); lexer.Take(unit)) {
    unit = m_Text.Next();
    if (unit == 0) return EPiece::kNone;
    m_Text.Take();
    if (unit == u'[' && lexer.IsInDeclaration() && !TakeSubset()) return EPiece::kNone;
  }
  return EPiece::kDocumentType;
}

// -- Parts of pieces --------------------------------------------------------------

// Behind the bracket that opens it, to the one that closes it.
bool CSourceLexer::TakeSubset() {
  CSubsetLexer lexer;
  for (XMLCh unit = 0; (unit = m_Text.Next()) != 0; lexer.Take(unit)) {
    m_Text.Take();
    if (unit == u']' && lexer.IsOutside()) return true;
  }
  return false;
}

bool CSourceLexer::Take(XMLCh unit) {
  if (m_Text.Next() != unit) return false;
  m_Text.Take();
  return true;
}

void CSourceLexer::TakeSpaces() {
  while (IsSpace(m_Text.Next())) m_Text.Take();
}

void CSourceLexer::TakeName(std::u16string& name) {
  name.clear();
  for (XMLCh unit = 0; !EndsName(unit = m_Text.Next()); m_Text.Take()) {
    name += unit;
  }
}

bool CSourceLexer::TakeThrough(XMLCh last) {
  while (!Take(last)) {
    if (m_Text.Next() == 0) return false;
    m_Text.Take();
  }
  return true;
}

bool CSourceLexer::TakeThrough(XMLCh beforeLast, XMLCh last) {
  do {
    if (!TakeThrough(beforeLast)) return false;
    // What comes next may be the one before the last once more.
    while (last != beforeLast && Take(beforeLast)) {
    }
  } while (!Take(last));
  return true;
}
