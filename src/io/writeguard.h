// Where the exceptions of writing end.
#pragma once

#include <xercesc/dom/DOMErrorHandler.hpp>

#include "io/unwritable.h"

// Tells a handler of a problem as the XML library's writer would.
void Report(const CUnwritable& problem, xercesc::DOMErrorHandler& handler);

// The writer's problems have their own status, and a handler, where there is one, is told
// of them; all else has the status given.
template <class Call>
TSXStatus RunWrite(TSXStatus other, xercesc::DOMErrorHandler* pHandler, Call&& call) try {
  call();
  return 0;
} catch (const CUnwritable& problem) {
  if (pHandler != nullptr) Report(problem, *pHandler);
  return problem.m_Status;
} catch (...) {
  return other;
}
