#include "document/positions.h"

#include <algorithm>
#include <functional>

#include "dom/parts.h"

namespace {

// Addresses with more between them, in bytes, may be in different blocks of memory.
constexpr std::ptrdiff_t kWidestGap = 4096;

}  // namespace

size_t CPositions::Add(xercesc::DOMNode& node, const CPosition& position) {
  m_Entries.push_back({&node, position});
  dom::Mark(node, dom::kHasPosition);
  return m_Entries.size() - 1;
}

void CPositions::FindRuns() {
  m_Runs.clear();
  for (size_t i = 0; i < m_Entries.size(); ++i) {
    const xercesc::DOMNode* pNode = m_Entries[i].m_pNode;
    const auto gap = m_Runs.empty() ? 0
                                    : reinterpret_cast<const char*>(pNode) -
                                          reinterpret_cast<const char*>(m_Runs.back().m_pLast);
    if (gap <= 0 || gap > kWidestGap) m_Runs.push_back({pNode, pNode, i, i});
    m_Runs.back().m_pLast = pNode;
    m_Runs.back().m_End = i + 1;
  }
}

void CPositions::Seal() {
  FindRuns();
  std::ranges::sort(m_Runs, std::less(), &CRun::m_pFirst);
  const auto overlap = [](const CRun& left, const CRun& right) {
    return !std::less()(left.m_pLast, right.m_pFirst);
  };
  if (std::ranges::adjacent_find(m_Runs, overlap) == m_Runs.end()) return;
  std::ranges::sort(m_Entries, std::less(), &CEntry::m_pNode);
  FindRuns();
}

CPosition CPositions::Of(const xercesc::DOMNode& node) const {
  if (!dom::IsMarked(node, dom::kHasPosition)) return {};
  const auto run = std::ranges::upper_bound(m_Runs, &node, std::less(), &CRun::m_pFirst);
  if (run == m_Runs.begin()) return {};
  const auto entries = m_Entries.begin();
  const auto begin = entries + static_cast<std::ptrdiff_t>(std::prev(run)->m_Begin);
  const auto end = entries + static_cast<std::ptrdiff_t>(std::prev(run)->m_End);
  const auto found = std::ranges::lower_bound(begin, end, &node, std::less(), &CEntry::m_pNode);
  if (found == end || found->m_pNode != &node || found->m_Position.m_End < 0) return {};
  return found->m_Position;
}
