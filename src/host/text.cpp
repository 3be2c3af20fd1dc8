#include "host/text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <limits>

#include "host/utf8.h"

namespace {

using xercesc::XMLString;

// What is known of the local code page, so that text need not go through the
// transcoder: nothing, ASCII at its place in both directions, or UTF-8.
enum class ECodePage { kForeign, kAscii, kUtf8 };

bool TranscodesTo(const XMLCh* pWide, const char* pNarrow) {
  return XMLString::equals(CWideText(pNarrow).Get(), pWide) &&
         XMLString::equals(CLocalText(pWide).Get(), pNarrow);
}

bool HasPlainAscii() {
  std::array<char, utf8::kAsciiEnd> narrow{};
  std::array<XMLCh, utf8::kAsciiEnd> wide{};
  for (unsigned i = 0; i + 1 < utf8::kAsciiEnd; ++i) {
    narrow[i] = static_cast<char>(i + 1);
    wide[i] = static_cast<XMLCh>(i + 1);
  }
  return TranscodesTo(wide.data(), narrow.data());
}

// A mark in front, the first and last codes of every length, and some between: no
// other encoding, nor a variant of this one, has them all so.
#define TESSEL_SAMPLE(prefix) \
  prefix##"\uFEFFa\u00A0\u00E9\u07FF\u0800\u20AC\u8A9E\uD7FF\uE000\uFEFF\uFFFD\uFFFE\uFFFF" \
         "\U00010000\U0001F600\U000FFFFF\U00100000\U0010FFFFz"
bool HasUtf8() {
  const auto& wide = TESSEL_SAMPLE(u);
  const auto& narrow = TESSEL_SAMPLE(u8);
  return TranscodesTo(wide, reinterpret_cast<const char*>(narrow));
}
#undef TESSEL_SAMPLE

// Asked of the transcoder itself, which stays the same once it is made.
ECodePage CodePage() {
  static const ECodePage s_CodePage = [] {
    if (!HasPlainAscii()) return ECodePage::kForeign;
    return HasUtf8() ? ECodePage::kUtf8 : ECodePage::kAscii;
  }();
  return s_CodePage;
}

// The text is looked at in blocks without an early way out, which the compiler turns
// into vector code.
bool IsAscii(const unsigned char* pText, size_t count) {
  constexpr size_t kBlock = 64;
  for (size_t at = 0; at < count; at += kBlock) {
    unsigned bits = 0;
    const size_t end = std::min(at + kBlock, count);
    for (size_t i = at; i < end; ++i) bits |= pText[i];
    if (bits >= utf8::kAsciiEnd) return false;
  }
  return true;
}

// The bytes of a string up to the first NUL.
struct CBytes {
  const unsigned char* m_pBytes;
  size_t m_Count;
};
CBytes BytesOf(const HStr* pString) {
  const HStr handle = pString != nullptr ? *pString : nullptr;
  if (handle == nullptr || (*handle)->count <= 0) return {nullptr, 0};
  const auto* pBytes =
      reinterpret_cast<const unsigned char*>(*handle) + offsetof(HStrRecord, bytes);
  const auto count = static_cast<size_t>((*handle)->count);
  const auto* pNul = static_cast<const unsigned char*>(std::memchr(pBytes, 0, count));
  return {pBytes, pNul != nullptr ? static_cast<size_t>(pNul - pBytes) : count};
}

struct CUnits {
  size_t m_Count = 0;
  bool m_IsAscii = false;
};
CUnits UnitsOf(const XMLCh* pText) {
  size_t count = 0;
  unsigned bits = 0;
  while (const unsigned unit = pText[count]) {
    bits |= unit;
    ++count;
  }
  return {count, bits < utf8::kAsciiEnd};
}

// What the transcoder and the C string routines make of it.
int32_t StoreTranscoded(const XMLCh* pText, HStr* pString) {
  return CStrToHStr(CLocalText(pText).Get(), pString);
}

// Gives the string room for `size` bytes and has them written straight into it.
template <class Write>
int32_t StoreBytes(size_t size, HStr* pString, Write write) {
  constexpr size_t kHeader = offsetof(HStrRecord, bytes);
  const int32_t status = domSetHandleSizeOrNewHandle(pString, static_cast<int32_t>(kHeader + size));
  if (status != 0) {
    ClearString(pString);
    return status;
  }
  (**pString)->count = static_cast<int32_t>(size);
  write(reinterpret_cast<unsigned char*>(**pString) + kHeader);
  return 0;
}

// The most bytes that StoreBytes can count; the longest code takes three bytes a unit.
constexpr size_t kMostBytes = size_t{std::numeric_limits<int32_t>::max()} - sizeof(int32_t);
constexpr size_t kMostUnits = kMostBytes / 3;

}  // namespace

CWideText::CWideText(HStr* pString) {
  if (CodePage() != ECodePage::kForeign && TakeShort(pString)) return;
  const CBytes bytes = BytesOf(pString);
  if (CodePage() != ECodePage::kForeign && IsAscii(bytes.m_pBytes, bytes.m_Count)) {
    XMLCh* pText = Allocate(bytes.m_Count);
    utf8::CopyAscii(bytes.m_pBytes, bytes.m_Count, pText);
    pText[bytes.m_Count] = 0;
  } else if (!(CodePage() == ECodePage::kUtf8 && Decode(bytes.m_pBytes, bytes.m_Count))) {
    m_pTranscoded.reset(XMLString::transcode(CHostText(pString).Get()));
    m_pText = m_pTranscoded.get();
  }
}

bool CWideText::TakeShort(const HStr* pString) {
  const HStr handle = pString != nullptr ? *pString : nullptr;
  const int count = handle != nullptr ? (*handle)->count : 0;
  if (count >= static_cast<int>(kShort)) return false;
  const unsigned char* pBytes = handle != nullptr ? (*handle)->bytes : nullptr;
  unsigned bits = 0;
  int at = 0;
  for (; at < count && pBytes[at] != 0; ++at) {
    m_Short[at] = pBytes[at];
    bits |= m_Short[at];
  }
  m_Short[at] = 0;
  m_pText = m_Short;
  return bits < utf8::kAsciiEnd;
}

XMLCh* CWideText::Allocate(size_t count) {
  XMLCh* pText = m_Short;
  if (count >= kShort) {
    m_pLong = std::make_unique_for_overwrite<XMLCh[]>(count + 1);
    pText = m_pLong.get();
  }
  m_pText = pText;
  return pText;
}

bool CWideText::Decode(const unsigned char* pBytes, size_t count) {
  XMLCh* pText = Allocate(count);
  const auto units = utf8::Decode(pBytes, count, pText);
  if (units) pText[*units] = 0;
  return units.has_value();
}

int32_t StoreText(const XMLCh* pText, HStr* pString) {
  if (pText == nullptr || pString == nullptr) return StoreTranscoded(pText, pString);
  const CUnits units = UnitsOf(pText);
  if (units.m_IsAscii && units.m_Count <= kMostBytes && CodePage() != ECodePage::kForeign) {
    return StoreBytes(units.m_Count, pString,
                      [&](unsigned char* pTo) { utf8::CopyAscii(pText, units.m_Count, pTo); });
  }
  if (units.m_Count <= kMostUnits && CodePage() == ECodePage::kUtf8) {
    if (const auto size = utf8::EncodedSize(pText, units.m_Count)) {
      return StoreBytes(*size, pString,
                        [&](unsigned char* pTo) { utf8::Encode(pText, units.m_Count, pTo); });
    }
  }
  return StoreTranscoded(pText, pString);
}
