// What a run prints: the table, the CSV file.
#pragma once

#include <string>
#include <vector>

#include "machine.h"
#include "runner.h"

namespace bench {

void PrintSurroundings(const CSurroundings& surroundings);
void PrintHeading();
void PrintRow(const CRowResult& result);

// Surroundings as lines "# name: value", then a line per contestant. False when the
// file could not be written.
bool WriteCsv(const std::string& path, const CSurroundings& surroundings,
              const std::vector<CRowResult>& results);

}  // namespace bench
