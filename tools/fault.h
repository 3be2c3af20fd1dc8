// A fault in a document, as it is shown: its place, its message, and the line there.
#ifndef TESSEL_TOOLS_FAULT_H
#define TESSEL_TOOLS_FAULT_H

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

struct CFault {
  std::string m_File;     // as the user knows it
  uint64_t m_Line = 0;    // from 1; 0 for a fault of the whole file
  uint64_t m_Column = 0;  // from 1, in UTF-16 units
  std::string m_Message;
};

// The lines of a file or a text, best asked for from the first to the last. Text in
// UTF-16 and UTF-32 has none here.
class CSourceLines {
 public:
  // Of a file that is no regular one, as a pipe, there are none.
  static CSourceLines OfFile(const std::string& path);
  // The text must live as long.
  static CSourceLines OfText(std::string_view text);

  // The line up to some characters behind the column and, below it, a caret: two lines
  // to print, indented. Empty where there is no such place. Nothing in it steers a
  // terminal.
  std::string Show(uint64_t line, uint64_t column);

 private:
  struct CClose {
    void operator()(std::FILE* pFile) const { std::fclose(pFile); }
  };
  explicit CSourceLines(std::FILE* pFile) : m_pFile(pFile) {}
  bool GoTo(uint64_t line);

  std::unique_ptr<std::FILE, CClose> m_pFile;
  uint64_t m_Line = 1;  // that begins at m_Offset
  long m_Offset = 0;
};

// "FILE:LINE:COLUMN: MESSAGE" and what the source shows of the place; coloured where
// standard error is a terminal that shows colours.
std::string FaultText(const CFault& fault, CSourceLines& source);

#endif
