// Text as it stands in a document.
#ifndef TESSEL_TOOLS_MARKUP_H
#define TESSEL_TOOLS_MARKUP_H

#include <string>
#include <string_view>

// As the value of an attribute, in double quotes.
std::string Escaped(std::string_view value);

#endif
