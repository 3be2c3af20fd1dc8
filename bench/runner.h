// Runs the rows of a table with Google Benchmark, one row at a time.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "rows.h"

namespace bench {

// Per unit of the row's work: nanoseconds, or bytes.
struct CFigure {
  std::string m_Contestant;
  double m_Median = 0;
  double m_Lowest = 0;
  double m_Highest = 0;
};

struct CRowResult {
  std::string m_Id, m_Title;
  CAim m_Aim = kNoAim;
  std::string m_Unit = {};
  size_t m_Units = 0;
  bool m_IsMemory = false;
  std::vector<CFigure> m_Figures = {};  // Tessel's first, as the row has them
  std::string m_Failure = {};           // empty when all went well

  // Null where the contestant takes no part.
  const CFigure* Of(std::string_view contestant) const;
  // What is neither Tessel nor another XML library; null for nothing.
  const CFigure* Bare() const;
  // How many times a contestant's figure Tessel's is.
  double RatioTo(const CFigure& figure) const {
    return m_Figures.front().m_Median / figure.m_Median;
  }
  bool IsAimMissed() const;
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

// The geometric means of the figures of those rows whose ids begin so, as a row; no
// figures where there is no such row.
CRowResult GeometricMean(const std::vector<CRowResult>& rows, std::string_view beginning,
                         const CRowResult& heading);

}  // namespace bench
