#include "machine.h"

#include <libxml/xmlversion.h>
#include <sys/utsname.h>
#include <tessel/version.h>

#include <chrono>
#include <cstdio>
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

// The time that all processors together have had so far, in ticks.
struct CTicks {
  double m_Idle = 0;
  double m_All = 0;  // 0 where the system does not tell
};

CTicks Ticks() {
  std::ifstream stat("/proc/stat");
  std::string name;
  stat >> name;
  CTicks ticks;
  // user, nice, system, idle, waiting for a device, and what served others
  constexpr int kIdle = 3, kWaiting = 4, kColumns = 8;
  double value = 0;
  for (int column = 0; column < kColumns && stat >> value; ++column) {
    ticks.m_All += value;
    if (column == kIdle || column == kWaiting) ticks.m_Idle += value;
  }
  return ticks;
}

}  // namespace

CSurroundings Surroundings(const COptions& options) {
  const std::string runs = options.m_IsQuick ? "quick, small documents, not for quoting"
                                             : "median of " + std::to_string(options.m_Repetitions);
  return {
      {"date", Today()},
      {"figures", runs},
      {"machine", Processor() + ", " + std::to_string(std::thread::hardware_concurrency()) +
                      " hardware threads"},
      {"system", System()},
      {"compiler", TESSEL_BENCH_COMPILER},
      {"build", TESSEL_BENCH_BUILD},
      {"library", TesselVersions()},
      {"peers", std::string("libxml2 ") + LIBXML_DOTTED_VERSION + ", pugixml " + PugixmlVersion()},
  };
}

std::string LookAround() {
  constexpr double kTooMuch = 0.1;
  const CTicks before = Ticks();
  std::this_thread::sleep_for(std::chrono::seconds(1));
  const CTicks after = Ticks();
  const double all = after.m_All - before.m_All;
  if (all <= 0) return {};
  const double busy =
      (1 - (after.m_Idle - before.m_Idle) / all) * std::thread::hardware_concurrency();
  char text[64];
  std::snprintf(text, sizeof(text), "%.2f processors%s", busy,
                busy > kTooMuch ? ", a busy machine: figures are noisy" : "");
  if (busy > kTooMuch) {
    std::fprintf(stderr, "tessel_bench: something else runs here, on %.2f processors\n", busy);
  }
  return text;
}

}  // namespace bench
