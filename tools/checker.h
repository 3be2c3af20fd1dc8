// The parser that tells faults and builds nothing.
#ifndef TESSEL_TOOLS_CHECKER_H
#define TESSEL_TOOLS_CHECKER_H

#include <functional>

#include "document.h"
#include "fault.h"

// Reads an input in memory that does not grow with it, and reports each fault by the file
// in which it is: all against a grammar, and the first ten against XML itself. This is
// the one thing that the client does not do by the library's interface, which always
// builds the document.
void Check(const CInput& input, const CReadOptions& options,
           const std::function<void(const CFault&, CSourceLines&)>& report);

#endif
