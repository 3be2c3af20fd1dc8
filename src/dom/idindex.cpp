#include "dom/idindex.h"

#include <xercesc/dom/impl/DOMNodeIDMap.hpp>

#include "dom/hashroom.h"
#include "dom/parts.h"

using xercesc::DOMAttr;
using xercesc::DOMNodeIDMap;

namespace dom {

void Refile(DOMAttr& attribute) {
  if (!attribute.isId()) return;
  xercesc::DOMDocument& document = *attribute.getOwnerDocument();
  DOMNodeIDMap* pIndex = Impl(document).getNodeIDMap();
  if (pIndex->find(attribute.getValue()) == &attribute) return;
  DropId(document, attribute);
  NeedIds(document, 1);
  pIndex->add(&attribute);
}

void RemoveFromIndex(DOMAttr& attribute) { Impl(attribute).removeAttrFromIDNodeMap(); }

}  // namespace dom
