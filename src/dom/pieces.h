// The memory of large trees, in pieces that one document hands on to the next.
#pragma once

#include <cstddef>
#include <xercesc/framework/MemoryManager.hpp>

namespace dom {

// The memory of documents, and of what makes them: large blocks are pieces, the rest is
// the XML library's own. It outlives every document.
xercesc::MemoryManager& NodeMemory();

namespace pieces {

// What a document asks for at a time once its tree has half a megabyte; bytes.
inline constexpr std::size_t kSize = std::size_t{512} << 10;

// Free memory that waits for the next document, at most; bytes. The system gets the rest
// back at once, and this, too, where it runs short. Free pieces that share a huge page
// with pieces in use do not count.
inline constexpr std::size_t kMostKept = std::size_t{256} << 20;

// A piece, in huge pages where the system has them. Null where it has no memory. Any
// thread may call both.
void* Take();

// Takes a piece back; false for any other memory.
bool GiveBack(void* pMemory) noexcept;

}  // namespace pieces

}  // namespace dom
