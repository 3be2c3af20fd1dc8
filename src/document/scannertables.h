// The parser's tables of the attributes of one element.
#pragma once

#include <xercesc/internal/XMLScanner.hpp>

// Frees the tables by which the parser finds attributes that are given twice. They grow
// with an element, never shrink, and are emptied place by place for each later element:
// many attributes in one and then many elements take a time that grows with the square.
// For the moment at which an element begins, when nothing is in them.
void FreeTables(xercesc::XMLScanner& scanner, XMLSize_t attributes);
