#include "output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <utility>

#include "input.h"
#include "message.h"

namespace fs = std::filesystem;

namespace {

[[noreturn]] void Fail(std::string_view file) { throw CFailure(Line(file, std::strerror(errno))); }

// The file that is written beside the target: gone again unless it was renamed.
class CReplacement {
 public:
  CReplacement(fs::path target, const struct stat* pOld)
      : m_Target(std::move(target)), m_pOld(pOld) {
    // A file that replaces another is private until it has the other's mode.
    const mode_t mode = pOld != nullptr ? 0600 : 0666;
    for (int i = 0; i < 100 && !m_File.IsOpen(); ++i) {
      m_Path = m_Target.parent_path() /
               (".tessel-" + std::to_string(getpid()) + "-" + std::to_string(i));
      m_File = CDescriptor(open(m_Path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
      if (!m_File.IsOpen() && errno != EEXIST) break;
    }
    m_Exists = m_File.IsOpen();
  }
  CReplacement(const CReplacement&) = delete;
  CReplacement& operator=(const CReplacement&) = delete;
  ~CReplacement() {
    if (m_Exists) unlink(m_Path.c_str());
  }

  void Commit(std::string_view bytes) {
    if (!m_File.IsOpen() || !WriteAll(m_File.Get(), bytes) || !KeepMode() ||
        fsync(m_File.Get()) != 0 || !m_File.Close() ||
        rename(m_Path.c_str(), m_Target.c_str()) != 0) {
      Fail(m_Target.native());
    }
    m_Exists = false;
    SyncFolder();
  }

 private:
  // The owner is kept where the system lets us.
  bool KeepMode() const {
    if (m_pOld == nullptr) return true;
    static_cast<void>(!fchown(m_File.Get(), m_pOld->st_uid, m_pOld->st_gid));
    return fchmod(m_File.Get(), m_pOld->st_mode & 0777) == 0;
  }

  // Best effort: both names hold a whole file by now.
  void SyncFolder() const {
    const fs::path folder = m_Target.parent_path();
    const CDescriptor descriptor(open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_CLOEXEC));
    if (descriptor.IsOpen()) fsync(descriptor.Get());
  }

  fs::path m_Target;
  const struct stat* m_pOld;
  fs::path m_Path;
  CDescriptor m_File;
  bool m_Exists = false;
};

void WriteDirectly(const std::string& target, std::string_view bytes) {
  CDescriptor file(open(target.c_str(), O_WRONLY | O_CLOEXEC));
  if (!file.IsOpen() || !WriteAll(file.Get(), bytes) || !file.Close()) Fail(target);
}

}  // namespace

void Print(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) Fail("standard output");
}

void FlushOutput() {
  if (std::fflush(stdout) != 0) Fail("standard output");
}

void PrintError(std::string_view lines) { std::fwrite(lines.data(), 1, lines.size(), stderr); }

bool HasColour() {
  const char* pTerminal = std::getenv("TERM");
  const char* pNoColour = std::getenv("NO_COLOR");
  return isatty(STDOUT_FILENO) == 1 && pTerminal != nullptr &&
         std::strcmp(pTerminal, "dumb") != 0 && (pNoColour == nullptr || *pNoColour == '\0');
}

void ReplaceFile(const std::string& target, std::string_view bytes) {
  struct stat old {};
  if (stat(target.c_str(), &old) != 0) {
    if (errno != ENOENT) Fail(target);
    return CReplacement(target, nullptr).Commit(bytes);
  }
  if (!S_ISREG(old.st_mode)) return WriteDirectly(target, bytes);
  // A file that may not be written is not replaced either.
  if (access(target.c_str(), W_OK) != 0) Fail(target);
  std::error_code error;
  const fs::path file = fs::canonical(target, error);
  if (error) throw CFailure(Line(target, error.message()));
  CReplacement(file, &old).Commit(bytes);
}

void WriteResult(const std::string& target, std::string_view bytes) {
  if (target.empty()) return Print(bytes);
  ReplaceFile(target, bytes);
}
