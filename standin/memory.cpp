#include "hostexports.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "faults.h"
#include "ledger.h"
#include "slotpool.h"

namespace {

// The pointer comes first: a handle is the address of this record.
struct SBlock {
  unsigned char* pBytes;
  size_t size;
};

constinit CSlotPool<SBlock> g_Handles;

constexpr unsigned char kJunk = 0xDB;
constexpr size_t kStringHeader = offsetof(HStrRecord, bytes);

// No heap can grant more, and some checking ones abort on the attempt.
bool IsTooLarge(size_t size) { return size > std::numeric_limits<ptrdiff_t>::max(); }

// What a block of a size takes on the heap, which rounds as well: most resizes of a
// short string stay in place. Exact under a checking heap, which is to see the end of
// the block. It may answer null to a request for nothing.
#ifdef TESSEL_STANDIN_EXACT
size_t Capacity(size_t size) { return std::max<size_t>(size, 1); }
#else
size_t Capacity(size_t size) {
  constexpr size_t kStep = 32;
  constexpr size_t kHeapHeader = 8;
  return (size + kHeapHeader + kStep - 1) / kStep * kStep - kHeapHeader;
}
#endif

// Volatile, because the compiler drops plain stores to a block that is freed next.
void FillWithJunk(volatile unsigned char* pBytes, size_t count) {
  for (size_t i = 0; i < count; ++i) pBytes[i] = kJunk;
}

unsigned char* PlainBytes(size_t size) {
  auto* pBytes = static_cast<unsigned char*>(std::malloc(Capacity(size)));
  if (pBytes != nullptr && Moving()) FillWithJunk(pBytes, size);
  return pBytes;
}

unsigned char* MovedBytes(const SBlock& block, size_t size) {
  unsigned char* pMoved = PlainBytes(size);
  if (pMoved == nullptr) return nullptr;
  std::memcpy(pMoved, block.pBytes, std::min(size, block.size));
  FillWithJunk(block.pBytes, block.size);
  std::free(block.pBytes);
  return pMoved;
}

unsigned char* ResizedBytes(const SBlock& block, size_t size) {
  if (Moving()) return MovedBytes(block, size);
  if (Capacity(size) == Capacity(block.size)) return block.pBytes;
  return static_cast<unsigned char*>(std::realloc(block.pBytes, Capacity(size)));
}

// A new handle that owns the bytes; null for null.
HostHandle Adopt(unsigned char* pBytes, size_t size) {
  if (pBytes == nullptr) return nullptr;
  SBlock* pBlock = g_Handles.Take([&](SBlock& block) { block = {pBytes, size}; });
  if (pBlock == nullptr) {
    std::free(pBytes);
    return nullptr;
  }
  Count(ECounter::Handles, 1);
  Count(ECounter::HandleBytes, static_cast<int64_t>(size));
  return pBlock;
}

int32_t Unknown(const void* pHandle) {
  if (pHandle != nullptr) Violation("a handle that is not alive was used");
  return kMissing;
}

int32_t Resize(SBlock& block, size_t size) {
  if (size == block.size && !Moving()) return 0;
  if (size > block.size && (RefuseAllocation() || IsTooLarge(size))) return kRefused;
  unsigned char* pBytes = ResizedBytes(block, size);
  if (pBytes == nullptr) return kRefused;
  Count(ECounter::HandleBytes, static_cast<int64_t>(size) - static_cast<int64_t>(block.size));
  block = {pBytes, size};
  return 0;
}

}  // namespace

HostHandle HostNewHandle(size_t size) {
  if (RefuseAllocation() || IsTooLarge(size)) return nullptr;
  return Adopt(PlainBytes(size), size);
}

HostHandle HostNewHandleClear(size_t size) {
  if (RefuseAllocation() || IsTooLarge(size)) return nullptr;
  return Adopt(static_cast<unsigned char*>(std::calloc(Capacity(size), 1)), size);
}

int32_t HostSetHandleSize(HostHandle handle, size_t size) {
  SBlock* pBlock = g_Handles.Find(handle);
  return pBlock != nullptr ? Resize(*pBlock, size) : Unknown(handle);
}

int32_t HostSetHandleSizeClear(HostHandle handle, size_t size) {
  SBlock* pBlock = g_Handles.Find(handle);
  if (pBlock == nullptr) return Unknown(handle);
  const size_t oldSize = pBlock->size;
  const int32_t status = Resize(*pBlock, size);
  if (status == 0 && size > oldSize) std::memset(pBlock->pBytes + oldSize, 0, size - oldSize);
  return status;
}

size_t HostGetHandleSize(HostHandle handle) {
  const SBlock* pBlock = g_Handles.Find(handle);
  if (pBlock != nullptr) return pBlock->size;
  Unknown(handle);
  return 0;
}

int32_t HostDisposeHandle(HostHandle handle) {
  const bool disposed = g_Handles.Put(handle, [](SBlock& block) {
    std::free(block.pBytes);
    Count(ECounter::Handles, -1);
    Count(ECounter::HandleBytes, -static_cast<int64_t>(block.size));
    block = {nullptr, 0};
  });
  return disposed ? 0 : Unknown(handle);
}

void HostMoveBytes(const void* source, void* destination, size_t count) {
  if (count != 0) std::memmove(destination, source, count);
}

int32_t HostStrLen(const char* text) {
  constexpr size_t kMost = std::numeric_limits<int32_t>::max();
  return text != nullptr ? static_cast<int32_t>(std::min(std::strlen(text), kMost)) : 0;
}

int32_t HostStringFromPtr(HStr* string, int32_t length, const void* bytes) {
  if (string == nullptr) return kMissing;
  if (length < 0) return kRefused;
  const size_t count = static_cast<size_t>(length);
  if (*string == nullptr) {
    *string = static_cast<HStr>(HostNewHandle(kStringHeader + count));
    if (*string == nullptr) return kRefused;
  } else if (const int32_t status = HostSetHandleSize(*string, kStringHeader + count);
             status != 0) {
    return status;
  }
  (**string)->count = length;
  HostMoveBytes(bytes, reinterpret_cast<unsigned char*>(**string) + kStringHeader, count);
  return 0;
}

HStr StandinStringFromText(const char* text, int32_t length) {
  HStr string = nullptr;
  HostStringFromPtr(&string, length < 0 ? HostStrLen(text) : length, text);
  return string;
}
