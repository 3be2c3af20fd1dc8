// What the tests of the library share: owners of host values, a document to work
// on, and a fixture that looks at the ledger when a case ends.
#pragma once

#include <gtest/gtest.h>
#include <tessel/standin.h>
#include <tessel/tessel.h>

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "registry/globals.h"

namespace support {

// A host string. An empty one has a null handle unless made otherwise.
class CText {
 public:
  CText() = default;
  explicit CText(std::string_view text) {
    if (HostStringFromPtr(&m_Handle, static_cast<int32_t>(text.size()), text.data()) != 0) {
      ADD_FAILURE() << "no memory for a string";
    }
  }
  ~CText() { ClearString(&m_Handle); }
  CText(const CText&) = delete;
  CText& operator=(const CText&) = delete;

  HStr* operator&() { return &m_Handle; }  // as a host passes its variable
  bool IsNull() const { return m_Handle == nullptr; }
  std::string Str() const {
    if (m_Handle == nullptr) return {};
    const auto* pBytes = reinterpret_cast<const char*>(*m_Handle) + sizeof(int32_t);
    return {pBytes, static_cast<size_t>((*m_Handle)->count)};
  }

 private:
  HStr m_Handle = nullptr;
};

// A host array of ids; the ids themselves are not given back.
class CIds {
 public:
  CIds() = default;
  ~CIds() { ClearArray(&m_Handle); }
  CIds(const CIds&) = delete;
  CIds& operator=(const CIds&) = delete;

  GenericRefObjSessionArray* operator&() { return &m_Handle; }
  bool IsNull() const { return m_Handle == nullptr; }
  size_t BlockSize() const { return HostGetHandleSize(m_Handle); }
  std::vector<TSXRefId> Get() const {
    std::vector<TSXRefId> ids;
    if (m_Handle == nullptr || (*m_Handle)->count == 0) return ids;
    ids.resize(static_cast<size_t>((*m_Handle)->count));
    std::memcpy(ids.data(), reinterpret_cast<const char*>(*m_Handle) + 8, ids.size() * 8);
    return ids;
  }

 private:
  GenericRefObjSessionArray m_Handle = nullptr;
};

// Calls a function whose last argument is an id out.
template <class Function, class... Args>
TSXRefId IdOf(Function function, Args... args) {
  TSXRefId id = 0;
  EXPECT_EQ(function(args..., &id), 0);
  return id;
}

// Calls a function whose last argument is a string out.
template <class Function, class... Args>
std::string TextOf(Function function, Args... args) {
  CText text;
  EXPECT_EQ(function(args..., &text), 0);
  return text.Str();
}

inline std::string Repeated(std::string_view text, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

inline TSXStatus Load(TSXRefId document, std::string_view xml, std::string* pErrors = nullptr,
                      std::string* pException = nullptr) {
  CText text(xml), errors, exception;
  const TSXStatus status = TSXLoadString(document, &text, &errors, &exception);
  if (pErrors != nullptr) *pErrors = errors.Str();
  if (pException != nullptr) *pException = exception.Str();
  return status;
}

// A document that is closed with its scope.
class CDoc {
 public:
  CDoc() : m_Id(IdOf(TSXDocumentOpen, uint64_t{0})) {}
  explicit CDoc(std::string_view xml) : CDoc() { EXPECT_EQ(Load(m_Id, xml), 0); }
  ~CDoc() { TSXDocumentClose(m_Id); }
  CDoc(const CDoc&) = delete;
  CDoc& operator=(const CDoc&) = delete;

  TSXRefId Id() const { return m_Id; }
  TSXRefId Root() const { return IdOf(TSXGetDocumentElement, m_Id, uint64_t{0}); }
  std::string Xml() const { return TextOf(TSXGetXML, m_Id); }

  // Closes before the scope ends.
  void Close() {
    TSXDocumentClose(m_Id);
    m_Id = 0;
  }

 private:
  TSXRefId m_Id;
};

inline TSXRefId FirstChild(TSXRefId node) { return IdOf(TSXGetFirstChild, node, uint64_t{0}); }
inline TSXRefId NextSibling(TSXRefId node) { return IdOf(TSXGetNextSibling, node, uint64_t{0}); }
inline std::string Name(TSXRefId node) { return TextOf(TSXGetNodeName, node, uint64_t{0}); }

// Whether an id names a node.
inline bool Resolves(TSXRefId node) {
  int32_t type = 0;
  return TSXGetNodeType(node, 0, &type) == 0;
}

inline TSXRefId Create(TSXRefId document, std::string_view name) {
  CText text(name);
  return IdOf(TSXCreateElement, document, &text);
}

inline TSXRefId CreateText(TSXRefId document, std::string_view data) {
  CText text(data);
  return IdOf(TSXCreateTextNode, document, &text);
}

inline TSXStatus SetAttribute(TSXRefId element, std::string_view name, std::string_view value) {
  CText nameText(name), valueText(value);
  return TSXSetAttribute(element, &nameText, &valueText);
}

// An entity or a notation, by the getter of the map that holds it.
inline TSXRefId OfType(TSXRefId document, decltype(&TSXGetEntities) getMap, std::string_view name) {
  CText text(name);
  const TSXRefId type = IdOf(TSXGetDocType, document, uint64_t{0});
  const TSXRefId map = IdOf(getMap, type, uint64_t{0});
  const TSXRefId item = IdOf(TSXGetNamedItem, map, &text);
  TSXNamedNodeMapClose(map);
  TSXNodeClose(type);
  return item;
}

// As options take them.
inline constexpr uint8_t kOn = 1, kOff = 0;
inline constexpr int32_t kAlways = 1;
inline constexpr uint8_t kDeep = 1;

// The ids that name an object, over all registries, and the map's entries.
inline size_t LiveIds() {
  return g_NodeSessMap.LiveCount() + g_NodeListSessMap.LiveCount() +
         g_NamedNodeMapSessMap.LiveCount() + g_DOMImplSessMap.LiveCount();
}

// Every case starts and ends with nothing outstanding.
class CLedgerTest : public ::testing::Test {
 protected:
  void SetUp() override { StandinReadLedger(&m_Before); }
  void TearDown() override {
    StandinLedger after;
    StandinReadLedger(&after);
    EXPECT_EQ(after.handles, m_Before.handles);
    EXPECT_EQ(after.mutexes, m_Before.mutexes);
    EXPECT_EQ(after.violations, m_Before.violations) << StandinLastViolation();
    EXPECT_EQ(LiveIds(), 0u);
    EXPECT_EQ(g_NodeDomMap.EntryCount(), 0u);
  }

 private:
  StandinLedger m_Before;
};

}  // namespace support
