#include "markup.h"

#include "recode.h"
#include "utf8.h"

namespace {

// What has a meaning in markup, and what a reader would change.
std::string ReferenceInMarkup(char c, char quote) {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return quote == '\0' ? "&gt;" : "";
    case '\r':
      return "&#xD;";
    case '"':
      return quote == c ? "&quot;" : "";
    case '\'':
      return quote == c ? "&apos;" : "";
    case '\n':
      return quote != '\0' ? "&#xA;" : "";
    case '\t':
      return quote != '\0' ? "&#x9;" : "";
    default:
      return {};
  }
}

bool IsIn(const std::string& encoding, const std::string& character) {
  return encoding.starts_with("UTF-") || Recode(character, "UTF-8", encoding);
}

std::string EscapedAs(std::string_view value, char quote, const std::string& encoding) {
  std::string escaped;
  while (!value.empty()) {
    const CCharacter first = Decode(value).value_or(CCharacter{0, 1});
    const std::string character(value.substr(0, first.m_Size));
    value.remove_prefix(first.m_Size);
    const bool isSingle = first.m_Size == 1;
    std::string reference = isSingle ? ReferenceInMarkup(character[0], quote) : "";
    if (!isSingle && !IsIn(encoding, character)) reference = "&#x" + Hex(first.m_Code) + ';';
    escaped += reference.empty() ? character : reference;
  }
  return escaped;
}

}  // namespace

std::string Escaped(std::string_view value) { return EscapedAs(value, '"', "UTF-8"); }

std::string EscapedText(std::string_view value, const std::string& encoding) {
  return EscapedAs(value, '\0', encoding);
}

std::string EscapedFor(std::string_view value, char quote, const std::string& encoding) {
  return EscapedAs(value, quote, encoding);
}
