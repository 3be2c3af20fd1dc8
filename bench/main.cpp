// tessel_bench: measures the library beside the libraries below it and beside
// others, all in one run, so that only ratios matter.
#include <libxml/parser.h>

#include <algorithm>
#include <charconv>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <xalanc/XPath/XPathInit.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "report.h"
#include "rows.h"
#include "runner.h"

namespace bench {
namespace {

constexpr CSizes kFull{.m_LargeItems = 200'000,
                       .m_MediumItems = 20'000,
                       .m_Elements = 100'000,
                       .m_TextBytes = 100'000,
                       .m_Calls = 10'000,
                       .m_QueryItems = 40'000,
                       .m_OpenMaps = 50'000,
                       .m_Growth = 5'000};
constexpr CSizes kQuick{.m_LargeItems = 400,
                        .m_MediumItems = 100,
                        .m_Elements = 100,
                        .m_TextBytes = 2'000,
                        .m_Calls = 100,
                        .m_QueryItems = 300,
                        .m_OpenMaps = 100,
                        .m_Growth = 100};

constexpr const char* kUsage =
    "usage: tessel_bench [--quick] [--csv FILE] [--only TEXT] [--repetitions N] [--list]\n"
    "  --quick         small documents, one repetition: does every row still run?\n"
    "  --csv FILE      writes the figures to a file too\n"
    "  --only TEXT     rows whose name holds the text\n"
    "  --repetitions N of each contestant, 5 if not given\n"
    "  --list          prints the rows' names and what they do\n";

CRowTable AllRows() {
  CRowTable rows;
  for (const auto table : {IoRows, EditRows, NavigationRows, WalkRows, RegistryRows, XPathRows,
                           GrowthRows, CollectionRows, StringRows, MemoryRows}) {
    for (CRowEntry& entry : table()) rows.push_back(std::move(entry));
  }
  return rows;
}

// What Xerces-C, Xalan-C and libxml2 need around all that is done with them.
class CLibraries {
 public:
  CLibraries() = default;
  ~CLibraries() { xmlCleanupParser(); }
  CLibraries(const CLibraries&) = delete;
  CLibraries& operator=(const CLibraries&) = delete;

 private:
  struct CXerces {
    CXerces() { xercesc::XMLPlatformUtils::Initialize(); }
    ~CXerces() { xercesc::XMLPlatformUtils::Terminate(); }
  };
  CXerces m_Xerces;
  xalanc::XPathInit m_Xalan;
};

bool ParseCount(std::string_view text, int& count) {
  const auto [pEnd, error] = std::from_chars(text.data(), text.data() + text.size(), count);
  return error == std::errc() && pEnd == text.data() + text.size() && count > 0;
}

struct CArguments {
  COptions m_Options;
  bool m_IsList = false;
  bool m_IsHelp = false;
};

// False for wrong usage.
bool Parse(int argc, char** argv, CArguments& arguments) {
  for (int i = 1; i < argc; ++i) {
    const std::string_view name = argv[i];
    const bool hasValue = i + 1 < argc;
    if (name == "--quick") {
      arguments.m_Options.m_IsQuick = true;
      arguments.m_Options.m_Repetitions = 1;
    } else if (name == "--list") {
      arguments.m_IsList = true;
    } else if (name == "--help") {
      arguments.m_IsHelp = true;
    } else if (name == "--csv" && hasValue) {
      arguments.m_Options.m_CsvPath = argv[++i];
    } else if (name == "--only" && hasValue) {
      arguments.m_Options.m_Filter = argv[++i];
    } else if (name != "--repetitions" || !hasValue ||
               !ParseCount(argv[++i], arguments.m_Options.m_Repetitions)) {
      return false;
    }
  }
  return true;
}

void List() {
  for (const CRowEntry& entry : AllRows()) {
    std::printf("%-16s %s\n", entry.m_pId, entry.m_pTitle);
  }
}

bool IsMissing(const CRowEntry& entry) {
  if (entry.m_pNeededFile == nullptr || std::filesystem::exists(entry.m_pNeededFile)) return false;
  std::printf("%-16s left out: no file %s\n", entry.m_pId, entry.m_pNeededFile);
  return true;
}

// The mean of all expressions, above the first of them.
void AddMean(std::vector<CRowResult>& results) {
  const CRowResult mean =
      GeometricMean(results, "xpath.",
                    {.m_Id = "xpath",
                     .m_Title = "XPath: geometric mean of the expressions below",
                     .m_Aim = Times(1, kLibxml2),
                     .m_Unit = "evaluation"});
  if (mean.m_Figures.empty()) return;
  PrintRow(mean);
  results.insert(std::ranges::find_if(
                     results, [](const CRowResult& row) { return row.m_Id.starts_with("xpath."); }),
                 mean);
}

int Run(const COptions& options) {
  const CLibraries libraries;
  PrepareRunner();
  CSurroundings surroundings = Surroundings(options);
  if (!options.m_IsQuick) surroundings.emplace_back("at work before", LookAround());
  PrintSurroundings(surroundings);
  PrintHeading();
  std::vector<CRowResult> results;
  size_t failures = 0;
  for (const CRowEntry& entry : AllRows()) {
    const bool isWanted = std::strstr(entry.m_pId, options.m_Filter.c_str()) != nullptr;
    if (!isWanted || IsMissing(entry)) continue;
    results.push_back(RunRow(entry, options.m_IsQuick ? kQuick : kFull, options));
    PrintRow(results.back());
    failures += !results.back().m_Failure.empty();
  }
  AddMean(results);
  if (!options.m_IsQuick) surroundings.emplace_back("at work after", LookAround());
  if (results.empty()) std::fputs("tessel_bench: no such row\n", stderr);
  if (!options.m_CsvPath.empty() && !WriteCsv(options.m_CsvPath, surroundings, results)) {
    std::fprintf(stderr, "tessel_bench: cannot write %s\n", options.m_CsvPath.c_str());
    return 1;
  }
  return failures == 0 && !results.empty() ? 0 : 1;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  std::setlocale(LC_CTYPE, "");
  bench::CArguments arguments;
  if (!bench::Parse(argc, argv, arguments)) {
    std::fputs(bench::kUsage, stderr);
    return 2;
  }
  if (arguments.m_IsHelp) {
    std::fputs(bench::kUsage, stdout);
    return 0;
  }
  if (arguments.m_IsList) {
    bench::List();
    return 0;
  }
  return bench::Run(arguments.m_Options);
}
