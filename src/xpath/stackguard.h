// A check against running out of stack.
#pragma once

#include <cstdint>

// What a recursion may still use of the calling thread's stack. Xalan-C goes along
// the steps of a path and down the text of an element by recursion, so the length
// of the one and the depth of the other are bounded by the evaluating thread.
class CStackGuard {
 public:
  CStackGuard();
  // Throws an XSLException when too little is left to go deeper.
  void Check() const {
    if (Here() < m_Floor) Fail();
  }

 private:
  static std::uintptr_t Here() {
    return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
  }
  [[noreturn]] static void Fail();

  std::uintptr_t m_Floor;
};
