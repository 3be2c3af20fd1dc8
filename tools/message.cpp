#include "message.h"

#include <tessel/status_list.h>

#include <algorithm>
#include <charconv>
#include <optional>

namespace {

constexpr CStatusRow kRows[] = {
    {0, "success", "every function", "the call did what it is for", "nothing to do"},
    {1, "missing destination", "functions that pass on a code of the host",
     "the host was given no string or array to write to", "pass the address of a handle"},
    {2, "allocation refused", "functions that pass on a code of the host",
     "the host had no memory for a string, an array or a path", "free memory and call again"},
#define TSX_STATUS_ROW(number, name, functions, meaning, advice) \
  {number, #name, functions, meaning, advice},
    TSX_STATUS_LIST(TSX_STATUS_ROW)
#undef TSX_STATUS_ROW
};

const CStatusRow* FindRow(TSXStatus status) {
  const auto* pRow = std::ranges::find(kRows, status, &CStatusRow::m_Number);
  return pRow == std::end(kRows) ? nullptr : pRow;
}

bool IsControl(char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }

// The head of a collected line: "Line N, Column M,  Message: ".
struct CHead {
  size_t m_Start;
  size_t m_End;
  int m_Line;
  int m_Column;
};

// Reads a literal, a number and so on; false leaves the text somewhere inside.
bool Skip(std::string_view& text, std::string_view literal) {
  if (!text.starts_with(literal)) return false;
  text.remove_prefix(literal.size());
  return true;
}

bool ReadNumber(std::string_view& text, int& number) {
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  if (result.ec != std::errc()) return false;
  text.remove_prefix(static_cast<size_t>(result.ptr - text.data()));
  return true;
}

// A fatal error's line has no line break, so a head may stand anywhere.
std::optional<CHead> FindHead(std::string_view text, size_t from) {
  constexpr std::string_view kLine = "Line ";
  for (size_t at = text.find(kLine, from); at != text.npos; at = text.find(kLine, at + 1)) {
    std::string_view rest = text.substr(at);
    CHead head{at, 0, 0, 0};
    if (Skip(rest, kLine) && ReadNumber(rest, head.m_Line) && Skip(rest, ", Column ") &&
        ReadNumber(rest, head.m_Column) && Skip(rest, ",  Message: ")) {
      head.m_End = text.size() - rest.size();
      return head;
    }
  }
  return std::nullopt;
}

}  // namespace

std::span<const CStatusRow> StatusRows() { return kRows; }

std::string OneLine(std::string_view text) {
  while (!text.empty() && IsControl(text.back())) text.remove_suffix(1);
  std::string line(text);
  std::ranges::replace_if(line, IsControl, ' ');
  return line;
}

std::string Line(std::string_view subject, std::string_view text) {
  return "tessel: " + OneLine(subject) + ": " + OneLine(text) + '\n';
}

std::string StatusLine(std::string_view subject, TSXStatus status, std::string_view text) {
  const CStatusRow* pRow = FindRow(status);
  return Line(subject, std::string(pRow != nullptr ? pRow->m_pName : "status") + " (" +
                           std::to_string(status) + "): " + std::string(text));
}

void Require(TSXStatus status, std::string_view subject) {
  if (status == 0) return;
  const CStatusRow* pRow = FindRow(status);
  throw CFailure(StatusLine(subject, status, pRow != nullptr ? pRow->m_pMeaning : "unknown code"));
}

std::vector<CFault> ParserFaults(const std::string& file, std::string_view collected) {
  std::vector<CFault> faults;
  std::optional<CHead> head = FindHead(collected, 0);
  while (head) {
    const std::optional<CHead> next = FindHead(collected, head->m_End);
    const size_t end = next ? next->m_Start : collected.size();
    // Line 0 is a file that could not be opened at all.
    faults.push_back({file, static_cast<uint64_t>(std::max(head->m_Line, 0)),
                      static_cast<uint64_t>(std::max(head->m_Column, 0)),
                      OneLine(collected.substr(head->m_End, end - head->m_End))});
    head = next;
  }
  return faults;
}
