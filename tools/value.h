// What a value from the command line must be to stand in a document.
#ifndef TESSEL_TOOLS_VALUE_H
#define TESSEL_TOOLS_VALUE_H

#include <string>
#include <string_view>

#include "nodes.h"

// Throws a CFailure about `file` when a node of the kind cannot hold the value: bytes
// that are not UTF-8, a character that XML has no place for, or what would end the
// node early or be read back as something else.
void RequireValue(std::string_view value, EKind kind, const std::string& file);

#endif
