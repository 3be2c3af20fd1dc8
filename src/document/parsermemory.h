// The memory of a parser and its grammars.
#pragma once

#include <array>
#include <cstddef>
#include <xercesc/framework/MemoryManager.hpp>

// Frees at its end what nobody gave back: the XML library loses the pieces of declarations
// that it gives up halfway. Small blocks are cut from large ones and used again by blocks
// of their size: a parser is made of some hundred of them, and to ask the heap for each
// takes more time than all else about an empty document. One thread at a time.
class CParserMemory final : public xercesc::MemoryManager {
 public:
  CParserMemory() = default;
  ~CParserMemory() override;

  void* allocate(XMLSize_t size) override;
  void deallocate(void* pMemory) override;
  MemoryManager* getExceptionMemoryManager() override;

 private:
  // Stands before each block. Its size keeps what follows as aligned as the heap does.
  struct CHead {
    CHead* m_pBefore;  // null for a small block
    union {
      CHead* m_pNext;      // of a large one, or of a small one that is free
      std::size_t m_Kind;  // of a small one in use
    };
  };

  static constexpr std::size_t kUnit = sizeof(CHead);
  static constexpr std::size_t kKinds = 65;  // small blocks have up to so many units, less one
  static constexpr std::size_t kCut = std::size_t{8} << 10;  // what they are cut from; bytes

  void* AllocateLarge(XMLSize_t size);
  CHead* Cut(std::size_t kind);

  CHead m_Blocks = {&m_Blocks, {&m_Blocks}};  // the large ones, a ring
  std::array<CHead*, kKinds> m_Free = {};     // by units
  std::byte* m_pLeft = nullptr;               // of the block that is being cut
  std::size_t m_LeftSize = 0;
};
