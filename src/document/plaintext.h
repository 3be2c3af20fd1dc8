// Texts that need no parser.
#pragma once

#include <string_view>
#include <xercesc/dom/DOMDocument.hpp>

#include "host/domowner.h"

// The tree of a text in UTF-8 without a document type, as the parser makes it where it does
// not validate, several times as fast. Null for everything else, faulty texts above all:
// whatever is not known for certain to be right is for the parser to read from the start,
// and all messages are its own. A NUL stands behind the bytes.
CDOMOwner<xercesc::DOMDocument> BuildPlain(std::string_view bytes, const XMLCh* pURI,
                                           bool hasNamespaces);

// Whether a text that begins so may be plain.
bool MayBeginPlain(std::string_view bytes);
