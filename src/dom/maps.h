// Maps of attributes, entities and notations, and their items.
#pragma once

#include "dom/parts.h"

namespace dom {

// A map of attributes, entities or notations and the node that it belongs to.
struct CMap {
  xercesc::DOMNamedNodeMap& m_Map;
  DOMNode& m_Holder;
};

// To the DOM all items without a local name have the same one, and so has an empty name
// that is asked for. Here they go by their whole name, and an empty one finds nothing.
DOMNode* FindItemNS(const CMap& map, const XMLCh* pURI, const XMLCh* pLocalName);

// As SetAttributeNode; the maps of a document type hold entities or notations only, and
// none that another map holds.
DOMNode* SetItem(const CMap& map, DOMNode& node);
DOMNode* SetItemNS(const CMap& map, DOMNode& node);

// Gives the item, which lives on and belongs to no map.
DOMNode* RemoveItem(const CMap& map, const XMLCh* pName);
DOMNode* RemoveItemNS(const CMap& map, const XMLCh* pURI, const XMLCh* pLocalName);

}  // namespace dom
