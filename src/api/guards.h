// The codes of the DOM that functions report by their own number, each set under one name.
#pragma once

#include "host/guards.h"

using xercesc::DOMException;

using CMapsReadOnly = Maps<DOMException::NO_MODIFICATION_ALLOWED_ERR>;
using CMapsIndex = Maps<DOMException::INDEX_SIZE_ERR, DOMException::NO_MODIFICATION_ALLOWED_ERR>;
using CMapsText = Maps<DOMException::DOMSTRING_SIZE_ERR, DOMException::NO_MODIFICATION_ALLOWED_ERR>;

// Creating.
using CMapsName = Maps<DOMException::INVALID_CHARACTER_ERR>;
using CMapsSupport = Maps<DOMException::NOT_SUPPORTED_ERR>;
using CMapsNameSupport = Maps<DOMException::INVALID_CHARACTER_ERR, DOMException::NOT_SUPPORTED_ERR>;
using CMapsQualifiedName = Maps<DOMException::INVALID_CHARACTER_ERR,
                                DOMException::NOT_SUPPORTED_ERR, DOMException::NAMESPACE_ERR>;

// Attributes and the items of maps.
using CMapsSetName =
    Maps<DOMException::INVALID_CHARACTER_ERR, DOMException::NO_MODIFICATION_ALLOWED_ERR>;
using CMapsSetQualifiedName =
    Maps<DOMException::INVALID_CHARACTER_ERR, DOMException::NO_MODIFICATION_ALLOWED_ERR,
         DOMException::NAMESPACE_ERR>;
using CMapsSetItem =
    Maps<DOMException::WRONG_DOCUMENT_ERR, DOMException::NO_MODIFICATION_ALLOWED_ERR,
         DOMException::INUSE_ATTRIBUTE_ERR>;

// Moving.
using CMapsAppend = Maps<DOMException::HIERARCHY_REQUEST_ERR, DOMException::WRONG_DOCUMENT_ERR,
                         DOMException::NO_MODIFICATION_ALLOWED_ERR>;
using CMapsInsert = Maps<DOMException::HIERARCHY_REQUEST_ERR, DOMException::WRONG_DOCUMENT_ERR,
                         DOMException::NO_MODIFICATION_ALLOWED_ERR, DOMException::NOT_FOUND_ERR>;
using CMapsRemove = Maps<DOMException::NO_MODIFICATION_ALLOWED_ERR, DOMException::NOT_FOUND_ERR>;
