// Slots by id.
#pragma once

#include <absl/container/btree_map.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

// Ids are issued in ascending order, so the slots of neighbours share a page, and the
// pages of neighbours a shelf: a look-up costs a search among shelves, of which there is
// one for a quarter of a million ids. A page is freed when its last id goes, but never the
// newest one, which the next ids are for, and a shelf when its last page goes; so the table
// holds no more than its ids need, however many have come and gone.
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
    ++m_Count;
    return m_pNewest->m_Slots[id % kPageSize] = slot;
  }

  void Erase(unsigned long id) {
    CPage* pPage = PageOf(id);
    pPage->m_Slots[id % kPageSize].SetFree();
    --m_Count;
    if (--pPage->m_Used == 0 && pPage != m_pNewest) ClosePage(id / kPageSize);
  }

  // How many slots are in use.
  size_t Count() const { return m_Count; }

 private:
  static constexpr unsigned long kPageSize = 256;
  static constexpr unsigned long kShelfSize = 1024;  // pages

  struct CPage {
    std::array<Slot, kPageSize> m_Slots{};
    unsigned m_Used = 0;
  };
  struct CShelf {
    std::array<std::unique_ptr<CPage>, kShelfSize> m_Pages;
    unsigned m_Used = 0;
  };

  struct CRecent {
    unsigned long m_Number = 0;
    CPage* m_pPage = nullptr;
  };

  // Calls for neighbours come in a row, and between them for new ids and for one that stays
  // the same, such as a parent's: the newest page is at hand, and two more.
  CPage* PageOf(unsigned long id) const {
    const unsigned long number = id / kPageSize;
    if (m_pNewest != nullptr && number == m_NewestPage) return m_pNewest;
    for (const CRecent& recent : m_Recent) {
      if (recent.m_Number == number && recent.m_pPage != nullptr) return recent.m_pPage;
    }
    return Search(number);
  }

  CPage* Search(unsigned long number) const {
    const auto shelf = m_Shelves.find(number / kShelfSize);
    if (shelf == m_Shelves.end()) return nullptr;
    CPage* pPage = shelf->second->m_Pages[number % kShelfSize].get();
    if (pPage == nullptr) return nullptr;
    m_Recent[m_Oldest] = {number, pPage};
    m_Oldest = 1 - m_Oldest;
    return pPage;
  }

  // No page has the number yet.
  void OpenPage(unsigned long number) {
    auto fresh = std::make_unique<CPage>();
    auto shelf = m_Shelves.find(number / kShelfSize);
    if (shelf == m_Shelves.end()) {
      auto pFresh = std::make_unique<CShelf>();
      shelf = m_Shelves.emplace(number / kShelfSize, std::move(pFresh)).first;
    }
    CPage* pLeft = std::exchange(m_pNewest, fresh.get());
    const unsigned long left = std::exchange(m_NewestPage, number);
    shelf->second->m_Pages[number % kShelfSize] = std::move(fresh);
    ++shelf->second->m_Used;
    if (pLeft != nullptr && pLeft->m_Used == 0) ClosePage(left);
  }

  void ClosePage(unsigned long number) {
    const auto shelf = m_Shelves.find(number / kShelfSize);
    shelf->second->m_Pages[number % kShelfSize].reset();
    if (--shelf->second->m_Used == 0) m_Shelves.erase(shelf);
    for (CRecent& recent : m_Recent) {
      if (recent.m_Number == number) recent.m_pPage = nullptr;
    }
  }

  absl::btree_map<unsigned long, std::unique_ptr<CShelf>> m_Shelves;
  size_t m_Count = 0;
  CPage* m_pNewest = nullptr;
  unsigned long m_NewestPage = 0;
  mutable std::array<CRecent, 2> m_Recent{};
  mutable std::size_t m_Oldest = 0;  // of the recent ones
};
