// Keeps calls that go down a tree by recursion off trees too deep for the stack.
#pragma once

#include <cstddef>
#include <xercesc/dom/DOM.hpp>

namespace depth {

// What a level takes in the XML library, measured, with a margin; bytes of stack.
constexpr std::size_t kWriteLevel = 144;

// What RequireRoom throws. The guards make it each function's code for the
// unexpected.
class CTooDeep {};

// Throws CTooDeep where a recursion over the tree would not fit on the stack.
void RequireRoom(const xercesc::DOMNode& root, std::size_t bytesPerLevel);

}  // namespace depth
