#include "io/writeguard.h"

#include <xercesc/dom/DOMError.hpp>

namespace {

class CWriteError final : public xercesc::DOMError {
 public:
  explicit CWriteError(const CUnwritable& problem) : m_Problem(problem) {}

  ErrorSeverity getSeverity() const override { return DOM_SEVERITY_FATAL_ERROR; }
  const XMLCh* getMessage() const override { return m_Problem.m_pMessage; }
  xercesc::DOMLocator* getLocation() const override { return nullptr; }
  void* getRelatedException() const override { return nullptr; }
  const XMLCh* getType() const override { return nullptr; }
  void* getRelatedData() const override { return nullptr; }

 private:
  const CUnwritable& m_Problem;
};

}  // namespace

void Report(const CUnwritable& problem, xercesc::DOMErrorHandler& handler) {
  handler.handleError(CWriteError(problem));
}
