#include "runner.h"

#include <benchmark/benchmark.h>
#include <tessel/standin.h>
#include <time.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>

namespace bench {
namespace {

// The result that all contestants of a row must have.
class CAgreement {
 public:
  // Says what is wrong, nothing when all is well.
  std::string Add(const std::string& name, uint64_t result) {
    if (!m_Result) m_Result = result, m_First = name;
    if (result == *m_Result) return {};
    return name + " has " + std::to_string(result) + ", " + m_First + " " +
           std::to_string(*m_Result);
  }

 private:
  std::optional<uint64_t> m_Result;
  std::string m_First;
};

// Keeps the figures of all repetitions, by contestant.
class CCollector : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.error_occurred) m_Failure = run.run_name.function_name + ": " + run.error_message;
      if (run.run_type != Run::RT_Iteration) continue;
      m_Samples[run.run_name.function_name].push_back(run.GetAdjustedRealTime());
    }
  }

  std::map<std::string, std::vector<double>> m_Samples;
  std::string m_Failure;
};

// Seconds. What else runs on the machine takes no time of the thread's, though it takes
// of its caches.
double Now(bool isOnThreads) {
  struct timespec time = {};
  ::clock_gettime(isOnThreads ? CLOCK_MONOTONIC : CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// One contestant's iterations: the work alone is timed.
class CDriver {
 public:
  CDriver(const CContestant& contestant, const CRow& row, CAgreement& agreement)
      : m_Contestant(contestant), m_Row(row), m_Agreement(agreement) {}

  void operator()(benchmark::State& state) {
    try {
      while (state.KeepRunning()) Iterate(state);
    } catch (const std::exception& error) {
      state.SkipWithError(error.what());
    } catch (...) {  // the libraries' own exceptions are of many kinds
      state.SkipWithError("an exception of another library");
    }
  }

 private:
  void Iterate(benchmark::State& state) {
    if (m_Contestant.m_Before) m_Contestant.m_Before();
    const double start = Now(m_Row.m_IsOnThreads);
    const uint64_t result = m_Contestant.m_Work();
    const double taken = Now(m_Row.m_IsOnThreads) - start;
    if (m_Row.m_IsMemory) {
      state.SetIterationTime(static_cast<double>(result) * 1e-9);  // a byte is a nanosecond
    } else {
      state.SetIterationTime(taken);
      Agree(result);
    }
    if (m_Contestant.m_After) m_Contestant.m_After();
  }

  void Agree(uint64_t result) {
    if (m_Contestant.m_Check) {
      if (m_IsChecked) return;
      m_IsChecked = true;
      result = m_Contestant.m_Check();
    }
    const std::string problem = m_Agreement.Add(m_Contestant.m_Name, result);
    if (!problem.empty()) throw std::runtime_error("results differ: " + problem);
  }

  const CContestant& m_Contestant;
  const CRow& m_Row;
  CAgreement& m_Agreement;
  bool m_IsChecked = false;
};

void Register(const CRow& row, CDriver& driver, const std::string& name, const COptions& options) {
  auto* pBenchmark = benchmark::RegisterBenchmark(
      name.c_str(), [&driver](benchmark::State& state) { driver(state); });
  pBenchmark->UseManualTime()->Repetitions(options.m_Repetitions)->ReportAggregatesOnly(false);
  if (row.m_IsOnce || options.m_IsQuick) {
    pBenchmark->Iterations(1);
  } else {
    pBenchmark->MinTime(options.m_Seconds);
  }
}

CFigure Figure(const std::string& name, std::vector<double> samples, size_t units) {
  std::sort(samples.begin(), samples.end());
  const auto per = static_cast<double>(units);
  return {name, samples[samples.size() / 2] / per, samples.front() / per, samples.back() / per};
}

void RunContestants(const CRow& row, const COptions& options, CRowResult& result) {
  CAgreement agreement;
  std::vector<CDriver> drivers;
  for (const CContestant& contestant : row.m_Contestants) {
    drivers.emplace_back(contestant, row, agreement);
  }
  for (size_t i = 0; i < drivers.size(); ++i) {
    Register(row, drivers[i], row.m_Contestants[i].m_Name, options);
  }
  CCollector collector;
  benchmark::RunSpecifiedBenchmarks(&collector, ".");
  benchmark::ClearRegisteredBenchmarks();
  result.m_Failure = collector.m_Failure;
  if (!result.m_Failure.empty()) return;
  for (const CContestant& contestant : row.m_Contestants) {
    result.m_Figures.push_back(
        Figure(contestant.m_Name, collector.m_Samples.at(contestant.m_Name), row.m_Units));
  }
}

// A row that leaves something open would weigh on those after it.
std::string WhatIsLeft() {
  StandinLedger ledger;
  StandinReadLedger(&ledger);
  if (ledger.violations != 0) return StandinLastViolation();
  return ledger.handles == 0 && ledger.paths == 0 ? "" : "host values were left open";
}

}  // namespace

const CFigure* CRowResult::Of(std::string_view contestant) const {
  const auto found = std::ranges::find(m_Figures, contestant, &CFigure::m_Contestant);
  return found != m_Figures.end() ? &*found : nullptr;
}

const CFigure* CRowResult::Bare() const {
  for (size_t i = 1; i < m_Figures.size(); ++i) {
    const std::string& name = m_Figures[i].m_Contestant;
    if (name != kLibxml2 && name != kPugixml) return &m_Figures[i];
  }
  return nullptr;
}

bool CRowResult::IsAimMissed() const {
  if (m_Aim.m_Kind == CAim::EKind::kNone || m_Figures.empty()) return false;
  const double ours = m_Figures.front().m_Median;
  if (m_Aim.m_Kind == CAim::EKind::kAmount) return ours > m_Aim.m_Most;
  const CFigure* pOther = Of(m_Aim.m_pTo);
  if (pOther == nullptr) return true;
  if (m_Aim.m_Kind == CAim::EKind::kMore) return ours - pOther->m_Median > m_Aim.m_Most;
  return RatioTo(*pOther) > m_Aim.m_Most;
}

CRowResult GeometricMean(const std::vector<CRowResult>& rows, std::string_view beginning,
                         const CRowResult& heading) {
  CRowResult mean = heading;
  for (const CRowResult& row : rows) {
    if (!row.m_Id.starts_with(beginning) || !row.m_Failure.empty()) continue;
    if (mean.m_Figures.empty()) {
      for (const CFigure& figure : row.m_Figures) mean.m_Figures.push_back({figure.m_Contestant});
    }
    ++mean.m_Units;
    for (CFigure& sum : mean.m_Figures) {
      const CFigure* pFigure = row.Of(sum.m_Contestant);
      if (pFigure == nullptr) continue;
      sum.m_Median += std::log(pFigure->m_Median);
      sum.m_Lowest += std::log(pFigure->m_Lowest);
      sum.m_Highest += std::log(pFigure->m_Highest);
    }
  }
  for (CFigure& figure : mean.m_Figures) {
    for (double* pValue : {&figure.m_Median, &figure.m_Lowest, &figure.m_Highest}) {
      *pValue = std::exp(*pValue / static_cast<double>(mean.m_Units));
    }
  }
  return mean;
}

void PrepareRunner() {
  char program[] = "tessel_bench";
  char interleaving[] = "--benchmark_enable_random_interleaving=true";
  char* arguments[] = {program, interleaving, nullptr};
  int count = 2;
  benchmark::Initialize(&count, arguments);
}

CRowResult RunRow(const CRowEntry& entry, const CSizes& sizes, const COptions& options) {
  CRowResult result{.m_Id = entry.m_pId, .m_Title = entry.m_pTitle, .m_Aim = entry.m_Aim};
  try {
    const CRow row = entry.m_Make(sizes);
    result.m_Unit = row.m_pUnit;
    result.m_Units = row.m_Units;
    result.m_IsMemory = row.m_IsMemory;
    RunContestants(row, options, result);
  } catch (const std::exception& error) {
    result.m_Failure = error.what();
  }
  if (result.m_Failure.empty()) result.m_Failure = WhatIsLeft();
  return result;
}

}  // namespace bench
