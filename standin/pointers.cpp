#include "hostexports.h"

#include <cstdlib>
#include <limits>
#include <mutex>

#include "faults.h"
#include "ledger.h"

namespace {

// Stands before the bytes of each pointer; as large as the strictest alignment.
struct alignas(std::max_align_t) SPointer {
  SPointer* pNext;
};

constinit std::mutex g_PointerMutex;
constinit SPointer* g_pFirst = nullptr;  // guarded by g_PointerMutex

SPointer* DetachAll() {
  const std::lock_guard lock(g_PointerMutex);
  SPointer* pAll = g_pFirst;
  g_pFirst = nullptr;
  return pAll;
}

__attribute__((destructor)) void DisposeAtEnd() { StandinDisposePointers(); }

}  // namespace

void* HostNewPtrClear(size_t size) {
  constexpr size_t kMost = std::numeric_limits<ptrdiff_t>::max() - sizeof(SPointer);
  if (RefuseAllocation() || size > kMost) return nullptr;
  auto* pPointer = static_cast<SPointer*>(std::calloc(1, sizeof(SPointer) + size));
  if (pPointer == nullptr) return nullptr;
  Count(ECounter::Pointers, 1);
  const std::lock_guard lock(g_PointerMutex);
  pPointer->pNext = g_pFirst;
  g_pFirst = pPointer;
  return pPointer + 1;
}

size_t StandinDisposePointers() {
  size_t count = 0;
  for (SPointer* pPointer = DetachAll(); pPointer != nullptr; ++count) {
    SPointer* pNext = pPointer->pNext;
    std::free(pPointer);
    pPointer = pNext;
  }
  Count(ECounter::Pointers, -static_cast<int64_t>(count));
  return count;
}
