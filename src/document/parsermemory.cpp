#include "document/parsermemory.h"

#include <cstddef>
#include <cstdint>
#include <new>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>

using xercesc::MemoryManager;

namespace {

MemoryManager& Heap() { return *xercesc::XMLPlatformUtils::fgMemoryManager; }

}  // namespace

CParserMemory::~CParserMemory() {
  while (m_Blocks.m_pNext != &m_Blocks) deallocate(m_Blocks.m_pNext + 1);
}

void* CParserMemory::allocate(XMLSize_t size) {
  static_assert(sizeof(CLink) % alignof(std::max_align_t) == 0);
  if (size > SIZE_MAX - sizeof(CLink)) throw xercesc::OutOfMemoryException();
  void* pMemory = Heap().allocate(sizeof(CLink) + size);
  auto* pLink = new (pMemory) CLink{&m_Blocks, m_Blocks.m_pNext};
  pLink->m_pNext->m_pBefore = pLink;
  m_Blocks.m_pNext = pLink;
  return pLink + 1;
}

void CParserMemory::deallocate(void* pMemory) {
  if (pMemory == nullptr) return;
  CLink* pLink = static_cast<CLink*>(pMemory) - 1;
  pLink->m_pBefore->m_pNext = pLink->m_pNext;
  pLink->m_pNext->m_pBefore = pLink->m_pBefore;
  Heap().deallocate(pLink);
}

MemoryManager* CParserMemory::getExceptionMemoryManager() {
  return Heap().getExceptionMemoryManager();
}
