// Which collections go with which node.
#pragma once

#include <absl/container/btree_set.h>

#include <limits>
#include <tuple>
#include <xercesc/dom/DOM.hpp>

// The ids of a registry's collections, found by the node that holds them and by the
// document of that node. Pointers are keys only.
class CHoldings {
 public:
  using CTree = const xercesc::DOMDocument*;
  using CHolder = const xercesc::DOMNode*;

  void Add(CTree pTree, CHolder pHolder, unsigned long id) { m_Set.insert({pTree, pHolder, id}); }
  void Remove(CTree pTree, CHolder pHolder, unsigned long id) noexcept {
    m_Set.erase({pTree, pHolder, id});
  }

  // Takes the holdings of one holder out and passes holder and id of each on.
  template <class Visit>
  void TakeOf(CTree pTree, CHolder pHolder, Visit visit) noexcept {
    Take({pTree, pHolder, 0}, {pTree, pHolder, kLastId}, visit);
  }

  // The same for all holders of a document.
  template <class Visit>
  void TakeOf(CTree pTree, Visit visit) noexcept {
    auto first = m_Set.lower_bound({pTree, nullptr, 0});
    while (first != m_Set.end() && std::get<CTree>(*first) == pTree) first = TakeOne(first, visit);
  }

 private:
  static constexpr unsigned long kLastId = std::numeric_limits<unsigned long>::max();

  using CHolding = std::tuple<CTree, CHolder, unsigned long>;
  using CSet = absl::btree_set<CHolding>;

  template <class Visit>
  void Take(const CHolding& from, const CHolding& last, Visit visit) noexcept {
    auto first = m_Set.lower_bound(from);
    while (first != m_Set.end() && *first <= last) first = TakeOne(first, visit);
  }

  template <class Visit>
  CSet::iterator TakeOne(CSet::iterator at, Visit visit) noexcept {
    visit(std::get<CHolder>(*at), std::get<unsigned long>(*at));
    return m_Set.erase(at);
  }

  CSet m_Set;
};
