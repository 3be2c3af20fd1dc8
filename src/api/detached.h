// Nodes that a call took out of an element or a map: they live on with their document
// object, and closing their id frees them.
#pragma once

#include "dom/look.h"
#include "registry/globals.h"

inline void EnterDetached(xercesc::DOMNode* pNode) {
  if (pNode == nullptr) return;
  g_NodeDomMap.Insert(pNode, g_NodeDomMap.GetDomByNode(dom::OwnerDocument(*pNode)));
}

// Hangs an attribute or an item where `set` puts it and gives what it replaced. They are
// one where it hung there already, hence the order.
template <auto kSet>
constexpr auto kReplacing = [](auto& holder, xercesc::DOMNode& node) {
  xercesc::DOMNode* pReplaced = kSet(holder, node);
  EnterDetached(pReplaced);
  g_NodeDomMap.DeleteByNode(&node);
  return pReplaced;
};
