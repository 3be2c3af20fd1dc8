#include <tessel/values.h>

#include <cstddef>
#include <cstring>
#include <limits>

namespace {

constexpr int32_t kNoDestination = 1;
constexpr int32_t kRefused = 2;
constexpr size_t kHeader = offsetof(HStrRecord, bytes);
constexpr size_t kArrayHeader = offsetof(GenericRefObjSessionArrayRecord, ids);

int32_t CountOf(HStr string) { return string != nullptr ? (*string)->count : 0; }

// The count as the host declares it; a negative one has no bytes.
size_t BytesOf(int32_t count) { return count > 0 ? static_cast<size_t>(count) : 0; }

unsigned char* TextOf(HStrRecord* pRecord) {
  return reinterpret_cast<unsigned char*>(pRecord) + kHeader;
}

HStr NewString(size_t bytes) { return static_cast<HStr>(HostNewHandle(kHeader + bytes)); }

// Whether `more` bytes can be counted behind `count` ones.
bool Countable(int32_t count, size_t more) {
  return more <= static_cast<size_t>(std::numeric_limits<int32_t>::max()) - BytesOf(count);
}

// A handle variable of unknown type holds a pointer; it is read and written as bytes.
HostHandle HandleIn(const void* pVariable) {
  HostHandle handle;
  std::memcpy(&handle, pVariable, sizeof handle);
  return handle;
}

void PutHandle(HostHandle handle, void* pVariable) {
  std::memcpy(pVariable, &handle, sizeof handle);
}

int32_t DisposeAndClear(void* pVariable) {
  if (pVariable == nullptr) return 0;
  const HostHandle handle = HandleIn(pVariable);
  if (handle == nullptr) return 0;
  PutHandle(nullptr, pVariable);
  return HostDisposeHandle(handle);
}

}  // namespace

int32_t domSetHandleSizeOrNewHandle(void* handleVariable, int32_t size) {
  if (size < 0) return kRefused;
  const HostHandle existing = HandleIn(handleVariable);
  if (existing != nullptr) return HostSetHandleSize(existing, static_cast<size_t>(size));
  const HostHandle created = HostNewHandle(static_cast<size_t>(size));
  PutHandle(created, handleVariable);
  return created != nullptr ? 0 : kRefused;
}

int32_t domHStrAppendCStr(HStr* string, const unsigned char* text) {
  if (text == nullptr) return 0;
  const size_t length = std::strlen(reinterpret_cast<const char*>(text));
  const int32_t oldCount = CountOf(*string);
  if (!Countable(oldCount, length)) return kRefused;
  if (*string != nullptr) {
    const int32_t status = HostSetHandleSize(*string, kHeader + BytesOf(oldCount) + length);
    if (status != 0) return status;
  } else {
    const HStr created = NewString(length);
    if (created == nullptr) return kRefused;
    (*created)->count = 0;
    *string = created;
  }
  HostMoveBytes(text, TextOf(**string) + BytesOf(oldCount), length);
  (**string)->count = static_cast<int32_t>(BytesOf(oldCount) + length);
  return 0;
}

int32_t domCopyHStr(HStr source, HStr* destination) {
  if (destination == nullptr) return kNoDestination;
  const int32_t count = CountOf(source);
  if (*destination != nullptr) {
    if (CountOf(*destination) != count) {
      const int32_t status = HostSetHandleSize(*destination, kHeader + BytesOf(count));
      if (status != 0) return status;
    }
  } else {
    if (count == 0) return 0;
    const HStr created = NewString(BytesOf(count));
    if (created == nullptr) return kRefused;
    *destination = created;
  }
  if (source != nullptr) {
    HostMoveBytes(*source, **destination, kHeader + BytesOf(count));
  } else {
    (**destination)->count = 0;
  }
  return 0;
}

int32_t domHStrCatEfficient(HStr destination, const HStrRecord* source) {
  const size_t oldBytes = BytesOf((*destination)->count);
  const size_t added = BytesOf(source->count);
  if (!Countable((*destination)->count, added)) return kRefused;
  const size_t needed = kHeader + oldBytes + added;
  if (needed > HostGetHandleSize(destination)) {
    const int32_t status = HostSetHandleSize(destination, needed);
    if (status != 0) return status;
  }
  HStrRecord* pRecord = *destination;
  HostMoveBytes(reinterpret_cast<const unsigned char*>(source) + kHeader,
                TextOf(pRecord) + oldBytes, added);
  pRecord->count = static_cast<int32_t>(oldBytes + added);
  return 0;
}

int32_t domHStrCat(HStr destination, const HStrRecord* source) {
  const int32_t status = domHStrCatEfficient(destination, source);
  if (status != 0) return status;
  return HostSetHandleSize(destination, kHeader + BytesOf((*destination)->count));
}

int32_t ClearArray(void* handleVariable) { return DisposeAndClear(handleVariable); }

int32_t ClearString(HStr* string) { return DisposeAndClear(string); }

char* HStrToCStr(HStr* string) {
  const HStr source = string != nullptr ? *string : nullptr;
  const size_t length = BytesOf(CountOf(source));
  char* pText = new char[length + 1];
  pText[length] = '\0';
  if (length != 0) HostMoveBytes(TextOf(*source), pText, length);
  return pText;
}

int32_t CStrToHStr(const char* text, HStr* string) {
  if (text == nullptr) {
    ClearString(string);
    return 0;
  }
  const int32_t status = HostStringFromPtr(string, HostStrLen(text), text);
  if (status != 0) ClearString(string);
  return status;
}

void ClearSessionArray(GenericRefObjSessionArray* array) {
  if (array == nullptr || *array == nullptr) return;
  HostSetHandleSizeClear(*array, kArrayHeader);
  (**array)->count = 0;
}
