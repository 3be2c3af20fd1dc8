#include <gtest/gtest.h>
#include <tessel/standin.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace {

unsigned char* BytesOf(HostHandle handle) { return *static_cast<unsigned char**>(handle); }

const char* const s_pMove = std::getenv("TESSEL_STANDIN_MOVE");
const bool s_MovesAtStart = s_pMove != nullptr && std::string_view(s_pMove) == "1";

StandinLedger Ledger() {
  StandinLedger ledger;
  StandinReadLedger(&ledger);
  return ledger;
}

// Whether the call counted exactly one violation.
bool Violates(const std::function<void()>& call) {
  const int64_t before = Ledger().violations;
  call();
  return Ledger().violations == before + 1;
}

void OnOtherThread(const std::function<void()>& call) { std::thread(call).join(); }

// Every case starts from an empty host and must leave it empty.
class Standin : public testing::Test {
 protected:
  void SetUp() override { StandinForgetHistory(); }
  void TearDown() override {
    StandinFailAllocation(0);
    StandinMoveOnResize(s_MovesAtStart);
    StandinTraceStop();
    StandinDisposePointers();
    const StandinLedger end = Ledger();
    EXPECT_EQ(end.handles, 0);
    EXPECT_EQ(end.handleBytes, 0);
    EXPECT_EQ(end.pointers, 0);
    EXPECT_EQ(end.paths, 0);
    EXPECT_EQ(end.mutexes, 0);
  }
};

using Handles = Standin;
using Faults = Standin;
using Mutexes = Standin;

TEST_F(Handles, ResizeKeepsContentsUpToTheSmallerSize) {
  const std::array<std::pair<size_t, size_t>, 6> kSteps{
      {{0, 5}, {5, 0}, {16, 16}, {1, 100000}, {100000, 3}, {0, 0}}};
  for (const bool moving : {s_MovesAtStart, !s_MovesAtStart}) {
    if (moving != s_MovesAtStart) StandinMoveOnResize(moving);
    for (const auto& [from, to] : kSteps) {
      SCOPED_TRACE(testing::Message() << from << " to " << to << ", moving " << moving);
      HostHandle handle = HostNewHandle(from);
      const auto before = reinterpret_cast<uintptr_t>(BytesOf(handle));
      for (size_t i = 0; i < from; ++i) BytesOf(handle)[i] = static_cast<unsigned char>(i + 1);
      ASSERT_EQ(HostSetHandleSizeClear(handle, to), 0);
      const bool hasMoved = reinterpret_cast<uintptr_t>(BytesOf(handle)) != before;
      EXPECT_TRUE(from == to ? hasMoved == moving : hasMoved || !moving);
      EXPECT_EQ(HostGetHandleSize(handle), to);
      EXPECT_EQ(Ledger().handleBytes, static_cast<int64_t>(to));
      for (size_t i = 0; i < to; ++i) {
        ASSERT_EQ(BytesOf(handle)[i], i < from ? static_cast<unsigned char>(i + 1) : 0) << i;
      }
      EXPECT_EQ(HostDisposeHandle(handle), 0);
    }
  }
}

TEST_F(Handles, ValuesThatAreNotAliveAreRefusedAndCounted) {
  HostHandle live = HostNewHandleClear(8);
  HostHandle disposed = HostNewHandle(8);
  EXPECT_EQ(HostDisposeHandle(disposed), 0);
  int foreign = 0;
  for (const HostHandle value :
       {disposed, HostHandle{&foreign}, HostHandle{static_cast<char*>(live) + 8},
        reinterpret_cast<HostHandle>(uintptr_t{1})}) {
    EXPECT_TRUE(Violates([&] { EXPECT_EQ(HostDisposeHandle(value), 1); }));
    EXPECT_TRUE(Violates([&] { EXPECT_EQ(HostSetHandleSize(value, 9), 1); }));
    EXPECT_TRUE(Violates([&] { EXPECT_EQ(HostGetHandleSize(value), 0U); }));
  }
  EXPECT_STREQ(StandinLastViolation(), "a handle that is not alive was used");
  EXPECT_FALSE(Violates([] { EXPECT_EQ(HostDisposeHandle(nullptr), 1); }));
  EXPECT_EQ(HostNewHandle(SIZE_MAX), nullptr);
  EXPECT_EQ(HostNewPtrClear(SIZE_MAX - 4), nullptr);
  EXPECT_EQ(HostSetHandleSize(live, SIZE_MAX), 2);
  EXPECT_EQ(HostGetHandleSize(live), 8U);
  EXPECT_EQ(HostDisposeHandle(live), 0);
}

// Makes a request of each kind and returns the numbers of those that were refused.
std::vector<int> Refused() {
  HostHandle handle = HostNewHandle(4);
  HostHandle resized = handle != nullptr ? handle : HostNewHandle(4);
  const bool grown = HostSetHandleSize(resized, 2) == 0 && HostSetHandleSize(resized, 8) == 0;
  const bool granted[] = {handle != nullptr, grown, HostNewPtrClear(4) != nullptr};
  if (resized != nullptr) HostDisposeHandle(resized);
  std::vector<int> refused;
  for (int i = 0; i < 3; ++i) {
    if (!granted[i]) refused.push_back(i + 1);
  }
  return refused;
}

TEST_F(Faults, RefuseTheRequestWithTheNumberOrAllFromIt) {
  for (const bool moving : {false, true}) {
    StandinMoveOnResize(moving);
    StandinForgetHistory();
    StandinFailAllocation(2);
    EXPECT_EQ(Refused(), std::vector{2});
    EXPECT_EQ(Ledger().requests, 3);
    EXPECT_EQ(Ledger().refusals, 1);
    EXPECT_EQ(Refused(), std::vector<int>{});
  }
  StandinFailAllocationsFrom(2);
  EXPECT_EQ(Refused(), (std::vector{2, 3}));
  StandinFailAllocationsFrom(0);
  EXPECT_EQ(Refused(), std::vector<int>{});
}

HostMutex NewMutex(const char* pName) {
  HostMutex mutex = nullptr;
  HostMutexCreate(&mutex, pName);
  return mutex;
}

TEST_F(Mutexes, MisuseIsCountedAndChangesNothing) {
  HostMutex mutex = NewMutex("m");
  HostMutexAcquire(mutex);
  EXPECT_TRUE(Violates([&] { HostMutexAcquire(mutex); }));
  EXPECT_TRUE(Violates([&] { OnOtherThread([&] { HostMutexRelease(mutex); }); }));
  EXPECT_TRUE(Violates([&] { HostMutexDestroy(mutex); }));
  StandinMutex state{};
  EXPECT_EQ(StandinReadMutexes(&state, 1), 1U);
  EXPECT_EQ(StandinLiveMutexes("m"), 1);
  EXPECT_EQ(StandinLiveMutexes("none"), 0);
  EXPECT_EQ(state.owner, StandinThread());
  HostMutexRelease(mutex);
  EXPECT_TRUE(Violates([&] { HostMutexRelease(mutex); }));
  HostMutexDestroy(mutex);
  for (const HostMutex dead : {mutex, HostMutex{nullptr}}) {
    EXPECT_TRUE(Violates([&] { HostMutexAcquire(dead); }));
    EXPECT_TRUE(Violates([&] { HostMutexRelease(dead); }));
    EXPECT_TRUE(Violates([&] { HostMutexDestroy(dead); }));
  }
}

TEST_F(Mutexes, NestingIsRememberedAsPairsAndDepth) {
  const std::array kMutexes{NewMutex("a"), NewMutex("b"), NewMutex("c")};
  for (const HostMutex mutex : kMutexes) HostMutexAcquire(mutex);
  for (const HostMutex mutex : kMutexes) HostMutexRelease(mutex);
  std::array<StandinMutexPair, 9> pairs{};
  ASSERT_EQ(StandinReadMutexPairs(pairs.data(), pairs.size()), 3U);
  std::set<std::string> found;
  for (const auto& pair : std::span(pairs).first(3)) {
    found.insert(std::string(pair.held) + pair.taken);
  }
  EXPECT_EQ(found, (std::set<std::string>{"ab", "ac", "bc"}));
  EXPECT_EQ(Ledger().deepest, 3);
  for (const HostMutex mutex : kMutexes) HostMutexDestroy(mutex);
}

TEST_F(Mutexes, TraceTellsWhatHappenedInWhichThread) {
  StandinTraceStart();
  HostMutex mutex = NewMutex("m");
  uint64_t other = 0;
  OnOtherThread([&] {
    other = StandinThread();
    HostMutexAcquire(mutex);
    HostMutexRelease(mutex);
  });
  HostMutexDestroy(mutex);
  StandinTraceStop();
  HostMutexDestroy(NewMutex("after"));
  const uint64_t self = StandinThread();
  const std::array<std::pair<StandinMutexAction, uint64_t>, 4> kExpected{
      {{StandinMutexCreated, self},
       {StandinMutexAcquired, other},
       {StandinMutexReleased, other},
       {StandinMutexDestroyed, self}}};
  std::array<StandinMutexEvent, 10> events{};
  ASSERT_EQ(StandinReadTrace(events.data(), events.size()), kExpected.size());
  for (size_t i = 0; i < kExpected.size(); ++i) {
    EXPECT_EQ(std::pair(events[i].action, events[i].thread), kExpected[i]) << i;
    EXPECT_STREQ(events[i].name, "m");
  }
}

}  // namespace
