// The memory of a parser and its grammars.
#pragma once

#include <xercesc/framework/MemoryManager.hpp>

// Frees at its end what nobody gave back: the XML library loses the pieces of declarations
// that it gives up halfway. One thread at a time.
class CParserMemory final : public xercesc::MemoryManager {
 public:
  CParserMemory() = default;
  ~CParserMemory() override;

  void* allocate(XMLSize_t size) override;
  void deallocate(void* pMemory) override;
  MemoryManager* getExceptionMemoryManager() override;

 private:
  // Stands before each block. Its size keeps what follows as aligned as the heap does.
  struct CLink {
    CLink* m_pBefore;
    CLink* m_pNext;
  };

  CLink m_Blocks = {&m_Blocks, &m_Blocks};  // a ring
};
