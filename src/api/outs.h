// The out-arguments of the exported functions. An id or a value resets itself when it is
// made, before the look-up; each knows how to fail and how to store a result.
#pragma once

#include <tessel/export.h>
#include <tessel/values.h>

#include <cstdint>
#include <string>

#include "document/positions.h"
#include "host/text.h"
#include "registry/globals.h"

// An id. It is 0 from before the look-up on.
class CNodeOut {
 public:
  explicit CNodeOut(TSXRefId* pId) : m_pId(pId) { *m_pId = 0; }
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

// Contract: an id that keeps the host's own value on failure and for no node.
class CUntouchedNodeOut {
 public:
  explicit CUntouchedNodeOut(TSXRefId* pId) : m_pId(pId) {}
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

// Where a node stood: nowhere from before the look-up on.
class CPositionOut {
 public:
  CPositionOut(int32_t* pLine, int32_t* pColumn, int64_t* pBegin, int64_t* pEnd)
      : m_pLine(pLine), m_pColumn(pColumn), m_pBegin(pBegin), m_pEnd(pEnd) {
    static_cast<void>(Store(CPosition()));
  }
  TSXStatus Fail(TSXStatus status) { return status; }
  TSXStatus Store(const CPosition& position) {
    *m_pLine = position.m_Line;
    *m_pColumn = position.m_Column;
    *m_pBegin = position.m_Begin;
    *m_pEnd = position.m_End;
    return 0;
  }

 private:
  int32_t* m_pLine;
  int32_t* m_pColumn;
  int64_t* m_pBegin;
  int64_t* m_pEnd;
};

// A string, replaced on success and cleared on failure.
class CStringOut {
 public:
  explicit CStringOut(HStr* pString) : m_pString(pString) {}
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
