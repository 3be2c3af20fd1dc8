#include "io/memorytarget.h"

#include <cstring>
#include <new>

#include "document/depth.h"

namespace {

constexpr XMLSize_t kFirst = 1023;

}  // namespace

CMemoryTarget::CMemoryTarget() { Resize(kFirst); }

void CMemoryTarget::writeChars(const XMLByte* pBytes, XMLSize_t count, xercesc::XMLFormatter*) {
  if (m_StackLimit.IsPassed()) throw depth::CTooDeep();
  if (count > m_Capacity - m_Count) Resize(2 * (m_Count + count));
  std::memcpy(m_pBytes.get() + m_Count, pBytes, count);
  m_Count += count;
}

void CMemoryTarget::Resize(XMLSize_t capacity) {
  auto* pGrown = static_cast<XMLByte*>(std::realloc(m_pBytes.get(), capacity));
  if (pGrown == nullptr) throw std::bad_alloc();
  static_cast<void>(m_pBytes.release());  // realloc has taken it
  m_pBytes.reset(pGrown);
  m_Capacity = capacity;
}
