// The library's process-wide objects. They are constructed in this order when
// the library is loaded and destroyed in reverse when it is unloaded, so the XML
// library outlives every registry.
#pragma once

#include <xercesc/dom/DOM.hpp>

#include "host/hostmutex.h"
#include "registry/domnodesessmap.h"
#include "registry/nodedommap.h"
#include "registry/ptrsessmap.h"

// Owns the "DOM Mutex": one file operation at a time.
class CMutexInitializer {
 public:
  CMutexInitializer() : m_Mutex("DOM Mutex") {}
  CHostMutex m_Mutex;
};

class CXercesInitializer {
 public:
  CXercesInitializer();
  ~CXercesInitializer();
  CXercesInitializer(const CXercesInitializer&) = delete;
  CXercesInitializer& operator=(const CXercesInitializer&) = delete;
};

TESSEL_DATA extern CMutexInitializer g_MutexInitializer;
// Contract: spelt so; the name is part of the interface.
TESSEL_DATA extern CXercesInitializer g_XercesInitailizer;
TESSEL_DATA extern CNodeDomMap g_NodeDomMap;
TESSEL_DATA extern CDOMNodeSessMap g_NodeSessMap;
TESSEL_DATA extern CPtrSessMap<xercesc::DOMNodeList> g_NodeListSessMap;
TESSEL_DATA extern CPtrSessMap<xercesc::DOMNamedNodeMap> g_NamedNodeMapSessMap;
TESSEL_DATA extern CPtrSessMap<xercesc::DOMImplementation> g_DOMImplSessMap;
