// Where exceptions end. A policy wraps one call and turns what it throws into a
// status, and a function names the policy. Loading, writing and XPath have guards of
// their own kind.
#pragma once

#include <tessel/export.h>
#include <tessel/status.h>

#include <xercesc/dom/DOMException.hpp>

// The call cannot raise, or what it raises leaves the function: no handler.
struct Unguarded {
  template <class Call>
  static TSXStatus Run(Call&& call) {
    call();
    return 0;
  }
};

// DOM exceptions of the listed codes keep their number; all else is unexpected.
template <short... kMapped>
struct Maps {
  template <class Call>
  static TSXStatus Run(Call&& call) try {
    call();
    return 0;
  } catch (const xercesc::DOMException& exception) {
    return ((exception.code == kMapped) || ...) ? -(2599 + exception.code) : domErrUnexpected;
  } catch (...) {
    return domErrUnexpected;
  }
};

// Every exception gives the one status.
template <TSXStatus kStatus>
struct Always {
  template <class Call>
  static TSXStatus Run(Call&& call) try {
    call();
    return 0;
  } catch (...) {
    return kStatus;
  }
};
