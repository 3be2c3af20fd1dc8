// Where the exceptions of an evaluation end.
#pragma once

#include <tessel/export.h>
#include <tessel/status.h>

#include <string>
#include <xalanc/XPath/XObject.hpp>
#include <xalanc/XPath/XPathParserException.hpp>

#include "xpath/xpathmanager.h"

// Runs a call that may throw; its exception's code is the result and its text,
// if it has one, the message. Unexpected exceptions leave no message.
template <class Call>
TSXStatus MapXPath(Call& call, std::u16string& message) try {
  call();
  return 0;
} catch (const KelXPathException& exception) {
  message = exception.GetMessage();
  return exception.GetStatus();
} catch (const xalanc::XPathParserException& exception) {
  message = exception.getMessage().c_str();
  return domErrXPathParse;
} catch (const xalanc::XObject::XObjectInvalidConversionException& exception) {
  message = exception.getMessage().c_str();
  return domErrXPathConversion;
} catch (const xalanc::XSLException& exception) {
  message = exception.getMessage().c_str();
  return domErrXPathXSL;
}

// As MapXPath, and nothing gets out, be it while a message is copied.
template <class Call>
TSXStatus RunXPath(Call&& call, std::u16string& message) try {
  return MapXPath(call, message);
} catch (...) {
  return domErrUnexpected;
}
