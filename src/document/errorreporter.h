// The one error sink of a document object.
#pragma once

#include <tessel/host.h>

#include <cstdint>
#include <string>
#include <xercesc/dom/DOMErrorHandler.hpp>
#include <xercesc/sax/ErrorHandler.hpp>

// As the parser's handler it collects one line of text an error; as the writer's
// it keeps the last problem. It has no lock: it is used only inside a call on
// its own document.
class DOMTreeErrorReporter : public xercesc::ErrorHandler, public xercesc::DOMErrorHandler {
 public:
  DOMTreeErrorReporter() = default;
  ~DOMTreeErrorReporter() override;
  DOMTreeErrorReporter(const DOMTreeErrorReporter&) = delete;
  DOMTreeErrorReporter& operator=(const DOMTreeErrorReporter&) = delete;

  void warning(const xercesc::SAXParseException& exception) override;
  void error(const xercesc::SAXParseException& exception) override;
  void fatalError(const xercesc::SAXParseException& exception) override;
  void resetErrors() override;
  bool handleError(const xercesc::DOMError& error) override;

  // The lines since the last reset; borrowed, may be null.
  HStr getEHMsg() const { return fEHMsg; }
  void resetEHMsg();

  // Keeps a copy of the first `length` bytes of `text` and its terminator.
  void setDOMError(const char* text, int length);
  const char* getDOMError() const { return fDOMError; }

  // Severity of the writer's last problem, 0 for none.
  void setDOMEHCode(int code) { fEHCode = code; }
  int getDOMEHCode() const { return fEHCode; }

 private:
  // `pEnd` is what the line ends in.
  void AppendLine(const xercesc::SAXParseException& exception, const char16_t* pEnd);

  int32_t fEHCode = 0;
  char* fDOMError = nullptr;  // host memory that no host function takes back, hence reused
  HStr fEHMsg = nullptr;
  int32_t m_DOMErrorSize = 0;  // of the block behind fDOMError, bytes
};
