// What a document may read beside itself, and the opening of what it may read.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

// Owns a file descriptor; -1 for none.
class CFile {
 public:
  CFile() = default;
  explicit CFile(int descriptor) : m_Descriptor(descriptor) {}
  CFile(CFile&& other) noexcept : m_Descriptor(std::exchange(other.m_Descriptor, -1)) {}
  CFile& operator=(CFile&& other) noexcept {
    std::swap(m_Descriptor, other.m_Descriptor);
    return *this;
  }
  ~CFile();

  bool IsOpen() const { return m_Descriptor >= 0; }
  int Get() const { return m_Descriptor; }

 private:
  int m_Descriptor = -1;
};

// What comes of a name: refused with a reason, to be opened by the name, or looked at so
// closely that it is open, which it is not where there is no such file.
struct CAnswer {
  const char16_t* m_pRefusal = nullptr;
  bool m_IsByName = false;
  CFile m_File;
};

// Where a folder matters, names count for nothing: what is opened decides. A file is reached
// from the folder step by step and through no link, so that whoever swaps a name while it
// is looked at gains nothing.
class CAccessPolicy {
 public:
  static constexpr int32_t kAll = 0, kFiles = 1, kFolder = 2, kNothing = 3;

  void SetMode(int32_t mode) { m_Mode = mode >= kAll && mode <= kNothing ? mode : kNothing; }
  int32_t Mode() const { return m_Mode; }

  // The document that is loaded next, an absolute path. Empty for a text and for what
  // comes by network: these have no folder.
  void SetDocument(const std::string& path);

  CAnswer AskForNetwork() const;
  CAnswer AskForFile(const std::string& path) const;

 private:
  CAnswer OpenInFolder(const std::string& path) const;

  int32_t m_Mode = kAll;
  std::string m_Folder;
};
