#include "document/seenfiles.h"

#include <algorithm>
#include <ctime>

namespace {

constexpr int64_t kSecond = 1'000'000'000;
// Longer than the ticks of any clock, and of file systems that count in seconds.
constexpr int64_t kTick = 20'000'000, kCoarseTick = 2 * kSecond;

int64_t Nanoseconds(const timespec& time) { return time.tv_sec * kSecond + time.tv_nsec; }

struct stat Look(const std::string& path) {
  struct stat seen {};
  if (stat(path.c_str(), &seen) != 0) seen = {};
  return seen;
}

bool IsSame(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino && one.st_size == other.st_size &&
         Nanoseconds(one.st_mtim) == Nanoseconds(other.st_mtim) &&
         Nanoseconds(one.st_ctim) == Nanoseconds(other.st_ctim);
}

bool IsSettled(const struct stat& seen) {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  const int64_t tick = seen.st_ctim.tv_nsec == 0 ? kCoarseTick : kTick;
  return Nanoseconds(now) - Nanoseconds(seen.st_ctim) > tick;
}

}  // namespace

void CSeenFiles::See(const std::string& path) {
  const struct stat seen = Look(path);
  m_IsSettled = m_IsSettled && IsSettled(seen);
  m_Files.push_back({path, seen});
}

bool CSeenFiles::AreUnchanged() const {
  return std::ranges::all_of(
      m_Files, [](const CFile& file) { return IsSame(file.m_Seen, Look(file.m_Path)); });
}
