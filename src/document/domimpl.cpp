#include "document/domimpl.h"

#include <xercesc/dom/impl/DOMCasts.hpp>
#include <xercesc/dom/impl/DOMNodeImpl.hpp>

namespace domimpl {

bool IsReadOnly(const xercesc::DOMNode& node) {
  return xercesc::castToNodeImpl(&node)->isReadOnly();
}

void Reclaim(xercesc::DOMNode& item, xercesc::DOMNode& holder) {
  xercesc::DOMNodeImpl* pImpl = xercesc::castToNodeImpl(&item);
  pImpl->fOwnerNode = &holder;
  pImpl->isOwned(true);
}

}  // namespace domimpl
