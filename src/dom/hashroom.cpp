#include "dom/hashroom.h"

#include <algorithm>
#include <xercesc/dom/impl/DOMNodeIDMap.hpp>

#include "dom/parts.h"

using xercesc::DOMAttr;
using xercesc::DOMDocument;
using xercesc::DOMDocumentImpl;
using xercesc::DOMNodeIDMap;
using xercesc::DOMStringPoolEntry;

namespace dom {

namespace {

// The tables are private. An explicit instantiation may name them.
template <class Tag, typename Tag::Type kMember>
struct CReveal {
  friend typename Tag::Type Of(Tag) { return kMember; }
};
struct CNames {
  using Type = DOMStringPoolEntry** DOMDocumentImpl::*;
  friend Type Of(CNames);
};
struct CNamesSize {
  using Type = XMLSize_t DOMDocumentImpl::*;
  friend Type Of(CNamesSize);
};
struct CIds {
  using Type = DOMAttr** DOMNodeIDMap::*;
  friend Type Of(CIds);
};
struct CIdsSize {
  using Type = XMLSize_t DOMNodeIDMap::*;
  friend Type Of(CIdsSize);
};
struct CIdsUsed {
  using Type = XMLSize_t DOMNodeIDMap::*;
  friend Type Of(CIdsUsed);
};
struct CIdsMost {
  using Type = XMLSize_t DOMNodeIDMap::*;
  friend Type Of(CIdsMost);
};
template struct CReveal<CNames, &DOMDocumentImpl::fNameTable>;
template struct CReveal<CNamesSize, &DOMDocumentImpl::fNameTableSize>;
template struct CReveal<CIds, &DOMNodeIDMap::fTable>;
template struct CReveal<CIdsSize, &DOMNodeIDMap::fSize>;
template struct CReveal<CIdsUsed, &DOMNodeIDMap::fNumEntries>;
template struct CReveal<CIdsMost, &DOMNodeIDMap::fMaxEntries>;

bool IsPrime(XMLSize_t number) {
  for (XMLSize_t i = 3; i * i <= number; i += 2) {
    if (number % i == 0) return false;
  }
  return number % 2 != 0;
}

XMLSize_t PrimeFrom(XMLSize_t number) {
  while (!IsPrime(number)) ++number;
  return number;
}

// The document owns it; the old one goes with the document, too.
template <class Entry>
Entry** NewTable(DOMDocumentImpl& document, XMLSize_t size) {
  auto** pTable = static_cast<Entry**>(document.allocate(size * sizeof(Entry*)));
  std::fill_n(pTable, size, nullptr);
  return pTable;
}

// -- Names -----------------------------------------------------------------------

template <class Visit>
void EachName(DOMDocumentImpl& document, Visit visit) {
  DOMStringPoolEntry** pTable = document.*Of(CNames{});
  for (XMLSize_t i = 0; i < document.*Of(CNamesSize{}); ++i) {
    for (DOMStringPoolEntry *pEntry = pTable[i], *pNext; pEntry != nullptr; pEntry = pNext) {
      pNext = pEntry->fNext;
      visit(*pEntry);
    }
  }
}

void GrowNames(DOMDocumentImpl& document, XMLSize_t size) {
  auto** pTable = NewTable<DOMStringPoolEntry>(document, size);
  EachName(document, [&](DOMStringPoolEntry& entry) {
    DOMStringPoolEntry*& slot = pTable[xercesc::XMLString::hash(entry.fString, size)];
    entry.fNext = slot;
    slot = &entry;
  });
  document.*Of(CNames{}) = pTable;
  document.*Of(CNamesSize{}) = size;
}

// -- IDs -------------------------------------------------------------------------

// What the DOM grows to by itself. It counts every entry again when it grows.
constexpr XMLSize_t kLargestOfDOM = 999983;
// The mark of a slot that was used. NOLINTNEXTLINE(performance-no-int-to-ptr)
DOMAttr* Gone() { return reinterpret_cast<DOMAttr*>(-1); }

void GrowIds(DOMDocumentImpl& document, DOMNodeIDMap& index, XMLSize_t size) {
  DOMAttr** pOld = index.*Of(CIds{});
  const XMLSize_t oldSize = index.*Of(CIdsSize{});
  index.*Of(CIds{}) = NewTable<DOMAttr>(document, size);
  index.*Of(CIdsSize{}) = size;
  index.*Of(CIdsMost{}) = size / 5 * 4;
  index.*Of(CIdsUsed{}) = 0;
  for (XMLSize_t i = 0; i < oldSize; ++i) {
    if (pOld[i] != nullptr && pOld[i] != Gone()) index.add(pOld[i]);
  }
}

}  // namespace

void CNameRoom::Begin() { m_Names = m_Patience = 0; }

void CNameRoom::Need(DOMDocument& document, XMLSize_t names) {
  m_Names += names;
  if (m_Names < m_Patience) return;
  DOMDocumentImpl& impl = Impl(document);
  XMLSize_t count = 0;
  EachName(impl, [&](const DOMStringPoolEntry&) { ++count; });
  // An attribute with a prefix has two names that nobody else may have.
  const XMLSize_t needed = count + 2 * names;
  if (needed > impl.*Of(CNamesSize{})) GrowNames(impl, PrimeFrom(needed * 4));
  m_Names = 0;
  m_Patience = 2 * (impl.*Of(CNamesSize{}));
}

void NeedIds(DOMDocument& document, XMLSize_t ids) {
  DOMDocumentImpl& impl = Impl(document);
  DOMNodeIDMap* pIndex = impl.getNodeIDMap();
  if (pIndex == nullptr) return;
  const XMLSize_t size = pIndex->*Of(CIdsSize{});
  const XMLSize_t used = pIndex->*Of(CIdsUsed{}) + ids;
  // The DOM grows to its own sizes by itself, one step at a time.
  const bool isEasy = size < kLargestOfDOM && ids < size / 2;
  if (isEasy || used < pIndex->*Of(CIdsMost{})) return;
  // Entries that were removed count as well until then.
  DOMAttr* const* pTable = pIndex->*Of(CIds{});
  const auto live = std::count_if(pTable, pTable + size, [](const DOMAttr* pSlot) {
    return pSlot != nullptr && pSlot != Gone();
  });
  const XMLSize_t needed = 2 * (static_cast<XMLSize_t>(live) + ids) + 1;
  GrowIds(impl, *pIndex, PrimeFrom(std::max(kLargestOfDOM, needed)));
}

void DropId(DOMDocument& document, const DOMAttr& id) {
  DOMNodeIDMap& index = *Impl(document).getNodeIDMap();
  DOMAttr** pTable = index.*Of(CIds{});
  std::replace(pTable, pTable + index.*Of(CIdsSize{}), const_cast<DOMAttr*>(&id), Gone());
}

}  // namespace dom
