// What fails below the library: memory that the host refuses, disks and files.
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <functional>
#include <xercesc/util/FileManagers/PosixFileMgr.hpp>
#include <xercesc/util/IOException.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include "support/path.h"

namespace {

using support::CDoc;
using support::CIds;
using support::CPath;
using support::CText;
using support::IdOf;
using support::LoadFile;

// -- Memory --------------------------------------------------------------------

class Refusals : public support::CLedgerTest {
 protected:
  // What a call leaves in its out when the host refuses memory.
  enum class Out {
    kCleared,  // a string, null
    kKept,     // a string, as it was
    kNoArray,  // an array, null
    kMessage,  // a string, null or cut to the lines that there was memory for
  };

  struct COuts {
    explicit COuts(bool inUse) {
      if (!inUse) return;
      EXPECT_EQ(HostStringFromPtr(&m_Text, 3, "old"), 0);
      domSetHandleSizeOrNewHandle(&m_Ids, 8);
      ClearSessionArray(&m_Ids);
    }
    ~COuts() {
      for (const TSXRefId id : m_Ids.Get()) TSXNodeClose(id);
    }
    CText m_Text, m_Exception;
    CIds m_Ids{};
    TSXRefId m_Id = 0;
  };

  struct CRow {
    const char* m_pName;
    Out m_Out;
    std::function<TSXStatus(COuts&)> m_Call;
    TSXStatus m_Good = 0;
    TSXStatus m_Refused = 0;
    bool m_NeedsPath = false;  // its first request is for the path: 2, and all is left alone
  };

  static int64_t Refused() {
    StandinLedger ledger;
    StandinReadLedger(&ledger);
    return ledger.refusals;
  }

  static void ExpectRefusal(const CRow& row, const COuts& outs, const std::string& good) {
    const std::string text = outs.m_Text.Str();
    if (row.m_Out == Out::kNoArray) {
      EXPECT_TRUE(outs.m_Ids.IsNull());
    } else if (row.m_Out == Out::kMessage) {
      EXPECT_TRUE(text != "old" && text.size() <= good.size()) << text;
    } else {
      EXPECT_TRUE(outs.m_Text.IsNull() || (row.m_Out == Out::kKept && text == "old")) << text;
    }
  }

  // Refuses the first request, the second, and so on, until the call asks for no
  // more; alone or with all that follow it, with outs that are empty or in use.
  static void Sweep(const CRow& row, void (*refuse)(int64_t), bool inUse) {
    COuts whole(false);
    EXPECT_EQ(row.m_Call(whole), row.m_Good);
    EXPECT_NE(whole.m_Text.IsNull(), whole.m_Ids.Get().empty()) << "one of them is given";
    const size_t liveIds = support::LiveIds();
    for (int64_t n = 1; n < 100; ++n) {
      SCOPED_TRACE(n);
      COuts outs(inUse);
      const int64_t before = Refused();
      refuse(n);
      const TSXStatus status = row.m_Call(outs);
      StandinFailAllocation(0);
      if (Refused() == before) {
        EXPECT_EQ(status, row.m_Good);
        EXPECT_EQ(outs.m_Ids.Get(), whole.m_Ids.Get());
        EXPECT_TRUE(row.m_Out == Out::kNoArray || outs.m_Text.Str() == whole.m_Text.Str());
        EXPECT_GT(n, 1) << "the call asks for no memory";
        return;
      }
      if (row.m_NeedsPath && n == 1) {
        EXPECT_EQ(status, 2);
        EXPECT_EQ(outs.m_Text.Str(), inUse ? "old" : "");
      } else {
        EXPECT_EQ(status, row.m_Refused);
        ExpectRefusal(row, outs, whole.m_Text.Str());
      }
      EXPECT_EQ(support::LiveIds(), liveIds) << "ids that nobody can give back";
    }
    FAIL() << "the call never came to its end";
  }

  static void Sweep(const CRow& row) {
    SCOPED_TRACE(row.m_pName);
    for (const auto refuse : {StandinFailAllocation, StandinFailAllocationsFrom}) {
      for (const bool inUse : {false, true}) Sweep(row, refuse, inUse);
    }
  }
};

// clang-format off
constexpr TSXStatus (*kGetters[])(TSXRefId, uint64_t, HStr*) = {
    TSXGetNodeName, TSXGetNamespaceName, TSXGetBaseName, TSXGetTagName, TSXGetNodeValue,
    TSXGetCharacterDataData, TSXName, TSXGetAttrValue, TSXGetTarget, TSXGetData, TSXGetName,
    TSXGetDocTypePublicID, TSXGetDocTypeSystemID, TSXGetInternalSubset, TSXGetNotationPublicID,
    TSXGetNotationSystemID, TSXGetEntityPublicId, TSXGetEntitySystemId, TSXGetNotationName,
    TSXGetEncoding};
// clang-format on

TEST_F(Refusals, StringsAreClearedAndTheCodeIsTheHosts) {
  CDoc doc;
  ASSERT_EQ(TSXSetDoNamespaces(doc.Id(), 0, &support::kOn), 0);
  const char* pXml =
      "<!DOCTYPE p:root PUBLIC 'public' '/dev/null' [<!NOTATION notation PUBLIC 'public' 'system'>"
      "<!ENTITY entity PUBLIC 'public' 'system' NDATA notation>]>"
      "<p:root xmlns:p='urn:name' attr='value'>caf\xc3\xa9<?target data?></p:root>";
  ASSERT_EQ(support::Load(doc.Id(), pXml), 0);
  CText encoding("ISO-8859-1"), attribute("attr");
  ASSERT_EQ(TSXSetEncoding(doc.Id(), 0, &encoding), 0);
  const TSXRefId root = doc.Root();
  const TSXRefId text = support::FirstChild(root);
  const TSXRefId type = IdOf(TSXGetDocType, doc.Id(), uint64_t{0});
  const TSXRefId entity = support::OfType(doc.Id(), TSXGetEntities, "entity");
  const TSXRefId notation = support::OfType(doc.Id(), TSXGetNotations, "notation");
  const TSXRefId attr = support::Attribute(root, "attr"), target = support::NextSibling(text);
  int swept = 0;
  // Each with every node that it has a text for.
  for (const auto getter : kGetters) {
    for (const TSXRefId node : {root, text, target, attr, type, entity, notation, doc.Id()}) {
      CText probe;
      if (getter(node, 0, &probe) != 0 || probe.IsNull()) continue;
      const auto get = [&](COuts& outs) { return getter(node, 0, &outs.m_Text); };
      Sweep({probe.Str().c_str(), Out::kCleared, get, 0, 2});
      ++swept;
    }
  }
  EXPECT_EQ(swept, 30);
  const std::pair<Out, std::function<TSXStatus(HStr*)>> others[]{
      {Out::kCleared, [&](HStr* pText) { return TSXGetAttribute(root, &attribute, pText); }},
      {Out::kCleared, [&](HStr* pText) { return TSXGetText(root, pText); }},
      {Out::kCleared, [&](HStr* pText) { return TSXGetSubstringData(text, 0, 4, pText); }},
      {Out::kKept, [&](HStr* pText) { return TSXGetXML(doc.Id(), pText); }},
      {Out::kKept, [&](HStr* pText) { return TSXGetXMLPP(doc.Id(), pText); }},
  };
  for (const auto& row : others) {
    Sweep({"other", row.first, [&](COuts& outs) { return row.second(&outs.m_Text); }, 0, 2});
  }
}

TEST_F(Refusals, ArraysAreNullAndOweNoIds) {
  CDoc doc("<r><a x='1' y='2'/><a/></r>");
  CText a("a"), any("*"), path("//a");
  const TSXRefId root = doc.Root();
  const TSXRefId list = IdOf(TSXGetChildNodeList, root, uint64_t{0});
  const TSXRefId map = IdOf(TSXGetAttributes, support::FirstChild(root), uint64_t{0});
  const std::pair<const char*, std::function<TSXStatus(CIds&)>> rows[]{
      {"children", [&](CIds& ids) { return TSXGetChildNodes(root, 0, &ids); }},
      {"by name", [&](CIds& ids) { return TSXGetElementsByTagName(doc.Id(), &a, &ids); }},
      {"by namespace",
       [&](CIds& ids) { return TSXGetElementsByTagNameNSArray(doc.Id(), &any, &any, &ids); }},
      {"below by name",
       [&](CIds& ids) { return TSXElementGetElementsByTagNameArray(root, &a, &ids); }},
      {"below by namespace",
       [&](CIds& ids) { return TSXElementGetElementsByTagNameNSArray(root, &any, &any, &ids); }},
      {"list", [&](CIds& ids) { return TSXGetNodeListArray(list, 0, &ids); }},
      {"map", [&](CIds& ids) { return TSXGetArray(map, 0, &ids); }},
      {"XPath",
       [&](CIds& ids) {
         CText message;
         return XPathEvaluateContextToNodeArray(root, &path, &ids, &message);
       }},
  };
  for (const auto& row : rows) {
    Sweep({row.first, Out::kNoArray, [&](COuts& outs) { return row.second(outs.m_Ids); }});
  }
  TSXNodeListClose(list);
  TSXNamedNodeMapClose(map);
}

TEST_F(Refusals, LoadsAndSavesKeepTheirStatus) {
  CDoc doc, target("<r><e/></r>"), cdata("<r/>");
  ASSERT_EQ(TSXSetValidateOnLoad(doc.Id(), 0, &support::kAlways), 0);
  CText bad("<!DOCTYPE r [<!ELEMENT r ANY>]><r><a/><b></r>");
  CPath path("refused.xml"), badPath("bad.xml");
  badPath.Write("<r><a/><b></r>");
  const TSXRefId element = support::FirstChild(target.Root());
  CText data("a]]>b"), expression("//[");
  ASSERT_EQ(TSXAppendChild(cdata.Root(), IdOf(TSXCreateCDATASection, cdata.Id(), &data)), 0);
  struct {
    const char* pName;
    TSXStatus status;
    bool needsPath;
    std::function<TSXStatus(COuts&)> call;
  } const rows[]{
      {"text", domErrParse, false,
       [&](COuts& o) { return TSXLoadString(doc.Id(), &bad, &o.m_Text, &o.m_Exception); }},
      {"element", domErrParse, false,
       [&](COuts& o) { return TSXElementSetXML(element, &bad, &o.m_Text, &o.m_Exception); }},
      {"file", domErrParse, true,
       [&](COuts& o) { return TSXLoadFile(doc.Id(), badPath.Get(), &o.m_Text, &o.m_Exception); }},
      {"save", domErrSaveFile, true,
       [&](COuts& o) { return TSXSaveFile(cdata.Id(), path.Get(), &o.m_Text); }},
      {"XPath", domErrXPathParse, false,
       [&](COuts& o) {
         return XPathEvaluateContextToNode(doc.Id(), &expression, &o.m_Id, &o.m_Text);
       }},
  };
  for (const auto& row : rows) {
    Sweep({row.pName, Out::kMessage, row.call, row.status, row.status, row.needsPath});
  }
  StandinDisposePointers();
}

// -- Disks ----------------------------------------------------------------------

bool WriteText(const char* pFile, const std::string& text) {
  return static_cast<bool>(std::ofstream(pFile) << text << std::flush);
}

// From here on mounts are this process's own, and nobody else sees them. False where
// the system does not let us.
bool HasOwnMounts() {
  static const bool s_Has = [] {
    const std::string user = std::to_string(getuid()), group = std::to_string(getgid());
    if (unshare(CLONE_NEWNS) != 0) {
      if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
      if (!WriteText("/proc/self/setgroups", "deny") ||
          !WriteText("/proc/self/uid_map", user + " " + user + " 1") ||
          !WriteText("/proc/self/gid_map", group + " " + group + " 1")) {
        return false;
      }
    }
    return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
  }();
  return s_Has;
}

class Disk : public support::CLedgerTest {
 protected:
  static constexpr size_t kSize = 64 * 1024;

  void SetUp() override {
    CLedgerTest::SetUp();
    std::filesystem::create_directory(m_Folder.Name());
    m_Mounted = HasOwnMounts() && Mount(0) == 0;
    if (!m_Mounted) GTEST_SKIP() << "the system does not let a test mount a disk of its own";
  }
  void TearDown() override {
    if (m_Mounted) {
      EXPECT_EQ(umount(m_Folder.Name().c_str()), 0) << "a file was left open";
    }
    CLedgerTest::TearDown();
  }

  int Mount(unsigned long flags) const {
    const std::string size = "size=" + std::to_string(kSize);
    return mount("tessel", m_Folder.Name().c_str(), "tmpfs", flags, size.c_str());
  }
  std::string On(const char* pName) const { return m_Folder.Name() + "/" + pName; }

  static void ExpectFailure(TSXRefId document, const CPath& path) {
    for (const auto save : {TSXSaveFile, TSXSaveFilePP}) {
      CText errorText;
      EXPECT_EQ(save(document, path.Get(), &errorText), domErrSaveFile);
      EXPECT_EQ(errorText.Str(), "Failed to write file");
    }
  }

 private:
  CPath m_Folder{"disk"};
  bool m_Mounted = false;
};

// Also when only the last bytes, which wait for the close, have no room.
TEST_F(Disk, AFullDiskIsAFailedSaveAndKeepsAPrefix) {
  for (const size_t size : {kSize / 2, 4 * kSize}) {
    SCOPED_TRACE(size);
    CDoc doc("<r>" + support::Repeated("<a>text</a>", static_cast<int>(size / 10)) + "</r>");
    CPath filler(On("filler")), path(On("doc.xml"));
    path.Write("<old/>");
    filler.Write(std::string(kSize, 'x'));
    ExpectFailure(doc.Id(), path);
    const std::string pretty = support::TextOf(TSXGetXMLPP, doc.Id());
    EXPECT_TRUE(pretty.starts_with(path.Read())) << "the old content is gone";
    EXPECT_LT(path.Read().size(), kSize);
    filler.Write("");
    CText errorText;
    EXPECT_EQ(TSXSaveFile(doc.Id(), path.Get(), &errorText), size < kSize ? 0 : domErrSaveFile);
    EXPECT_EQ(path.Read() == doc.Xml(), size < kSize);
  }
}

TEST_F(Disk, WhatCannotBeOpenedStaysAsItIs) {
  CDoc doc("<new/>");
  CPath file(On("file.xml")), folder(On("folder")), none(On("none/file.xml"));
  file.Write("<old/>");
  std::filesystem::create_directory(folder.Name());
  ASSERT_EQ(Mount(MS_REMOUNT | MS_RDONLY), 0);
  for (const CPath* pPath : {&file, &folder, &none}) ExpectFailure(doc.Id(), *pPath);
  EXPECT_EQ(file.Read(), "<old/>");
  ASSERT_EQ(Mount(MS_REMOUNT), 0);
  for (const CPath* pPath : {&folder, &none}) ExpectFailure(doc.Id(), *pPath);
}

// -- Files that change ------------------------------------------------------------

// The XML library's way to files, with something that happens at the second read.
class CMeddling final : public xercesc::PosixFileMgr {
 public:
  explicit CMeddling(std::function<void()> meddle)
      : m_pReal(xercesc::XMLPlatformUtils::fgFileMgr), m_Meddle(std::move(meddle)) {
    xercesc::XMLPlatformUtils::fgFileMgr = this;
  }
  ~CMeddling() override { xercesc::XMLPlatformUtils::fgFileMgr = m_pReal; }

  XMLSize_t fileRead(xercesc::FileHandle file, XMLSize_t most, XMLByte* pBytes,
                     xercesc::MemoryManager* pMemory) override {
    if (++m_Reads == 2) m_Meddle();
    return PosixFileMgr::fileRead(file, most, pBytes, pMemory);
  }
  int Reads() const { return m_Reads; }

 private:
  xercesc::XMLFileMgr* m_pReal;
  std::function<void()> m_Meddle;
  int m_Reads = 0;
};

class Changing : public support::CLedgerTest {};

TEST_F(Changing, FilesThatChangeWhileTheyAreReadAnswer) {
  CPath path("changing.xml"), other("other.xml");
  const auto append = [&](const char* pText) {
    std::ofstream(path.Name(), std::ios::app) << pText;
  };
  struct {
    const char* pName;
    const char* pMessage;  // null for a load that goes well
    std::function<void()> meddle;
  } const rows[] = {
      {"is removed", nullptr, [&] { std::filesystem::remove(path.Name()); }},
      {"is replaced", nullptr,
       [&] {
         other.Write("<other/>");
         std::filesystem::rename(other.Name(), path.Name());
       }},
      {"is cut", "ended before", [&] { std::filesystem::resize_file(path.Name(), 1000); }},
      {"is emptied", "ended before", [&] { path.Write(""); }},
      {"grows by a comment", nullptr, [&] { append("<!-- more -->"); }},
      {"grows by an element", "comment or processing instruction expected",
       [&] { append("<more/>"); }},
      {"cannot be read", "unable to read data from file",
       [&] {
         throw xercesc::IOException(__FILE__, __LINE__,
                                    xercesc::XMLExcepts::File_CouldNotReadFromFile);
       }},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.pName);
    path.Write("<r>" + std::string(300'000, 'x') + "</r>");
    CDoc doc("<old/>");
    std::string errors;
    {
      const CMeddling meddling(row.meddle);
      EXPECT_EQ(LoadFile(doc.Id(), path.Get(), &errors), row.pMessage == nullptr ? 0 : domErrParse);
      EXPECT_GE(meddling.Reads(), 2);
    }
    EXPECT_NE(errors.find(row.pMessage == nullptr ? "" : row.pMessage), std::string::npos)
        << errors;
    EXPECT_EQ(support::Name(doc.Root()), "r") << "what was read before";
    path.Write("<again/>");
    EXPECT_EQ(LoadFile(doc.Id(), path.Get()), 0);
  }
}

TEST_F(Changing, ADocumentIsSavedToTheFileItCameFrom) {
  CPath path("itself.xml");
  path.Write("<r><a>" + std::string(200'000, 'x') + "</a><b/></r>");
  CDoc doc;
  for (const auto save : {TSXSaveFile, TSXSaveFilePP, TSXSaveFile}) {
    ASSERT_EQ(LoadFile(doc.Id(), path.Get()), 0);
    ASSERT_EQ(TSXAppendChild(doc.Root(), support::Create(doc.Id(), "more")), 0);
    CText errorText;
    ASSERT_EQ(save(doc.Id(), path.Get(), &errorText), 0);
  }
  EXPECT_EQ(path.Read(), doc.Xml());
  EXPECT_TRUE(doc.Xml().ends_with("<more/></r>")) << "the last of three";
}

}  // namespace
