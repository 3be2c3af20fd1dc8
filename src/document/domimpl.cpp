#include "document/domimpl.h"

#include <xercesc/dom/impl/DOMAttrImpl.hpp>
#include <xercesc/dom/impl/DOMCasts.hpp>
#include <xercesc/dom/impl/DOMNodeImpl.hpp>

namespace domimpl {

bool IsReadOnly(const xercesc::DOMNode& node) {
  return xercesc::castToNodeImpl(&node)->isReadOnly();
}

bool IsOwned(const xercesc::DOMNode& node) { return xercesc::castToNodeImpl(&node)->isOwned(); }

void RemoveFromIndex(xercesc::DOMAttr& attribute) {
  static_cast<xercesc::DOMAttrImpl&>(attribute).removeAttrFromIDNodeMap();
}

void Reclaim(xercesc::DOMNode& item, xercesc::DOMNode& holder) {
  xercesc::DOMNodeImpl* pImpl = xercesc::castToNodeImpl(&item);
  pImpl->fOwnerNode = &holder;
  pImpl->isOwned(true);
}

}  // namespace domimpl
