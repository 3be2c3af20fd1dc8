// What the stand-in host remembers about its mutexes beyond their lives. Names
// are compared by address: all come from KeptName. noexcept, because the host
// interface cannot report that there was no memory to remember with.
#pragma once

#include "hostexports.h"

#include <atomic>

// A copy of the name that is never freed, the same one for equal names.
const char* KeptName(const char* pName) noexcept;

extern constinit std::atomic<bool> g_IsTracing;
void KeepMutexEvent(StandinMutexAction action, const char* pName) noexcept;
inline void NoteMutexEvent(StandinMutexAction action, const char* pName) noexcept {
  if (g_IsTracing.load(std::memory_order_relaxed)) KeepMutexEvent(action, pName);
}

void NoteMutexPair(const char* pHeld, const char* pTaken) noexcept;
void ForgetMutexPairs() noexcept;
