// A table by node.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>
#include <xercesc/dom/DOMNode.hpp>

// A hash table with open addressing; entries are never removed. At most half of
// the slots are taken, so probing ends. Null is no key.
template <class Value>
class CNodeTable {
 public:
  CNodeTable() : m_Slots(kFirstSize) {}

  // The node's entry, made when it is new; valid until the next call.
  Value& operator[](const xercesc::DOMNode* pKey) {
    if (m_Used * 2 >= m_Slots.size()) Grow();
    CSlot& slot = Probe(pKey);
    if (slot.m_pKey == nullptr) {
      slot.m_pKey = pKey;
      ++m_Used;
    }
    return slot.m_Value;
  }

  // Null for a node that has no entry; valid as above.
  Value* Find(const xercesc::DOMNode* pKey) {
    CSlot& slot = Probe(pKey);
    return slot.m_pKey == nullptr ? nullptr : &slot.m_Value;
  }

 private:
  static constexpr std::size_t kFirstSize = 64;  // a power of two, as every size

  struct CSlot {
    const xercesc::DOMNode* m_pKey = nullptr;
    Value m_Value = {};
  };

  CSlot& Probe(const xercesc::DOMNode* pKey) {
    const std::uint64_t mixed = reinterpret_cast<std::uintptr_t>(pKey) * 0x9E3779B97F4A7C15U;
    std::size_t at = (mixed >> 32) & (m_Slots.size() - 1);
    while (m_Slots[at].m_pKey != nullptr && m_Slots[at].m_pKey != pKey) {
      at = (at + 1) & (m_Slots.size() - 1);
    }
    return m_Slots[at];
  }

  void Grow() {
    std::vector<CSlot> old(m_Slots.size() * 4);
    old.swap(m_Slots);
    for (const CSlot& slot : old) {
      if (slot.m_pKey != nullptr) Probe(slot.m_pKey) = slot;
    }
  }

  std::vector<CSlot> m_Slots;
  std::size_t m_Used = 0;
};
