#include "hostexports.h"

#include <cstdlib>
#include <cstring>

#include "ledger.h"
#include "slotpool.h"

struct HostPathObject {
  char* pText;
};

namespace {

constinit CSlotPool<HostPathObject> g_Paths;

char* CopyOf(const char* pText) {
  const size_t size = std::strlen(pText) + 1;
  auto* pCopy = static_cast<char*>(std::malloc(size));
  if (pCopy != nullptr) std::memcpy(pCopy, pText, size);
  return pCopy;
}

}  // namespace

int32_t HostIsAPath(HostPath path) { return g_Paths.Find(path) != nullptr ? 1 : 0; }

// A value that is no path names nothing either.
int32_t HostIsEmptyPath(HostPath path) {
  const HostPathObject* pPath = g_Paths.Find(path);
  return pPath == nullptr || *pPath->pText == '\0' ? 1 : 0;
}

HostHandle HostPathToNative(HostPath path) {
  const HostPathObject* pPath = g_Paths.Find(path);
  if (pPath == nullptr) {
    Violation("a path that is not alive was converted");
    return nullptr;
  }
  const size_t size = std::strlen(pPath->pText) + 1;
  HostHandle native = HostNewHandle(size);
  if (native != nullptr) HostMoveBytes(pPath->pText, *static_cast<void**>(native), size);
  return native;
}

HostPath StandinPathFromText(const char* text) {
  char* pText = CopyOf(text != nullptr ? text : "");
  if (pText == nullptr) return nullptr;
  HostPath path = g_Paths.Take([&](HostPathObject& object) { object.pText = pText; });
  if (path == nullptr) {
    std::free(pText);
    return nullptr;
  }
  Count(ECounter::Paths, 1);
  return path;
}

int32_t StandinPathDispose(HostPath path) {
  const bool disposed = g_Paths.Put(path, [](HostPathObject& object) {
    std::free(object.pText);
    object.pText = nullptr;
  });
  if (disposed) {
    Count(ECounter::Paths, -1);
    return 0;
  }
  if (path != nullptr) Violation("a path that is not alive was disposed of");
  return kMissing;
}
