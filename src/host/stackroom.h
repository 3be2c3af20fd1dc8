// How deep a recursion may still go.
#pragma once

#include <cstddef>

// What is left of the calling thread's stack, less a reserve for the way out; bytes.
// On a stack that is not the thread's own, a cautious guess.
std::size_t StackRoom();
