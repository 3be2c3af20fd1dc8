#include "dom/idindex.h"

#include <algorithm>
#include <xercesc/dom/impl/DOMNodeIDMap.hpp>

#include "dom/hashroom.h"
#include "dom/parts.h"

using xercesc::DOMAttr;
using xercesc::DOMNodeIDMap;

namespace dom {

namespace {

// The table of the index is private, and nothing public walks it. An explicit
// instantiation may name it.
struct CSlots {
  using Type = DOMAttr** DOMNodeIDMap::*;
  friend Type Member(CSlots);
};
struct CSize {
  using Type = XMLSize_t DOMNodeIDMap::*;
  friend Type Member(CSize);
};
template <class Name, typename Name::Type kMember>
struct CReveal {
  friend typename Name::Type Member(Name) { return kMember; }
};
template struct CReveal<CSlots, &DOMNodeIDMap::fTable>;
template struct CReveal<CSize, &DOMNodeIDMap::fSize>;

// Marks the attribute's slot, wherever it is, as one that was used.
void Drop(DOMNodeIDMap& index, const DOMAttr* pAttribute) {
  DOMAttr** pSlots = index.*Member(CSlots{});
  std::replace(pSlots, pSlots + index.*Member(CSize{}), const_cast<DOMAttr*>(pAttribute),
               reinterpret_cast<DOMAttr*>(-1));  // NOLINT(performance-no-int-to-ptr): its mark
}

}  // namespace

void Refile(DOMAttr& attribute) {
  if (!attribute.isId()) return;
  DOMNodeIDMap* pIndex = Impl(*attribute.getOwnerDocument()).getNodeIDMap();
  if (pIndex->find(attribute.getValue()) == &attribute) return;
  Drop(*pIndex, &attribute);
  NeedIds(*attribute.getOwnerDocument(), 1);
  pIndex->add(&attribute);
}

void RemoveFromIndex(DOMAttr& attribute) { Impl(attribute).removeAttrFromIDNodeMap(); }

}  // namespace dom
