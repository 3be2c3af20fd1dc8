#include "input.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <limits>
#include <utility>

#include "message.h"
#include "progress.h"
#include "sandbox.h"

CDescriptor::CDescriptor(CDescriptor&& other) noexcept
    : m_Descriptor(std::exchange(other.m_Descriptor, -1)) {}

CDescriptor& CDescriptor::operator=(CDescriptor&& other) noexcept {
  std::swap(m_Descriptor, other.m_Descriptor);
  return *this;
}

CDescriptor::~CDescriptor() { Close(); }

bool CDescriptor::Close() {
  const int descriptor = std::exchange(m_Descriptor, -1);
  return descriptor < 0 || close(descriptor) == 0;
}

bool WriteAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno != EINTR) return false;
    if (written > 0) bytes.remove_prefix(static_cast<size_t>(written));
  }
  return true;
}

namespace {

// The parser takes a name with a colon for a URL; a command line names files.
std::string FilePath(const std::string& file) {
  return file.find(':') != file.npos && !file.starts_with('/') ? "./" + file : file;
}

bool ReadAll(int descriptor, std::string& text) {
  std::array<char, 65536> buffer;
  for (;;) {
    const ssize_t got = read(descriptor, buffer.data(), buffer.size());
    if (got == 0) return true;
    if (got < 0 && errno != EINTR) return false;
    if (got > 0) text.append(buffer.data(), static_cast<size_t>(got));
  }
}

// A host string holds no more, so this has to come from a file.
bool NeedsFile(const std::string& text) {
  return text.size() >= static_cast<size_t>(std::numeric_limits<int32_t>::max());
}

}  // namespace

CInput::CInput(std::string file, EStandardInput standardInput) : m_Name(std::move(file)) {
  if (m_Name == "-") {
    if (standardInput == EStandardInput::kRead) ReadStandardInput();
  } else {
    m_Path = FilePath(m_Name);
    Probe();
  }
}

// Only looks: opening a pipe here would take it away from the parser.
void CInput::Probe() {
  struct stat status {};
  if (stat(m_Path.c_str(), &status) != 0 || access(m_Path.c_str(), R_OK) != 0) {
    m_Problem = std::strerror(errno);
  } else if (S_ISDIR(status.st_mode)) {
    m_Problem = std::strerror(EISDIR);
  }
  if (S_ISREG(status.st_mode)) {
    m_Identity = {static_cast<uint64_t>(status.st_size), status.st_dev, status.st_ino};
  }
}

bool CFileIdentity::IsOpenAs(int descriptor) const {
  struct stat status {};
  return m_Size > 0 && fstat(descriptor, &status) == 0 && status.st_dev == m_Device &&
         status.st_ino == m_Node;
}

CSharedText CInput::Bytes() const {
  return m_Path.empty() ? m_pText : std::make_shared<const std::string>(Read(m_Identity.m_Size));
}

std::string CInput::Head() const { return Read(std::min<uint64_t>(m_Identity.m_Size, 65536)); }

// Nothing of a pipe: the parser reads that.
std::string CInput::Read(uint64_t most) const {
  if (m_Path.empty()) return *m_pText;
  std::string bytes(m_Spool.IsOpen() ? static_cast<size_t>(lseek(m_Spool.Get(), 0, SEEK_END))
                                     : static_cast<size_t>(most),
                    '\0');
  const CDescriptor file(bytes.empty() ? -1 : open(m_Path.c_str(), O_RDONLY | O_CLOEXEC));
  ssize_t got = 0;
  size_t size = 0;
  while (file.IsOpen() && size < bytes.size() &&
         (got = read(file.Get(), bytes.data() + size, bytes.size() - size)) > 0) {
    size += static_cast<size_t>(got);
  }
  bytes.resize(size);
  return bytes;
}

void CInput::ReadStandardInput() {
  std::string text;
  if (!ReadAll(STDIN_FILENO, text)) {
    m_Problem = std::strerror(errno);
    return;
  }
  m_pText = std::make_shared<const std::string>(std::move(text));
  SpoolText();
}

CInput CInput::OfText(std::string file, CSharedText pText) {
  CInput input;
  input.m_Name = std::move(file);
  input.m_pText = std::move(pText);
  input.SpoolText();
  return input;
}

void CInput::SpoolText() {
  if (!NeedsFile(*m_pText)) return;
  m_Spool = CDescriptor(memfd_create("text", MFD_CLOEXEC));
  if (!m_Spool.IsOpen() || !WriteAll(m_Spool.Get(), *m_pText)) {
    m_Problem = std::strerror(errno);
    return;
  }
  m_Path = "/proc/self/fd/" + std::to_string(m_Spool.Get());
  m_pText = std::make_shared<const std::string>();
}

std::vector<CInput> PrepareInputs(const std::vector<std::string>& files, const CClient& client,
                                  EStandardInput standardInput, const std::vector<CInput>& others) {
  std::vector<CInput> inputs;
  std::vector<std::string> paths;
  for (const std::string& file : files) {
    inputs.emplace_back(file, standardInput);
    if (inputs.back().Problem().empty()) paths.push_back(inputs.back().Path());
  }
  for (const CInput& other : others) {
    if (other.Problem().empty()) paths.push_back(other.Path());
  }
  if (client.m_NoExternal) AllowReadingOnly(paths);
  StartProgress(inputs);
  return inputs;
}

CInput PrepareInput(const std::string& file, const CClient& client) {
  std::vector<CInput> inputs = PrepareInputs({file}, client);
  NextFile();
  return std::move(inputs.front());
}
