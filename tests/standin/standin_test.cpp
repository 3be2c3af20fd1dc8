#include <gtest/gtest.h>
#include <tessel/standin.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace {

unsigned char* BytesOf(HostHandle handle) { return *static_cast<unsigned char**>(handle); }

// A resize to the same size stays in place unless it is told to move.
bool MovesOnResize() {
  HostHandle handle = HostNewHandle(64);
  const auto before = reinterpret_cast<uintptr_t>(BytesOf(handle));
  HostSetHandleSize(handle, 64);
  const bool moved = reinterpret_cast<uintptr_t>(BytesOf(handle)) != before;
  HostDisposeHandle(handle);
  return moved;
}

const bool s_MovesAtStart = MovesOnResize();

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
using Strings = Standin;
using Paths = Standin;
using Faults = Standin;
using Mutexes = Standin;

TEST_F(Handles, ResizeKeepsContentsUpToTheSmallerSize) {
  const std::array<std::pair<size_t, size_t>, 6> kSteps{
      {{0, 5}, {5, 0}, {16, 16}, {1, 100000}, {100000, 3}, {7, 8}}};
  for (const bool moving : {false, true}) {
    StandinMoveOnResize(moving);
    for (const auto& [from, to] : kSteps) {
      SCOPED_TRACE(testing::Message() << from << " to " << to << ", moving " << moving);
      HostHandle handle = HostNewHandle(from);
      for (size_t i = 0; i < from; ++i) BytesOf(handle)[i] = static_cast<unsigned char>(i + 1);
      ASSERT_EQ(HostSetHandleSizeClear(handle, to), 0);
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
  const std::array<HostHandle, 4> kValues{disposed, &foreign, static_cast<char*>(live) + 8,
                                          reinterpret_cast<HostHandle>(uintptr_t{1})};
  for (const HostHandle value : kValues) {
    EXPECT_TRUE(Violates([&] { EXPECT_EQ(HostDisposeHandle(value), 1); }));
    EXPECT_TRUE(Violates([&] { EXPECT_EQ(HostSetHandleSize(value, 9), 1); }));
    EXPECT_TRUE(Violates([&] { EXPECT_EQ(HostSetHandleSizeClear(value, 9), 1); }));
    EXPECT_TRUE(Violates([&] { EXPECT_EQ(HostGetHandleSize(value), 0U); }));
  }
  EXPECT_STREQ(StandinLastViolation(), "a handle that is not alive was used");
  StandinForgetHistory();
  EXPECT_EQ(HostDisposeHandle(nullptr), 1);
  EXPECT_EQ(Ledger().violations, 0);
  EXPECT_EQ(Ledger().handles, 1);
  EXPECT_EQ(HostDisposeHandle(live), 0);
}

TEST_F(Handles, AStaleOneIsRecognisedWhileOthersComeAndGo) {
  for (const size_t live : {0U, 120U, 250U, 2000U}) {
    std::vector<HostHandle> handles;
    for (size_t i = 0; i < live; ++i) handles.push_back(HostNewHandle(1));
    HostHandle stale = HostNewHandle(1);
    HostDisposeHandle(stale);
    for (size_t i = 0; i < 127; ++i) HostDisposeHandle(HostNewHandle(1));
    for (size_t i = 0; i < 1000; ++i) handles.push_back(HostNewHandle(1));
    EXPECT_EQ(std::ranges::count(handles, stale), 0) << live;
    EXPECT_TRUE(Violates([&] { EXPECT_EQ(HostDisposeHandle(stale), 1); })) << live;
    for (const HostHandle handle : handles) EXPECT_EQ(HostDisposeHandle(handle), 0);
  }
}

TEST_F(Handles, ImpossibleSizesAreRefused) {
  EXPECT_EQ(HostNewHandle(SIZE_MAX), nullptr);
  EXPECT_EQ(HostNewHandleClear(SIZE_MAX), nullptr);
  EXPECT_EQ(HostNewPtrClear(SIZE_MAX - 4), nullptr);
  HostHandle handle = HostNewHandle(4);
  EXPECT_EQ(HostSetHandleSize(handle, SIZE_MAX), 2);
  EXPECT_EQ(HostGetHandleSize(handle), 4U);
  EXPECT_EQ(HostDisposeHandle(handle), 0);
}

TEST_F(Handles, AreDistinctInAllThreadsAndMayDieInAnother) {
  constexpr size_t kThreads = 4;
  constexpr size_t kEach = 3000;
  std::vector<HostHandle> handles(kThreads * kEach);
  std::vector<std::thread> threads;
  for (size_t t = 0; t < kThreads; ++t) {
    threads.emplace_back([&handles, t] {
      for (size_t i = t * kEach; i < (t + 1) * kEach; ++i) {
        HostDisposeHandle(HostNewHandle(1));
        handles[i] = HostNewHandle(sizeof i);
        std::memcpy(BytesOf(handles[i]), &i, sizeof i);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(Ledger().handles, static_cast<int64_t>(handles.size()));
  for (size_t i = 0; i < handles.size(); ++i) {
    EXPECT_EQ(std::memcmp(BytesOf(handles[i]), &i, sizeof i), 0);
    EXPECT_EQ(HostDisposeHandle(handles[i]), 0);
  }
}

TEST_F(Handles, MovingChangesTheAddressAtEveryResize) {
  StandinMoveOnResize(true);
  HostHandle handle = HostNewHandle(32);
  for (const size_t size : {64U, 64U, 8U, 0U, 0U, 9U}) {
    const auto before = reinterpret_cast<uintptr_t>(BytesOf(handle));
    EXPECT_EQ(HostSetHandleSize(handle, size), 0);
    EXPECT_NE(reinterpret_cast<uintptr_t>(BytesOf(handle)), before) << size;
  }
  EXPECT_EQ(HostDisposeHandle(handle), 0);
}

TEST_F(Handles, TheEnvironmentTurnsMovingOn) {
  const char* pMove = std::getenv("TESSEL_STANDIN_MOVE");
  EXPECT_EQ(s_MovesAtStart, pMove != nullptr && std::string_view(pMove) == "1");
}

TEST_F(Strings, HoldExactlyTheBytesGiven) {
  HStr string = nullptr;
  for (const std::string_view text : {std::string_view("a\0b", 3), {"longer than that"}, {""}}) {
    ASSERT_EQ(HostStringFromPtr(&string, static_cast<int32_t>(text.size()), text.data()), 0);
    EXPECT_EQ((*string)->count, static_cast<int32_t>(text.size()));
    EXPECT_EQ(HostGetHandleSize(string), 4 + text.size());
    EXPECT_EQ(std::memcmp(BytesOf(string) + 4, text.data(), text.size()), 0);
  }
  EXPECT_EQ(HostStringFromPtr(nullptr, 1, "x"), 1);
  EXPECT_EQ(HostDisposeHandle(string), 0);
  HStr whole = StandinStringFromText("four", -1);
  EXPECT_EQ((*whole)->count, 4);
  EXPECT_EQ(HostDisposeHandle(whole), 0);
}

TEST_F(Strings, AFailureLeavesTheStringAsItWas) {
  HStr string = StandinStringFromText("old", -1);
  EXPECT_NE(HostStringFromPtr(&string, -1, "x"), 0);
  StandinFailAllocation(1);
  EXPECT_EQ(HostStringFromPtr(&string, 6, "longer"), 2);
  EXPECT_EQ((*string)->count, 3);
  EXPECT_EQ(std::memcmp(BytesOf(string) + 4, "old", 3), 0);
  EXPECT_EQ(HostDisposeHandle(string), 0);
  HStr none = nullptr;
  StandinFailAllocation(1);
  EXPECT_EQ(HostStringFromPtr(&none, 1, "x"), 2);
  EXPECT_EQ(none, nullptr);
}

TEST_F(Paths, KnowTheirKindAndGiveTheirText) {
  const std::array<std::pair<const char*, bool>, 3> kTexts{
      {{"dir/a file.xml", false}, {"", true}, {nullptr, true}}};
  for (const auto& [pText, isEmpty] : kTexts) {
    HostPath path = StandinPathFromText(pText);
    EXPECT_NE(HostIsAPath(path), 0);
    EXPECT_EQ(HostIsEmptyPath(path) != 0, isEmpty);
    HostHandle native = HostPathToNative(path);
    EXPECT_STREQ(reinterpret_cast<char*>(BytesOf(native)), isEmpty ? "" : pText);
    EXPECT_EQ(HostDisposeHandle(native), 0);
    EXPECT_EQ(StandinPathDispose(path), 0);
    EXPECT_EQ(HostIsAPath(path), 0);
    EXPECT_TRUE(Violates([&] { EXPECT_EQ(StandinPathDispose(path), 1); }));
    EXPECT_TRUE(Violates([&] { EXPECT_EQ(HostPathToNative(path), nullptr); }));
  }
  char foreign = 'x';
  EXPECT_EQ(HostIsAPath(nullptr), 0);
  EXPECT_EQ(HostIsAPath(reinterpret_cast<HostPath>(&foreign)), 0);
  EXPECT_EQ(StandinPathDispose(nullptr), 1);
}

// Makes one request of each of five kinds, a shrink between them, and returns the
// numbers of those that were refused.
std::vector<int> RefusedOfFive() {
  std::vector<int> refused;
  const auto note = [&](int number, bool granted) {
    if (!granted) refused.push_back(number);
  };
  HostHandle handle = HostNewHandle(4);
  note(1, handle != nullptr);
  HostHandle clear = HostNewHandleClear(4);
  note(2, clear != nullptr);
  HostHandle resized = handle != nullptr ? handle : clear;
  EXPECT_TRUE(resized == nullptr || HostSetHandleSize(resized, 2) == 0);
  note(3, resized != nullptr && HostSetHandleSize(resized, 8) == 0);
  note(4, HostNewPtrClear(4) != nullptr);
  HostPath path = StandinPathFromText("p");
  HostHandle native = HostPathToNative(path);
  note(5, native != nullptr);
  StandinPathDispose(path);
  for (const HostHandle value : {handle, clear, native}) HostDisposeHandle(value);
  return refused;
}

TEST_F(Faults, RefuseTheRequestWithTheNumber) {
  for (const bool moving : {false, true}) {
    StandinMoveOnResize(moving);
    for (int n = 1; n <= 5; ++n) {
      StandinForgetHistory();
      StandinFailAllocation(n);
      EXPECT_EQ(RefusedOfFive(), std::vector{n});
      EXPECT_EQ(Ledger().requests, 5);
      EXPECT_EQ(Ledger().refusals, 1);
      EXPECT_EQ(RefusedOfFive(), std::vector<int>{});
    }
  }
}

TEST_F(Faults, RefuseAllFromTheNumberOnUntilTurnedOff) {
  StandinFailAllocationsFrom(3);
  EXPECT_EQ(RefusedOfFive(), (std::vector{3, 4, 5}));
  EXPECT_EQ(RefusedOfFive(), (std::vector{1, 2, 3, 4, 5}));
  StandinFailAllocationsFrom(0);
  EXPECT_EQ(RefusedOfFive(), std::vector<int>{});
}

TEST_F(Faults, PointersAreClearAndDieTogether) {
  std::array<unsigned char, 33> zeros{};
  for (int i = 0; i < 3; ++i) {
    void* pBytes = HostNewPtrClear(zeros.size());
    EXPECT_EQ(std::memcmp(pBytes, zeros.data(), zeros.size()), 0);
    std::memset(pBytes, 1, zeros.size());
  }
  EXPECT_EQ(Ledger().pointers, 3);
  EXPECT_EQ(StandinDisposePointers(), 3U);
  EXPECT_EQ(StandinDisposePointers(), 0U);
}

HostMutex NewMutex(const char* pName) {
  HostMutex mutex = nullptr;
  HostMutexCreate(&mutex, pName);
  return mutex;
}

TEST_F(Mutexes, KeepThreadsApart) {
  HostMutex mutex = NewMutex("m");
  int64_t sum = 0;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 2000; ++i) {
        HostMutexAcquire(mutex);
        ++sum;
        HostMutexRelease(mutex);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(sum, 8000);
  EXPECT_EQ(Ledger().violations, 0);
  HostMutexDestroy(mutex);
}

TEST_F(Mutexes, MisuseIsCountedAndChangesNothing) {
  HostMutex mutex = NewMutex("m");
  HostMutexAcquire(mutex);
  EXPECT_TRUE(Violates([&] { HostMutexAcquire(mutex); }));
  EXPECT_TRUE(Violates([&] { OnOtherThread([&] { HostMutexRelease(mutex); }); }));
  EXPECT_TRUE(Violates([&] { HostMutexDestroy(mutex); }));
  StandinMutex state{};
  EXPECT_EQ(StandinReadMutexes(&state, 1), 1U);
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

TEST_F(Mutexes, AreListedByNameAndInOrderOfCreation) {
  HostMutex first = NewMutex("twin");
  HostMutex other = NewMutex("single");
  HostMutexDestroy(first);
  first = NewMutex("twin");
  HostMutex second = NewMutex("twin");
  EXPECT_EQ(StandinLiveMutexes("twin"), 2);
  EXPECT_EQ(StandinLiveMutexes("single"), 1);
  EXPECT_EQ(StandinLiveMutexes("none"), 0);
  EXPECT_EQ(StandinLiveMutexes(nullptr), 3);
  std::array<StandinMutex, 2> states{};
  EXPECT_EQ(StandinReadMutexes(states.data(), states.size()), 3U);
  EXPECT_STREQ(states[0].name, "single");
  EXPECT_STREQ(states[1].name, "twin");
  EXPECT_EQ(states[0].owner, 0U);
  for (const HostMutex mutex : {first, other, second}) HostMutexDestroy(mutex);
}

TEST_F(Mutexes, NestingIsRememberedAsPairsAndDepth) {
  const std::array kMutexes{NewMutex("a"), NewMutex("b"), NewMutex("c")};
  for (const HostMutex mutex : kMutexes) HostMutexAcquire(mutex);
  for (const HostMutex mutex : kMutexes) HostMutexRelease(mutex);
  HostMutexAcquire(kMutexes[2]);
  OnOtherThread([&] {
    HostMutexAcquire(kMutexes[0]);
    HostMutexRelease(kMutexes[0]);
  });
  HostMutexRelease(kMutexes[2]);
  std::array<StandinMutexPair, 9> pairs{};
  const size_t count = StandinReadMutexPairs(pairs.data(), pairs.size());
  std::set<std::string> found;
  for (size_t i = 0; i < count; ++i) found.insert(std::string(pairs[i].held) + pairs[i].taken);
  EXPECT_EQ(count, 3U);
  EXPECT_EQ(found, (std::set<std::string>{"ab", "ac", "bc"}));
  EXPECT_EQ(Ledger().deepest, 3);
  EXPECT_EQ(Ledger().violations, 0);
  StandinForgetHistory();
  EXPECT_EQ(StandinReadMutexPairs(nullptr, 0), 0U);
  EXPECT_EQ(Ledger().deepest, 0);
  for (const HostMutex mutex : kMutexes) HostMutexDestroy(mutex);
}

TEST_F(Mutexes, TraceTellsWhatHappenedInWhichThread) {
  StandinTraceStart();
  HostMutex mutex = NewMutex("m");
  HostMutexAcquire(mutex);
  HostMutexRelease(mutex);
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
  ASSERT_NE(self, other);
  const std::array<std::pair<StandinMutexAction, uint64_t>, 6> kExpected{
      {{StandinMutexCreated, self},
       {StandinMutexAcquired, self},
       {StandinMutexReleased, self},
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
