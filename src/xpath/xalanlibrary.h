// Xalan-C's own start and end.
#pragma once

#include <memory>
#include <xalanc/XPath/XPathInit.hpp>
#include <xercesc/framework/MemoryManager.hpp>

// Xalan-C's tables, made at the first evaluation and given back when the library
// is unloaded. The host may start and end Xalan-C and Xerces-C for itself, before
// or after us: both are held by count, and the memory manager of the tables
// outlives us whenever somebody else still holds them.
class CXalanLibrary {
 public:
  // Call before anything of Xalan-C is used. Any thread.
  static void Use();

  ~CXalanLibrary();
  CXalanLibrary(const CXalanLibrary&) = delete;
  CXalanLibrary& operator=(const CXalanLibrary&) = delete;

 private:
  CXalanLibrary();

  // A reference on Xerces-C of our own, given back after the tables.
  struct CXercesReference {
    CXercesReference();
    ~CXercesReference();
    CXercesReference(const CXercesReference&) = delete;
    CXercesReference& operator=(const CXercesReference&) = delete;
  };

  CXercesReference m_Xerces;
  bool m_TablesAreOurs;
  std::unique_ptr<xercesc::MemoryManager> m_pMemory;
  std::unique_ptr<xalanc::XPathInit> m_pTables;
};
