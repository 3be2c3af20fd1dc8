// Characters of UTF-8 text.
#ifndef TESSEL_TOOLS_UTF8_H
#define TESSEL_TOOLS_UTF8_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

struct CCharacter {
  uint32_t m_Code;
  size_t m_Size;  // bytes
};

// The first character of text that is not empty; nothing where it is malformed.
std::optional<CCharacter> Decode(std::string_view text);

// At least four digits.
std::string Hex(uint32_t code);

#endif
