// Host paths to files and folders that go with the test.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "support/support.h"

namespace support {

// A host path, whatever is there.
class CPlace {
 public:
  explicit CPlace(const std::string& name) : m_Path(StandinPathFromText(name.c_str())) {}
  ~CPlace() { StandinPathDispose(m_Path); }
  CPlace(const CPlace&) = delete;
  CPlace& operator=(const CPlace&) = delete;

  HostPath Get() const { return m_Path; }

 private:
  HostPath m_Path;
};

// A host path to a file or an empty folder, which goes with it. A name alone is one in
// the folder for temporary files.
class CPath {
 public:
  explicit CPath(const std::string& name)
      : m_Name(name.starts_with('/')
                   ? name
                   : ::testing::TempDir() + "tessel_" + std::to_string(getpid()) + "_" + name),
        m_Place(m_Name) {}
  ~CPath() {
    std::error_code ignored;
    std::filesystem::remove(m_Name, ignored);
  }
  CPath(const CPath&) = delete;
  CPath& operator=(const CPath&) = delete;

  HostPath Get() const { return m_Place.Get(); }
  const std::string& Name() const { return m_Name; }
  void Write(std::string_view bytes) const { std::ofstream(m_Name, std::ios::binary) << bytes; }
  std::string Read() const {
    std::ifstream in(m_Name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

 private:
  std::string m_Name;
  CPlace m_Place;
};

inline TSXStatus LoadFile(TSXRefId document, HostPath path, std::string* pErrors = nullptr) {
  CText errors, exception;
  const TSXStatus status = TSXLoadFile(document, path, &errors, &exception);
  if (pErrors != nullptr) *pErrors = errors.Str();
  EXPECT_TRUE(exception.IsNull()) << exception.Str();
  return status;
}

}  // namespace support
