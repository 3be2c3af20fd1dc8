// What the client says on standard error, and the status codes in words.
#ifndef TESSEL_TOOLS_MESSAGE_H
#define TESSEL_TOOLS_MESSAGE_H

#include <tessel/export.h>

#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "fault.h"

// Ends the subcommand with exit status 1. The text is whole lines, ready to print.
class CFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct CStatusRow {
  TSXStatus m_Number;
  const char* m_pName;
  const char* m_pFunctions;
  const char* m_pMeaning;
  const char* m_pAdvice;
};

// Success, the host's codes, then every code of the library.
std::span<const CStatusRow> StatusRows();

// One line that cannot steer a terminal: control characters become blanks.
std::string OneLine(std::string_view text);

// "tessel: SUBJECT: TEXT" as a line. Control characters become blanks.
std::string Line(std::string_view subject, std::string_view text);

// As Line, with the code's name and number before the text.
std::string StatusLine(std::string_view subject, TSXStatus status, std::string_view text);

// Throws the line of a status that is not 0, with the code's meaning.
void Require(TSXStatus status, std::string_view subject);

// The faults that a load collected, in a file of this name.
std::vector<CFault> ParserFaults(const std::string& file, std::string_view collected);

#endif
