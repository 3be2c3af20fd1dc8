// The edit that puts something new into a document.
#ifndef TESSEL_TOOLS_INSERT_H
#define TESSEL_TOOLS_INSERT_H

#include <string>

#include "edit.h"

// Throws a CFailure about `file` where the content is not well-formed or may not stand
// at this place.
void Insert(const CEdit& edit, TSXRefId node, const CDocument& document, const std::string& file);

#endif
