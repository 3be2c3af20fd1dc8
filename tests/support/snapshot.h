// A tree as a text that tells all that can be seen of it, to compare trees by.
#pragma once

#include <string>
#include <xercesc/dom/DOM.hpp>

namespace support {

// What two trees may differ in and still be told alike.
enum class ETold : unsigned {
  kAll = 0,
  kRuns = 1,    // how text is spread over text and CDATA sections, and which characters
                // of the internal subset are written as references
  kLayout = 2,  // white space between elements that have no text among them
};
constexpr ETold operator|(ETold a, ETold b) {
  return ETold{static_cast<unsigned>(a) | static_cast<unsigned>(b)};
}

// A line for each node, attribute, entity and notation, in the order of the tree; those of a
// document begin with what it declares. Encodings are left out.
std::string Snapshot(const xercesc::DOMNode& root, ETold told = ETold::kAll);

}  // namespace support
