#include "mutants/mutants.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string_view>

namespace mutants {

namespace {

std::vector<std::atomic<bool>>& Called() {
  static std::vector<std::atomic<bool>> s_Called(g_Functions.size());
  return s_Called;
}

size_t Chosen() {
  const char* pName = std::getenv("TESSEL_MUTANT");
  if (pName == nullptr) return g_Mutants.size();
  const auto found = std::ranges::find(g_Mutants, std::string_view(pName));
  if (found == g_Mutants.end()) {
    std::fprintf(stderr, "no such mutant: %s\n", pName);
    std::abort();
  }
  return static_cast<size_t>(found - g_Mutants.begin());
}

// Adds a line to the file that TESSEL_MUTANT_CALLS names for each case: its name, its
// milliseconds, and the functions that it calls.
class CRecorder : public ::testing::EmptyTestEventListener {
 public:
  explicit CRecorder(const char* pFile) : m_File(pFile, std::ios::app) {}

  void OnTestStart(const ::testing::TestInfo&) override {
    for (std::atomic<bool>& called : Called()) called = false;
  }

  void OnTestEnd(const ::testing::TestInfo& test) override {
    m_File << test.test_suite_name() << '.' << test.name() << ' ' << test.result()->elapsed_time();
    for (size_t i = 0; i < g_Functions.size(); ++i) {
      if (Called()[i]) m_File << ' ' << g_Functions[i];
    }
    m_File << std::endl;
  }

 private:
  std::ofstream m_File;
};

const bool g_Records = [] {
  const char* pFile = std::getenv("TESSEL_MUTANT_CALLS");
  if (pFile == nullptr) return false;
  ::testing::UnitTest::GetInstance()->listeners().Append(new CRecorder(pFile));
  return true;
}();

}  // namespace

size_t Enter(size_t function) {
  static const size_t s_Chosen = Chosen();
  if (g_Records) Called()[function] = true;
  return s_Chosen;
}

}  // namespace mutants
