#include "host/text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

namespace {

constexpr unsigned kAsciiEnd = 0x80;

// Whether the local code page has ASCII at its place, in both directions, so that
// ASCII text need not go through the transcoder. Asked of the transcoder itself.
bool AsciiIsPlain() {
  static const bool s_IsPlain = [] {
    std::array<char, kAsciiEnd> narrow{};
    std::array<XMLCh, kAsciiEnd> wide{};
    for (unsigned i = 0; i + 1 < kAsciiEnd; ++i) {
      narrow[i] = static_cast<char>(i + 1);
      wide[i] = static_cast<XMLCh>(i + 1);
    }
    return xercesc::XMLString::equals(CWideText(narrow.data()).Get(), wide.data()) &&
           xercesc::XMLString::equals(CLocalText(wide.data()).Get(), narrow.data());
  }();
  return s_IsPlain;
}

// Text is looked at and copied in blocks without an early way out, which the
// compiler turns into vector code.
constexpr size_t kBlock = 64;

template <class Unit>
bool IsAscii(const Unit* pText, size_t count) {
  size_t at = 0;
  for (; at + kBlock <= count; at += kBlock) {
    unsigned bits = 0;
    for (size_t i = 0; i < kBlock; ++i) bits |= pText[at + i];
    if (bits >= kAsciiEnd) return false;
  }
  unsigned bits = 0;
  for (; at < count; ++at) bits |= pText[at];
  return bits < kAsciiEnd;
}

template <class From, class To>
void Copy(const From* pFrom, size_t count, To* pTo) {
  for (size_t i = 0; i < count; ++i) pTo[i] = static_cast<To>(pFrom[i]);
}

// What the transcoder and the C string routines make of it.
int32_t StoreTranscoded(const XMLCh* pText, HStr* pString) {
  return CStrToHStr(CLocalText(pText).Get(), pString);
}

int32_t StoreAscii(const XMLCh* pText, size_t count, HStr* pString) {
  constexpr size_t kShort = 256;
  std::array<char, kShort> shortText;
  std::unique_ptr<char[]> longText;
  char* pBytes = shortText.data();
  if (count > kShort) {
    longText = std::make_unique_for_overwrite<char[]>(count);
    pBytes = longText.get();
  }
  Copy(pText, count, pBytes);
  const int32_t status = HostStringFromPtr(pString, static_cast<int32_t>(count), pBytes);
  if (status != 0) ClearString(pString);
  return status;
}

}  // namespace

CWideText::CWideText(HStr* pString) {
  const HStr handle = pString != nullptr ? *pString : nullptr;
  const auto* pBytes = handle != nullptr ? (*handle)->bytes : nullptr;
  const size_t whole = handle != nullptr ? static_cast<size_t>(std::max((*handle)->count, 0)) : 0;
  const size_t count = static_cast<size_t>(std::find(pBytes, pBytes + whole, 0) - pBytes);
  if (AsciiIsPlain() && IsAscii(pBytes, count)) {
    Widen(pBytes, count);
  } else {
    m_pTranscoded.reset(xercesc::XMLString::transcode(CHostText(pString).Get()));
    m_pText = m_pTranscoded.get();
  }
}

void CWideText::Widen(const unsigned char* pBytes, size_t count) {
  XMLCh* pText = m_Short;
  if (count >= kShort) {
    m_pLong = std::make_unique_for_overwrite<XMLCh[]>(count + 1);
    pText = m_pLong.get();
  }
  Copy(pBytes, count, pText);
  pText[count] = 0;
  m_pText = pText;
}

int32_t StoreText(const XMLCh* pText, HStr* pString) {
  if (pText == nullptr) return CStrToHStr(nullptr, pString);
  const size_t count = xercesc::XMLString::stringLen(pText);
  const bool fits = count <= static_cast<size_t>(std::numeric_limits<int32_t>::max());
  if (!fits || !AsciiIsPlain() || !IsAscii(pText, count)) return StoreTranscoded(pText, pString);
  return StoreAscii(pText, count, pString);
}
