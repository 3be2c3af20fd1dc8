#include <tessel/version.h>

#include "client.h"
#include "message.h"
#include "owners.h"

namespace {

// The array and the strings in it.
class CVersions {
 public:
  CVersions() { Require(nKelVersion_TESSEL_getVersionStringArray(&m_Array), "versions"); }
  CVersions(const CVersions&) = delete;
  CVersions& operator=(const CVersions&) = delete;
  ~CVersions() {
    for (int32_t i = 0; i < Count(); ++i) ClearString(&(*m_Array)->items[i]);
    ClearArray(&m_Array);
  }

  int32_t Count() const { return m_Array == nullptr ? 0 : (*m_Array)->count; }
  std::string_view At(int32_t index) const {
    const HStr string = (*m_Array)->items[index];
    if (string == nullptr) return {};
    return {reinterpret_cast<const char*>((*string)->bytes), static_cast<size_t>((*string)->count)};
  }

 private:
  HStrArray m_Array = nullptr;
};

}  // namespace

std::string VersionText() {
  const CVersions versions;
  std::string text;
  for (int32_t i = 0; i < versions.Count(); ++i) {
    if (i > 0) text += '\n';
    text += versions.At(i);
  }
  return text;
}
