// The parser that tells faults and builds nothing.
#ifndef TESSEL_TOOLS_CHECKER_H
#define TESSEL_TOOLS_CHECKER_H

#include <functional>
#include <memory>
#include <xercesc/sax/InputSource.hpp>

#include "document.h"
#include "document/lentgrammars.h"
#include "fault.h"

class CCheckParser;

// Reads inputs in memory that does not grow with them, and reports each fault by the file
// in which it is: all against a grammar, and the first ten against XML itself. This is
// the one thing that the client does not do by the library's interface, which always
// builds the document.
class CChecker {
 public:
  using CReport = std::function<void(const CFault&, CSourceLines&)>;

  CChecker(const CReadOptions& options, CReport report);

  // Reads a schema once for all inputs, in which names are looked up in it before what
  // they name themselves.
  void AddSchema(const CInput& schema);
  void Check(const CInput& input);

 private:
  using CWork = void (CCheckParser::*)(const xercesc::InputSource&);
  void Run(const CInput& input, CWork work);

  CReadOptions m_Options;
  CReport m_Report;
  std::unique_ptr<CLentGrammars> m_pSchemas;
};

#endif
