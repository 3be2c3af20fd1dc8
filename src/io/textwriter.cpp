#include "io/textwriter.h"

#include <algorithm>
#include <charconv>
#include <xercesc/util/XMLChar.hpp>
#include <xercesc/util/XMLString.hpp>

#include "host/utf8.h"
#include "io/characters.h"
#include "io/unwritable.h"

namespace {

using namespace characters;

constexpr std::size_t kUnitsAtOnce = 8;

template <class Context>
bool IsPlainBlock(const XMLCh* pText) {
  XMLCh stops = 0;
  for (std::size_t i = 0; i < kUnitsAtOnce; ++i)
    stops = static_cast<XMLCh>(stops | Context::Stops(pText[i]));
  return stops == 0;
}

// Copies the run of plain ASCII that the text begins with.
template <class Context>
char* TakeRun(const XMLCh*& pText, const XMLCh* pEnd, char* pTo) {
  while (static_cast<std::size_t>(pEnd - pText) >= kUnitsAtOnce && IsPlainBlock<Context>(pText)) {
    utf8::CopyAscii(pText, kUnitsAtOnce, pTo);
    pText += kUnitsAtOnce;
    pTo += kUnitsAtOnce;
  }
  while (pText != pEnd && Context::Stops(*pText) == 0) *pTo++ = static_cast<char>(*pText++);
  return pTo;
}

char32_t TakeCode(const XMLCh*& pText, const XMLCh* pEnd) {
  const char32_t unit = *pText++;
  if (unit >= 0xFFFE) throw NotWellFormed(u"the text has a character that XML has not");
  if ((unit & 0xF800) != 0xD800) return unit;
  if (unit >= 0xDC00 || pText == pEnd || (*pText & 0xFC00) != 0xDC00) {
    throw NotWellFormed(u"the text has half of a surrogate pair");
  }
  return 0x10000 + ((unit - 0xD800) << 10) + (*pText++ - 0xDC00u);
}

char* AppendReference(char32_t code, char* pTo) {
  *pTo++ = '&';
  *pTo++ = '#';
  *pTo++ = 'x';
  char* const pDigits = pTo;
  pTo = std::to_chars(pTo, pTo + 8, static_cast<unsigned>(code), 16).ptr;
  std::transform(pDigits, pTo, pDigits, [](char digit) {
    return digit >= 'a' ? static_cast<char>(digit - 'a' + 'A') : digit;
  });
  *pTo++ = ';';
  return pTo;
}

char* AppendBytes(std::string_view bytes, char* pTo) {
  return std::copy(bytes.begin(), bytes.end(), pTo);
}

// The longest of what one unit becomes: "&#xFFFD;". A pair may begin where a part ends.
constexpr std::size_t kMostBytes = 8;
constexpr std::size_t kPart = 4096;

}  // namespace

CTextWriter::CTextWriter(CEncoding& encoding, bool isXml11)
    : m_Encoding(encoding), m_IsXml11(isXml11), m_IsAllRaw(!isXml11 && encoding.HasAll()) {}

void CTextWriter::NewLine(std::size_t level) {
  m_Bytes.Append('\n');
  m_Bytes.Fill(2 * level, ' ');
}

// In XML 1.1 the control characters, and what the parser takes for line ends, may stand
// as references alone.
bool CTextWriter::IsRaw(char32_t code) {
  if (m_IsAllRaw) return true;
  if (m_IsXml11 && ((code >= 0x7F && code < 0xA0) || code == 0x2028)) return false;
  return code < utf8::kAsciiEnd || m_Encoding.Has(code);
}

template <class Context>
char* CTextWriter::AppendUnit(XMLCh unit, char* pTo) {
  const std::string_view escape = Context::Escape(unit);
  if (!escape.empty()) return AppendBytes(escape, pTo);
  if (unit == 0 || (unit < 0x20 && !m_IsXml11)) {
    throw NotWellFormed(u"the text has a control character");
  }
  return AppendCode<Context>(unit, pTo);
}

template <class Context>
char* CTextWriter::AppendCode(char32_t code, char* pTo) {
  if (code >= 0x20 && IsRaw(code)) {
    return reinterpret_cast<char*>(utf8::EncodeCode(code, reinterpret_cast<unsigned char*>(pTo)));
  }
  if constexpr (Context::kHasReferences) return AppendReference(code, pTo);
  if (m_IsXml11 && (code < 0xA0 || code == 0x2028)) {
    throw NotWellFormed(u"a control character stands where no reference can");
  }
  throw NotInEncoding(u"the encoding lacks a character where no reference can stand");
}

template <class Context>
void CTextWriter::Append(const XMLCh* pText, std::size_t count) {
  const XMLCh* const pEnd = pText + count;
  while (pText < pEnd) {
    const std::size_t part = std::min(static_cast<std::size_t>(pEnd - pText), kPart);
    const XMLCh* const pStop = pText + part;
    char* pTo = m_Bytes.Room((part + 1) * kMostBytes);
    while (true) {
      pTo = TakeRun<Context>(pText, pStop, pTo);
      if (pText == pStop) break;
      if (*pText < utf8::kAsciiEnd) {
        pTo = AppendUnit<Context>(*pText++, pTo);
      } else {
        pTo = AppendCode<Context>(TakeCode(pText, pEnd), pTo);
      }
      if (pText >= pStop) break;
    }
    m_Bytes.SetEnd(pTo);
  }
}

CTextWriter::CPlace CTextWriter::Name(const XMLCh* pName) {
  const std::size_t count = xercesc::XMLString::stringLen(pName);
  // The parser takes the same names in both versions.
  if (!xercesc::XMLChar1_1::isValidName(pName, count)) throw NotWellFormed(u"a name is none");
  const std::size_t offset = m_Bytes.Size();
  Append<CVerbatim>(pName, count);
  return {offset, m_Bytes.Size() - offset};
}

void CTextWriter::Text(const XMLCh* pText, std::size_t count) { Append<CText>(pText, count); }

void CTextWriter::Value(std::u16string_view text) { Append<CValue>(text.data(), text.size()); }

void CTextWriter::Verbatim(std::u16string_view text) {
  Append<CVerbatim>(text.data(), text.size());
}

void CTextWriter::Quoted(std::u16string_view text) {
  const bool hasDouble = text.find(u'"') != std::u16string_view::npos;
  if (hasDouble && text.find(u'\'') != std::u16string_view::npos) {
    throw NotWellFormed(u"an identifier has both kinds of quotes");
  }
  const char quote = hasDouble ? '\'' : '"';
  m_Bytes.Append(quote);
  Verbatim(text);
  m_Bytes.Append(quote);
}

void CTextWriter::Reference(char32_t code) {
  m_Bytes.SetEnd(AppendReference(code, m_Bytes.Room(2 * kMostBytes)));
}

void CTextWriter::EntityReference(const XMLCh* pName) {
  Markup("&");
  Name(pName);
  Markup(";");
}

void CTextWriter::CData(std::u16string_view text) {
  const XMLCh* pText = text.data();
  const XMLCh* const pEnd = pText + text.size();
  const XMLCh* pRun = pText;
  const auto section = [&](const XMLCh* pRunEnd) {
    Markup("<![CDATA[");
    Append<CVerbatim>(pRun, static_cast<std::size_t>(pRunEnd - pRun));
    Markup("]]>");
    pRun = pRunEnd;
  };
  if (text.empty()) section(pEnd);
  while (pText != pEnd) {
    const XMLCh* const pAt = pText;
    const char32_t code = TakeCode(pText, pEnd);
    if (code < 0x20 && !IsPlainControl(static_cast<XMLCh>(code)) && code != u'\r' && !m_IsXml11) {
      throw NotWellFormed(u"a CDATA section has a control character");
    }
    const bool isRaw = code < 0x20 ? IsPlainControl(static_cast<XMLCh>(code)) : IsRaw(code);
    if (!isRaw) {
      if (pRun != pAt) section(pAt);
      Reference(code);
      pRun = pText;
    } else if (code == u'>' && pAt - pRun >= 2 && pAt[-1] == u']' && pAt[-2] == u']') {
      section(pAt);
    }
  }
  if (pRun != pEnd) section(pEnd);
}
