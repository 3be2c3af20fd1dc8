// Standard output, and files that are written whole or not at all.
#ifndef TESSEL_TOOLS_OUTPUT_H
#define TESSEL_TOOLS_OUTPUT_H

#include <string>
#include <string_view>

// Throws a CFailure when the output cannot be written.
void Print(std::string_view text);
void FlushOutput();

void PrintError(std::string_view lines);

// True where standard output is a terminal that shows colours.
bool HasColour();

// Writes a file beside the target and renames it, once it is safely on the disk,
// so that the target is at every moment the old file or the new one. The mode is
// kept, a link is followed; what is no regular file is written to directly.
// Throws a CFailure, and the target is then untouched.
void ReplaceFile(const std::string& target, std::string_view bytes);

// To a file, or to standard output for an empty name.
void WriteResult(const std::string& target, std::string_view bytes);

#endif
