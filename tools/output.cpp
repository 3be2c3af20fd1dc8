#include "output.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "message.h"
#include "progress.h"
#include "replace.h"

namespace {

[[noreturn]] void FailToWrite(std::string_view file) {
  throw CFailure(Line(file, std::strerror(errno)));
}

}  // namespace

void Print(std::string_view text) {
  EndProgress();
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size())
    FailToWrite("standard output");
}

void FlushOutput() {
  if (std::fflush(stdout) != 0) FailToWrite("standard output");
}

void PrintError(std::string_view lines) {
  HideProgress();
  std::fwrite(lines.data(), 1, lines.size(), stderr);
}

bool HasColour(int descriptor) {
  const char* pTerminal = std::getenv("TERM");
  const char* pNoColour = std::getenv("NO_COLOR");
  return isatty(descriptor) == 1 && pTerminal != nullptr && std::strcmp(pTerminal, "dumb") != 0 &&
         (pNoColour == nullptr || *pNoColour == '\0');
}

void WriteResult(const std::string& target, std::string_view bytes) {
  if (target.empty() || target == "-") return Print(bytes);
  ReplaceFile(target, bytes);
}
