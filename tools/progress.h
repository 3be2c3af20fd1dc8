// How far long work is, on a terminal only and out of the way of what is printed.
#ifndef TESSEL_TOOLS_PROGRESS_H
#define TESSEL_TOOLS_PROGRESS_H

#include <vector>

#include "input.h"

// From now on a line on standard error says which of the files is at work and how much
// of them has been read, once that takes longer than half a second. There is none where
// standard error is no terminal.
void StartProgress(const std::vector<CInput>& inputs);
// The next file is at work.
void NextFile();

// Takes the line away until it is written again: something else is printed.
void HideProgress();
// Takes it away for good: results are on their way to the terminal, or nothing more is.
void EndProgress();

#endif
