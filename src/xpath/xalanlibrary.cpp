#include "xpath/xalanlibrary.h"

#include <xalanc/XPath/XPath.hpp>
#include <xercesc/internal/MemoryManagerImpl.hpp>
#include <xercesc/util/PlatformUtils.hpp>

namespace {

// The function table is the last that Xalan-C's end empties.
bool TablesAreGone() {
  xercesc::MemoryManagerImpl memory;
  const xalanc::XalanDOMString function("count", memory);
  return !xalanc::XPath::isInstalledFunction(function);
}

}  // namespace

CXalanLibrary::CXercesReference::CXercesReference() { xercesc::XMLPlatformUtils::Initialize(); }

CXalanLibrary::CXercesReference::~CXercesReference() { xercesc::XMLPlatformUtils::Terminate(); }

void CXalanLibrary::Use() { static const CXalanLibrary s_library; }

// The manager's code is Xerces-C's, so it works without ours; Xerces-C's global
// manager would not do, as it dies when Xerces-C ends.
CXalanLibrary::CXalanLibrary()
    : m_pMemory(std::make_unique<xercesc::MemoryManagerImpl>()),
      m_pTables(std::make_unique<xalanc::XPathInit>(*m_pMemory)) {}

CXalanLibrary::~CXalanLibrary() {
  m_pTables.reset();
  if (!TablesAreGone()) (void)m_pMemory.release();  // now the host's tables own it
}
