#include "xpath/stackguard.h"

#include <xalanc/XPath/XalanXPathException.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "host/stackroom.h"

CStackGuard::CStackGuard() : m_Floor(Here() - StackRoom()) {}

void CStackGuard::Fail() {
  xercesc::MemoryManager& memory = *xercesc::XMLPlatformUtils::fgMemoryManager;
  throw xalanc::XalanXPathException(
      xalanc::XalanDOMString("The evaluation goes too deep for this thread's stack.", memory),
      memory);
}
