#include <tessel/values.h>
#include <tessel/version.h>

#include <cstddef>
#include <span>
#include <xalanc/Include/XalanVersion.hpp>
#include <xercesc/util/XercesVersion.hpp>

namespace {

constexpr int32_t kRefused = 2;
constexpr size_t kHeader = offsetof(HStrArrayRecord, items);

// What each library was built with. Neither of those below tells its version at run
// time; their sonames hold the first two numbers fast.
constexpr const char* kVersions[] = {
    "Tessel " TESSEL_VERSION,
    "Xerces-C " XERCES_FULLVERSIONDOT,
    "Xalan-C " XALAN_FULLVERSIONDOT,
};

HStr* Item(HStrArray array, size_t index) {
  auto* pItems = reinterpret_cast<unsigned char*>(*array) + kHeader;
  return reinterpret_cast<HStr*>(pItems) + index;
}

void DisposeItems(HStrArray array) {
  for (int32_t i = 0; i < (*array)->count; ++i) ClearString(Item(array, static_cast<size_t>(i)));
  (*array)->count = 0;
}

// Gives the array room for `count` empty items; the strings it held are gone.
int32_t Resize(HStrArray* pArray, size_t count) {
  const size_t size = kHeader + count * sizeof(HStr);
  if (*pArray == nullptr) {
    *pArray = static_cast<HStrArray>(HostNewHandleClear(size));
    if (*pArray == nullptr) return kRefused;
  } else {
    DisposeItems(*pArray);
    // Shrunk to nothing first, so that no old item's bytes are taken for a handle.
    int32_t status = HostSetHandleSize(*pArray, kHeader);
    if (status == 0) status = HostSetHandleSizeClear(*pArray, size);
    if (status != 0) return status;
  }
  (**pArray)->count = static_cast<int32_t>(count);
  return 0;
}

int32_t Fill(HStrArray* pArray, std::span<const char* const> texts) {
  int32_t status = Resize(pArray, texts.size());
  for (size_t i = 0; status == 0 && i < texts.size(); ++i) {
    // The block may move while a string is made: the item is written afterwards.
    HStr text = nullptr;
    status = CStrToHStr(texts[i], &text);
    *Item(*pArray, i) = text;
  }
  return status;
}

}  // namespace

int32_t nKelVersion_TESSEL_getVersionStringArray(HStrArray* versionsOut) {
  const int32_t status = Fill(versionsOut, kVersions);
  if (status != 0 && *versionsOut != nullptr) {
    DisposeItems(*versionsOut);
    ClearArray(versionsOut);
  }
  return status;
}
