#include "document/plaintext.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "dom/plainbuilder.h"
#include "host/utf8.h"

namespace {

using CByte = unsigned char;

// -- Kinds of bytes -----------------------------------------------------------------

enum EKind : CByte {
  kAsItIs,  // a character that stands for itself
  kLong,    // part of one of several bytes
  kStop,    // to be looked at
};
using CKinds = std::array<CByte, 256>;

// Kinds of the bytes of a text in which some characters mean something.
constexpr CKinds KindsBeside(std::string_view special) {
  CKinds kinds{};
  for (std::size_t i = 0; i < kinds.size(); ++i) {
    kinds[i] = i >= utf8::kAsciiEnd ? kLong : i < ' ' ? kStop : kAsItIs;
  }
  kinds['\t'] = kinds['\n'] = kAsItIs;
  for (const char c : special) kinds[static_cast<CByte>(c)] = kStop;
  return kinds;
}

constexpr CKinds kContent = KindsBeside("<&]");
constexpr CKinds kValue = KindsBeside("<&\"'\t\n");
constexpr CKinds kComment = KindsBeside("-");
constexpr CKinds kCData = KindsBeside("]");
constexpr CKinds kInstruction = KindsBeside("?");

constexpr bool IsSpace(CByte byte) {
  return byte == ' ' || byte == '\n' || byte == '\t' || byte == '\r';
}

// What may stand in a name; which of them where is looked at once a name.
constexpr std::array<bool, 256> kNames = [] {
  std::array<bool, 256> names{};
  for (std::size_t i = 0; i < names.size(); ++i) {
    const auto lower = i | 0x20u;
    names[i] = i >= utf8::kAsciiEnd || (lower >= 'a' && lower <= 'z') || (i >= '0' && i <= '9') ||
               i == ':' || i == '_' || i == '-' || i == '.';
  }
  return names;
}();

// -- Characters ---------------------------------------------------------------------

constexpr char32_t kFirstNoCharacter = 0xFFFE;  // up to the next plane
constexpr char32_t kNextPlane = 0x10000;

constexpr bool IsCharacter(char32_t code) {
  if (code < ' ') return code == '\t' || code == '\n' || code == '\r';
  if (code >= kNextPlane) return code <= 0x10FFFF;
  return code < 0xD800 || (code >= 0xE000 && code < kFirstNoCharacter);
}

struct CPredefined {
  std::string_view m_Name;
  char16_t m_Unit;
};
constexpr CPredefined kPredefined[] = {
    {"lt;", u'<'}, {"gt;", u'>'}, {"amp;", u'&'}, {"quot;", u'"'}, {"apos;", u'\''}};

// -- The scanner --------------------------------------------------------------------

// What takes something and gives a truth value gives false where the text is not plain. The
// NUL behind the text stops everything.
class CPlainText {
 public:
  CPlainText(std::string_view bytes, dom::CPlainBuilder& builder)
      : m_pAt(reinterpret_cast<const CByte*>(bytes.data())),
        m_pEnd(m_pAt + bytes.size()),
        m_Builder(builder) {}

  bool Take() {
    Skip("\xEF\xBB\xBF");
    return (!IsAhead("<?xml ") || TakeDeclaration()) && TakeOutside() && *m_pAt == '<' &&
           TakeStart() && TakeContent() && TakeOutside() && m_pAt == m_pEnd;
  }

 private:
  bool IsAhead(std::string_view text) const {
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (m_pAt[i] != static_cast<CByte>(text[i])) return false;
    }
    return true;
  }
  bool Skip(std::string_view text) {
    const bool isAhead = IsAhead(text);
    if (isAhead) m_pAt += text.size();
    return isAhead;
  }
  bool SkipSpace() {
    const CByte* const pStart = m_pAt;
    while (IsSpace(*m_pAt)) ++m_pAt;
    return m_pAt != pStart;
  }
  std::string_view From(const CByte* pStart) const {
    return {reinterpret_cast<const char*>(pStart), static_cast<std::size_t>(m_pAt - pStart)};
  }
  std::string_view TakeName() {
    const CByte* const pStart = m_pAt;
    while (kNames[*m_pAt]) ++m_pAt;
    return From(pStart);
  }

  bool TakeDeclaration();
  bool TakeSetting(std::string_view name, std::string_view& value);
  bool TakeOutside();
  bool TakeContent();
  bool TakeMarkup();
  bool TakeStart();
  bool TakeAttribute();
  bool TakeEnd();
  bool TakeText();
  bool TakeComment();
  bool TakeCData();
  bool TakeInstruction();

  // Of what a run of characters stops at.
  enum class EStop { kTaken, kOver, kNotPlain };
  template <class AtStop>
  bool TakeRuns(const CKinds& kinds, XMLCh lineEnd, AtStop atStop);
  bool TakeUntil(const CKinds& kinds, std::string_view end);
  bool TakeRun(const CKinds& kinds);
  bool TakeReference();
  bool TakeNumber();

  XMLCh* Room(std::size_t count);
  void Put(XMLCh unit) {
    *Room(1) = unit;
    ++m_Count;
  }
  EStop PutAndSkip(XMLCh unit) {
    Put(unit);
    ++m_pAt;
    return EStop::kTaken;
  }
  std::u16string_view Units() const { return {m_Units.data(), m_Count}; }
  const XMLCh* EndedUnits() {
    Put(0);
    return m_Units.data();
  }

  static constexpr std::size_t kLongestDeclaration = 1024;
  static constexpr std::size_t kShort = 256;  // units that most texts have room in

  const CByte* m_pAt;
  const CByte* const m_pEnd;
  dom::CPlainBuilder& m_Builder;
  std::vector<dom::CPlainBuilder::CAttribute> m_Attributes;  // of the start tag at hand
  // Of the text at hand, or of all values of the start tag. There is room for more.
  std::vector<XMLCh> m_Units;
  std::size_t m_Count = 0;
};

// -- Units --------------------------------------------------------------------------

// Also where none is needed, since an empty text has a place, too.
XMLCh* CPlainText::Room(std::size_t count) {
  if (m_Units.size() - m_Count <= count)
    m_Units.resize(m_Count + count + std::max(m_Count, kShort));
  return m_Units.data() + m_Count;
}

bool CPlainText::TakeRun(const CKinds& kinds) {
  const CByte* pStop = m_pAt;
  unsigned seen = kAsItIs;
  for (; kinds[*pStop] != kStop; ++pStop) seen |= kinds[*pStop];
  const auto size = static_cast<std::size_t>(pStop - m_pAt);
  XMLCh* const pTo = Room(size);
  if (seen == kAsItIs) {
    utf8::CopyAscii(m_pAt, size, pTo);
    m_Count += size;
  } else {
    const std::optional<std::size_t> count = utf8::Decode(m_pAt, size, pTo);
    if (!count || std::any_of(pTo, pTo + *count, [](XMLCh c) { return c >= kFirstNoCharacter; })) {
      return false;
    }
    m_Count += *count;
  }
  m_pAt = pStop;
  return true;
}

// Takes runs of characters, and line ends as one character each, until a stop is over.
template <class AtStop>
bool CPlainText::TakeRuns(const CKinds& kinds, XMLCh lineEnd, AtStop atStop) {
  while (TakeRun(kinds)) {
    if (Skip("\r")) {
      Skip("\n");
      Put(lineEnd);
      continue;
    }
    const EStop stop = atStop();
    if (stop != EStop::kTaken) return stop == EStop::kOver;
  }
  return false;
}

// The text of what ends so, which begins with the one character that is a stop.
bool CPlainText::TakeUntil(const CKinds& kinds, std::string_view end) {
  m_Count = 0;
  return TakeRuns(kinds, u'\n', [&] {
    if (Skip(end)) return EStop::kOver;
    if (*m_pAt != static_cast<CByte>(end.front()) || IsAhead("--")) return EStop::kNotPlain;
    return PutAndSkip(static_cast<XMLCh>(end.front()));
  });
}

bool CPlainText::TakeReference() {
  ++m_pAt;
  if (Skip("#")) return TakeNumber();
  const auto* pFound = std::ranges::find_if(
      kPredefined, [this](const CPredefined& entity) { return Skip(entity.m_Name); });
  if (pFound == std::end(kPredefined)) return false;
  Put(pFound->m_Unit);
  return true;
}

bool CPlainText::TakeNumber() {
  const int base = Skip("x") ? 16 : 10;
  std::uint32_t code = 0;
  const auto* pText = reinterpret_cast<const char*>(m_pAt);
  // At most eight digits: no number of more is a character without zeros in front.
  const auto* pLast = std::find(pText, pText + std::min<std::ptrdiff_t>(m_pEnd - m_pAt, 8), ';');
  const auto [pBehind, error] = std::from_chars(pText, pLast, code, base);
  if (error != std::errc() || *pBehind != ';' || !IsCharacter(code)) return false;
  m_pAt = reinterpret_cast<const CByte*>(pBehind) + 1;
  m_Count += utf8::ToUnits(code, Room(2));
  return true;
}

// -- Markup -------------------------------------------------------------------------

// Nothing but the versions, encodings and orders that everybody writes; and one that is too
// long is more than the parser looks at.
bool CPlainText::TakeDeclaration() {
  const CByte* const pStart = m_pAt;
  std::string_view version, encoding, standalone;
  Skip("<?xml");
  const bool isRight = TakeSetting("version", version) && TakeSetting("encoding", encoding) &&
                       TakeSetting("standalone", standalone);
  SkipSpace();
  if (!isRight || !Skip("?>") || version != "1.0") return false;
  if (From(pStart).size() > kLongestDeclaration) return false;
  if (!encoding.empty() && encoding != "UTF-8" && encoding != "utf-8") return false;
  if (!standalone.empty() && standalone != "yes" && standalone != "no") return false;
  m_Builder.Declare(std::u16string(encoding.begin(), encoding.end()).c_str(), standalone == "yes");
  return true;
}

// Leaves the value alone where there is no such setting.
bool CPlainText::TakeSetting(std::string_view name, std::string_view& value) {
  const CByte* const pStart = m_pAt;
  if (!SkipSpace() || !Skip(name)) {
    m_pAt = pStart;
    return true;
  }
  SkipSpace();
  if (!Skip("=")) return false;
  SkipSpace();
  const std::string_view quote = IsAhead("'") ? "'" : "\"";
  if (!Skip(quote)) return false;
  value = TakeName();
  return !value.empty() && Skip(quote);
}

// What may stand before and behind the root.
bool CPlainText::TakeOutside() {
  while (true) {
    SkipSpace();
    if (!IsAhead("<?") && !IsAhead("<!--")) return true;
    if (!TakeMarkup()) return false;
  }
}

bool CPlainText::TakeContent() {
  while (m_Builder.IsInElement()) {
    if (*m_pAt != '<' ? !TakeText() : !TakeMarkup()) return false;
  }
  return true;
}

bool CPlainText::TakeMarkup() {
  if (Skip("<?")) return TakeInstruction();
  if (Skip("</")) return TakeEnd();
  if (!IsAhead("<!")) return TakeStart();
  if (Skip("<!--")) return TakeComment();
  return Skip("<![CDATA[") && TakeCData();
}

bool CPlainText::TakeStart() {
  ++m_pAt;
  const std::string_view name = TakeName();
  m_Attributes.clear();
  m_Count = 0;
  bool isSpaced = SkipSpace();
  while (*m_pAt != '>' && *m_pAt != '/') {
    if (!isSpaced || !TakeAttribute()) return false;
    isSpaced = SkipSpace();
  }
  const bool isEmpty = Skip("/");
  if (!Skip(">") || !m_Builder.Start(name, m_Attributes, m_Units.data())) return false;
  if (isEmpty) m_Builder.End();
  return true;
}

bool CPlainText::TakeAttribute() {
  const std::string_view name = TakeName();
  SkipSpace();
  if (!Skip("=")) return false;
  SkipSpace();
  const CByte quote = *m_pAt;
  if (quote != '"' && quote != '\'') return false;
  ++m_pAt;
  const std::size_t offset = m_Count;
  const bool isRight = TakeRuns(kValue, u' ', [&] {
    if (*m_pAt == quote) return EStop::kOver;
    if (*m_pAt == '"' || *m_pAt == '\'') return PutAndSkip(*m_pAt);
    if (IsSpace(*m_pAt)) return PutAndSkip(u' ');
    return *m_pAt == '&' && TakeReference() ? EStop::kTaken : EStop::kNotPlain;
  });
  if (!isRight) return false;
  ++m_pAt;
  m_Attributes.push_back({name, offset, m_Count - offset});
  return true;
}

bool CPlainText::TakeEnd() {
  if (!Skip(m_Builder.OpenName())) return false;
  SkipSpace();
  if (!Skip(">")) return false;
  m_Builder.End();
  return true;
}

bool CPlainText::TakeText() {
  m_Count = 0;
  const bool isRight = TakeRuns(kContent, u'\n', [this] {
    if (*m_pAt == '<') return EStop::kOver;
    if (*m_pAt == '&') return TakeReference() ? EStop::kTaken : EStop::kNotPlain;
    return *m_pAt == ']' && !IsAhead("]]>") ? PutAndSkip(u']') : EStop::kNotPlain;
  });
  if (isRight) m_Builder.AddText(Units());
  return isRight;
}

bool CPlainText::TakeComment() {
  if (!TakeUntil(kComment, "-->")) return false;
  m_Builder.AddComment(EndedUnits());
  return true;
}

bool CPlainText::TakeCData() {
  if (!m_Builder.IsInElement() || !TakeUntil(kCData, "]]>")) return false;
  m_Builder.AddCData(Units());
  return true;
}

bool CPlainText::TakeInstruction() {
  const std::string_view target = TakeName();
  if (std::ranges::equal(target, std::string_view("xml"), {}, [](char c) { return c | 0x20; })) {
    return false;
  }
  m_Count = 0;
  if (!Skip("?>") && !(SkipSpace() && TakeUntil(kInstruction, "?>"))) return false;
  return m_Builder.AddInstruction(target, EndedUnits());
}

}  // namespace

bool MayBeginPlain(std::string_view bytes) {
  std::string_view text = bytes;
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  return first != text.npos && text[first] == '<' && text.find('\0') == text.npos &&
         text.find("<!DOCTYPE") == text.npos;
}

CDOMOwner<xercesc::DOMDocument> BuildPlain(std::string_view bytes, const XMLCh* pURI,
                                           bool hasNamespaces) {
  dom::CPlainBuilder builder(pURI, hasNamespaces);
  if (!CPlainText(bytes, builder).Take()) return nullptr;
  return CDOMOwner<xercesc::DOMDocument>(builder.TakeDocument().release());
}
