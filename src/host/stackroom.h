// How deep a recursion may still go.
#pragma once

#include <cstddef>

// What is left of the calling thread's stack, less a reserve for the way out; bytes.
// On a stack that is not the thread's own, a cautious guess.
std::size_t StackRoom();

// The end of that room, for a recursion that can be stopped on its way.
class CStackLimit {
 public:
  CStackLimit() : m_pLowest(Here() - StackRoom()) {}
  bool IsPassed() const { return Here() < m_pLowest; }

 private:
  static const char* Here() { return static_cast<const char*>(__builtin_frame_address(0)); }

  const char* m_pLowest;
};
