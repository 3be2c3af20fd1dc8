// Well-formed text between UTF-16 and UTF-8. What is not well-formed is only
// recognised here: what becomes of it is the XML library's transcoder's to say.
#pragma once

#include <cstddef>
#include <optional>
#include <xercesc/util/XercesDefs.hpp>

namespace utf8 {

inline constexpr unsigned kAsciiEnd = 0x80;

// Widens or narrows ASCII.
template <class From, class To>
void CopyAscii(const From* pFrom, std::size_t count, To* pTo) {
  for (std::size_t i = 0; i < count; ++i) pTo[i] = static_cast<To>(pFrom[i]);
}

// Bytes that the text takes; nothing where a surrogate stands alone. The text has a
// NUL behind its `count` units.
std::optional<std::size_t> EncodedSize(const XMLCh* pText, std::size_t count);

// Writes as many bytes as EncodedSize gave.
void Encode(const XMLCh* pText, std::size_t count, unsigned char* pTo);

// Writes the bytes of one code, at most four, and gives the end of them.
unsigned char* EncodeCode(char32_t code, unsigned char* pTo);

// Writes the one or two units of a code and gives their number.
std::size_t ToUnits(char32_t code, XMLCh* pTo);

// Writes at most `count` units and gives their number; nothing where the bytes are
// not UTF-8.
std::optional<std::size_t> Decode(const unsigned char* pBytes, std::size_t count, XMLCh* pTo);

}  // namespace utf8
