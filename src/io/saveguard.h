// Where the exceptions of a save end.
#pragma once

#include <tessel/export.h>
#include <tessel/status.h>

#include <xercesc/util/XMLException.hpp>

#include "host/text.h"

template <class Call>
TSXStatus RunSave(HStr* pErrorText, Call&& call) try {
  return call();
} catch (const xercesc::XMLException& exception) {
  StoreText(exception.getMessage(), pErrorText);
  return domErrSaveFile;
} catch (...) {
  CStrToHStr("Error occurred while saving file.", pErrorText);
  return domErrSaveFile;
}
