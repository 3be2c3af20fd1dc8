#include "hostexports.h"

#include "ledger.h"

#include <atomic>

#include "mutextrace.h"

constinit thread_local uint64_t t_Thread = 0;
constinit std::atomic<int64_t> g_Deepest{0};

namespace {

constexpr size_t kCounters = static_cast<size_t>(ECounter::End);

// A thing may be born in one lane and die in another: only the sum over all
// lanes means something.
struct alignas(kCacheLine) SLane {
  std::atomic<int64_t> counters[kCounters];
};

// The first threads of a process have a lane each, which nobody else writes to: a
// plain addition is enough there. All later ones share the rest.
constexpr size_t kOwnLanes = 56;
constexpr size_t kAllLanes = kOwnLanes + kLanes;

constinit SLane g_Lanes[kAllLanes] = {};
constinit std::atomic<const char*> g_pLastViolation{nullptr};
constinit std::atomic<uint64_t> g_LastThread{0};

std::atomic<int64_t>& InLane(size_t lane, ECounter counter) {
  return g_Lanes[lane].counters[static_cast<size_t>(counter)];
}

int64_t Total(ECounter counter) {
  int64_t total = 0;
  for (size_t lane = 0; lane < kAllLanes; ++lane) {
    total += InLane(lane, counter).load(std::memory_order_relaxed);
  }
  return total;
}

// Of threads at rest: what one counts meanwhile may bring its count back.
void Clear(ECounter counter) {
  for (size_t lane = 0; lane < kAllLanes; ++lane) {
    InLane(lane, counter).store(0, std::memory_order_relaxed);
  }
}

}  // namespace

uint64_t GiveThreadNumber() {
  return t_Thread = g_LastThread.fetch_add(1, std::memory_order_relaxed) + 1;
}

void Count(ECounter counter, int64_t change) {
  const uint64_t thread = ThreadNumber();
  if (thread <= kOwnLanes) {
    std::atomic<int64_t>& own = InLane(static_cast<size_t>(thread - 1), counter);
    own.store(own.load(std::memory_order_relaxed) + change, std::memory_order_relaxed);
  } else {
    InLane(kOwnLanes + ThreadLane(), counter).fetch_add(change, std::memory_order_relaxed);
  }
}

void Violation(const char* pText) {
  g_pLastViolation.store(pText, std::memory_order_relaxed);
  Count(ECounter::Violations, 1);
}

uint64_t StandinThread() { return ThreadNumber(); }

void StandinReadLedger(StandinLedger* ledger) {
  *ledger = {.handles = Total(ECounter::Handles),
             .handleBytes = Total(ECounter::HandleBytes),
             .pointers = Total(ECounter::Pointers),
             .paths = Total(ECounter::Paths),
             .mutexes = Total(ECounter::Mutexes),
             .requests = Total(ECounter::Requests),
             .refusals = Total(ECounter::Refusals),
             .violations = Total(ECounter::Violations),
             .deepest = g_Deepest.load(std::memory_order_relaxed)};
}

const char* StandinLastViolation() { return g_pLastViolation.load(std::memory_order_relaxed); }

void StandinForgetHistory() {
  Clear(ECounter::Requests);
  Clear(ECounter::Refusals);
  Clear(ECounter::Violations);
  g_Deepest.store(0, std::memory_order_relaxed);
  g_pLastViolation.store(nullptr, std::memory_order_relaxed);
  ForgetMutexPairs();
}
