// Ends a load in a fatal error of our own.
#pragma once

#include <xercesc/framework/XMLErrorCodes.hpp>
#include <xercesc/internal/XMLScanner.hpp>

// The scanner that the error is reported to leaves by an exception that every scanner
// catches. Where a schema is read within, the scanner of the schema catches it, and the
// load would go on: so whatever comes next leaves, too, and nothing is reported any more.
class CLoadStop {
 public:
  explicit CLoadStop(xercesc::XMLScanner& scanner) : m_Scanner(scanner) {}
  CLoadStop(const CLoadStop&) = delete;
  CLoadStop& operator=(const CLoadStop&) = delete;

  void Begin() { m_State = EState::kGoing; }

  void Stop(const char16_t* pMessage,
            xercesc::XMLErrs::Codes code = xercesc::XMLErrs::XMLException_Fatal) {
    RequireGoing();
    m_State = EState::kReporting;
    m_Scanner.emitError(code, pMessage);
  }
  void RequireGoing() const {
    if (m_State == EState::kStopped) throw xercesc::XMLErrs::XMLException_Fatal;
  }
  // Of every error that is about to be reported.
  void OnError() {
    RequireGoing();
    if (m_State == EState::kReporting) m_State = EState::kStopped;
  }

 private:
  enum class EState { kGoing, kReporting, kStopped };

  xercesc::XMLScanner& m_Scanner;
  EState m_State = EState::kGoing;
};
