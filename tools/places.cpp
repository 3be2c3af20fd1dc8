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

CPlaces::CPlaces(std::string_view text) : m_Tokens(Tokens(text)), m_Ends(m_Tokens.size()) {
  std::vector<size_t> open;
  for (size_t i = 0; i < m_Tokens.size(); ++i) {
    if (m_Tokens[i].m_Kind == EToken::kStart) open.push_back(i);
    if (m_Tokens[i].m_Kind != EToken::kEnd || open.empty()) continue;
    m_Ends[open.back()] = i;
    open.pop_back();
  }
}

bool CPlaces::Find(const std::vector<TSXRefId>& nodes) {
  for (const TSXRefId node : nodes) Want(node);
  for (auto& [node, place] : m_Found) {
    if (KindOf(node) == EKind::kDocument) place = FirstOfDocument();
  }
  for (const CNode& above : m_Held) {
    if (!Follow(above.Get())) return false;
  }
  return std::ranges::none_of(m_Found, [](const auto& node) { return node.second == kNowhere; });
}

size_t CPlaces::FirstOfDocument() const {
  return !m_Tokens.empty() && IsDeclaration(m_Tokens.front()) ? 1 : 0;
}

void CPlaces::Want(TSXRefId node) {
  if (!m_Found.emplace(node, kNowhere).second) return;
  const auto firstNew = static_cast<std::ptrdiff_t>(m_Held.size());
  for (CNode parent = Parent(node); parent && m_Above.insert(parent.Get()).second;
       parent = Parent(m_Held.back().Get())) {
    m_Found.emplace(parent.Get(), kNowhere);
    m_Held.push_back(std::move(parent));
  }
  std::reverse(m_Held.begin() + firstNew, m_Held.end());
}

bool CPlaces::Follow(TSXRefId container) {
  const size_t place = m_Found.at(container);
  const bool isDocument = KindOf(container) == EKind::kDocument;
  if (place == kNowhere || (!isDocument && m_Tokens[place].m_Kind != EToken::kStart)) return false;
  size_t at = isDocument ? place : place + 1;
  for (CNode child = FirstChild(container); child; child = NextSibling(child)) {
    // The white space between what stands at the top is no node.
    if (isDocument && at < m_Tokens.size() && m_Tokens[at].m_Kind == EToken::kText) ++at;
    if (at >= m_Tokens.size()) return false;
    const auto found = m_Found.find(child.Get());
    if (found != m_Found.end()) {
      if (!GoTogether(KindOf(child.Get()), m_Tokens[at].m_Kind)) return false;
      found->second = at;
    }
    at = m_Tokens[at].m_Kind == EToken::kStart ? m_Ends[at] + 1 : at + 1;
  }
  return isDocument || at == m_Ends[place];
}
