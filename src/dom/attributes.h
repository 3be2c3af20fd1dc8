// Attributes of elements, and the items of the maps of a document type.
//
// Each makes the DOM's checks with the DOM's codes in the DOM's order, and throws before
// anything has changed; what it frees, the listener is told of first.
#pragma once

#include "dom/parts.h"

namespace dom {

void SetAttribute(xercesc::DOMElement& element, const XMLCh* pName, const XMLCh* pValue);

// A name with a prefix makes a new attribute every time; the one that it replaces lives on
// and belongs to no element. Without a prefix the attribute that is there gets the value.
void SetAttributeNS(xercesc::DOMElement& element, const XMLCh* pURI, const XMLCh* pQualifiedName,
                    const XMLCh* pValue);

// Frees the attribute, where there is one. A default of the grammar takes its place.
void RemoveAttribute(xercesc::DOMElement& element, const XMLCh* pName);
void RemoveAttributeNS(xercesc::DOMElement& element, const XMLCh* pURI, const XMLCh* pLocalName);

// Removes an attribute node of the element and frees it. Any node may be passed in; what
// is no attribute of the element is not found.
void RemoveAttributeNode(xercesc::DOMElement& element, DOMNode& node);

// Hangs an attribute on an element and gives the one that it replaced, which lives on;
// null for none, itself where the element had it already. Any node may be passed in.
DOMNode* SetAttributeNode(xercesc::DOMElement& element, DOMNode& node);
DOMNode* SetAttributeNodeNS(xercesc::DOMElement& element, DOMNode& node);

// Sets the value of an attribute; the nodes that made the old one are freed.
void SetValue(xercesc::DOMAttr& attribute, const XMLCh* pValue);

// -- Maps -------------------------------------------------------------------------

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
