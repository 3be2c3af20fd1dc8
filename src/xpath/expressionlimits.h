// How much of an expression is let through to Xalan-C.
#pragma once

#include "xpath/expressionlexer.h"

// Xalan-C reads and evaluates nested brackets and chains of operators by recursion
// and does not look at the stack. What is within the limits needs 120 KB of it at
// most.
constexpr int kMostNested = 100;     // "(" and "[" open at once
constexpr int kMostOperators = 500;  // or and = != < <= > >= + - * div mod, in all

// It also copies numbers to a buffer of 100 characters.
constexpr int kMostDigits = 80;  // and points, in one number

// Throws a KelXPathException (domErrXPathParse) for an expression beyond a limit.
void CheckExpression(const CLexedExpression& expression);
