// Owners of what the library and the host hand out: nothing that a subcommand
// gets stays open, whichever way it ends.
#ifndef TESSEL_TOOLS_OWNERS_H
#define TESSEL_TOOLS_OWNERS_H

#include <tessel/standin.h>
#include <tessel/tessel.h>

#include <cstddef>
#include <limits>
#include <new>
#include <string_view>
#include <utility>

// One hand-out of a reference id. Closing an id that went with its document is
// harmless, so the order of closing does not matter.
template <auto kClose>
class CId {
 public:
  CId() = default;
  explicit CId(TSXRefId id) : m_Id(id) {}
  CId(CId&& other) noexcept : m_Id(std::exchange(other.m_Id, 0)) {}
  CId& operator=(CId&& other) noexcept {
    std::swap(m_Id, other.m_Id);
    return *this;
  }
  ~CId() { Close(); }

  TSXRefId Get() const { return m_Id; }
  explicit operator bool() const { return m_Id != 0; }
  // For a call that writes an id: gives back what is held first.
  TSXRefId* Out() {
    Close();
    return &m_Id;
  }
  // For a call that gives the hand-out back itself.
  void Forget() { m_Id = 0; }

 private:
  void Close() {
    if (m_Id != 0) kClose(std::exchange(m_Id, 0));
  }

  TSXRefId m_Id = 0;
};

using CDocument = CId<TSXDocumentClose>;
using CNode = CId<TSXNodeClose>;
using CNodeMap = CId<TSXNamedNodeMapClose>;

// A host string.
class CText {
 public:
  CText() = default;
  explicit CText(std::string_view text) {
    if (text.size() <= static_cast<size_t>(std::numeric_limits<int32_t>::max())) {
      m_String = StandinStringFromText(text.data(), static_cast<int32_t>(text.size()));
    }
    if (m_String == nullptr) throw std::bad_alloc();
  }
  CText(CText&& other) noexcept : m_String(std::exchange(other.m_String, nullptr)) {}
  CText& operator=(CText&&) = delete;
  ~CText() { ClearString(&m_String); }

  HStr* Get() { return &m_String; }
  // Good until the next call that gets the string.
  std::string_view View() const {
    if (m_String == nullptr) return {};
    return {reinterpret_cast<const char*>((*m_String)->bytes),
            static_cast<size_t>((*m_String)->count)};
  }
  bool IsNull() const { return m_String == nullptr; }

 private:
  HStr m_String = nullptr;
};

// A host path.
class CPath {
 public:
  explicit CPath(const char* pNative) : m_Path(StandinPathFromText(pNative)) {
    if (m_Path == nullptr) throw std::bad_alloc();
  }
  CPath(const CPath&) = delete;
  CPath& operator=(const CPath&) = delete;
  ~CPath() { StandinPathDispose(m_Path); }

  HostPath Get() const { return m_Path; }

 private:
  HostPath m_Path;
};

// An array of node ids, each one hand-out.
class CNodeArray {
 public:
  CNodeArray() = default;
  CNodeArray(CNodeArray&& other) noexcept : m_Array(std::exchange(other.m_Array, nullptr)) {}
  CNodeArray& operator=(CNodeArray&&) = delete;
  ~CNodeArray() {
    for (size_t i = 0; i < Size(); ++i) Take(i);
    ClearArray(&m_Array);
  }

  GenericRefObjSessionArray* Get() { return &m_Array; }
  size_t Size() const { return m_Array == nullptr ? 0 : static_cast<size_t>((*m_Array)->count); }
  TSXRefId At(size_t index) const { return (*m_Array)->ids[index]; }
  // The id with its hand-out, which is then no longer the array's.
  CNode Take(size_t index) { return CNode(std::exchange((*m_Array)->ids[index], 0)); }

 private:
  GenericRefObjSessionArray m_Array = nullptr;
};

#endif
