// Attributes of elements.
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

// The same as the DOM's map of the element's attributes does it: what is no attribute may
// not stand there.
DOMNode* SetInMap(xercesc::DOMElement& element, DOMNode& node);
DOMNode* SetInMapNS(xercesc::DOMElement& element, DOMNode& node);

// Sets the value of an attribute; the nodes that made the old one are freed.
void SetValue(xercesc::DOMAttr& attribute, const XMLCh* pValue);

}  // namespace dom
