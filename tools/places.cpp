#include "places.h"

#include <algorithm>
#include <cstddef>

namespace {

bool GoTogether(EKind kind, EToken token) {
  switch (kind) {
    case EKind::kElement:
      return token == EToken::kStart || token == EToken::kEmpty;
    case EKind::kText:
      return token == EToken::kText;
    case EKind::kCDATA:
      return token == EToken::kCDATA;
    case EKind::kEntityReference:
      return token == EToken::kReference;
    case EKind::kProcessingInstruction:
      return token == EToken::kInstruction;
    case EKind::kComment:
      return token == EToken::kComment;
    case EKind::kDocumentType:
      return token == EToken::kDocumentType;
    default:
      return false;
  }
}

bool IsDeclaration(const CToken& token) {
  return token.m_Kind == EToken::kInstruction && token.m_Text.starts_with("<?xml") &&
         token.m_Text.find_first_of(" \t\r\n") == 5;
}

}  // namespace

bool CPlaces::Find(const std::vector<TSXRefId>& nodes) {
  for (const TSXRefId node : nodes) Want(node);
  if (!m_Rest.empty() && IsDeclaration(FirstToken(m_Rest))) Next();
  const std::string_view first = m_Rest.substr(0, 0);
  for (auto& [node, place] : m_Found) {
    if (KindOf(node) == EKind::kDocument) place.m_Token = {EToken::kText, first};
  }
  if (!m_Held.empty() && !Follow()) return false;
  return std::ranges::none_of(
      m_Found, [](const auto& node) { return node.second.m_Token.m_Text.data() == nullptr; });
}

void CPlaces::Want(TSXRefId node) {
  if (!m_Found.try_emplace(node).second) return;
  const auto firstNew = static_cast<std::ptrdiff_t>(m_Held.size());
  for (CNode parent = Parent(node); parent && m_Above.insert(parent.Get()).second;
       parent = Parent(m_Held.back().Get())) {
    m_Found.try_emplace(parent.Get());
    m_Held.push_back(std::move(parent));
  }
  std::reverse(m_Held.begin() + firstNew, m_Held.end());
}

// The first that is held is the document, which holds all others.
bool CPlaces::Follow() {
  const TSXRefId document = m_Held.front().Get();
  m_Levels.push_back({document, FirstChild(document)});
  while (!m_Levels.empty()) {
    if (m_Levels.back().m_Child ? !Meet() : !Leave()) return false;
  }
  return true;
}

// Goes past the end of the innermost container.
bool CPlaces::Leave() {
  const TSXRefId container = m_Levels.back().m_Container;
  m_Levels.pop_back();
  if (m_Levels.empty()) return true;
  if (m_Rest.empty()) return false;
  const CToken end = Next();
  m_Found.at(container).m_End = end;
  CNode& child = m_Levels.back().m_Child;
  child = NextSibling(child);
  return end.m_Kind == EToken::kEnd;
}

// Goes past the next child, or into it where it holds what is looked for.
bool CPlaces::Meet() {
  CNode& child = m_Levels.back().m_Child;
  // The white space between what stands at the top is no node.
  const bool isTop = m_Levels.size() == 1;
  if (isTop && !m_Rest.empty() && FirstToken(m_Rest).m_Kind == EToken::kText) Next();
  if (m_Rest.empty()) return false;
  CPlace place{Next()};
  const auto found = m_Found.find(child.Get());
  const bool isFound = found != m_Found.end();
  if (isFound && !GoTogether(KindOf(child.Get()), place.m_Token.m_Kind)) return false;
  if (isFound && m_Above.contains(child.Get())) {
    found->second = place;
    m_Levels.push_back({child.Get(), FirstChild(child.Get())});
    return place.m_Token.m_Kind == EToken::kStart;
  }
  if (place.m_Token.m_Kind == EToken::kStart) place.m_End = SkipElement();
  if (isFound) found->second = place;
  child = NextSibling(child);
  return place.m_Token.m_Kind != EToken::kEnd;
}

CToken CPlaces::Next() {
  const CToken token = FirstToken(m_Rest);
  m_Rest.remove_prefix(token.m_Text.size());
  return token;
}

// Goes from behind a start tag past its end tag, which it gives.
CToken CPlaces::SkipElement() {
  CToken token{EToken::kEnd, {}};
  for (size_t open = 1; open > 0 && !m_Rest.empty();) {
    token = Next();
    if (token.m_Kind == EToken::kStart) ++open;
    if (token.m_Kind == EToken::kEnd) --open;
  }
  return token;
}
