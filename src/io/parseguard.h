// Where the exceptions of a parse end, for both loads and element replacement.
#pragma once

#include <tessel/export.h>
#include <tessel/status.h>

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/XMLException.hpp>

#include "host/text.h"

// The texts that differ from function to function.
struct CParseTexts {
  const char* m_pSAXParseException;
  const char* m_pOther;
};

// Runs a call that returns its own status; an exception's text goes to the host.
template <class Call>
TSXStatus RunParse(const CParseTexts& texts, HStr* pExceptionText, Call&& call) try {
  return call();
} catch (const xercesc::XMLException& exception) {
  StoreText(exception.getMessage(), pExceptionText);
  return domErrParse;
} catch (const xercesc::DOMException& exception) {
  StoreText(exception.getMessage(), pExceptionText);
  return domErrParse;
} catch (const xercesc::SAXParseException&) {
  CStrToHStr(texts.m_pSAXParseException, pExceptionText);
  return domErrParse;
} catch (...) {
  CStrToHStr(texts.m_pOther, pExceptionText);
  return domErrUnexpected;
}
