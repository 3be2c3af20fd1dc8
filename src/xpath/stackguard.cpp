#include "xpath/stackguard.h"

#include <pthread.h>

#include <xalanc/XPath/XalanXPathException.hpp>
#include <xercesc/util/PlatformUtils.hpp>

namespace {

constexpr std::uintptr_t kReserve = 64 * 1024;       // for the way out: bytes
constexpr std::uintptr_t kUnknownStack = 96 * 1024;  // on a stack that is not the thread's: bytes

struct CStack {
  std::uintptr_t m_low;
  std::uintptr_t m_high;
};

CStack ThreadStack() {
  CStack stack{0, 0};
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return stack;
  void* pLow = nullptr;
  std::size_t size = 0;
  if (pthread_attr_getstack(&attributes, &pLow, &size) == 0) {
    stack.m_low = reinterpret_cast<std::uintptr_t>(pLow);
    stack.m_high = stack.m_low + size;
  }
  pthread_attr_destroy(&attributes);
  return stack;
}

}  // namespace

CStackGuard::CStackGuard() {
  // Asking costs a read of /proc on the main thread, so once per thread.
  thread_local const CStack s_stack = ThreadStack();
  const std::uintptr_t here = Here();
  const bool onThreadStack = here >= s_stack.m_low && here < s_stack.m_high;
  m_floor = onThreadStack ? s_stack.m_low + kReserve : here - kUnknownStack;
}

void CStackGuard::Fail() {
  xercesc::MemoryManager& memory = *xercesc::XMLPlatformUtils::fgMemoryManager;
  throw xalanc::XalanXPathException(
      xalanc::XalanDOMString("The evaluation goes too deep for this thread's stack.", memory),
      memory);
}
