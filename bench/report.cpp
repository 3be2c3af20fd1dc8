#include "report.h"

#include <libxml/xmlversion.h>
#include <sys/utsname.h>
#include <tessel/version.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <pugixml.hpp>
#include <string_view>
#include <thread>

#include "owners.h"

namespace bench {
namespace {

std::string Processor() {
  std::ifstream info("/proc/cpuinfo");
  std::string line;
  while (std::getline(info, line)) {
    const size_t colon = line.find(": ");
    if (line.starts_with("model name") && colon != std::string::npos) return line.substr(colon + 2);
  }
  return "unknown processor";
}

std::string System() {
  struct utsname names = {};
  uname(&names);
  std::ifstream release("/etc/os-release");
  std::string line;
  while (std::getline(release, line)) {
    constexpr std::string_view kKey = "PRETTY_NAME=\"";
    if (line.starts_with(kKey)) {
      return line.substr(kKey.size(), line.size() - kKey.size() - 1) + ", Linux " + names.release;
    }
  }
  return std::string("Linux ") + names.release;
}

std::string Today() {
  const std::time_t now = std::time(nullptr);
  char text[32];
  std::strftime(text, sizeof(text), "%Y-%m-%d", std::gmtime(&now));
  return text;
}

// The library's own record, which names the libraries below it too.
std::string TesselVersions() {
  HStrArray versions = nullptr;
  if (nKelVersion_TESSEL_getVersionStringArray(&versions) != 0) return "unknown";
  std::string text;
  for (int32_t i = 0; i < (*versions)->count; ++i) {
    HStr* pItem = (*versions)->items + i;
    if (i != 0) text += ", ";
    text.append(reinterpret_cast<const char*>((**pItem)->bytes),
                static_cast<size_t>((**pItem)->count));
    ClearString(pItem);
  }
  ClearArray(&versions);
  return text;
}

std::string PugixmlVersion() {
  return std::to_string(PUGIXML_VERSION / 1000) + "." + std::to_string(PUGIXML_VERSION % 1000 / 10);
}

// Three digits that count.
std::string Number(double value) {
  const int digits =
      value <= 0 ? 0 : std::max(2 - static_cast<int>(std::floor(std::log10(value))), 0);
  char text[32];
  std::snprintf(text, sizeof(text), "%.*f", digits, value);
  return text;
}

std::string Amount(double value, bool isMemory) {
  if (isMemory) return Number(value) + " B";
  if (value < 1e4) return Number(value) + " ns";
  return value < 1e7 ? Number(value / 1e3) + " us" : Number(value / 1e6) + " ms";
}

std::string Ratio(double ratio) { return Number(ratio) + "x"; }

std::string PeerRatio(const CRowResult& result, std::string_view peer) {
  for (const CFigure& figure : result.m_Figures) {
    if (figure.m_Contestant == peer) return Ratio(result.RatioTo(figure));
  }
  return "-";
}

void PrintLine(const std::string& id, const std::string& per, const std::string& ours,
               const std::string& other, const std::string& theirs, const std::string& ratio,
               const std::string& libxml2, const std::string& pugixml, const std::string& aim) {
  std::printf("%-16s %-10s %10s  %-12s %10s %9s %9s %9s  %s\n", id.c_str(), per.c_str(),
              ours.c_str(), other.c_str(), theirs.c_str(), ratio.c_str(), libxml2.c_str(),
              pugixml.c_str(), aim.c_str());
  std::fflush(stdout);
}

}  // namespace

std::string LoadAverage(double own) {
  double loads[1] = {0};
  getloadavg(loads, 1);
  const bool isBusy = loads[0] > own + 0.5;
  return Number(loads[0]) + (isBusy ? ", a busy machine: figures are noisy" : "");
}

CSurroundings Surroundings(const COptions& options) {
  const std::string runs = options.m_IsQuick ? "quick, small documents, not for quoting"
                                             : "median of " + std::to_string(options.m_Repetitions);
  return {
      {"date", Today()},
      {"figures", runs},
      {"machine", Processor() + ", " + std::to_string(std::thread::hardware_concurrency()) +
                      " hardware threads"},
      {"system", System()},
      {"load at start", LoadAverage(0)},
      {"compiler", TESSEL_BENCH_COMPILER},
      {"build", TESSEL_BENCH_BUILD},
      {"library", TesselVersions()},
      {"peers", std::string("libxml2 ") + LIBXML_DOTTED_VERSION + ", pugixml " + PugixmlVersion()},
  };
}

void PrintSurroundings(const CSurroundings& surroundings) {
  for (const auto& [name, value] : surroundings) {
    std::printf("%-14s %s\n", name.c_str(), value.c_str());
  }
  std::printf("\nA ratio is Tessel's figure to the other's: below 1 Tessel is faster.\n\n");
}

void PrintHeading() {
  PrintLine("row", "per", "Tessel", "other", "", "ratio", "libxml2", "pugixml", "aim");
}

void PrintRow(const CRowResult& result) {
  if (!result.m_Failure.empty()) {
    std::printf("%-16s FAILED: %s\n", result.m_Id.c_str(), result.m_Failure.c_str());
    return;
  }
  const std::string ours = Amount(result.m_Figures.front().m_Median, result.m_IsMemory);
  std::string other, theirs, ratio;
  if (result.m_Figures.size() > 1) {
    const CFigure& base = result.m_Figures[1];
    other = base.m_Contestant;
    theirs = Amount(base.m_Median, result.m_IsMemory);
    ratio = Ratio(result.RatioTo(base));
  }
  PrintLine(result.m_Id, result.m_Unit, ours, other, theirs, ratio, PeerRatio(result, "libxml2"),
            PeerRatio(result, "pugixml"), result.m_Aim);
}

bool WriteCsv(const std::string& path, const CSurroundings& surroundings,
              const std::vector<CRowResult>& results) {
  std::ofstream csv(path);
  for (const auto& [name, value] : surroundings) csv << "# " << name << ": " << value << '\n';
  csv << "row,title,aim,kind,unit,units,contestant,median,lowest,highest,ratio\n";
  csv.precision(6);
  for (const CRowResult& result : results) {
    for (const CFigure& figure : result.m_Figures) {
      csv << result.m_Id << ",\"" << result.m_Title << "\",\"" << result.m_Aim << "\","
          << (result.m_IsMemory ? "bytes" : "ns") << ',' << result.m_Unit << ',' << result.m_Units
          << ',' << figure.m_Contestant << ',' << figure.m_Median << ',' << figure.m_Lowest << ','
          << figure.m_Highest << ',' << result.RatioTo(figure) << '\n';
    }
  }
  return csv.flush().good();
}

}  // namespace bench
