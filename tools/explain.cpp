#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <memory>

#include "client.h"
#include "message.h"
#include "output.h"

namespace {

struct CExplainOptions {
  std::string m_Code;
  bool m_All = false;
  bool m_Markdown = false;
};

// A name as it stands, or a number, for which "2628" is as good as "-2628".
const CStatusRow* FindRow(const std::string& code) {
  TSXStatus number = 0;
  const char* pEnd = code.data() + code.size();
  const auto parsed = std::from_chars(code.data(), pEnd, number);
  const bool isNumber = parsed.ec == std::errc() && parsed.ptr == pEnd;
  const auto rows = StatusRows();
  const auto found = std::ranges::find_if(rows, [&](const CStatusRow& row) {
    return isNumber ? row.m_Number == number || row.m_Number == -static_cast<int64_t>(number)
                    : code == row.m_pName;
  });
  return found == rows.end() ? nullptr : &*found;
}

void PrintWhole(const CStatusRow& row) {
  Print(std::string(row.m_pName) + " (" + std::to_string(row.m_Number) + ")\n" +
        "  Meaning:     " + row.m_pMeaning + '\n' + "  Returned by: " + row.m_pFunctions + '\n' +
        "  What to do:  " + row.m_pAdvice + '\n');
}

void PrintLine(const CStatusRow& row) {
  Print(std::to_string(row.m_Number) + ' ' + row.m_pName + ": " + row.m_pMeaning + '\n');
}

void PrintMarkdown(const CStatusRow& row) {
  Print("| " + std::to_string(row.m_Number) + " | `" + row.m_pName + "` | " + row.m_pMeaning +
        " | " + row.m_pFunctions + " | " + row.m_pAdvice + " |\n");
}

int ExplainAll(const CExplainOptions& options) {
  if (options.m_Markdown) {
    Print("| Code | Name | Meaning | Returned by | What to do |\n|---|---|---|---|---|\n");
  }
  std::ranges::for_each(StatusRows(), options.m_Markdown ? PrintMarkdown : PrintLine);
  return kDone;
}

int RunExplain(const CExplainOptions& options) {
  if (options.m_All || options.m_Markdown) return ExplainAll(options);
  if (options.m_Code.empty()) throw CLI::RequiredError("CODE or --all");
  const CStatusRow* pRow = FindRow(options.m_Code);
  if (pRow == nullptr) throw CFailure(Line(options.m_Code, "no function returns this code"));
  PrintWhole(*pRow);
  return kDone;
}

}  // namespace

void AddExplain(CLI::App& app, CClient& client) {
  auto options = std::make_shared<CExplainOptions>();
  CLI::App* pExplain = app.add_subcommand("explain", "Say what a status code means");
  CLI::Option* pCode =
      pExplain->add_option("CODE", options->m_Code, "Number, with or without its sign, or name");
  pExplain->add_flag("--all", options->m_All, "List all codes, one a line")->excludes(pCode);
  pExplain->add_flag("--markdown", options->m_Markdown, "List all codes as a table in Markdown")
      ->excludes(pCode);
  pExplain->footer(
      "Examples:\n"
      "  tessel explain -2628\n"
      "  tessel explain domErrXPathParse\n"
      "  tessel explain --all");
  pExplain->callback([options, &client] { client.m_Run = [=] { return RunExplain(*options); }; });
}
