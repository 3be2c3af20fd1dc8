#include "registry/globals.h"

#include <xercesc/util/PlatformUtils.hpp>

#include "dom/listener.h"
#include "dom/parts.h"
#include "registry/lifetimes.h"

CXercesInitializer::CXercesInitializer() {
  xercesc::XMLPlatformUtils::Initialize();
  dom::CheckLayout();
  dom::SetListener(&CLifetimes::Instance());
}
CXercesInitializer::~CXercesInitializer() { xercesc::XMLPlatformUtils::Terminate(); }

CMutexInitializer g_MutexInitializer;
CXercesInitializer g_XercesInitailizer;
CNodeDomMap g_NodeDomMap("NodeDomMap Mutex");
CDOMNodeSessMap g_NodeSessMap("NodeSessMap Mutex");
CPtrSessMap<xercesc::DOMNodeList> g_NodeListSessMap("NodeListSessMap Mutex");
CPtrSessMap<xercesc::DOMNamedNodeMap> g_NamedNodeMapSessMap("NamedNodeMapSessMap Mutex");
CPtrSessMap<xercesc::DOMImplementation> g_DOMImplSessMap("DOMImplementationSessMap Mutex");
