// Runs the rows of a table with Google Benchmark, one row at a time.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "rows.h"

namespace bench {

// Per unit of the row's work: nanoseconds, or bytes.
struct CFigure {
  std::string m_Contestant;
  double m_Median;
  double m_Lowest;
  double m_Highest;
};

struct CRowResult {
  std::string m_Id, m_Title, m_Aim;
  std::string m_Unit = {};
  size_t m_Units = 0;
  bool m_IsMemory = false;
  std::vector<CFigure> m_Figures = {};  // Tessel's first, as the row has them
  std::string m_Failure = {};           // empty when all went well

  // How many times a contestant's figure Tessel's is.
  double RatioTo(const CFigure& figure) const {
    return m_Figures.front().m_Median / figure.m_Median;
  }
};

struct COptions {
  bool m_IsQuick = false;
  int m_Repetitions = 5;
  double m_Seconds = 0.1;  // at least, for a repetition of a row that may repeat
  std::string m_Filter;    // part of a row's id; empty for all
  std::string m_CsvPath;   // empty for none
};

// Once, before any row.
void PrepareRunner();

// Repetitions of a row's contestants alternate in a random order, so that a busy
// machine slows all of them alike.
CRowResult RunRow(const CRowEntry& entry, const CSizes& sizes, const COptions& options);

}  // namespace bench
