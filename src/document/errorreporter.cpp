#include "document/errorreporter.h"

#include <algorithm>
#include <cstring>
#include <xercesc/dom/DOMError.hpp>
#include <xercesc/sax/SAXParseException.hpp>

#include "host/text.h"

using xercesc::SAXParseException;

namespace {

// Line and column numbers come as unsigned 64-bit; "unknown" prints as -1.
std::u16string Decimal(XMLFileLoc number) {
  const std::string digits = std::to_string(static_cast<int32_t>(number));
  return {digits.begin(), digits.end()};
}

}  // namespace

DOMTreeErrorReporter::~DOMTreeErrorReporter() { resetEHMsg(); }

// Contract: warnings are not recorded.
void DOMTreeErrorReporter::warning(const SAXParseException&) {}

void DOMTreeErrorReporter::error(const SAXParseException& exception) {
  AppendLine(exception, u"\r\n");
}

// Contract: a fatal error's line has no line break, so whatever is appended after
// it runs straight on.
void DOMTreeErrorReporter::fatalError(const SAXParseException& exception) {
  AppendLine(exception, u"");
}

// Contract: the parser resets its handler at every parse; the lines outlive that.
void DOMTreeErrorReporter::resetErrors() {}

void DOMTreeErrorReporter::AppendLine(const SAXParseException& exception, const char16_t* pEnd) {
  std::u16string line = u"Line " + Decimal(exception.getLineNumber()) + u", Column " +
                        Decimal(exception.getColumnNumber()) + u",  Message: ";
  if (exception.getMessage() != nullptr) line += exception.getMessage();
  line += pEnd;
  // A line for which the host refuses memory is lost; the error stays counted.
  domHStrAppendCStr(&fEHMsg,
                    reinterpret_cast<const unsigned char*>(CLocalText(line.c_str()).Get()));
}

bool DOMTreeErrorReporter::handleError(const xercesc::DOMError& error) {
  const CLocalText text(error.getMessage());
  const char* pText = text.Get() != nullptr ? text.Get() : "";
  setDOMError(pText, HostStrLen(pText));
  setDOMEHCode(error.getSeverity());
  return false;
}

void DOMTreeErrorReporter::resetEHMsg() { ClearString(&fEHMsg); }

void DOMTreeErrorReporter::setDOMError(const char* text, int length) {
  if (fDOMError == nullptr || m_DOMErrorSize <= length) {
    fDOMError = static_cast<char*>(HostNewPtrClear(static_cast<size_t>(length) + 1));
    m_DOMErrorSize = fDOMError != nullptr ? length + 1 : 0;
  }
  if (fDOMError != nullptr) std::memcpy(fDOMError, text, static_cast<size_t>(length) + 1);
}
