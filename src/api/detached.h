// Nodes that a call took out of an element or a map: they live on with their document
// object, and closing their id frees them.
#pragma once

#include "api/outs.h"
#include "dom/look.h"

class CDetachedNodeOut : public CNodeOut {
 public:
  using CNodeOut::CNodeOut;
  TSXStatus Store(xercesc::DOMNode* pNode) {
    CNodeOut::Store(pNode);
    if (pNode != nullptr) {
      g_NodeDomMap.Insert(pNode, g_NodeDomMap.GetDomByNode(dom::OwnerDocument(*pNode)));
    }
    return 0;
  }
};

// Hangs an attribute or an item where `set` puts it and hands out what it replaced. That is
// the node itself where it hung there already, so its entry goes last.
template <auto kSet>
constexpr auto kReplacing = [](auto& out, auto& holder, xercesc::DOMNode& node) {
  xercesc::DOMNode* pReplaced = kSet(holder, node);
  out.Store(pReplaced);
  g_NodeDomMap.DeleteByNode(&node);
};
