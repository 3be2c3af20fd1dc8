#include "layout.h"

#include <algorithm>
#include <vector>

#include "tokens.h"

namespace {

bool IsBlank(const CToken& token) {
  return token.m_Kind == EToken::kText &&
         token.m_Text.find_first_not_of(" \t\n\r") == token.m_Text.npos;
}

bool KeepsSpace(const CToken& tag) {
  const size_t at = tag.m_Text.find("xml:space=");
  return at != tag.m_Text.npos && tag.m_Text.substr(at + 11).starts_with("preserve");
}

// Tells of each start tag whether its element stays on its line, whatever is around it.
std::vector<bool> Kept(const std::vector<CToken>& tokens) {
  std::vector<bool> kept(tokens.size());
  std::vector<size_t> open;
  for (size_t i = 0; i < tokens.size(); ++i) {
    const CToken& token = tokens[i];
    if (token.m_Kind == EToken::kStart) {
      kept[i] = KeepsSpace(token);
      open.push_back(i);
    } else if (token.m_Kind == EToken::kEnd) {
      open.pop_back();
    } else if (token.m_Kind == EToken::kCDATA || token.m_Kind == EToken::kReference ||
               (token.m_Kind == EToken::kText && !IsBlank(token))) {
      if (!open.empty()) kept[open.back()] = true;
    }
  }
  return kept;
}

}  // namespace

std::string Indented(std::string_view xml, size_t width) {
  const std::vector<CToken> tokens = Tokens(xml);
  const std::vector<bool> kept = Kept(tokens);
  std::string text;
  std::vector<bool> open;  // of each open element whether it stays on its line
  bool isEmpty = false;    // nothing stands in the element yet
  for (size_t i = 0; i < tokens.size(); ++i) {
    const CToken& token = tokens[i];
    const bool isKept = !open.empty() && open.back();
    if (!isKept && IsBlank(token)) continue;
    if (token.m_Kind == EToken::kEnd) open.pop_back();
    const bool isWhole = token.m_Kind == EToken::kEnd && isEmpty;
    if (!isKept && !isWhole && !text.empty()) text += '\n' + std::string(width * open.size(), ' ');
    text += token.m_Text;
    isEmpty = token.m_Kind == EToken::kStart;
    if (isEmpty) open.push_back(isKept || kept[i]);
  }
  return text + '\n';
}

std::string_view WithoutDeclaration(std::string_view xml) {
  if (!xml.starts_with("<?xml ")) return xml;
  xml.remove_prefix(std::min(xml.find("?>"), xml.size() - 2) + 2);
  xml.remove_prefix(std::min(xml.find_first_not_of("\r\n"), xml.size()));
  return xml;
}
