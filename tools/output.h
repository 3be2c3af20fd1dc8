// Where results and messages go.
#ifndef TESSEL_TOOLS_OUTPUT_H
#define TESSEL_TOOLS_OUTPUT_H

#include <string>
#include <string_view>

// Throws a CFailure when the output cannot be written.
void Print(std::string_view text);
void FlushOutput();

void PrintError(std::string_view lines);

// True where this output is a terminal that shows colours.
bool HasColour(int descriptor);

// To a file, as ReplaceFile does, or to standard output for "-" and an empty name.
void WriteResult(const std::string& target, std::string_view bytes);

#endif
