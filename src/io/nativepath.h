// A host path in native form.
#pragma once

#include <tessel/host.h>

// Whether the library may take the value for a path at all.
inline bool IsUsablePath(HostPath path) {
  return HostIsAPath(path) != 0 && HostIsEmptyPath(path) == 0;
}

// Owns the native form of a path. Null text means that the host refused memory.
class CNativePath {
 public:
  explicit CNativePath(HostPath path) : m_Handle(HostPathToNative(path)) {}
  ~CNativePath() {
    if (m_Handle != nullptr) HostDisposeHandle(m_Handle);
  }
  CNativePath(const CNativePath&) = delete;
  CNativePath& operator=(const CNativePath&) = delete;

  const char* Get() const {
    return m_Handle != nullptr ? *static_cast<const char* const*>(m_Handle) : nullptr;
  }

  // The host's own code for memory that it refuses.
  static constexpr int32_t kRefused = 2;

 private:
  HostHandle m_Handle;
};
