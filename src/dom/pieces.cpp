#include "dom/pieces.h"

#include <absl/container/btree_map.h>
#include <sys/mman.h>

#include <bit>
#include <cstdint>
#include <memory>
#include <mutex>
#include <xercesc/util/PlatformUtils.hpp>

namespace dom {

namespace pieces {

namespace {

// The system maps regions, each a huge page and aligned as one.
constexpr std::size_t kRegion = std::size_t{2} << 20;
constexpr unsigned kAllFree = (1u << (kRegion / kSize)) - 1;
constexpr std::size_t kMostFreeRegions = kMostKept / kRegion;

// Null where the system refuses.
std::byte* MapRegion() {
  void* pMapped =
      ::mmap(nullptr, 2 * kRegion, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (pMapped == MAP_FAILED) return nullptr;  // NOLINT(performance-no-int-to-ptr)
  auto* pFirst = static_cast<std::byte*>(pMapped);
  void* pAligned = pFirst;
  std::size_t room = 2 * kRegion;
  std::align(kRegion, kRegion, pAligned, room);
  auto* pRegion = static_cast<std::byte*>(pAligned);
  const auto before = static_cast<std::size_t>(pRegion - pFirst);
  if (before != 0) ::munmap(pFirst, before);
  ::munmap(pRegion + kRegion, kRegion - before);
  ::madvise(pRegion, kRegion, MADV_HUGEPAGE);
  return pRegion;
}

class CStore {
 public:
  CStore() = default;
  // Documents that are still open when the library goes keep their memory.
  ~CStore() {
    const std::lock_guard lock(m_Mutex);
    absl::erase_if(*m_pRegions, [](const auto& region) {
      if (region.second == kAllFree) ::munmap(region.first, kRegion);
      return region.second == kAllFree;
    });
    m_FreeRegions = 0;
    if (!m_pRegions->empty()) return;
    delete m_pRegions;
    m_pRegions = nullptr;
  }
  CStore(const CStore&) = delete;
  CStore& operator=(const CStore&) = delete;

  void* Take() {
    const std::lock_guard lock(m_Mutex);
    if (m_pRegions == nullptr) return nullptr;
    auto region = m_pRegions->lower_bound(m_pFirstFree);
    while (region != m_pRegions->end() && region->second == 0) ++region;
    if (region == m_pRegions->end()) {
      std::byte* pMapped = MapRegion();
      if (pMapped == nullptr) return nullptr;
      region = m_pRegions->emplace(pMapped, kAllFree).first;
      ++m_FreeRegions;
    }
    m_pFirstFree = region->first;
    if (region->second == kAllFree) --m_FreeRegions;
    const int place = std::countr_zero(region->second);
    region->second &= ~(1u << place);
    return region->first + static_cast<std::size_t>(place) * kSize;
  }

  bool GiveBack(std::byte* pPiece) noexcept {
    const std::size_t place = reinterpret_cast<std::uintptr_t>(pPiece) % kRegion / kSize;
    const std::lock_guard lock(m_Mutex);
    if (m_pRegions == nullptr) return false;
    const auto region = m_pRegions->find(pPiece - place * kSize);
    if (region == m_pRegions->end()) return false;
    region->second |= 1u << place;
    if (region->first < m_pFirstFree) m_pFirstFree = region->first;
    if (region->second != kAllFree) return true;
    if (m_FreeRegions < kMostFreeRegions) {
      ++m_FreeRegions;
      ::madvise(region->first, kRegion, MADV_FREE);
    } else {
      ::munmap(region->first, kRegion);
      m_pRegions->erase(region);
    }
    return true;
  }

 private:
  // By address, a bit for each piece that is free.
  using CRegions = absl::btree_map<std::byte*, unsigned>;

  std::mutex m_Mutex;
  // Guarded by m_Mutex.
  CRegions* m_pRegions = new CRegions;  // null when the store is gone
  std::byte* m_pFirstFree = nullptr;    // no region below it has a free piece
  std::size_t m_FreeRegions = 0;        // with nothing in use
};

CStore& Store() {
  static CStore s_Store;
  return s_Store;
}

}  // namespace

void* Take() { return Store().Take(); }

bool GiveBack(void* pMemory) noexcept {
  // Memory of the heap is hardly ever aligned like this.
  if (reinterpret_cast<std::uintptr_t>(pMemory) % kSize != 0 || pMemory == nullptr) return false;
  return Store().GiveBack(static_cast<std::byte*>(pMemory));
}

}  // namespace pieces

namespace {

class CNodeMemory final : public xercesc::MemoryManager {
 public:
  void* allocate(XMLSize_t size) override {
    void* pPiece = size == pieces::kSize ? pieces::Take() : nullptr;
    return pPiece != nullptr ? pPiece : Base().allocate(size);
  }
  void deallocate(void* pMemory) override {
    if (!pieces::GiveBack(pMemory)) Base().deallocate(pMemory);
  }
  MemoryManager* getExceptionMemoryManager() override { return Base().getExceptionMemoryManager(); }

 private:
  static MemoryManager& Base() { return *xercesc::XMLPlatformUtils::fgMemoryManager; }
};

}  // namespace

xercesc::MemoryManager& NodeMemory() {
  static CNodeMemory s_Memory;
  return s_Memory;
}

}  // namespace dom
