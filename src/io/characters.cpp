#include "io/characters.h"

#include <algorithm>
#include <xercesc/util/XMLChar.hpp>

namespace characters {

bool IsPublicId(std::u16string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](XMLCh unit) { return xercesc::XMLChar1_0::isPublicIdChar(unit); });
}

bool IsSpace(std::u16string_view text) {
  return text.find_first_not_of(u" \t\n\r") == std::u16string_view::npos;
}

}  // namespace characters
