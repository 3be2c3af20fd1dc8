// An edit of a document's text in place of its tree: what is not concerned stays as it is,
// byte for byte.
#ifndef TESSEL_TOOLS_SPLICE_H
#define TESSEL_TOOLS_SPLICE_H

#include <optional>
#include <string>
#include <string_view>

#include "edit.h"

// The text in UTF-8 that the edit makes of a document's text, or nothing where it cannot be
// said which part of the text a node is. `encoding` is the one that the text will be in:
// characters that it lacks are written as references. The nodes are those that the edit's
// expression selects in the document, as it was read from this text.
std::optional<std::string> Spliced(std::string_view text, const CEdit& edit, CNodeArray& nodes,
                                   const std::string& encoding);

#endif
