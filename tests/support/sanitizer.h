// What a test has to know about the build that it runs in.
#pragma once

#include <unistd.h>

#include <cstddef>
#include <fstream>

// The sanitizer's own; not every compiler comes with its header.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();

namespace support {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kSanitized = true;
#else
inline constexpr bool kSanitized = false;
#endif

// Bytes in use: exact where the sanitizer knows them, and what is resident elsewhere.
inline long UsedBytes() {
#if defined(__SANITIZE_ADDRESS__)
  return static_cast<long>(__sanitizer_get_current_allocated_bytes());
#else
  std::ifstream statm("/proc/self/statm");
  long size = 0, pages = 0;
  statm >> size >> pages;
  return pages * sysconf(_SC_PAGESIZE);
#endif
}

}  // namespace support
