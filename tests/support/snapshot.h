// A tree as a text that tells all that can be seen of it, to compare trees by.
#pragma once

#include <string>
#include <xercesc/dom/DOM.hpp>

namespace support {

// What two trees may differ in and still be told alike.
enum class ETold {
  kAll,
  kRuns,    // how text is spread over text and CDATA sections
  kLayout,  // white space between elements that have no text among them
};

// A line for each node, attribute, entity and notation, in the order of the tree; those of a
// document begin with what it declares. Encodings are left out.
std::string Snapshot(const xercesc::DOMNode& root, ETold told = ETold::kAll);

}  // namespace support
