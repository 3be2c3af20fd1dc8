// The elements below a node by name, in document order: the members of the DOM's own
// list by that name, which would look for every member anew from where it stands.
#pragma once

#include <vector>
#include <xercesc/dom/DOM.hpp>

// The name "*" is every name.
std::vector<xercesc::DOMNode*> ElementsByName(const xercesc::DOMNode& root, const XMLCh* pName);

// By local name and namespace; the URI "*" is every namespace, and none.
std::vector<xercesc::DOMNode*> ElementsByNameNS(const xercesc::DOMNode& root, const XMLCh* pURI,
                                                const XMLCh* pName);
