// Slots by id.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <utility>

// Ids are issued in ascending order, so the slots of neighbours share a page: a
// look-up costs a search among pages, not among ids. A page is freed when its last
// id goes, but never the newest one, which the next ids are for; so the table holds
// no more than its ids need, however many have come and gone. (Hash buckets stay, 8
// bytes for 256 ids open at once.)
//
// A default-made slot is a free one; Slot::IsFree tells, Slot::SetFree makes it one.
template <class Slot>
class CIdTable {
 public:
  // Null for an id without slot.
  Slot* Find(unsigned long id) const {
    CPage* pPage = PageOf(id);
    if (pPage == nullptr) return nullptr;
    Slot& slot = pPage->m_Slots[id % kPageSize];
    return slot.IsFree() ? nullptr : &slot;
  }

  // The place for the newest id, still free. May throw; Occupy does not.
  Slot& Reserve(unsigned long id) {
    if (m_pNewest == nullptr || id / kPageSize != m_NewestPage) OpenPage(id / kPageSize);
    return m_pNewest->m_Slots[id % kPageSize];
  }

  // Fills the place that was reserved last.
  Slot& Occupy(unsigned long id, const Slot& slot) noexcept {
    ++m_pNewest->m_Used;
    return m_pNewest->m_Slots[id % kPageSize] = slot;
  }

  void Erase(unsigned long id) {
    CPage* pPage = PageOf(id);
    pPage->m_Slots[id % kPageSize].SetFree();
    if (--pPage->m_Used == 0 && pPage != m_pNewest) ClosePage(id / kPageSize);
  }

 private:
  static constexpr unsigned long kPageSize = 256;

  struct CPage {
    std::array<Slot, kPageSize> m_Slots{};
    unsigned m_Used = 0;
  };

  // Calls for neighbours come in a row: the page of the last one is at hand.
  CPage* PageOf(unsigned long id) const {
    const unsigned long number = id / kPageSize;
    if (m_pLast != nullptr && number == m_LastPage) return m_pLast;
    const auto found = m_Pages.find(number);
    if (found == m_Pages.end()) return nullptr;
    m_LastPage = number;
    return m_pLast = found->second.get();
  }

  void OpenPage(unsigned long number) {
    auto fresh = std::make_unique<CPage>();
    const auto [entry, isNew] = m_Pages.try_emplace(number, std::move(fresh));
    CPage* pLeft = std::exchange(m_pNewest, entry->second.get());
    const unsigned long left = std::exchange(m_NewestPage, number);
    if (pLeft != nullptr && pLeft->m_Used == 0) ClosePage(left);
  }

  void ClosePage(unsigned long number) {
    m_Pages.erase(number);
    if (number == m_LastPage) m_pLast = nullptr;
  }

  std::unordered_map<unsigned long, std::unique_ptr<CPage>> m_Pages;
  CPage* m_pNewest = nullptr;
  unsigned long m_NewestPage = 0;
  mutable CPage* m_pLast = nullptr;
  mutable unsigned long m_LastPage = 0;
};
