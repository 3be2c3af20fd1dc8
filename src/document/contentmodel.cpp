#include "document/contentmodel.h"

#include <vector>

#include "host/stackroom.h"

using xercesc::ContentSpecNode;

namespace {

// What a level of a content model takes, measured, with a margin; bytes of stack.
constexpr std::size_t kModelLevel = 208;

// "(a, b, c)" is a pair of a and the pair of b and c, so a list is deep, too.
bool IsDeeper(const ContentSpecNode* pModel, std::size_t most) {
  struct CPending {
    const ContentSpecNode* m_pNode;
    std::size_t m_Level;
  };
  std::vector<CPending> pending{{pModel, 0}};
  while (!pending.empty()) {
    const CPending next = pending.back();
    pending.pop_back();
    if (next.m_pNode == nullptr) continue;
    if (next.m_Level > most) return true;
    pending.push_back({next.m_pNode->getFirst(), next.m_Level + 1});
    pending.push_back({next.m_pNode->getSecond(), next.m_Level + 1});
  }
  return false;
}

}  // namespace

bool IsTooDeep(const ContentSpecNode* pModel) {
  return IsDeeper(pModel, StackRoom() / kModelLevel);
}
