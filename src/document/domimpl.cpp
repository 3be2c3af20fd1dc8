#include "document/domimpl.h"

#include <algorithm>
#include <xercesc/dom/impl/DOMAttrImpl.hpp>
#include <xercesc/dom/impl/DOMCasts.hpp>
#include <xercesc/dom/impl/DOMElementImpl.hpp>
#include <xercesc/dom/impl/DOMEntityImpl.hpp>
#include <xercesc/dom/impl/DOMNodeIDMap.hpp>
#include <xercesc/dom/impl/DOMNodeImpl.hpp>

namespace {

using xercesc::DOMAttr;
using xercesc::DOMNode;
using xercesc::DOMNodeIDMap;

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

namespace domimpl {

bool IsReadOnly(const xercesc::DOMNode& node) {
  return xercesc::castToNodeImpl(&node)->isReadOnly();
}

bool IsOwned(const xercesc::DOMNode& node) { return xercesc::castToNodeImpl(&node)->isOwned(); }

void Refile(DOMAttr& attribute) {
  DOMNodeIDMap* pIndex =
      static_cast<xercesc::DOMDocumentImpl*>(attribute.getOwnerDocument())->getNodeIDMap();
  if (!attribute.isId() || pIndex->find(attribute.getValue()) == &attribute) return;
  Drop(*pIndex, &attribute);
  pIndex->add(&attribute);
}

void RemoveFromIndex(DOMAttr& attribute) {
  static_cast<xercesc::DOMAttrImpl&>(attribute).removeAttrFromIDNodeMap();
}

void MakeReleasable(xercesc::DOMElement& element) {
  static_cast<xercesc::DOMElementImpl&>(element).setReadOnly(false, false);
}

void Reclaim(xercesc::DOMNode& item, xercesc::DOMNode& holder) {
  xercesc::DOMNodeImpl* pImpl = xercesc::castToNodeImpl(&item);
  pImpl->fOwnerNode = &holder;
  pImpl->isOwned(true);
}

bool MayBeModel(const DOMNode& reference) {
  const xercesc::DOMDocumentType* pType = reference.getOwnerDocument()->getDoctype();
  if (pType == nullptr) return true;
  const DOMNode* pEntity = pType->getEntities()->getNamedItem(reference.getNodeName());
  return pEntity == nullptr ||
         static_cast<const xercesc::DOMEntityImpl*>(pEntity)->getEntityRef() == &reference;
}

void Detach(DOMNode& node) {
  DOMNode* pParent = node.getParentNode();
  if (pParent == nullptr) return;
  xercesc::castToNodeImpl(pParent)->setReadOnly(false, false);
  pParent->removeChild(&node);
}

}  // namespace domimpl
