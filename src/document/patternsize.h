// What a pattern comes to before it is made.
#pragma once

#include <cstdint>
#include <string_view>

// The XML library makes an operation of each character and copies what is repeated a number
// of times, so that "((a{999}){999}){999}" has a thousand million; groups within groups take
// stack.
struct CPatternSize {
  uint64_t m_Operations = 0;  // at most kUnbounded
  size_t m_Depth = 0;         // of groups and classes

  static constexpr uint64_t kUnbounded = uint64_t{1} << 31;
};

// Of a faulty pattern, which the parser refuses in any case, the size means nothing.
CPatternSize SizeOfPattern(std::u16string_view pattern);
