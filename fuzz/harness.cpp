#include "harness.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "registry/globals.h"

namespace fuzz {

void Fail(const std::string& message) {
  std::fprintf(stderr, "FINDING: %s\n", message.c_str());
  std::abort();
}

bool IsTraced() {
  static const bool s_IsTraced = std::getenv("TESSEL_FUZZ_TRACE") != nullptr;
  return s_IsTraced;
}

bool IsTame(std::string_view input) {
  std::string lower(input);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  for (const char* pWord : {"http", "ftp", "/dev", "/proc", "/sys"}) {
    if (lower.find(pWord) != std::string::npos) return false;
  }
  return true;
}

uint64_t CBytes::Word() {
  uint64_t word = 0;
  const std::string_view bytes = Run(sizeof word);
  std::memcpy(&word, bytes.data(), bytes.size());
  return word;
}

std::string_view CBytes::Run(size_t count) {
  m_Taken = m_Left.substr(0, count);
  m_Left.remove_prefix(m_Taken.size());
  return m_Taken;
}

void CText::Set(std::string_view text) {
  if (HostStringFromPtr(&m_Handle, static_cast<int32_t>(text.size()), text.data()) != 0) {
    Fail("no memory for a string of the driver");
  }
}

void CIds::MakeEmpty() {
  if (domSetHandleSizeOrNewHandle(&m_Handle, sizeof(int64_t)) != 0) Fail("no memory for an array");
  (*m_Handle)->count = 0;
}

void CIds::CloseNodes() const {
  for (size_t i = 0; i < Count(); ++i) TSXNodeClose(At(i));
}

TSXStatus CDoc::Load(std::string_view xml) {
  CText text(xml), errors, exception;
  return TSXLoadString(m_Id, text.Out(), errors.Out(), exception.Out());
}

CLedger::~CLedger() {
  StandinLedger after;
  StandinReadLedger(&after);
  if (after.handles != m_Before.handles) Fail("handles are left");
  if (after.mutexes != m_Before.mutexes) Fail("mutexes are left");
  if (after.paths != m_Before.paths) Fail("paths are left");
  if (after.violations != m_Before.violations) Fail(StandinLastViolation());
  if (g_NodeSessMap.LiveCount() != 0) Fail("node ids are left");
  if (g_NodeListSessMap.LiveCount() != 0) Fail("list ids are left");
  if (g_NamedNodeMapSessMap.LiveCount() != 0) Fail("map ids are left");
  if (g_DOMImplSessMap.LiveCount() != 0) Fail("implementation ids are left");
  if (g_NodeDomMap.EntryCount() != 0) Fail("owners are left");
}

void RequireKnown(TSXStatus status, bool hostRefuses) {
#define TESSEL_IS_ROW(number, name, functions, meaning, advice) \
  if (status == number) return;
  TSX_STATUS_LIST(TESSEL_IS_ROW)
#undef TESSEL_IS_ROW
  if (status != 0 && !(hostRefuses && (status == 1 || status == 2))) {
    Fail("unknown status " + std::to_string(status));
  }
}

}  // namespace fuzz
