// Makes XML text of what stands in a tree: every kind of text in its place, escaped as
// it must be there.
#pragma once

#include <string_view>
#include <xercesc/util/XercesDefs.hpp>

#include "io/bytebuffer.h"
#include "io/encoding.h"

// Empty for none.
inline std::u16string_view View(const XMLCh* pText) {
  return pText != nullptr ? std::u16string_view(pText) : std::u16string_view();
}

// Throws CUnwritable for what no text stands for: a character that the version of XML
// does not have, or one that the encoding lacks where no reference may stand.
class CTextWriter {
 public:
  CTextWriter(CEncoding& encoding, bool isXml11);

  // Goes out as it is: what we know to be right.
  void Markup(std::string_view ascii) { m_Bytes.Append(ascii); }
  // A line break, and two blanks a level.
  void NewLine(std::size_t level);

  // Where a name stands in the text, for an end tag.
  struct CPlace {
    std::size_t m_Offset;
    std::size_t m_Size;
  };
  CPlace Name(const XMLCh* pName);
  void NameAgain(const CPlace& place) { m_Bytes.Repeat(place.m_Offset, place.m_Size); }

  void Text(const XMLCh* pText, std::size_t count);
  // Between double quotes, which are the caller's.
  void Value(std::u16string_view text);
  void Verbatim(std::u16string_view text);
  // With its quotes, of the kind that the text does not have.
  void Quoted(std::u16string_view text);
  // In as many sections as it takes; what cannot stand in one stands between them.
  void CData(std::u16string_view text);
  // A reference to a character, and one to an entity.
  void Reference(char32_t code);
  void EntityReference(const XMLCh* pName);

  // Whether a character can stand for itself here.
  bool IsRaw(char32_t code);

  bool IsXml11() const { return m_IsXml11; }
  CEncoding& Encoding() { return m_Encoding; }
  CByteBuffer& Bytes() { return m_Bytes; }

 private:
  template <class Context>
  void Append(const XMLCh* pText, std::size_t count);
  template <class Context>
  char* AppendUnit(XMLCh unit, char* pTo);
  template <class Context>
  char* AppendCode(char32_t code, char* pTo);

  CEncoding& m_Encoding;
  bool m_IsXml11;
  bool m_IsAllRaw;  // beyond ASCII
  CByteBuffer m_Bytes;
};
