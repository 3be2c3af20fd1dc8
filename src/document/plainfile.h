// The bytes of a file that may be plain text.
#pragma once

#include <optional>
#include <string>

#include "document/externalsource.h"

// All bytes, which are read at once. Nothing for what does not begin as plain text, for what
// is no regular file, which might have no end or not be there a second time, for one that is
// too large to be kept beside its tree, and for one that cannot be read: the parser will meet
// it, too, and has the words for it.
std::optional<std::string> ReadPlainFile(const CExternalSource& source);
