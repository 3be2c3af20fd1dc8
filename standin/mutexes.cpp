#include "hostexports.h"

#include <pthread.h>
#include <algorithm>
#include <atomic>
#include <cstring>
#include <vector>

#include "ledger.h"
#include "mutextrace.h"
#include "slotpool.h"

// The atomic members may be read by any thread at any time. `pHeldBefore`
// belongs to the owner: it chains the mutexes that the owner holds, latest first.
// Its slot is a power of two long, which makes finding it cheap.
struct alignas(2 * kCacheLine) HostMutexObject {
  pthread_mutex_t lock;
  std::atomic<uint64_t> owner;
  std::atomic<const char*> pName;
  std::atomic<uint64_t> number;  // grows with every mutex created
  HostMutexObject* pHeldBefore;

  const char* Name() const { return pName.load(std::memory_order_relaxed); }
  uint64_t Owner() const { return owner.load(std::memory_order_relaxed); }
};

namespace {

constinit CSlotPool<HostMutexObject> g_Mutexes;
constinit std::atomic<uint64_t> g_LastNumber{0};
constinit thread_local HostMutexObject* t_pHeld = nullptr;
constinit thread_local int64_t t_Depth = 0;

void Fill(HostMutexObject& object, const char* pName) {
  pthread_mutex_init(&object.lock, nullptr);
  object.owner.store(0, std::memory_order_relaxed);
  object.pName.store(pName, std::memory_order_relaxed);
  object.number.store(g_LastNumber.fetch_add(1) + 1, std::memory_order_relaxed);
  object.pHeldBefore = nullptr;
}

void ChainHeld(HostMutexObject& object) {
  object.owner.store(ThreadNumber(), std::memory_order_relaxed);
  for (const auto* pHeld = t_pHeld; pHeld != nullptr; pHeld = pHeld->pHeldBefore) {
    NoteMutexPair(pHeld->Name(), object.Name());
  }
  object.pHeldBefore = t_pHeld;
  t_pHeld = &object;
  NoteDepth(++t_Depth);
}

// Mutexes may be given up in any order.
void UnchainHeld(HostMutexObject& object) {
  HostMutexObject** ppHeld = &t_pHeld;
  while (*ppHeld != &object) ppHeld = &(*ppHeld)->pHeldBefore;
  *ppHeld = object.pHeldBefore;
  --t_Depth;
  object.owner.store(0, std::memory_order_relaxed);
}

std::vector<HostMutexObject*> LiveInOrder() {
  std::vector<HostMutexObject*> live;
  g_Mutexes.ForEachLive([&](HostMutexObject& object) { live.push_back(&object); });
  std::ranges::sort(live, {}, [](const auto* p) { return p->number.load(); });
  return live;
}

}  // namespace

void HostMutexCreate(HostMutex* mutex, const char* name) {
  const char* pName = KeptName(name);
  *mutex = g_Mutexes.Take([&](HostMutexObject& object) { Fill(object, pName); });
  if (*mutex == nullptr) return;
  Count(ECounter::Mutexes, 1);
  NoteMutexEvent(StandinMutexCreated, pName);
}

void HostMutexAcquire(HostMutex mutex) {
  HostMutexObject* pMutex = g_Mutexes.Find(mutex);
  if (pMutex == nullptr) return Violation("a mutex that is not alive was acquired");
  if (pMutex->Owner() == ThreadNumber()) return Violation("a mutex was acquired by its owner");
  pthread_mutex_lock(&pMutex->lock);
  ChainHeld(*pMutex);
  NoteMutexEvent(StandinMutexAcquired, pMutex->Name());
}

void HostMutexRelease(HostMutex mutex) {
  HostMutexObject* pMutex = g_Mutexes.Find(mutex);
  if (pMutex == nullptr) return Violation("a mutex that is not alive was released");
  if (pMutex->Owner() != ThreadNumber()) return Violation("a mutex was released by a non-owner");
  NoteMutexEvent(StandinMutexReleased, pMutex->Name());
  UnchainHeld(*pMutex);
  pthread_mutex_unlock(&pMutex->lock);
}

void HostMutexDestroy(HostMutex mutex) {
  HostMutexObject* pMutex = g_Mutexes.Find(mutex);
  if (pMutex == nullptr) return Violation("a mutex that is not alive was destroyed");
  if (pMutex->Owner() != 0) return Violation("a mutex was destroyed while it was held");
  NoteMutexEvent(StandinMutexDestroyed, pMutex->Name());
  g_Mutexes.Put(mutex, [](HostMutexObject& object) { pthread_mutex_destroy(&object.lock); });
  Count(ECounter::Mutexes, -1);
}

int64_t StandinLiveMutexes(const char* name) {
  int64_t count = 0;
  g_Mutexes.ForEachLive([&](const HostMutexObject& object) {
    if (name == nullptr || std::strcmp(object.Name(), name) == 0) ++count;
  });
  return count;
}

size_t StandinReadMutexes(StandinMutex* mutexes, size_t capacity) {
  const auto live = LiveInOrder();
  for (size_t i = 0; i < std::min(live.size(), capacity); ++i) {
    mutexes[i] = {live[i]->Name(), live[i]->Owner()};
  }
  return live.size();
}
