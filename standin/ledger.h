// Counters of the stand-in host, and the numbers of its threads.
//
// Every state of this library is constant-initialised and never destroyed: the
// host is called by initialisers that run before its own and by destructors that
// run after them.
#pragma once

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

uint64_t ThreadNumber();
inline size_t ThreadLane() { return static_cast<size_t>(ThreadNumber() % kLanes); }

void Count(ECounter counter, int64_t change);

// `pText` must be a literal.
void Violation(const char* pText);

// The calling thread holds `depth` mutexes now.
void NoteDepth(int64_t depth);
