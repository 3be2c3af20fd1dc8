#include "report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <string_view>

namespace bench {
namespace {

// Three digits that count.
std::string Number(double value) {
  const int digits =
      value <= 0 ? 0 : std::max(2 - static_cast<int>(std::floor(std::log10(value))), 0);
  char text[32];
  std::snprintf(text, sizeof(text), "%.*f", digits, value);
  return text;
}

std::string Plain(double value) {
  char text[32];
  std::snprintf(text, sizeof(text), "%g", value);
  return text;
}

std::string Figure(double value, bool isMemory) {
  if (isMemory) return Number(value) + " B";
  if (value < 1e4) return Number(value) + " ns";
  return value < 1e7 ? Number(value / 1e3) + " us" : Number(value / 1e6) + " ms";
}

std::string Ratio(const CRowResult& result, const CFigure* pFigure) {
  return pFigure != nullptr ? Number(result.RatioTo(*pFigure)) + "x" : "-";
}

std::string Aim(const CRowResult& result) {
  const CAim& aim = result.m_Aim;
  const char* pUnit = result.m_IsMemory ? " B" : " ns";
  switch (aim.m_Kind) {
    case CAim::EKind::kNone:
      return {};
    case CAim::EKind::kAmount:
      return Plain(aim.m_Most) + pUnit;
    case CAim::EKind::kMore:
      return Plain(aim.m_Most) + pUnit + " more than " + aim.m_pTo;
    default:
      return Plain(aim.m_Most) + " to " + aim.m_pTo;
  }
}

void PrintLine(const std::string& id, const std::string& per, const std::string& ours,
               const std::string& libxml2, const std::string& bare, const std::string& theirs,
               const std::string& ratio, const std::string& pugixml, const std::string& aim) {
  std::printf("%-16s %-10s %10s %9s  %-18s %10s %9s %9s  %s\n", id.c_str(), per.c_str(),
              ours.c_str(), libxml2.c_str(), bare.c_str(), theirs.c_str(), ratio.c_str(),
              pugixml.c_str(), aim.c_str());
  std::fflush(stdout);
}

}  // namespace

void PrintSurroundings(const CSurroundings& surroundings) {
  for (const auto& [name, value] : surroundings) {
    std::printf("%-14s %s\n", name.c_str(), value.c_str());
  }
  std::printf("\nA ratio is Tessel's figure to the other's: below 1 Tessel is faster.\n\n");
}

void PrintHeading() {
  PrintLine("row", "per", "Tessel", "libxml2", "bare", "", "ratio", "pugixml", "aim");
}

void PrintRow(const CRowResult& result) {
  if (!result.m_Failure.empty()) {
    std::printf("%-16s FAILED: %s\n", result.m_Id.c_str(), result.m_Failure.c_str());
    return;
  }
  const CFigure* pBare = result.Bare();
  PrintLine(
      result.m_Id, result.m_Unit, Figure(result.m_Figures.front().m_Median, result.m_IsMemory),
      Ratio(result, result.Of(kLibxml2)), pBare != nullptr ? pBare->m_Contestant : "",
      pBare != nullptr ? Figure(pBare->m_Median, result.m_IsMemory) : "", Ratio(result, pBare),
      Ratio(result, result.Of(kPugixml)), Aim(result) + (result.IsAimMissed() ? ", MISSED" : ""));
}

bool WriteCsv(const std::string& path, const CSurroundings& surroundings,
              const std::vector<CRowResult>& results) {
  std::ofstream csv(path);
  for (const auto& [name, value] : surroundings) csv << "# " << name << ": " << value << '\n';
  csv << "row,title,aim,missed,kind,unit,units,contestant,median,lowest,highest,ratio\n";
  csv.precision(6);
  for (const CRowResult& result : results) {
    for (const CFigure& figure : result.m_Figures) {
      csv << result.m_Id << ",\"" << result.m_Title << "\",\"" << Aim(result) << "\","
          << (result.IsAimMissed() ? "missed" : "") << ',' << (result.m_IsMemory ? "bytes" : "ns")
          << ',' << result.m_Unit << ',' << result.m_Units << ',' << figure.m_Contestant << ','
          << figure.m_Median << ',' << figure.m_Lowest << ',' << figure.m_Highest << ','
          << result.RatioTo(figure) << '\n';
    }
  }
  return csv.flush().good();
}

}  // namespace bench
