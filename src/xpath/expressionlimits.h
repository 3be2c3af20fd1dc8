// How much of an expression is let through to Xalan-C.
#pragma once

#include <xercesc/util/XercesDefs.hpp>

// Xalan-C reads nested brackets and chains of operators by recursion and does not
// look at the stack. Throws a KelXPathException (domErrXPathParse) for an
// expression that could overrun a stack of 256 KB.
void CheckExpression(const XMLCh* pExpression);
