#include "fault.h"

#include <fcntl.h>
#include <locale.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cwchar>
#include <deque>

#include "input.h"
#include "message.h"
#include "output.h"

namespace {

// Characters of a long line that are shown before the caret and behind it.
constexpr size_t kBefore = 60;
constexpr size_t kBehind = 20;

constexpr const char* kPlaceColour = "1";
constexpr const char* kCaretColour = "31";

// A character that is shown: its bytes, the columns that it takes on a terminal, and the
// UTF-16 units that the parser counts for it.
struct CShown {
  std::string m_Bytes;
  int m_Width = 1;
  unsigned m_Units = 1;
};

// While it lives, this thread knows the widths of all characters, whatever the locale:
// what the client prints is in UTF-8 in every one.
class CKnownWidths {
 public:
  CKnownWidths()
      : m_Locale(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)),
        m_Before(uselocale(m_Locale)) {}  // of none, changes nothing
  CKnownWidths(const CKnownWidths&) = delete;
  CKnownWidths& operator=(const CKnownWidths&) = delete;
  ~CKnownWidths() {
    uselocale(m_Before);
    if (m_Locale != nullptr) freelocale(m_Locale);
  }

 private:
  locale_t m_Locale;
  locale_t m_Before;
};

// Malformed bytes and controls are shown as a question mark each.
CShown Decoded(uint32_t code, std::string bytes) {
  const unsigned units = code > 0xffff ? 2 : 1;
  if (code == '\t') return {std::move(bytes), 1, 1};
  if (code < 0x20 || (code >= 0x7f && code < 0xa0)) return {"?", 1, 1};
  const int width = wcwidth(static_cast<wchar_t>(code));
  return {std::move(bytes), width >= 0 ? width : 1, units};
}

// The next character of the line; false at its end.
bool ReadCharacter(std::FILE* pFile, CShown& shown) {
  const int first = std::getc(pFile);
  if (first == EOF || first == '\n' || first == '\r') return false;
  const unsigned size = first < 0xc2 ? 1 : first < 0xe0 ? 2 : first < 0xf0 ? 3 : 4;
  if (size == 1) {
    shown = first < 0x80 ? Decoded(static_cast<uint32_t>(first), {static_cast<char>(first)})
                         : CShown{"?", 1, 1};
    return true;
  }
  std::string bytes{static_cast<char>(first)};
  uint32_t code = static_cast<uint32_t>(first) & (0x7fU >> size);
  while (bytes.size() < size) {
    const int next = std::getc(pFile);
    if ((next & 0xc0) != 0x80 || next == EOF) {
      if (next != EOF) std::ungetc(next, pFile);
      shown = {"?", 1, 1};
      return true;
    }
    bytes += static_cast<char>(next);
    code = code << 6 | (static_cast<uint32_t>(next) & 0x3f);
  }
  shown = Decoded(code, std::move(bytes));
  return true;
}

// What UTF-16 and UTF-32 begin with, marked or not.
bool IsWide(std::FILE* pFile) {
  const std::array<int, 2> head{std::getc(pFile), std::getc(pFile)};
  std::rewind(pFile);
  return head[0] == 0 || head[1] == 0 || head[0] >= 0xfe;
}

std::FILE* Usable(std::FILE* pFile) {
  if (pFile == nullptr || !IsWide(pFile)) return pFile;
  std::fclose(pFile);
  return nullptr;
}

std::string Coloured(const char* pColour, const std::string& text) {
  if (!HasColour(STDERR_FILENO)) return text;
  return std::string("\x1b[") + pColour + 'm' + text + "\x1b[0m";
}

}  // namespace

CSourceLines CSourceLines::OfFile(const std::string& path) {
  CDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (!file.IsOpen() || fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return CSourceLines(nullptr);
  }
  return CSourceLines(Usable(fdopen(file.Release(), "r")));
}

CSourceLines CSourceLines::OfText(std::string_view text) {
  if (text.empty()) return CSourceLines(nullptr);
  return CSourceLines(Usable(fmemopen(const_cast<char*>(text.data()), text.size(), "r")));
}

bool CSourceLines::GoTo(uint64_t line) {
  if (line < m_Line) {
    m_Line = 1;
    m_Offset = 0;
  }
  if (std::fseek(m_pFile.get(), m_Offset, SEEK_SET) != 0) return false;
  for (int c = 0; m_Line < line && c != EOF;) {
    c = std::getc(m_pFile.get());
    if (c == '\n') ++m_Line;
  }
  m_Offset = std::ftell(m_pFile.get());
  return m_Line == line;
}

std::string CSourceLines::Show(uint64_t line, uint64_t column) {
  if (m_pFile == nullptr || line == 0 || column == 0 || !GoTo(line)) return {};
  const CKnownWidths widths;
  std::deque<CShown> before;
  CShown shown;
  uint64_t units = 1;
  bool isCut = false;
  while (units < column && ReadCharacter(m_pFile.get(), shown)) {
    units += shown.m_Units;
    before.push_back(shown);
    if (before.size() > kBefore) {
      before.pop_front();
      isCut = true;
    }
  }
  if (units < column) return {};
  std::string text = isCut ? "  ..." : "  ";
  std::string blanks(text.size(), ' ');
  for (const CShown& character : before) {
    text += character.m_Bytes;
    blanks +=
        character.m_Bytes == "\t" ? "\t" : std::string(static_cast<size_t>(character.m_Width), ' ');
  }
  size_t behind = 0;
  while (behind < kBehind && ReadCharacter(m_pFile.get(), shown)) {
    text += shown.m_Bytes;
    ++behind;
  }
  return text + (behind == kBehind ? "...\n" : "\n") + blanks + Coloured(kCaretColour, "^") + '\n';
}

std::string FaultText(const CFault& fault, CSourceLines& source) {
  std::string place = OneLine(fault.m_File);
  if (fault.m_Line == 0) return Line(place, fault.m_Message);
  place += ':' + std::to_string(fault.m_Line) + ':' + std::to_string(fault.m_Column) + ':';
  return Coloured(kPlaceColour, place) + ' ' + OneLine(fault.m_Message) + '\n' +
         source.Show(fault.m_Line, fault.m_Column);
}
