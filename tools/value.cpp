#include "value.h"

#include "message.h"
#include "utf8.h"

namespace {

bool IsXML(uint32_t code) {
  return code >= 0x20 ? code != 0xfffe && code != 0xffff
                      : code == '\t' || code == '\n' || code == '\r';
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
