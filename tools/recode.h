// Text from one encoding into another.
#ifndef TESSEL_TOOLS_RECODE_H
#define TESSEL_TOOLS_RECODE_H

#include <optional>
#include <string>
#include <string_view>

// Nothing where an encoding is unknown, or where the text is malformed or has a character
// that the other encoding lacks. UTF-16 is written with a mark.
std::optional<std::string> Recode(std::string_view text, const std::string& from,
                                  const std::string& to);

bool IsUTF8(const std::string& encoding);

#endif
