#include "value.h"

#include <cstdint>
#include <optional>

#include "message.h"

namespace {

struct CCharacter {
  uint32_t m_Code;
  size_t m_Size;  // bytes
};

// The first character of UTF-8 text that is not empty; nothing where it is malformed.
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

bool IsXML(uint32_t code) {
  return code >= 0x20 ? code != 0xfffe && code != 0xffff
                      : code == '\t' || code == '\n' || code == '\r';
}

std::string Hex(uint32_t code) {
  constexpr const char* kDigits = "0123456789ABCDEF";
  std::string hex;
  for (int shift = code > 0xffff ? 20 : 12; shift >= 0; shift -= 4) {
    hex += kDigits[code >> shift & 15];
  }
  return hex;
}

std::string ProblemOfText(std::string_view value) {
  while (!value.empty()) {
    const auto character = Decode(value);
    if (!character) return "it is not UTF-8";
    if (!IsXML(character->m_Code)) {
      return "XML cannot hold the character U+" + Hex(character->m_Code);
    }
    value.remove_prefix(character->m_Size);
  }
  return {};
}

bool Holds(std::string_view value, std::string_view part) { return value.find(part) != value.npos; }

std::string ProblemOf(std::string_view value, EKind kind) {
  if (const std::string problem = ProblemOfText(value); !problem.empty()) return problem;
  switch (kind) {
    case EKind::kComment:
      if (Holds(value, "--")) return "it holds \"--\"";
      if (value.ends_with('-')) return "it ends in \"-\"";
      break;
    case EKind::kProcessingInstruction:
      if (Holds(value, "?>")) return "it holds \"?>\"";
      if (value.find_first_of(" \t\n\r") == 0) return "it begins with white space";
      break;
    case EKind::kCDATA:
      if (Holds(value, "]]>")) return "it holds \"]]>\"";
      break;
    default:
      return {};
  }
  // There is no reference to a character here, and a reader makes a line feed of it.
  return Holds(value, "\r") ? "it holds a carriage return" : "";
}

}  // namespace

void RequireValue(std::string_view value, EKind kind, const std::string& file) {
  const std::string problem = ProblemOf(value, kind);
  if (problem.empty()) return;
  throw CFailure(Line(file, "the value cannot stand in " + OneOf(kind) + ": " + problem));
}
