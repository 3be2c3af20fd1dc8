// Places for the objects behind the values that the host hands out.
//
// A value is the address of its slot. Slots are recycled but never go back to the
// heap, so any value at all can be tested for life without reading memory that
// may be gone: it must be the start of a slot, and the slot must be live. A slot
// that was put back rests until kRest more were put back behind it, so that a
// stale value is recognised for a while.
// Chunks double in size; a look-up compares with each of the few there are and
// takes no lock. Taking and putting back lock the calling thread's lane.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <new>
#include <type_traits>

#include "ledger.h"

template <class T>
class CSlotPool {
 public:
  // A slot that `fill` sets up before it goes live; null when the heap is
  // exhausted, and then `fill` is not called.
  template <class Fill>
  T* Take(Fill fill) {
    SSlot* pSlot = PopFree();
    if (pSlot == nullptr) pSlot = Grow();
    if (pSlot == nullptr) return nullptr;
    fill(pSlot->value);
    pSlot->live.store(true, std::memory_order_release);
    return &pSlot->value;
  }

  // The live object that a value stands for, or null.
  T* Find(const void* pValue) {
    SSlot* pSlot = SlotAt(pValue);
    return pSlot != nullptr && pSlot->live.load(std::memory_order_acquire) ? &pSlot->value
                                                                           : nullptr;
  }

  // Ends a value; `empty` frees what the object owns. False when it is not live.
  template <class Empty>
  bool Put(const void* pValue, Empty empty) {
    SSlot* pSlot = SlotAt(pValue);
    if (pSlot == nullptr || !pSlot->live.exchange(false, std::memory_order_acq_rel)) return false;
    empty(pSlot->value);
    m_Lanes[ThreadLane()].Push(pSlot);
    return true;
  }

  template <class Visit>
  void ForEachLive(Visit visit) {
    for (size_t chunk = 0; chunk < kChunks; ++chunk) {
      SSlot* pSlots = m_pChunks[chunk].load(std::memory_order_acquire);
      if (pSlots == nullptr) return;
      for (size_t i = 0; i < SlotsIn(chunk); ++i) {
        if (pSlots[i].live.load(std::memory_order_acquire)) visit(pSlots[i].value);
      }
    }
  }

 private:
  struct SSlot {
    T value;
    std::atomic<bool> live;
    SSlot* pNext;
  };
  static_assert(std::is_standard_layout_v<SSlot>, "a value's address must be its slot's");
  static_assert(std::is_trivially_destructible_v<SSlot>);

  // A queue of free slots, each put back no earlier than the one before it.
  struct alignas(kCacheLine) SLane {
    void Push(SSlot* pSlot) {
      const std::lock_guard lock(mutex);
      pSlot->pNext = nullptr;
      (count != 0 ? pLast->pNext : pFirst) = pSlot;
      pLast = pSlot;
      ++count;
    }
    // Slots that were never used need no rest.
    void PushFresh(SSlot* pSlots, size_t more) {
      const std::lock_guard lock(mutex);
      for (size_t i = 0; i + 1 < more; ++i) pSlots[i].pNext = &pSlots[i + 1];
      pSlots[more - 1].pNext = pFirst;
      if (count == 0) pLast = &pSlots[more - 1];
      pFirst = pSlots;
      count += more;
    }
    SSlot* Pop() {
      const std::lock_guard lock(mutex);
      if (count <= kRest) return nullptr;
      SSlot* pSlot = pFirst;
      pFirst = pSlot->pNext;
      --count;
      return pSlot;
    }

    std::mutex mutex;
    SSlot* pFirst = nullptr;
    SSlot* pLast = nullptr;
    size_t count = 0;
  };

  static constexpr size_t kRest = 128;
  static constexpr size_t kChunks = 32;
  static constexpr size_t SlotsIn(size_t chunk) { return size_t{256} << chunk; }

  SSlot* SlotAt(const void* pValue) {
    for (size_t chunk = 0; chunk < kChunks; ++chunk) {
      SSlot* pSlots = m_pChunks[chunk].load(std::memory_order_acquire);
      if (pSlots == nullptr) return nullptr;
      const uintptr_t offset =
          reinterpret_cast<uintptr_t>(pValue) - reinterpret_cast<uintptr_t>(pSlots);
      if (offset >= SlotsIn(chunk) * sizeof(SSlot)) continue;
      return offset % sizeof(SSlot) == 0 ? &pSlots[offset / sizeof(SSlot)] : nullptr;
    }
    return nullptr;
  }

  // Another thread's lane serves as well: one thread may take what another puts
  // back.
  SSlot* PopFree() {
    const size_t own = ThreadLane();
    for (size_t i = 0; i < kLanes; ++i) {
      if (SSlot* pSlot = m_Lanes[(own + i) % kLanes].Pop(); pSlot != nullptr) return pSlot;
    }
    return nullptr;
  }

  SSlot* Grow() {
    const std::lock_guard lock(m_Growth);
    if (m_ChunkCount == kChunks) return nullptr;
    const size_t count = SlotsIn(m_ChunkCount);
    SSlot* pSlots = new (std::nothrow) SSlot[count]();
    if (pSlots == nullptr) return nullptr;
    m_pChunks[m_ChunkCount++].store(pSlots, std::memory_order_release);
    m_Lanes[ThreadLane()].PushFresh(&pSlots[1], count - 1);
    return &pSlots[0];
  }

  std::atomic<SSlot*> m_pChunks[kChunks] = {};
  SLane m_Lanes[kLanes];
  std::mutex m_Growth;
  size_t m_ChunkCount = 0;  // guarded by m_Growth
};
