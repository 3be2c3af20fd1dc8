// A file to write a text to.
#pragma once

#include <string_view>

// Creates or truncates the file. A disk that turns out full, also at the end, is an
// XMLException, and the file holds what there was room for.
void WriteFile(const char* pPath, std::string_view text);
