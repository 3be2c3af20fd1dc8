// What stands in front of a root element.
#pragma once

#include <xercesc/dom/DOM.hpp>

#include "io/textwriter.h"

void WriteXmlDeclaration(CTextWriter& out, const xercesc::DOMDocument& document);

// The document type, its internal subset as it was read.
void WriteDocType(CTextWriter& out, const xercesc::DOMDocumentType& type);

// The declaration of an entity: the one of the internal subset where it is there.
void WriteEntity(CTextWriter& out, const xercesc::DOMEntity& entity);
