#include "document/scannertables.h"

#include <utility>
#include <xercesc/internal/IGXMLScanner.hpp>

using xercesc::IGXMLScanner;
using xercesc::XMLScanner;

namespace {

// So many attributes leave a table behind that is worth the effort.
constexpr XMLSize_t kMany = 128;

class CTablesOfScanner : private XMLScanner {
 public:
  static constexpr auto kDuplicates = &CTablesOfScanner::fAttrDupChkRegistry;
  static constexpr auto kMemory = &CTablesOfScanner::fMemoryManager;
};

// The other table is private. An explicit instantiation may name it.
using CUndeclared = xercesc::Hash2KeysSetOf<xercesc::StringHasher>;
struct CTable {
  using Type = CUndeclared* IGXMLScanner::*;
  friend Type Of(CTable);
};
template <class Tag, typename Tag::Type kMember>
struct CReveal {
  friend typename Tag::Type Of(Tag) { return kMember; }
};
template struct CReveal<CTable, &IGXMLScanner::fUndeclaredAttrRegistry>;

// What the scanner makes it with.
constexpr XMLSize_t kPlaces = 7;

}  // namespace

void FreeTables(XMLScanner& scanner, XMLSize_t attributes) {
  if (attributes < kMany) return;
  // The scanner makes this one anew when it needs it.
  delete std::exchange(scanner.*CTablesOfScanner::kDuplicates, nullptr);
  auto* pScanner = dynamic_cast<IGXMLScanner*>(&scanner);
  if (pScanner == nullptr) return;
  xercesc::MemoryManager* pMemory = scanner.*CTablesOfScanner::kMemory;
  auto* pNew = new (pMemory) CUndeclared(kPlaces, pMemory);
  delete std::exchange(pScanner->*Of(CTable{}), pNew);
}
