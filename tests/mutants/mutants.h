// What the generated stand-ins of the exported functions share: which mutant runs, and
// values in the place of arguments.
#pragma once

#include <sys/wait.h>
#include <tessel/tessel.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <new>
#include <vector>

namespace mutants {

// By their numbers, as generated.
extern const std::vector<const char*> g_Functions;
extern const std::vector<const char*> g_Mutants;

// Notes a call of a function and gives the number of the mutant that TESSEL_MUTANT names,
// one behind the last where it names none.
size_t Enter(size_t function);

// What a call answers in a copy of the process, so that nothing happens in this one.
template <class Call>
auto InACopy(Call call) {
  decltype(call()) answer{};
  int ends[2];
  if (pipe(ends) != 0) std::abort();
  const pid_t copy = fork();
  if (copy == 0) {
    alarm(10);
    try {
      answer = call();
    } catch (...) {
      _exit(1);
    }
    _exit(write(ends[1], &answer, sizeof answer) == sizeof answer ? 0 : 1);
  }
  close(ends[1]);
  const bool isThere = read(ends[0], &answer, sizeof answer) == sizeof answer;
  close(ends[0]);
  if (copy < 0 || waitpid(copy, nullptr, 0) != copy) std::abort();
  if (!isThere) throw std::bad_alloc();  // the only exception that leaves a function
  return answer;
}

// A status with the codes of one function for those of another.
inline TSXStatus Translated(TSXStatus status, std::initializer_list<TSXStatus> theirs,
                            std::initializer_list<TSXStatus> ours) {
  for (size_t i = 0; i < std::min(theirs.size(), ours.size()); ++i) {
    if (status == theirs.begin()[i]) return ours.begin()[i];
  }
  return status;
}

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
