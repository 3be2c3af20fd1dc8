// Slots by id.
#pragma once

#include <absl/container/btree_map.h>

#include <array>
#include <cstdint>
#include <memory>

// Ids are issued in ascending order, so the slots of neighbours share a page: a
// look-up costs a search among pages, not among ids. A page is freed when its last
// id goes, but never the newest one, which the next ids are for; so the table holds
// no more than its ids need, however many have come and gone.
//
// A default-made slot is a free one; Slot::IsFree tells.
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

  // The place for a new id, still free. May throw; Occupy does not.
  Slot& Reserve(unsigned long id) {
    std::unique_ptr<CPage>& page = m_Pages[id / kPageSize];
    if (page == nullptr) page = std::make_unique<CPage>();
    return page->m_Slots[id % kPageSize];
  }

  // Fills the place that was reserved for the newest id.
  void Occupy(unsigned long id, const Slot& slot) noexcept {
    CPage* pPage = PageOf(id);
    pPage->m_Slots[id % kPageSize] = slot;
    ++pPage->m_Used;
    if (id / kPageSize != m_NewestPage) {
      const unsigned long left = m_NewestPage;
      m_NewestPage = id / kPageSize;
      FreeIfUnused(left);
    }
  }

  void Erase(unsigned long id) {
    CPage* pPage = PageOf(id);
    pPage->m_Slots[id % kPageSize] = Slot{};
    --pPage->m_Used;
    FreeIfUnused(id / kPageSize);
  }

 private:
  static constexpr unsigned long kPageSize = 256;

  struct CPage {
    std::array<Slot, kPageSize> m_Slots{};
    unsigned m_Used = 0;
  };

  CPage* PageOf(unsigned long id) const {
    const auto found = m_Pages.find(id / kPageSize);
    return found != m_Pages.end() ? found->second.get() : nullptr;
  }

  void FreeIfUnused(unsigned long page) {
    if (page == m_NewestPage) return;
    const auto found = m_Pages.find(page);
    if (found != m_Pages.end() && found->second->m_Used == 0) m_Pages.erase(found);
  }

  absl::btree_map<unsigned long, std::unique_ptr<CPage>> m_Pages;
  unsigned long m_NewestPage = 0;
};
