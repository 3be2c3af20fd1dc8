// Reference ids for the objects of one kind.
#pragma once

#include <cstdint>
#include <span>

#include "dom/lists.h"
#include "dom/look.h"
#include "host/hostmutex.h"
#include "registry/holdings.h"
#include "registry/idtable.h"
#include "registry/pointerindex.h"

// What the exported data objects are made of is visible outside the library.
#define TESSEL_DATA __attribute__((visibility("default")))

// What every registry keeps for an id.
template <class T>
struct CSessSlot {
  T* m_pObject = nullptr;
  int32_t m_RefCount = 0;

  bool IsFree() const { return m_RefCount == 0; }
  void SetFree() { m_RefCount = 0; }
};

// What is remembered of reading a collection: of a list the place.
template <class T>
struct CReading {
  bool operator==(const CReading&) const = default;
};
template <>
struct CReading<xercesc::DOMNodeList> : dom::CPlace {};

// What a registry of collections keeps besides: the node whose memory a collection lives
// and dies with, and the document of that node. One without never dies.
template <class T>
struct CHeldSlot : CSessSlot<T> {
  const xercesc::DOMNode* m_pHolder = nullptr;
  const xercesc::DOMDocument* m_pTree = nullptr;
  [[no_unique_address]] CReading<T> m_Reading{};
};

// Ids by the addresses of the objects.
template <class T>
class CObjectIndex {
 public:
  unsigned long Find(const T& object) const { return m_Ids.Find(&object); }
  // When it throws nothing has changed.
  void Insert(const CSessSlot<T>& slot, unsigned long id) { m_Ids.Insert(slot.m_pObject, id); }
  void Erase(const CSessSlot<T>& slot) { m_Ids.Erase(slot.m_pObject); }

 private:
  CPointerIndex m_Ids;
};

// What a registry keeps for an id, and how it finds the id of an object. An index may
// give an id that the object has no more, or 0 for none; the slot of the id tells.
template <class T>
struct CKept {
  using Slot = CHeldSlot<T>;
  using Index = CObjectIndex<T>;
};

// A registered collection with the node that holds it; null for none.
template <class T>
struct CHeld {
  T* m_pCollection = nullptr;
  xercesc::DOMNode* m_pHolder = nullptr;
  [[no_unique_address]] CReading<T> m_Reading{};
};

// Gives each registered pointer an id and counts how often that id was handed
// out; the entry goes when as many hand-outs have come back. Objects are
// borrowed: a registry never frees one.
//
// Invariants, under m_Mutex:
// - m_PtrToSess leads from the slots' objects to their ids. The id of an object that is
//   gone is withdrawn: it is unknown from then on, as if it had been closed.
// - A slot that is in use has a count of at least 1.
// - Ids only grow; none is issued twice.
// A registration that runs out of memory leaves the registry as it was.
template <class T>
class TESSEL_DATA CPtrSessMap {
 public:
  explicit CPtrSessMap(const char* pMutexName) : m_Mutex(pMutexName) {}
  virtual ~CPtrSessMap() = default;
  CPtrSessMap(const CPtrSessMap&) = delete;
  CPtrSessMap& operator=(const CPtrSessMap&) = delete;

  // Registers p, or counts one more hand-out of it. 0 for null.
  unsigned long Insert(T* p) {
    CHostLock lock(m_Mutex);
    if (p == nullptr) return 0;
    if (const unsigned long known = CountAgain(p)) return known;
    CSlot slot;
    slot.m_pObject = p;
    return Register(slot);
  }

  // As Insert, for a collection that goes when its holder goes.
  unsigned long InsertHeld(const CHeld<T>& held) {
    if (held.m_pHolder == nullptr) return Insert(held.m_pCollection);
    CSlot slot;
    slot.m_pHolder = held.m_pHolder;
    slot.m_pTree = dom::TreeOf(*held.m_pHolder);
    CHostLock lock(m_Mutex);
    if (held.m_pCollection == nullptr) return 0;
    if (const unsigned long known = CountAgain(held.m_pCollection)) return known;
    m_Holdings.Add(slot.m_pTree, slot.m_pHolder, m_LastSess + 1);
    dom::Mark(*held.m_pHolder, dom::kHasCollection);
    slot.m_pObject = held.m_pCollection;
    return Register(slot);
  }

  // As GetPtrBySess, with the holder and with what the last reading left.
  CHeld<T> GetHeldBySess(unsigned long id) {
    CHostLock lock(m_Mutex);
    const CSlot* pSlot = m_Slots.Find(id);
    if (pSlot == nullptr) return {};
    return {pSlot->m_pObject, const_cast<xercesc::DOMNode*>(pSlot->m_pHolder), pSlot->m_Reading};
  }

  // Leaves what a reading found for the next one.
  void KeepReading(unsigned long id, const CReading<T>& reading) {
    CHostLock lock(m_Mutex);
    if (CSlot* pSlot = m_Slots.Find(id)) pSlot->m_Reading = reading;
  }

  // Takes back the ids of the collections of these nodes.
  void WithdrawHeldBy(std::span<xercesc::DOMNode* const> holders) noexcept {
    CHostLock lock(m_Mutex);
    for (const xercesc::DOMNode* pHolder : holders) WithdrawHeldBy(*pHolder);
  }

  // The same for all collections of a document that is about to go.
  void WithdrawHeldIn(const xercesc::DOMDocument& document) noexcept {
    CHostLock lock(m_Mutex);
    m_Holdings.TakeOf(&document, Withdrawal());
    if (const xercesc::DOMNode* pType = document.getDoctype()) WithdrawHeldBy(*pType);
  }

  // Takes one hand-out back; true when it was the last and the entry is gone.
  bool DeleteBySess(unsigned long id) {
    CHostLock lock(m_Mutex);
    CSlot* pSlot = m_Slots.Find(id);
    if (pSlot == nullptr || !CountBack(*pSlot)) return false;
    Erase(id, *pSlot);
    return true;
  }

  // The object of an id, null for 0 and an unknown id. The caller
  // uses it unlocked: no other thread may close the same id meanwhile.
  T* GetPtrBySess(unsigned long id) {
    CHostLock lock(m_Mutex);
    const CSlot* pSlot = m_Slots.Find(id);
    return pSlot != nullptr ? pSlot->m_pObject : nullptr;
  }

  // What the closing functions do. Contract: the id is looked up first, which a host sees
  // as a lock of its own.
  void CloseKnown(unsigned long id) {
    if (GetPtrBySess(id) != nullptr) DeleteBySess(id);
  }

  // How many ids name an object at the moment.
  size_t LiveCount() {
    CHostLock lock(m_Mutex);
    return m_Slots.Count();
  }

 protected:
  using CSlot = typename CKept<T>::Slot;
  using CIndex = typename CKept<T>::Index;

  // The slot of an object's id; null for an object without one.
  CSlot* SlotOf(T& object, unsigned long id) TESSEL_REQUIRES(m_Mutex) {
    CSlot* pSlot = id != 0 ? m_Slots.Find(id) : nullptr;
    return pSlot != nullptr && pSlot->m_pObject == &object ? pSlot : nullptr;
  }

  // The id of a known object with one more hand-out, 0 for an unknown one.
  unsigned long CountAgain(T* p) TESSEL_REQUIRES(m_Mutex) {
    const unsigned long id = m_PtrToSess.Find(*p);
    CSlot* pSlot = SlotOf(*p, id);
    if (pSlot == nullptr) return 0;
    ++pSlot->m_RefCount;
    return id;
  }

  // `slot` holds all but the count.
  unsigned long Register(CSlot& slot) TESSEL_REQUIRES(m_Mutex) {
    const unsigned long id = NextId();
    m_PtrToSess.Insert(slot, id);
    Issue(id, slot);
    return id;
  }

  // The id that is issued next. May throw; issuing it does not.
  unsigned long NextId() TESSEL_REQUIRES(m_Mutex) {
    m_Slots.Reserve(m_LastSess + 1);
    return m_LastSess + 1;
  }
  void Issue(unsigned long id, CSlot& slot) noexcept TESSEL_REQUIRES(m_Mutex) {
    m_LastSess = id;
    slot.m_RefCount = 1;
    m_Slots.Occupy(id, slot);
  }

  void Erase(unsigned long id, const CSlot& slot) TESSEL_REQUIRES(m_Mutex) {
    if constexpr (requires { slot.m_pHolder; }) {
      if (slot.m_pHolder != nullptr) m_Holdings.Remove(slot.m_pTree, slot.m_pHolder, id);
    }
    m_PtrToSess.Erase(slot);
    m_Slots.Erase(id);
  }

  // True when the last hand-out of a live object comes back; the slot is then the
  // caller's to erase.
  static bool CountBack(CSlot& slot) {
    if (slot.m_pObject == nullptr) return false;
    if (slot.m_RefCount == 1) return true;
    --slot.m_RefCount;
    return false;
  }

  CIndex m_PtrToSess TESSEL_GUARDED_BY(m_Mutex);
  CIdTable<CSlot> m_Slots TESSEL_GUARDED_BY(m_Mutex);
  CHostMutex m_Mutex;

 private:
  // A document type knew no document while it was free.
  void WithdrawHeldBy(const xercesc::DOMNode& holder) TESSEL_REQUIRES(m_Mutex) {
    m_Holdings.TakeOf(dom::TreeOf(holder), &holder, Withdrawal());
    m_Holdings.TakeOf(nullptr, &holder, Withdrawal());
  }

  // Takes back the id of a holding. A registration that failed leaves a holding without a
  // slot of its own.
  struct CWithdrawal {
    void operator()(const xercesc::DOMNode* pHolder, unsigned long id) const {
      const CSlot* pSlot = m_Slots.Find(id);
      if (pSlot == nullptr || pSlot->m_pHolder != pHolder) return;
      m_Index.Erase(*pSlot);
      m_Slots.Erase(id);
    }
    CIndex& m_Index;
    CIdTable<CSlot>& m_Slots;
  };
  CWithdrawal Withdrawal() TESSEL_REQUIRES(m_Mutex) { return {m_PtrToSess, m_Slots}; }

  CHoldings m_Holdings TESSEL_GUARDED_BY(m_Mutex);
  unsigned long m_LastSess TESSEL_GUARDED_BY(m_Mutex) = 0;
};
