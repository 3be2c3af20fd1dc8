// The pieces of a document's source.
#pragma once

#include <string>
#include <vector>

#include "document/sourcetext.h"

enum class EPiece {
  kNone,   // the end, or what is not well-formed
  kBlank,  // text of white space alone
  kText,   // with references to characters
  kReference,
  kStartTag,
  kEndTag,
  kCDATA,
  kComment,
  kInstruction,
  kDeclaration,  // of XML
  kDocumentType
};

// Splits a text that the parser has accepted up to some place; what is malformed, is
// noticed where a piece could be taken for another. After kNone no piece may be asked for.
class CSourceLexer {
 public:
  struct CAttribute {
    std::u16string m_Name;
    CPlace m_Begin, m_End;            // with name and quotes
    CPlace m_ValueBegin, m_ValueEnd;  // between the quotes
  };

  explicit CSourceLexer(CSourceText& text) : m_Text(text) {}

  EPiece Next();

  // Of the last piece:
  const CPlace& Begin() const { return m_Begin; }
  const CPlace& End() const { return m_Text.Here(); }
  // Of a tag or a reference.
  const std::u16string& Name() const { return m_Name; }
  // Of a start tag.
  bool IsEmpty() const { return m_IsEmpty; }
  const std::vector<CAttribute>& Attributes() const { return m_Attributes; }

 private:
  EPiece Text();
  EPiece Reference();
  EPiece Markup();
  EPiece StartTag();
  EPiece EndTag();
  EPiece Instruction();
  EPiece Comment();
  EPiece CDATA();
  EPiece DocumentType();
  bool ReadAttribute();
  bool Take(XMLCh unit);
  void TakeSpaces();
  void TakeName(std::u16string& name);
  bool TakeThrough(XMLCh last);
  bool TakeThrough(XMLCh beforeLast, XMLCh last);
  bool TakeSubset();

  CSourceText& m_Text;
  CPlace m_Begin;
  std::u16string m_Name;
  bool m_IsEmpty = false;
  std::vector<CAttribute> m_Attributes;
};
