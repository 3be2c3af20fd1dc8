// The out-arguments of the exported functions. Each knows how to reset itself, to
// fail, and to store a result; the frame decides when.
#pragma once

#include <tessel/export.h>
#include <tessel/values.h>

#include <cstdint>
#include <string>

#include "host/text.h"
#include "registry/globals.h"

// An id. It is 0 from before the look-up on.
class CNodeOut {
 public:
  explicit CNodeOut(TSXRefId* pId) : m_pId(pId) { *m_pId = 0; }
  void Reset() {}
  TSXStatus Fail(TSXStatus status) {
    *m_pId = 0;
    return status;
  }
  TSXStatus Store(xercesc::DOMNode* pNode) {
    if (pNode != nullptr) *m_pId = g_NodeSessMap.Insert(pNode);  // one hand-out, owed by the host
    return 0;
  }

 private:
  TSXRefId* m_pId;
};

// Contract: an id that is reset once the look-up is done, found or not.
class CLateNodeOut {
 public:
  explicit CLateNodeOut(TSXRefId* pId) : m_pId(pId) {}
  void Reset() { *m_pId = 0; }
  TSXStatus Fail(TSXStatus status) { return status; }
  TSXStatus Store(xercesc::DOMNode* pNode) { return CNodeOut(m_pId).Store(pNode); }

 private:
  TSXRefId* m_pId;
};

// Contract: an id that keeps the host's own value on failure and for no node.
class CUntouchedNodeOut {
 public:
  explicit CUntouchedNodeOut(TSXRefId* pId) : m_pId(pId) {}
  void Reset() {}
  TSXStatus Fail(TSXStatus status) { return status; }
  TSXStatus Store(xercesc::DOMNode* pNode) {
    if (pNode != nullptr) *m_pId = g_NodeSessMap.Insert(pNode);
    return 0;
  }

 private:
  TSXRefId* m_pId;
};

// A flag or a count: `Value` is what crosses the boundary. It is 0 from before
// the look-up on.
template <class Value>
class CValueOut {
 public:
  explicit CValueOut(Value* pValue) : m_pValue(pValue) { *m_pValue = 0; }
  void Reset() {}
  TSXStatus Fail(TSXStatus status) { return status; }
  template <class Result>
  TSXStatus Store(Result result) {
    *m_pValue = static_cast<Value>(result);
    return 0;
  }

 private:
  Value* m_pValue;
};
using CFlagOut = CValueOut<uint8_t>;
using CCountOut = CValueOut<int32_t>;

// Contract: a flag or a count that is reset once the look-up is done.
template <class Value>
class CLateValueOut {
 public:
  explicit CLateValueOut(Value* pValue) : m_pValue(pValue) {}
  void Reset() { *m_pValue = 0; }
  TSXStatus Fail(TSXStatus status) { return status; }
  template <class Result>
  TSXStatus Store(Result result) {
    return CValueOut<Value>(m_pValue).Store(result);
  }

 private:
  Value* m_pValue;
};
using CLateFlagOut = CLateValueOut<uint8_t>;
using CLateCountOut = CLateValueOut<int32_t>;

// A string, replaced on success and cleared on failure.
class CStringOut {
 public:
  explicit CStringOut(HStr* pString) : m_pString(pString) {}
  void Reset() {}
  TSXStatus Fail(TSXStatus status) {
    ClearString(m_pString);
    return status;
  }
  TSXStatus Store(const XMLCh* pText) { return StoreText(pText, m_pString); }
  TSXStatus Store(const std::u16string& text) { return StoreText(text.c_str(), m_pString); }

 protected:
  HStr* m_pString;
};

// Contract: a string whose DOM errors are dropped. The host sees an empty string
// and the status of clearing it.
class CForgivingStringOut : public CStringOut {
 public:
  using CStringOut::CStringOut;
  TSXStatus FailCall(TSXStatus) { return ClearString(m_pString); }
};
