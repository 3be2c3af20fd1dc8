// Ids by address.
#pragma once

#include <absl/container/btree_map.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

// Leads from an object's address to its id. Objects of one document lie close together
// and are asked for in about the order in which they lie, so the addresses are kept in
// regions, and a region of 2 KB holds so few nodes that searching it is a glance at its
// places. The region of the last operation is at hand; it alone may be empty, so that
// an id that comes and goes costs no memory traffic.
//
// Two objects of one kind never share the 8 bytes of a place: each has a virtual table.
// Null is an address like any other. No id is 0.
class CPointerIndex {
 public:
  // 0 for an address without id.
  unsigned long Find(const void* p) const {
    const CRegion* pRegion = At(RegionOf(p));
    return pRegion != nullptr ? pRegion->Find(PlaceOf(p)) : 0;
  }

  // Enters an address that is not there yet. When it throws nothing has changed.
  void Insert(const void* p, unsigned long id) {
    const uintptr_t number = RegionOf(p);
    CRegion* pRegion = At(number);
    if (pRegion == nullptr) pRegion = Add(number);
    pRegion->Insert(PlaceOf(p), id);
  }

  // False where there is nothing to erase.
  bool Erase(const void* p) {
    CRegion* pRegion = At(RegionOf(p));
    return pRegion != nullptr && pRegion->Erase(PlaceOf(p));
  }

 private:
  static constexpr uintptr_t kPlaceBytes = 8;
  static constexpr uintptr_t kPlaces = 256;
  static constexpr uintptr_t kNoRegion = UINTPTR_MAX;  // beyond every address

  class CRegion {
   public:
    CRegion() { Reserve(8); }
    bool IsEmpty() const { return m_Ids.empty(); }

    unsigned long Find(uint8_t place) const {
      const size_t at = IndexOf(place);
      return at != kNone ? m_Ids[at] : 0;
    }

    void Insert(uint8_t place, unsigned long id) {
      if (m_Ids.size() == m_Ids.capacity()) Reserve(2 * m_Ids.size());
      m_Places.push_back(place);
      m_Ids.push_back(id);
    }

    bool Erase(uint8_t place) {
      const size_t at = IndexOf(place);
      if (at == kNone) return false;
      m_Places[at] = m_Places.back();
      m_Ids[at] = m_Ids.back();
      m_Places.pop_back();
      m_Ids.pop_back();
      return true;
    }

   private:
    static constexpr size_t kNone = SIZE_MAX;

    size_t IndexOf(uint8_t place) const {
      const void* pFound = std::memchr(m_Places.data(), place, m_Places.size());
      if (pFound == nullptr) return kNone;
      return static_cast<size_t>(static_cast<const uint8_t*>(pFound) - m_Places.data());
    }

    void Reserve(size_t count) {
      m_Places.reserve(count);
      m_Ids.reserve(count);
    }

    std::vector<uint8_t> m_Places;  // in no order; m_Ids has the id of each
    std::vector<unsigned long> m_Ids;
  };

  static uintptr_t RegionOf(const void* p) {
    return reinterpret_cast<uintptr_t>(p) / (kPlaceBytes * kPlaces);
  }
  static uint8_t PlaceOf(const void* p) {
    return static_cast<uint8_t>(reinterpret_cast<uintptr_t>(p) / kPlaceBytes % kPlaces);
  }

  CRegion* At(uintptr_t number) const {
    if (number == m_LastNumber) return m_pLast;
    const auto found = m_Regions.find(number);
    if (found == m_Regions.end()) return nullptr;
    return Last(number, found->second.get());
  }

  CRegion* Add(uintptr_t number) {
    if (m_Spare == nullptr) m_Spare = std::make_unique<CRegion>();
    std::unique_ptr<CRegion>& region = m_Regions[number];
    region = std::move(m_Spare);
    return Last(number, region.get());
  }

  // Makes a region the one at hand. The one before, where it is empty, is the next to
  // be added: regions come and go as well.
  CRegion* Last(uintptr_t number, CRegion* pRegion) const {
    if (m_pLast != nullptr && m_pLast->IsEmpty()) {
      const auto left = m_Regions.find(m_LastNumber);
      m_Spare = std::move(left->second);
      m_Regions.erase(left);
    }
    m_LastNumber = number;
    m_pLast = pRegion;
    return pRegion;
  }

  mutable absl::btree_map<uintptr_t, std::unique_ptr<CRegion>> m_Regions;
  mutable std::unique_ptr<CRegion> m_Spare;
  mutable uintptr_t m_LastNumber = kNoRegion;
  mutable CRegion* m_pLast = nullptr;
};
