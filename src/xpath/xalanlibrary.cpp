#include "xpath/xalanlibrary.h"

#include <xalanc/DOMSupport/DOMServices.hpp>
#include <xercesc/internal/MemoryManagerImpl.hpp>
#include <xercesc/util/PlatformUtils.hpp>

namespace {

// One of the tables, empty while nobody holds them.
bool TablesExist() { return !xalanc::DOMServices::s_XMLNamespaceURI.empty(); }

}  // namespace

CXalanLibrary::CXercesReference::CXercesReference() { xercesc::XMLPlatformUtils::Initialize(); }

CXalanLibrary::CXercesReference::~CXercesReference() { xercesc::XMLPlatformUtils::Terminate(); }

void CXalanLibrary::Use() { static const CXalanLibrary s_Library; }

// The manager's code is Xerces-C's, so it works without ours; Xerces-C's global
// manager would not do, as it dies when Xerces-C ends.
CXalanLibrary::CXalanLibrary()
    : m_TablesAreOurs(!TablesExist()),
      m_pMemory(std::make_unique<xercesc::MemoryManagerImpl>()),
      m_pTables(std::make_unique<xalanc::XPathInit>(*m_pMemory)) {}

CXalanLibrary::~CXalanLibrary() {
  m_pTables.reset();
  // The host holds on to tables that live in our manager: leave it to them.
  if (m_TablesAreOurs && TablesExist()) (void)m_pMemory.release();
}
