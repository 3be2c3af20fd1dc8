// Fills a host array with node ids.
#pragma once

#include <tessel/host.h>

#include <span>
#include <xercesc/dom/DOM.hpp>

// Makes *pArray hold the ids of these nodes, one new hand-out each. Where the host
// refuses memory, no id is handed out and the array is disposed of.
void StoreNodes(std::span<xercesc::DOMNode* const> nodes, GenericRefObjSessionArray* pArray);
