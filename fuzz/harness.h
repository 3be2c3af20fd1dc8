// What every driver shares: the bytes of an input, host values, and the check that
// an input leaves nothing behind.
#pragma once

#include <tessel/standin.h>
#include <tessel/tessel.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace fuzz {

// Ends the process with a message: how every finding of ours is reported.
[[noreturn]] void Fail(const std::string& message);

// Where the environment sets TESSEL_FUZZ_TRACE, what a driver does is told.
bool IsTraced();

// False for an input that names what must not be opened: other hosts, devices.
bool IsTame(std::string_view input);

// Consumes an input from its front; past the end all bytes are 0.
class CBytes {
 public:
  CBytes(const uint8_t* pData, size_t size) : m_Left(reinterpret_cast<const char*>(pData), size) {}

  bool IsEmpty() const { return m_Left.empty(); }
  size_t Size() const { return m_Left.size(); }
  uint8_t Byte() { return static_cast<uint8_t>(Run(1).empty() ? 0 : m_Taken.front()); }
  uint64_t Word();
  // The next bytes, fewer where the input ends.
  std::string_view Run(size_t count);
  std::string_view Rest() { return Run(m_Left.size()); }

 private:
  std::string_view m_Left;
  std::string_view m_Taken;
};

// A host string; without a text its handle is null.
class CText {
 public:
  CText() = default;
  explicit CText(std::string_view text) { Set(text); }
  ~CText() { ClearString(&m_Handle); }
  CText(const CText&) = delete;
  CText& operator=(const CText&) = delete;

  void Set(std::string_view text);
  HStr* Out() { return &m_Handle; }

 private:
  HStr m_Handle = nullptr;
};

// A host array of node ids. The ids are not given back.
class CIds {
 public:
  CIds() = default;
  ~CIds() { ClearArray(&m_Handle); }
  CIds(const CIds&) = delete;
  CIds& operator=(const CIds&) = delete;

  GenericRefObjSessionArray* Out() { return &m_Handle; }
  bool IsThere() const { return m_Handle != nullptr; }
  void MakeEmpty();
  size_t Count() const { return m_Handle == nullptr ? 0 : static_cast<size_t>((*m_Handle)->count); }
  TSXRefId At(size_t index) const { return (*m_Handle)->ids[index]; }
  void CloseNodes() const;

 private:
  GenericRefObjSessionArray m_Handle = nullptr;
};

// A document that is closed with its scope.
class CDoc {
 public:
  CDoc() { TSXDocumentOpen(0, &m_Id); }
  ~CDoc() { TSXDocumentClose(m_Id); }
  CDoc(const CDoc&) = delete;
  CDoc& operator=(const CDoc&) = delete;

  TSXRefId Id() const { return m_Id; }
  TSXStatus Load(std::string_view xml);

 private:
  TSXRefId m_Id = 0;
};

// Fails where a scope ends with something open, or with a host rule broken.
class CLedger {
 public:
  CLedger() { StandinReadLedger(&m_Before); }
  ~CLedger();
  CLedger(const CLedger&) = delete;
  CLedger& operator=(const CLedger&) = delete;

 private:
  StandinLedger m_Before;
};

// Fails for a status that no function has: 0, a code of the list, and where the
// host refuses memory also its own codes.
void RequireKnown(TSXStatus status, bool hostRefuses = false);

}  // namespace fuzz
