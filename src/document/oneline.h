// What a message names, on one line.
#pragma once

#include <string>
#include <xercesc/util/XercesDefs.hpp>

inline std::u16string InOneLine(const XMLCh* pName) {
  constexpr size_t kLongest = 500;  // UTF-16 units
  std::u16string line(pName);
  if (line.size() > kLongest) line = line.substr(0, kLongest) + u"...";
  for (char16_t& unit : line) {
    if (unit < u' ') unit = u' ';
  }
  return line;
}
