#include "io/bytebuffer.h"

#include <new>

void CByteBuffer::Grow(std::size_t count) {
  constexpr std::size_t kFirst = 1023;
  const std::size_t capacity = 2 * (m_Size + count) + kFirst;
  auto* pGrown = static_cast<char*>(std::realloc(m_pBytes.get(), capacity));
  if (pGrown == nullptr) throw std::bad_alloc();
  static_cast<void>(m_pBytes.release());  // realloc has taken it
  m_pBytes.reset(pGrown);
  m_Capacity = capacity;
}
