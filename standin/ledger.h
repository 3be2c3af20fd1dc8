// Counters of the stand-in host, and the numbers of its threads.
//
// Every state of this library is constant-initialised and never destroyed: the
// host is called by initialisers that run before its own and by destructors that
// run after them.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

enum class ECounter : uint8_t {
  Handles,
  HandleBytes,
  Pointers,
  Paths,
  Mutexes,
  Requests,
  Refusals,
  Violations,
  End
};

// Threads share this many copies of what every call touches, so that they seldom
// wait for each other.
inline constexpr size_t kLanes = 8;
inline constexpr size_t kCacheLine = 64;

// 0 until the thread asks for its number.
extern constinit thread_local uint64_t t_Thread;
uint64_t GiveThreadNumber();

inline uint64_t ThreadNumber() { return t_Thread != 0 ? t_Thread : GiveThreadNumber(); }
inline size_t ThreadLane() { return static_cast<size_t>(ThreadNumber() % kLanes); }

void Count(ECounter counter, int64_t change);

// `pText` must be a literal.
void Violation(const char* pText);

// The most mutexes that a thread has held at once.
extern constinit std::atomic<int64_t> g_Deepest;

// The calling thread holds `depth` mutexes now.
inline void NoteDepth(int64_t depth) {
  int64_t deepest = g_Deepest.load(std::memory_order_relaxed);
  while (depth > deepest &&
         !g_Deepest.compare_exchange_weak(deepest, depth, std::memory_order_relaxed)) {
  }
}
