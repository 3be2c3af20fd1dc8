// Text as it stands in a document.
#ifndef TESSEL_TOOLS_MARKUP_H
#define TESSEL_TOOLS_MARKUP_H

#include <string>
#include <string_view>

// As the value of an attribute, in double quotes.
std::string Escaped(std::string_view value);

// As text, and as the value of an attribute in this kind of quotes, for an encoding:
// characters that it lacks become references.
std::string EscapedText(std::string_view value, const std::string& encoding);
std::string EscapedFor(std::string_view value, char quote, const std::string& encoding);

#endif
