#include "host/utf8.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <iterator>

namespace utf8 {

namespace {

constexpr char32_t kSurrogates = 0xD800;
constexpr char32_t kLowSurrogates = 0xDC00;
constexpr char32_t kSupplementary = 0x10000;
constexpr char32_t kLast = 0x10FFFF;

// On units, in the width of a unit, the loop below becomes vector code.
constexpr bool IsHigh(XMLCh unit) { return (unit & 0xFC00) == kSurrogates; }
constexpr bool IsLow(XMLCh unit) { return (unit & 0xFC00) == kLowSurrogates; }
constexpr bool IsSurrogate(XMLCh unit) { return (unit & 0xF800) == kSurrogates; }
constexpr bool IsSurrogate(char32_t code) { return (code & ~0x7FFu) == kSurrogates; }

// What some units take beyond a byte each, and whether a surrogate among them lacks its
// other half; looks one unit ahead, and has no early way out.
struct CTally {
  std::uint16_t m_Extra;
  std::uint16_t m_Lone;
};
CTally Tally(const XMLCh* pText, std::size_t count) {
  std::uint16_t extra = 0;
  std::uint16_t lone = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const XMLCh unit = pText[i];
    extra =
        static_cast<std::uint16_t>(extra + (unit >= 0x80) + (unit >= 0x800) - IsSurrogate(unit));
    lone = static_cast<std::uint16_t>(lone | (IsHigh(unit) ^ IsLow(pText[i + 1])));
  }
  return {extra, lone};
}

// As many units or bytes as are looked at together.
constexpr std::size_t kBlock = 16;

template <class Unit>
bool IsAsciiBlock(const Unit* pText) {
  constexpr std::size_t kWords = kBlock * sizeof(Unit) / sizeof(std::uint64_t);
  constexpr std::uint64_t kBeyond = sizeof(Unit) == 1 ? 0x8080808080808080u : 0xFF80FF80FF80FF80u;
  std::uint64_t words[kWords];
  std::memcpy(words, pText, sizeof words);
  std::uint64_t bits = 0;
  for (const std::uint64_t word : words) bits |= word;
  return (bits & kBeyond) == 0;
}

// Copies the ASCII that the text begins with and moves both pointers behind it.
template <class From, class To>
void TakeAscii(const From*& pFrom, const From* pEnd, To*& pTo) {
  for (; static_cast<std::size_t>(pEnd - pFrom) >= kBlock && IsAsciiBlock(pFrom); pFrom += kBlock) {
    CopyAscii(pFrom, kBlock, pTo);
    pTo += kBlock;
  }
  for (; pFrom != pEnd && *pFrom < kAsciiEnd; ++pFrom) *pTo++ = static_cast<To>(*pFrom);
}

char32_t TakePair(const XMLCh*& pText) {
  const char32_t high = *pText++ - kSurrogates;
  const char32_t low = *pText++ - kLowSurrogates;
  return kSupplementary + (high << 10) + low;
}

void Append(unsigned char*& pTo, char32_t bits) { *pTo++ = static_cast<unsigned char>(bits); }

// A byte behind the first one: six bits of the code.
void AppendTrail(unsigned char*& pTo, char32_t code, unsigned shift) {
  Append(pTo, 0x80u | ((code >> shift) & 0x3Fu));
}

void AppendCode(unsigned char*& pTo, char32_t code) {
  if (code < 0x800) {
    Append(pTo, 0xC0u | (code >> 6));
  } else {
    if (code < kSupplementary) {
      Append(pTo, 0xE0u | (code >> 12));
    } else {
      Append(pTo, 0xF0u | (code >> 18));
      AppendTrail(pTo, code, 12);
    }
    AppendTrail(pTo, code, 6);
  }
  AppendTrail(pTo, code, 0);
}

// The code of the sequence of several bytes that the text begins with; nothing for
// what is none: cut, too long for its code, a surrogate, or beyond the last code.
std::optional<char32_t> TakeCode(const unsigned char*& pBytes, const unsigned char* pEnd) {
  constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, kSupplementary};
  const auto length = static_cast<std::size_t>(std::countl_one(*pBytes));
  if (length < 2 || length >= std::size(kLeast)) return std::nullopt;
  if (static_cast<std::size_t>(pEnd - pBytes) < length) return std::nullopt;
  char32_t code = *pBytes & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((pBytes[i] & 0xC0u) != 0x80u) return std::nullopt;
    code = (code << 6) | (pBytes[i] & 0x3Fu);
  }
  if (code < kLeast[length] || code > kLast || IsSurrogate(code)) return std::nullopt;
  pBytes += length;
  return code;
}

void AppendUnits(XMLCh*& pTo, char32_t code) {
  if (code >= kSupplementary) {
    *pTo++ = static_cast<XMLCh>(kSurrogates + ((code - kSupplementary) >> 10));
    code = kLowSurrogates + (code & 0x3FFu);
  }
  *pTo++ = static_cast<XMLCh>(code);
}

}  // namespace

std::optional<std::size_t> EncodedSize(const XMLCh* pText, std::size_t count) {
  constexpr std::size_t kTogether = 256;  // a tally's counter holds them
  std::size_t size = count;
  bool lone = IsLow(*pText);
  for (std::size_t at = 0; at < count; at += kTogether) {
    const CTally tally = Tally(pText + at, std::min(kTogether, count - at));
    size += tally.m_Extra;
    lone |= tally.m_Lone != 0;
  }
  return lone ? std::nullopt : std::optional(size);
}

void Encode(const XMLCh* pText, std::size_t count, unsigned char* pTo) {
  const XMLCh* const pEnd = pText + count;
  while (true) {
    TakeAscii(pText, pEnd, pTo);
    if (pText == pEnd) return;
    AppendCode(pTo, IsSurrogate(*pText) ? TakePair(pText) : *pText++);
  }
}

unsigned char* EncodeCode(char32_t code, unsigned char* pTo) {
  if (code < kAsciiEnd) {
    *pTo++ = static_cast<unsigned char>(code);
  } else {
    AppendCode(pTo, code);
  }
  return pTo;
}

std::size_t ToUnits(char32_t code, XMLCh* pTo) {
  const XMLCh* const pStart = pTo;
  AppendUnits(pTo, code);
  return static_cast<std::size_t>(pTo - pStart);
}

std::optional<std::size_t> Decode(const unsigned char* pBytes, std::size_t count, XMLCh* pTo) {
  const unsigned char* const pEnd = pBytes + count;
  const XMLCh* const pStart = pTo;
  while (true) {
    TakeAscii(pBytes, pEnd, pTo);
    if (pBytes == pEnd) return static_cast<std::size_t>(pTo - pStart);
    const std::optional<char32_t> code = TakeCode(pBytes, pEnd);
    if (!code) return std::nullopt;
    AppendUnits(pTo, *code);
  }
}

}  // namespace utf8
