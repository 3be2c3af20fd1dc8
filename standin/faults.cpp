#include "hostexports.h"

#include "faults.h"

#include <atomic>
#include <cstdlib>
#include <mutex>
#include <string_view>

#include "ledger.h"

namespace {

// Read without the mutex, so that only a process that ordered faults waits.
constinit std::atomic<bool> g_Armed{false};
constinit std::atomic<bool> g_Moving{false};

constinit std::mutex g_FaultMutex;
// Guarded by g_FaultMutex: the requests up to and including the first refused one, and
// whether it is also the last.
constinit int64_t g_Remaining = 0;
constinit bool g_Once = false;

void Arm(int64_t n, bool once) {
  const std::lock_guard lock(g_FaultMutex);
  g_Remaining = n;
  g_Once = once;
  g_Armed.store(n > 0, std::memory_order_relaxed);
}

bool IsDue() {
  const std::lock_guard lock(g_FaultMutex);
  if (!g_Armed.load(std::memory_order_relaxed)) return false;
  if (g_Remaining > 1) {
    --g_Remaining;
    return false;
  }
  g_Armed.store(!g_Once, std::memory_order_relaxed);
  return true;
}

__attribute__((constructor)) void ReadEnvironment() {
  const char* pMove = std::getenv("TESSEL_STANDIN_MOVE");
  const std::string_view move = pMove != nullptr ? pMove : "";
  if (!move.empty() && move != "0") StandinMoveOnResize(true);
}

}  // namespace

bool RefuseAllocation() {
  Count(ECounter::Requests, 1);
  if (!g_Armed.load(std::memory_order_relaxed) || !IsDue()) return false;
  Count(ECounter::Refusals, 1);
  return true;
}

bool Moving() { return g_Moving.load(std::memory_order_relaxed); }

void StandinFailAllocation(int64_t n) { Arm(n, true); }

void StandinFailAllocationsFrom(int64_t n) { Arm(n, false); }

void StandinMoveOnResize(bool on) { g_Moving.store(on, std::memory_order_relaxed); }
