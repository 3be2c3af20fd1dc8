#include "document/parsermemory.h"

#include <cstdint>
#include <new>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>

using xercesc::MemoryManager;

namespace {

// The address sanitizer sees each block by itself.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kCuts = false;
#elif defined(__has_feature)
constexpr bool kCuts = !__has_feature(address_sanitizer);
#else
constexpr bool kCuts = true;
#endif

MemoryManager& Heap() { return *xercesc::XMLPlatformUtils::fgMemoryManager; }

}  // namespace

CParserMemory::~CParserMemory() {
  while (m_Blocks.m_pNext != &m_Blocks) deallocate(m_Blocks.m_pNext + 1);
}

void* CParserMemory::allocate(XMLSize_t size) {
  if (!kCuts || size > (kKinds - 1) * kUnit) return AllocateLarge(size);
  const std::size_t kind = (size + kUnit - 1) / kUnit;
  CHead* pHead = m_Free[kind];
  if (pHead != nullptr) {
    m_Free[kind] = pHead->m_pNext;
  } else {
    pHead = Cut(kind);
  }
  pHead->m_Kind = kind;
  return pHead + 1;
}

CParserMemory::CHead* CParserMemory::Cut(std::size_t kind) {
  const std::size_t size = (kind + 1) * kUnit;
  if (m_LeftSize < size) {
    m_pLeft = static_cast<std::byte*>(AllocateLarge(kCut));
    m_LeftSize = kCut;
  }
  auto* pHead = new (m_pLeft) CHead{nullptr, {nullptr}};
  m_pLeft += size;
  m_LeftSize -= size;
  return pHead;
}

void* CParserMemory::AllocateLarge(XMLSize_t size) {
  static_assert(kUnit % alignof(std::max_align_t) == 0);
  if (size > SIZE_MAX - kUnit) throw xercesc::OutOfMemoryException();
  void* pMemory = Heap().allocate(kUnit + size);
  auto* pHead = new (pMemory) CHead{&m_Blocks, {m_Blocks.m_pNext}};
  pHead->m_pNext->m_pBefore = pHead;
  m_Blocks.m_pNext = pHead;
  return pHead + 1;
}

void CParserMemory::deallocate(void* pMemory) {
  if (pMemory == nullptr) return;
  CHead* pHead = static_cast<CHead*>(pMemory) - 1;
  if (pHead->m_pBefore == nullptr) {
    CHead*& pFree = m_Free[pHead->m_Kind];
    pHead->m_pNext = pFree;
    pFree = pHead;
    return;
  }
  pHead->m_pBefore->m_pNext = pHead->m_pNext;
  pHead->m_pNext->m_pBefore = pHead->m_pBefore;
  Heap().deallocate(pHead);
}

MemoryManager* CParserMemory::getExceptionMemoryManager() {
  return Heap().getExceptionMemoryManager();
}
