#include "progress.h"

#include <pthread.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdio>
#include <memory>
#include <mutex>
#include <thread>

#include "message.h"

namespace {

using namespace std::chrono_literals;

// The bytes of a size as people read them.
std::string Megabytes(uint64_t bytes) {
  const uint64_t tenths = bytes / 100000;
  return std::to_string(tenths / 10) + '.' + std::to_string(tenths % 10);
}

size_t Columns() {
  winsize size{};
  const bool isKnown = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return isKnown ? size.ws_col : 80;
}

// Writes the line from a thread of its own, since the library has no say in how far it is.
class CLine {
 public:
  explicit CLine(const std::vector<CInput>& inputs) {
    for (const CInput& input : inputs) {
      m_Files.push_back({OneLine(input.Name()), input.Identity()});
      m_Total += input.Identity().m_Size;
    }
    // The signals that wait while a file is replaced must not find this thread instead.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &before);
    m_Thread = std::thread([this] { Run(); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
  }
  CLine(const CLine&) = delete;
  CLine& operator=(const CLine&) = delete;
  ~CLine() {
    {
      const std::lock_guard lock(m_Mutex);
      m_IsOver = true;
    }
    m_Changed.notify_one();
    m_Thread.join();
    Hide();
  }

  void Next() {
    const std::lock_guard lock(m_Mutex);
    if (m_Current > 0) m_Done += m_Files[m_Current - 1].m_Identity.m_Size;
    ++m_Current;
  }

  void Hide() {
    const std::lock_guard lock(m_Mutex);
    if (m_IsShown) std::fputs("\r\x1b[K", stderr);
    m_IsShown = false;
  }

 private:
  void Run() {
    std::unique_lock lock(m_Mutex);
    for (auto wait = 500ms; !m_Changed.wait_for(lock, wait, [this] { return m_IsOver; });
         wait = 100ms) {
      if (m_Current == 0) continue;
      std::fputs(("\r\x1b[K" + Text().substr(0, Columns() - 1)).c_str(), stderr);
      std::fflush(stderr);
      m_IsShown = true;
    }
  }

  std::string Text() const {
    const CFile& file = m_Files[m_Current - 1];
    std::string text = "tessel: ";
    if (m_Files.size() > 1) {
      text += std::to_string(m_Current) + " of " + std::to_string(m_Files.size()) + " files, ";
    }
    if (m_Total > 0) {
      const uint64_t done = std::min(m_Done + Position(file.m_Identity), m_Total);
      text += Megabytes(done) + " of " + Megabytes(m_Total) + " MB, " +
              std::to_string(done * 100 / m_Total) + "%, ";
    }
    return text + file.m_Name;
  }

  // How far the descriptor is by which the library reads the file: at the end where it
  // has been closed, since nothing is at work before it is opened.
  static uint64_t Position(const CFileIdentity& file) {
    constexpr int kMost = 64;
    for (int descriptor = 0; descriptor < kMost; ++descriptor) {
      if (!file.IsOpenAs(descriptor)) continue;
      const off_t position = lseek(descriptor, 0, SEEK_CUR);
      return position < 0 ? 0 : static_cast<uint64_t>(position);
    }
    return file.m_Size;
  }

  struct CFile {
    std::string m_Name;
    CFileIdentity m_Identity;
  };

  std::vector<CFile> m_Files;
  uint64_t m_Total = 0;
  std::mutex m_Mutex;  // of all below
  std::condition_variable m_Changed;
  size_t m_Current = 0;  // from 1; 0 before the first
  uint64_t m_Done = 0;   // bytes of the files before the current one
  bool m_IsShown = false;
  bool m_IsOver = false;
  std::thread m_Thread;
};

std::unique_ptr<CLine> g_pLine;

}  // namespace

void StartProgress(const std::vector<CInput>& inputs) {
  if (isatty(STDERR_FILENO) == 1) g_pLine = std::make_unique<CLine>(inputs);
}

void NextFile() {
  if (g_pLine != nullptr) g_pLine->Next();
}

void HideProgress() {
  if (g_pLine != nullptr) g_pLine->Hide();
}

void EndProgress() { g_pLine.reset(); }
