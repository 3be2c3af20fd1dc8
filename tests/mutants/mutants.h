// What the generated stand-ins of the exported functions share: which mutant runs, and
// values in the place of arguments.
#pragma once

#include <tessel/tessel.h>

#include <vector>

namespace mutants {

// By their numbers, as generated.
extern const std::vector<const char*> g_Functions;
extern const std::vector<const char*> g_Mutants;

// Notes a call of a function and gives the number of the mutant that TESSEL_MUTANT names,
// one behind the last where it names none.
size_t Enter(size_t function);

// A flag or number that the caller does not see.
template <class T>
class CNumber {
 public:
  explicit CNumber(T value) : m_Value(value) {}
  operator T*() { return &m_Value; }

 private:
  T m_Value;
};

// An id that the caller does not see; its hand-out is given back, by the function given.
class CId {
 public:
  explicit CId(void (*pClose)(TSXRefId)) : m_pClose(pClose) {}
  ~CId() {
    if (m_Id != 0) m_pClose(m_Id);
  }
  CId(const CId&) = delete;
  CId& operator=(const CId&) = delete;
  operator TSXRefId*() { return &m_Id; }
  operator unsigned char*() { return reinterpret_cast<unsigned char*>(&m_Id); }

 private:
  TSXRefId m_Id = 0;
  void (*m_pClose)(TSXRefId);
};

// A null handle that the caller does not see, of a string or of any block.
class CString {
 public:
  CString() = default;
  ~CString() { ClearArray(&m_Handle); }
  CString(const CString&) = delete;
  CString& operator=(const CString&) = delete;
  operator HStr*() { return &m_Handle; }
  operator void*() { return &m_Handle; }

 private:
  HStr m_Handle = nullptr;
};

class CStrings {
 public:
  CStrings() = default;
  ~CStrings() {
    for (int i = 0; m_Handle != nullptr && i < (*m_Handle)->count; ++i) {
      ClearString(&(*m_Handle)->items[i]);
    }
    ClearArray(&m_Handle);
  }
  CStrings(const CStrings&) = delete;
  CStrings& operator=(const CStrings&) = delete;
  operator HStrArray*() { return &m_Handle; }

 private:
  HStrArray m_Handle = nullptr;
};

class CIds {
 public:
  CIds() = default;
  ~CIds() {
    for (int i = 0; m_Handle != nullptr && i < (*m_Handle)->count; ++i) {
      TSXNodeClose((*m_Handle)->ids[i]);
    }
    ClearArray(&m_Handle);
  }
  CIds(const CIds&) = delete;
  CIds& operator=(const CIds&) = delete;
  operator GenericRefObjSessionArray*() { return &m_Handle; }

 private:
  GenericRefObjSessionArray m_Handle = nullptr;
};

inline constexpr HStrRecord g_Empty{0, {0}};

}  // namespace mutants
