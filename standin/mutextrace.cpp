#include "mutextrace.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "ledger.h"

constinit std::atomic<bool> g_IsTracing{false};

namespace {

using TPair = std::pair<const char*, const char*>;

// Guarded by g_TraceMutex.
struct SMemory {
  std::set<std::string, std::less<>> names;
  std::set<TPair> pairs;
  std::vector<StandinMutexEvent> events;
};

constinit std::mutex g_TraceMutex;

// Kept to the end of the process and past every destructor.
SMemory& Memory() {
  static SMemory& s_Memory = *new SMemory;
  return s_Memory;
}

}  // namespace

const char* KeptName(const char* pName) noexcept {
  const std::lock_guard lock(g_TraceMutex);
  return Memory().names.emplace(pName != nullptr ? pName : "").first->c_str();
}

void KeepMutexEvent(StandinMutexAction action, const char* pName) noexcept {
  const std::lock_guard lock(g_TraceMutex);
  Memory().events.push_back({action, pName, ThreadNumber()});
}

void NoteMutexPair(const char* pHeld, const char* pTaken) noexcept {
  const std::lock_guard lock(g_TraceMutex);
  Memory().pairs.emplace(pHeld, pTaken);
}

void ForgetMutexPairs() noexcept {
  const std::lock_guard lock(g_TraceMutex);
  Memory().pairs.clear();
}

size_t StandinReadMutexPairs(StandinMutexPair* pairs, size_t capacity) {
  const std::lock_guard lock(g_TraceMutex);
  size_t count = 0;
  for (const auto& [pHeld, pTaken] : Memory().pairs) {
    if (count < capacity) pairs[count] = {pHeld, pTaken};
    ++count;
  }
  return count;
}

size_t StandinReadTrace(StandinMutexEvent* events, size_t capacity) {
  const std::lock_guard lock(g_TraceMutex);
  const auto& all = Memory().events;
  std::copy_n(all.begin(), std::min(all.size(), capacity), events);
  return all.size();
}

void StandinTraceStart() {
  const std::lock_guard lock(g_TraceMutex);
  Memory().events.clear();
  g_IsTracing.store(true, std::memory_order_relaxed);
}

void StandinTraceStop() { g_IsTracing.store(false, std::memory_order_relaxed); }
