// What a run prints: the machine, the table, the CSV file.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "runner.h"

namespace bench {

// What the figures were measured on and with, as names and values.
using CSurroundings = std::vector<std::pair<std::string, std::string>>;
CSurroundings Surroundings(const COptions& options);

// The load average, with a warning where it is well above the run's own share.
std::string LoadAverage(double own);

void PrintSurroundings(const CSurroundings& surroundings);
void PrintHeading();
void PrintRow(const CRowResult& result);

// Surroundings as lines "# name: value", then a line per contestant. False when the
// file could not be written.
bool WriteCsv(const std::string& path, const CSurroundings& surroundings,
              const std::vector<CRowResult>& results);

}  // namespace bench
