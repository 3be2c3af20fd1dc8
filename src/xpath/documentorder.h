// Sets of nodes in the order of their tree.
#pragma once

#include <vector>
#include <xercesc/dom/DOM.hpp>

// Puts nodes of one tree into document order, each once; gives whether none of them is
// below another. Only ways to the nodes and siblings on them are looked at.
bool SortInDocumentOrder(std::vector<xercesc::DOMNode*>& nodes);
