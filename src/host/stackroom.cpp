#include "host/stackroom.h"

#include <pthread.h>

#include <cstdint>

namespace {

constexpr std::size_t kReserve = std::size_t{64} * 1024;
constexpr std::size_t kGuess = std::size_t{96} * 1024;

struct CStack {
  std::uintptr_t m_Low = 0;
  std::uintptr_t m_High = 0;
};

CStack ThreadStack() {
  CStack stack;
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return stack;
  void* pLow = nullptr;
  std::size_t size = 0;
  if (pthread_attr_getstack(&attributes, &pLow, &size) == 0) {
    stack.m_Low = reinterpret_cast<std::uintptr_t>(pLow);
    stack.m_High = stack.m_Low + size;
  }
  pthread_attr_destroy(&attributes);
  return stack;
}

}  // namespace

std::size_t StackRoom() {
  // Asking costs a read of /proc on the main thread, so once per thread.
  thread_local const CStack s_Stack = ThreadStack();
  const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
  if (here < s_Stack.m_Low || here >= s_Stack.m_High) return kGuess;
  const std::size_t left = here - s_Stack.m_Low;
  return left > kReserve ? left - kReserve : 0;
}
