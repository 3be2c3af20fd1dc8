// How a written document is laid out.
#ifndef TESSEL_TOOLS_LAYOUT_H
#define TESSEL_TOOLS_LAYOUT_H

#include <cstddef>
#include <string>
#include <string_view>

// Puts every element, comment and instruction on a line of its own, indented by so many
// blanks a level. What holds text besides white space stays on one line as it is, and so
// does what says xml:space="preserve". The text is well-formed and in UTF-8.
std::string Indented(std::string_view xml, size_t width);

// The text without its XML declaration.
std::string_view WithoutDeclaration(std::string_view xml);

#endif
