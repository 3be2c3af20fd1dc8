// Of which type an expression is, without evaluating it.
#pragma once

#include "xpath/expressionlexer.h"
#include "xpath/plainform.h"

// The expression is one that Xalan-C accepts. Throws a KelXPathException for a variable,
// which is never bound, and for a function of XSLT, none of which exists.
plain::EType TypeOfExpression(const CLexedExpression& expression);
