// The memory that documents hand on.
#include "dom/pieces.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <vector>

namespace {

namespace pieces = dom::pieces;

bool IsMapped(void* pPiece) { return ::msync(pPiece, 1, MS_ASYNC) == 0; }

std::vector<void*> TakeMany(size_t count) {
  std::vector<void*> taken;
  for (size_t i = 0; i < count; ++i) taken.push_back(pieces::Take());
  return taken;
}

TEST(Pieces, HoldWhatTheySayAndNoneIsHandedOutTwice) {
  constexpr size_t kCount = 12;  // whole huge pages
  const std::vector<void*> taken = TakeMany(kCount);
  EXPECT_EQ(std::set(taken.begin(), taken.end()).size(), taken.size());
  for (void* pPiece : taken) std::memset(pPiece, 'x', pieces::kSize);
  for (void* pPiece : taken) EXPECT_TRUE(pieces::GiveBack(pPiece));
  const std::set<void*> first(taken.begin(), taken.end());
  for (void* pPiece : TakeMany(kCount)) {
    EXPECT_TRUE(first.contains(pPiece));
    EXPECT_TRUE(pieces::GiveBack(pPiece));
  }
}

TEST(Pieces, AreKeptUpToTheBound) {
  constexpr size_t kKept = pieces::kMostKept / pieces::kSize;
  const std::vector<void*> taken = TakeMany(2 * kKept);
  for (void* pPiece : taken) EXPECT_TRUE(pieces::GiveBack(pPiece));
  EXPECT_EQ(static_cast<size_t>(std::count_if(taken.begin(), taken.end(), IsMapped)), kKept);
}

TEST(Pieces, KnowWhatIsNone) {
  alignas(pieces::kSize) static char s_Aligned[pieces::kSize];
  EXPECT_FALSE(pieces::GiveBack(s_Aligned));
  EXPECT_FALSE(pieces::GiveBack(nullptr));
  void* pPiece = pieces::Take();
  EXPECT_FALSE(pieces::GiveBack(static_cast<char*>(pPiece) + 16));
  EXPECT_TRUE(pieces::GiveBack(pPiece));
}

}  // namespace
