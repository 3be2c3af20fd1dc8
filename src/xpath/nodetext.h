// Texts of nodes and numbers in texts, as XPath has them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <xercesc/dom/DOM.hpp>

namespace plain {

inline std::u16string_view View(const XMLCh* pText) {
  return pText == nullptr ? std::u16string_view() : std::u16string_view(pText);
}

// The string value of a node. It is the DOM's own text or stands in the buffer. Nothing
// for a tree that is too deep, and for kinds of node that the standard does not know.
std::optional<std::u16string_view> StringValue(const xercesc::DOMNode& node,
                                               std::u16string& buffer);

// NaN for what is no number; nothing for one that is too large or too small.
std::optional<double> ToNumber(std::u16string_view text);

// As Xalan-C writes it: the digits that tell it from every other number, no exponent.
std::u16string ToText(double number);

// Without space at the ends, and with one for all other; stands in the buffer.
std::u16string_view Normalized(std::u16string_view text, std::u16string& buffer);

// By its name, whatever its namespace.
bool IsDeclaration(const xercesc::DOMNode& attribute);

// The name as the document has it, and without its prefix; empty for what has none.
std::u16string_view NameOf(const xercesc::DOMNode& node);
std::u16string_view LocalNameOf(const xercesc::DOMNode& node);

}  // namespace plain
