// The host's named mutex as an object, and the one scoped lock of it.
//
// Lock order: the "DOM Mutex" first, then at most one registry or map mutex.
// Registry locks span one operation and never nest.
#pragma once

#include <tessel/host.h>

#include "host/threadannotations.h"

class TESSEL_CAPABILITY("mutex") CHostMutex {
 public:
  explicit CHostMutex(const char* pName) { HostMutexCreate(&m_Handle, pName); }
  ~CHostMutex() { HostMutexDestroy(m_Handle); }
  CHostMutex(const CHostMutex&) = delete;
  CHostMutex& operator=(const CHostMutex&) = delete;

  HostMutex Handle() const { return m_Handle; }

 private:
  HostMutex m_Handle = nullptr;
};

class TESSEL_SCOPED_CAPABILITY CHostLock {
 public:
  explicit CHostLock(CHostMutex& mutex) TESSEL_ACQUIRE(mutex) : m_Handle(mutex.Handle()) {
    HostMutexAcquire(m_Handle);
  }
  ~CHostLock() TESSEL_RELEASE() { HostMutexRelease(m_Handle); }
  CHostLock(const CHostLock&) = delete;
  CHostLock& operator=(const CHostLock&) = delete;

 private:
  HostMutex m_Handle;
};
