#include "utf8.h"

std::optional<CCharacter> Decode(std::string_view text) {
  const auto byte = [&](size_t at) { return static_cast<unsigned char>(text[at]); };
  const auto first = byte(0);
  if (first < 0x80) return CCharacter{first, 1};
  const size_t size = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
  if (first < 0xc2 || first > 0xf4 || text.size() < size) return std::nullopt;
  uint32_t code = first & (0x7fU >> size);
  for (size_t i = 1; i < size; ++i) {
    if ((byte(i) & 0xc0) != 0x80) return std::nullopt;
    code = code << 6 | (byte(i) & 0x3fU);
  }
  constexpr uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool isSurrogate = code >= 0xd800 && code < 0xe000;
  if (code < kLeast[size] || code > 0x10ffff || isSurrogate) return std::nullopt;
  return CCharacter{code, size};
}

std::string Hex(uint32_t code) {
  constexpr const char* kDigits = "0123456789ABCDEF";
  std::string hex;
  for (int shift = code > 0xfffff ? 20 : code > 0xffff ? 16 : 12; shift >= 0; shift -= 4) {
    hex += kDigits[code >> shift & 15];
  }
  return hex;
}
