#include "replace.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <optional>
#include <utility>
#include <vector>

#include "input.h"
#include "message.h"

namespace fs = std::filesystem;

namespace {

[[noreturn]] void Fail(std::string_view file, std::string_view what = {}) {
  const std::string error = std::strerror(errno);
  throw CFailure(Line(file, what.empty() ? error : std::string(what) + ": " + error));
}

// Holds the signals that would end the client back while it lives: one that came
// meanwhile takes effect when it goes.
class CSignalHold {
 public:
  CSignalHold() {
    sigemptyset(&m_Signals);
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) sigaddset(&m_Signals, signal);
    pthread_sigmask(SIG_BLOCK, &m_Signals, &m_Before);
  }
  CSignalHold(const CSignalHold&) = delete;
  CSignalHold& operator=(const CSignalHold&) = delete;
  ~CSignalHold() { pthread_sigmask(SIG_SETMASK, &m_Before, nullptr); }

  bool HasCome() const {
    sigset_t pending;
    if (sigpending(&pending) != 0) return false;
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
      if (sigismember(&pending, signal) == 1) return true;
    }
    return false;
  }

 private:
  sigset_t m_Signals{};
  sigset_t m_Before{};
};

// -- Extended attributes, access lists among them --------------------------------

std::vector<std::string> AttributeNames(int file) {
  const ssize_t size = flistxattr(file, nullptr, 0);
  if (size <= 0) return {};
  std::vector<char> names(static_cast<size_t>(size));
  const ssize_t got = flistxattr(file, names.data(), names.size());
  std::vector<std::string> result;
  for (auto at = names.begin(); at < names.begin() + std::max<ssize_t>(got, 0);) {
    const auto end = std::find(at, names.end(), '\0');
    result.emplace_back(at, end);
    at = end == names.end() ? end : end + 1;
  }
  return result;
}

std::optional<std::vector<char>> AttributeValue(int file, const char* pName) {
  const ssize_t size = fgetxattr(file, pName, nullptr, 0);
  if (size < 0) return std::nullopt;
  std::vector<char> value(static_cast<size_t>(size));
  const ssize_t got = fgetxattr(file, pName, value.data(), value.size());
  if (got != size) return std::nullopt;
  return value;
}

// A value that is there already, as a label that the system gives, needs no right.
bool CopyAttribute(int from, int to, const char* pName) {
  const auto value = AttributeValue(from, pName);
  if (!value) return false;
  return AttributeValue(to, pName) == value ||
         fsetxattr(to, pName, value->data(), value->size(), 0) == 0;
}

// -- The new file --------------------------------------------------------------------

// Is gone again unless it was renamed.
class CReplacement {
 public:
  // `pOld` is the file that is replaced, if there is one.
  CReplacement(fs::path target, const CDescriptor* pOld)
      : m_Target(std::move(target)), m_pOld(pOld) {
    // A file that replaces another is private until it has the other's mode.
    const mode_t mode = pOld != nullptr ? 0600 : 0666;
    for (int i = 0; i < 100 && !m_File.IsOpen(); ++i) {
      m_Path = m_Target.parent_path() /
               (".tessel-" + std::to_string(getpid()) + "-" + std::to_string(i));
      m_File = CDescriptor(open(m_Path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
      if (!m_File.IsOpen() && errno != EEXIST) break;
    }
    if (!m_File.IsOpen()) Fail(Folder(), "no file can be made in this folder");
    m_Exists = true;
  }
  CReplacement(const CReplacement&) = delete;
  CReplacement& operator=(const CReplacement&) = delete;
  ~CReplacement() {
    if (m_Exists) unlink(m_Path.c_str());
  }

  void Commit(std::string_view bytes) {
    constexpr size_t kPiece = size_t{1} << 20;
    for (size_t at = 0; at < bytes.size(); at += kPiece) {
      if (m_Signals.HasCome()) return;
      if (!WriteAll(m_File.Get(), bytes.substr(at, kPiece))) Fail(m_Target.native());
    }
    if (m_pOld != nullptr) KeepProperties();
    if (fsync(m_File.Get()) != 0 || !m_File.Close()) Fail(m_Target.native());
    if (m_Signals.HasCome()) return;
    if (rename(m_Path.c_str(), m_Target.c_str()) != 0) Fail(m_Target.native());
    m_Exists = false;
    SyncFolder();
  }

 private:
  std::string Folder() const {
    const fs::path folder = m_Target.parent_path();
    return folder.empty() ? "." : folder.native();
  }

  // The owner first, since a change of owner takes rights away; then the mode, whose
  // group is a mask where there is an access list, and the lists last.
  void KeepProperties() {
    struct stat old {};
    struct stat now {};
    if (fstat(m_pOld->Get(), &old) != 0 || fstat(m_File.Get(), &now) != 0) Fail(m_Target.native());
    if ((old.st_uid != now.st_uid || old.st_gid != now.st_gid) &&
        fchown(m_File.Get(), old.st_uid, old.st_gid) != 0) {
      Fail(m_Target.native(), "its owner cannot be kept");
    }
    if (fchmod(m_File.Get(), old.st_mode & 07777) != 0) {
      Fail(m_Target.native(), "its mode cannot be kept");
    }
    KeepAttributes();
  }

  void KeepAttributes() {
    const std::vector<std::string> names = AttributeNames(m_pOld->Get());
    // A folder may give its new files an access list.
    for (const std::string& name : AttributeNames(m_File.Get())) {
      if (std::ranges::find(names, name) == names.end()) {
        fremovexattr(m_File.Get(), name.c_str());
      }
    }
    for (const std::string& name : names) {
      if (!CopyAttribute(m_pOld->Get(), m_File.Get(), name.c_str())) {
        Fail(m_Target.native(), "its attribute " + name + " cannot be kept");
      }
    }
  }

  // Best effort: both names hold a whole file by now.
  void SyncFolder() const {
    const CDescriptor descriptor(open(Folder().c_str(), O_RDONLY | O_CLOEXEC));
    if (descriptor.IsOpen()) fsync(descriptor.Get());
  }

  CSignalHold m_Signals;  // the last to go
  fs::path m_Target;
  const CDescriptor* m_pOld;
  fs::path m_Path;
  CDescriptor m_File;
  bool m_Exists = false;
};

void WriteDirectly(const std::string& target, std::string_view bytes) {
  CDescriptor file(open(target.c_str(), O_WRONLY | O_CLOEXEC));
  if (!file.IsOpen() || !WriteAll(file.Get(), bytes) || !file.Close()) Fail(target);
}

void ReplaceOld(const std::string& target, std::string_view bytes, nlink_t names) {
  // A file that may not be written is not replaced either.
  const CDescriptor old(open(target.c_str(), O_WRONLY | O_CLOEXEC));
  if (!old.IsOpen()) Fail(target);
  if (names > 1) {
    throw CFailure(Line(target,
                        "it has other names (hard links), which would keep the old "
                        "content; write to another file with -o"));
  }
  std::error_code error;
  const fs::path file = fs::canonical(target, error);
  if (error) throw CFailure(Line(target, error.message()));
  CReplacement(file, &old).Commit(bytes);
}

}  // namespace

void ReplaceFile(const std::string& target, std::string_view bytes) {
  struct stat old {};
  if (stat(target.c_str(), &old) == 0) {
    return S_ISREG(old.st_mode) ? ReplaceOld(target, bytes, old.st_nlink)
                                : WriteDirectly(target, bytes);
  }
  if (errno != ENOENT) Fail(target);
  if (lstat(target.c_str(), &old) == 0) Fail(target, "it is a link that leads nowhere");
  CReplacement(target, nullptr).Commit(bytes);
}
