#include "tokens.h"

#include <algorithm>
#include <initializer_list>

namespace {

// The size up to and with the end mark.
size_t Through(std::string_view text, std::string_view mark) {
  const size_t at = text.find(mark);
  return at == text.npos ? text.size() : at + mark.size();
}

// To the ">" that stands in no literal.
size_t TagSize(std::string_view text) {
  char quote = '\0';
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (quote != '\0') {
      if (c == quote) quote = '\0';
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '>') {
      return i + 1;
    }
  }
  return text.size();
}

// A document type holds declarations in brackets, and these comments and literals.
size_t DocumentTypeSize(std::string_view text) {
  bool isInside = false;
  for (size_t i = 0; i < text.size(); ++i) {
    const std::string_view rest = text.substr(i);
    if (rest.starts_with("<!--")) {
      i += Through(rest, "-->") - 1;
    } else if (rest.starts_with("<?")) {
      i += Through(rest, "?>") - 1;
    } else if (rest[0] == '"' || rest[0] == '\'') {
      i += Through(rest.substr(1), rest.substr(0, 1));
    } else if (rest[0] == '[' || rest[0] == ']') {
      isInside = rest[0] == '[';
    } else if (rest[0] == '>' && !isInside) {
      return i + 1;
    }
  }
  return text.size();
}

// References to characters, and those that need no declaration, are text.
bool IsReference(std::string_view text) {
  if (text[0] != '&' || text.starts_with("&#")) return false;
  for (const std::string_view name : {"&lt;", "&gt;", "&amp;", "&quot;", "&apos;"}) {
    if (text.starts_with(name)) return false;
  }
  return true;
}

size_t TextSize(std::string_view text) {
  for (size_t at = 0;; ++at) {
    at = text.find_first_of("<&", at);
    if (at == text.npos) return text.size();
    if (text[at] == '<' || IsReference(text.substr(at))) return at;
  }
}

}  // namespace

CToken FirstToken(std::string_view xml) {
  const auto token = [&](EToken kind, size_t size) { return CToken{kind, xml.substr(0, size)}; };
  if (IsReference(xml)) return token(EToken::kReference, Through(xml, ";"));
  if (xml[0] != '<') return token(EToken::kText, TextSize(xml));
  if (xml.starts_with("<!--")) return token(EToken::kComment, Through(xml, "-->"));
  if (xml.starts_with("<?")) return token(EToken::kInstruction, Through(xml, "?>"));
  if (xml.starts_with("<![")) return token(EToken::kCDATA, Through(xml, "]]>"));
  if (xml.starts_with("<!")) return token(EToken::kDocumentType, DocumentTypeSize(xml));
  if (xml.starts_with("</")) return token(EToken::kEnd, Through(xml, ">"));
  const size_t size = TagSize(xml);
  const bool isEmpty = size > 1 && xml[size - 2] == '/';
  return token(isEmpty ? EToken::kEmpty : EToken::kStart, size);
}

std::vector<CToken> Tokens(std::string_view xml) {
  std::vector<CToken> tokens;
  // A tag or a reference, and a text behind it.
  tokens.reserve(2 * static_cast<size_t>(
                         std::ranges::count_if(xml, [](char c) { return c == '<' || c == '&'; })) +
                 1);
  while (!xml.empty()) {
    tokens.push_back(FirstToken(xml));
    xml.remove_prefix(tokens.back().m_Text.size());
  }
  return tokens;
}
