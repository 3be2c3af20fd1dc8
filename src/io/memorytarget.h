// Memory to write XML to.
#pragma once

#include <cstdlib>
#include <memory>
#include <xercesc/framework/XMLFormatter.hpp>

#include "host/stackroom.h"

// Grows in place where the heap can, so that a large text is not copied on the way.
//
// The writer goes down a tree by recursion and writes something at every level: here a
// tree that is too deep for the stack shows without a walk of its own. Throws
// depth::CTooDeep then, and std::bad_alloc where the heap is exhausted.
class CMemoryTarget : public xercesc::XMLFormatTarget {
 public:
  CMemoryTarget();

  void writeChars(const XMLByte* pBytes, XMLSize_t count, xercesc::XMLFormatter*) override;

  const XMLByte* Bytes() const { return m_pBytes.get(); }
  XMLSize_t Count() const { return m_Count; }

 private:
  struct CFree {
    void operator()(XMLByte* pBytes) const { std::free(pBytes); }
  };

  void Resize(XMLSize_t capacity);

  CStackLimit m_StackLimit;
  std::unique_ptr<XMLByte[], CFree> m_pBytes;
  XMLSize_t m_Count = 0;
  XMLSize_t m_Capacity = 0;
};
