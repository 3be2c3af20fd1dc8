// What fails below the library: memory that the host refuses, disks and files.
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <functional>
#include <xercesc/util/IOException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLFileMgr.hpp>

#include "support/path.h"

namespace {

using support::CDoc;
using support::CIds;
using support::CPath;
using support::CText;
using support::IdOf;

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
    COuts() = default;
    explicit COuts(const char* pText) : m_Text(pText) {
      domSetHandleSizeOrNewHandle(&m_Ids, 8);
      ClearSessionArray(&m_Ids);
    }
    CText m_Text;
    CText m_Exception;
    CIds m_Ids{};
    TSXRefId m_Id = 0;
  };

  struct CRow {
    const char* m_pName;
    Out m_Out;
    TSXStatus m_Good;
    TSXStatus m_Refused;
    std::function<TSXStatus(COuts&)> m_Call;
    bool m_NeedsPath = false;  // its first request is for the path: 2, and all is left alone
  };

  static int64_t Refused() {
    StandinLedger ledger;
    StandinReadLedger(&ledger);
    return ledger.refusals;
  }

  static void CloseIds(COuts& outs) {
    for (const TSXRefId id : outs.m_Ids.Get()) TSXNodeClose(id);
    if (outs.m_Id != 0) TSXNodeClose(outs.m_Id);
  }

  static void ExpectRefusal(const CRow& row, COuts& outs, const std::string& good) {
    const std::string text = outs.m_Text.Str();
    switch (row.m_Out) {
      case Out::kCleared:
        EXPECT_TRUE(outs.m_Text.IsNull()) << text;
        break;
      case Out::kKept:
        EXPECT_TRUE(outs.m_Text.IsNull() || text == "old") << text;
        break;
      case Out::kNoArray:
        EXPECT_TRUE(outs.m_Ids.IsNull());
        break;
      case Out::kMessage:
        EXPECT_NE(text, "old");
        EXPECT_LE(text.size(), good.size()) << text;
        break;
    }
  }

  // Refuses the first request, the second, and so on, until the call asks for no
  // more; alone or with all that follow it, with outs that are empty or in use.
  static void Sweep(const CRow& row, void (*refuse)(int64_t), const char* pOld) {
    COuts whole;
    EXPECT_EQ(row.m_Call(whole), row.m_Good);
    const size_t withWhole = support::LiveIds();
    const std::string good = whole.m_Text.Str();
    EXPECT_TRUE(row.m_Out != Out::kNoArray || !whole.m_Ids.Get().empty());
    for (int64_t n = 1;; ++n) {
      SCOPED_TRACE(n);
      ASSERT_LT(n, 100) << "the call never came to its end";
      COuts fresh, used("old");
      COuts& outs = pOld != nullptr ? used : fresh;
      const int64_t before = Refused();
      refuse(n);
      const TSXStatus status = row.m_Call(outs);
      StandinFailAllocation(0);
      if (Refused() == before) {
        EXPECT_EQ(status, row.m_Good);
        EXPECT_EQ(outs.m_Ids.Get(), whole.m_Ids.Get());
        if (row.m_Out != Out::kNoArray) {
          EXPECT_EQ(outs.m_Text.Str(), good);
        }
        CloseIds(outs);
        CloseIds(whole);
        EXPECT_GT(n, 1) << "the call asks for no memory";
        return;
      }
      const bool isPath = row.m_NeedsPath && n == 1;
      EXPECT_EQ(status, isPath ? 2 : row.m_Refused);
      if (isPath) {
        EXPECT_EQ(outs.m_Text.Str(), pOld != nullptr ? pOld : "");
      } else {
        ExpectRefusal(row, outs, good);
      }
      CloseIds(outs);
      EXPECT_EQ(support::LiveIds(), withWhole) << "ids that nobody can give back";
    }
  }

  static void Sweep(const std::vector<CRow>& rows) {
    for (const CRow& row : rows) {
      SCOPED_TRACE(row.m_pName);
      for (const auto refuse : {StandinFailAllocation, StandinFailAllocationsFrom}) {
        for (const char* pOld : {static_cast<const char*>(nullptr), "old"}) {
          Sweep(row, refuse, pOld);
        }
      }
    }
    StandinDisposePointers();
  }
};

TEST_F(Refusals, StringsAreClearedAndTheCodeIsTheHosts) {
  CDoc doc;
  const uint8_t on = 1;
  ASSERT_EQ(TSXSetDoNamespaces(doc.Id(), 0, &on), 0);
  ASSERT_EQ(
      support::Load(
          doc.Id(),
          "<!DOCTYPE p:root PUBLIC 'public' '/dev/null' [<!NOTATION note PUBLIC 'public' 'system'>"
          "<!ENTITY ent PUBLIC 'public' 'system' NDATA note>]>"
          "<p:root xmlns:p='urn:name' attr='value'>caf\xc3\xa9<?target data?></p:root>"),
      0);
  CText name("ent"), note("note"), encoding("ISO-8859-1"), attribute("attr");
  ASSERT_EQ(TSXSetEncoding(doc.Id(), 0, &encoding), 0);
  const TSXRefId root = doc.Root();
  const TSXRefId attr = support::Attribute(root, "attr");
  const TSXRefId text = support::FirstChild(root);
  const TSXRefId instruction = support::NextSibling(text);
  const TSXRefId type = IdOf(TSXGetDocType, doc.Id(), uint64_t{0});
  const TSXRefId entities = IdOf(TSXGetEntities, type, uint64_t{0});
  const TSXRefId entity = IdOf(TSXGetNamedItem, entities, &name);
  const TSXRefId notations = IdOf(TSXGetNotations, type, uint64_t{0});
  const TSXRefId notation = IdOf(TSXGetNamedItem, notations, &note);
  TSXNamedNodeMapClose(entities);
  TSXNamedNodeMapClose(notations);
  using CGetter = TSXStatus (*)(TSXRefId, uint64_t, HStr*);
  struct {
    const char* pName;
    CGetter getter;
    TSXRefId node;
  } const getters[] = {
      {"TSXGetNodeName", TSXGetNodeName, root},
      {"TSXGetNamespaceName", TSXGetNamespaceName, root},
      {"TSXGetBaseName", TSXGetBaseName, root},
      {"TSXGetTagName", TSXGetTagName, root},
      {"TSXGetNodeValue", TSXGetNodeValue, text},
      {"TSXGetCharacterDataData", TSXGetCharacterDataData, text},
      {"TSXName", TSXName, attr},
      {"TSXGetAttrValue", TSXGetAttrValue, attr},
      {"TSXGetTarget", TSXGetTarget, instruction},
      {"TSXGetData", TSXGetData, instruction},
      {"TSXGetName", TSXGetName, type},
      {"TSXGetDocTypePublicID", TSXGetDocTypePublicID, type},
      {"TSXGetDocTypeSystemID", TSXGetDocTypeSystemID, type},
      {"TSXGetInternalSubset", TSXGetInternalSubset, type},
      {"TSXGetNotationPublicID", TSXGetNotationPublicID, notation},
      {"TSXGetNotationSystemID", TSXGetNotationSystemID, notation},
      {"TSXGetEntityPublicId", TSXGetEntityPublicId, entity},
      {"TSXGetEntitySystemId", TSXGetEntitySystemId, entity},
      {"TSXGetNotationName", TSXGetNotationName, entity},
      {"TSXGetEncoding", TSXGetEncoding, doc.Id()},
  };
  std::vector<CRow> rows;
  for (const auto& row : getters) {
    rows.push_back({row.pName, Out::kCleared, 0, 2,
                    [&row](COuts& outs) { return row.getter(row.node, 0, &outs.m_Text); }});
  }
  rows.push_back({"TSXGetAttribute", Out::kCleared, 0, 2,
                  [&](COuts& outs) { return TSXGetAttribute(root, &attribute, &outs.m_Text); }});
  rows.push_back({"TSXGetText", Out::kCleared, 0, 2,
                  [&](COuts& outs) { return TSXGetText(root, &outs.m_Text); }});
  rows.push_back({"TSXGetSubstringData", Out::kCleared, 0, 2,
                  [&](COuts& outs) { return TSXGetSubstringData(text, 0, 4, &outs.m_Text); }});
  for (const auto write : {TSXGetXML, TSXGetXMLPP}) {
    rows.push_back({"TSXGetXML", Out::kKept, 0, 2,
                    [&doc, write](COuts& outs) { return write(doc.Id(), &outs.m_Text); }});
  }
  Sweep(rows);
}

TEST_F(Refusals, ArraysAreNullAndOweNoIds) {
  CDoc doc("<r><a x='1' y='2'/><a/></r>");
  CText a("a"), any("*"), path("//a");
  const TSXRefId root = doc.Root();
  const TSXRefId list = IdOf(TSXGetChildNodeList, root, uint64_t{0});
  const TSXRefId map = IdOf(TSXGetAttributes, support::FirstChild(root), uint64_t{0});
  const std::vector<CRow> rows{
      {"children", Out::kNoArray, 0, 0,
       [&](COuts& outs) { return TSXGetChildNodes(root, 0, &outs.m_Ids); }},
      {"by name", Out::kNoArray, 0, 0,
       [&](COuts& outs) { return TSXGetElementsByTagName(doc.Id(), &a, &outs.m_Ids); }},
      {"by namespace", Out::kNoArray, 0, 0,
       [&](COuts& outs) {
         return TSXGetElementsByTagNameNSArray(doc.Id(), &any, &any, &outs.m_Ids);
       }},
      {"below by name", Out::kNoArray, 0, 0,
       [&](COuts& outs) { return TSXElementGetElementsByTagNameArray(root, &a, &outs.m_Ids); }},
      {"below by namespace", Out::kNoArray, 0, 0,
       [&](COuts& outs) {
         return TSXElementGetElementsByTagNameNSArray(root, &any, &any, &outs.m_Ids);
       }},
      {"list", Out::kNoArray, 0, 0,
       [&](COuts& outs) { return TSXGetNodeListArray(list, 0, &outs.m_Ids); }},
      {"map", Out::kNoArray, 0, 0, [&](COuts& outs) { return TSXGetArray(map, 0, &outs.m_Ids); }},
      {"XPath", Out::kNoArray, 0, 0,
       [&](COuts& outs) {
         return XPathEvaluateContextToNodeArray(root, &path, &outs.m_Ids, &outs.m_Text);
       }},
  };
  Sweep(rows);
  TSXNodeListClose(list);
  TSXNamedNodeMapClose(map);
}

TEST_F(Refusals, LoadsAndSavesKeepTheirStatus) {
  CDoc doc, target("<r><e/></r>"), cdata("<r/>");
  const int32_t always = 1;
  ASSERT_EQ(TSXSetValidateOnLoad(doc.Id(), 0, &always), 0);
  CText bad("<!DOCTYPE r [<!ELEMENT r ANY>]><r><a/><b></r>");
  CPath path("refused.xml"), badPath("bad.xml");
  badPath.Write("<r><a/><b></r>");
  const TSXRefId element = support::FirstChild(target.Root());
  CText data("a]]>b"), expression("//[");
  ASSERT_EQ(TSXAppendChild(cdata.Root(), IdOf(TSXCreateCDATASection, cdata.Id(), &data)), 0);
  const std::vector<CRow> rows{
      {"malformed text", Out::kMessage, domErrParse, domErrParse,
       [&](COuts& outs) { return TSXLoadString(doc.Id(), &bad, &outs.m_Text, &outs.m_Exception); }},
      {"malformed element", Out::kMessage, domErrParse, domErrParse,
       [&](COuts& outs) {
         return TSXElementSetXML(element, &bad, &outs.m_Text, &outs.m_Exception);
       }},
      {"save that fails", Out::kMessage, domErrSaveFile, domErrSaveFile,
       [&](COuts& outs) { return TSXSaveFile(cdata.Id(), path.Get(), &outs.m_Text); }, true},
      {"malformed file", Out::kMessage, domErrParse, domErrParse,
       [&](COuts& outs) {
         return TSXLoadFile(doc.Id(), badPath.Get(), &outs.m_Text, &outs.m_Exception);
       },
       true},
      {"XPath message", Out::kMessage, domErrXPathParse, domErrXPathParse,
       [&](COuts& outs) {
         return XPathEvaluateContextToNode(doc.Id(), &expression, &outs.m_Id, &outs.m_Text);
       }},
  };
  Sweep(rows);
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

  static std::string Wide(size_t size) {
    std::string xml = "<r>";
    while (xml.size() < size) xml += "<a>text</a>";
    return xml + "</r>";
  }

 private:
  CPath m_Folder{"disk"};
  bool m_Mounted = false;
};

// Also when only the last bytes, which wait for the close, have no room.
TEST_F(Disk, AFullDiskIsAFailedSaveAndKeepsAPrefix) {
  for (const size_t size : {kSize / 2, 4 * kSize}) {
    SCOPED_TRACE(size);
    CDoc doc(Wide(size));
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
    if (size < kSize) {
      EXPECT_EQ(path.Read(), doc.Xml());
    }
  }
}

TEST_F(Disk, WhatCannotBeOpenedStaysAsItIs) {
  CDoc doc("<new/>");
  CPath file(On("file.xml")), folder(On("folder")), none(On("none/file.xml"));
  file.Write("<old/>");
  std::filesystem::create_directory(folder.Name());
  ExpectFailure(doc.Id(), folder);
  ExpectFailure(doc.Id(), none);
  ASSERT_EQ(Mount(MS_REMOUNT | MS_RDONLY), 0);
  ExpectFailure(doc.Id(), file);
  EXPECT_EQ(file.Read(), "<old/>");
  ASSERT_EQ(Mount(MS_REMOUNT), 0);
  CText errorText;
  EXPECT_EQ(TSXSaveFile(doc.Id(), file.Get(), &errorText), 0);
}

// -- Files that change ------------------------------------------------------------

TSXStatus LoadFile(const CDoc& doc, const CPath& path, std::string* pErrors = nullptr) {
  CText errors, exception;
  const TSXStatus status = TSXLoadFile(doc.Id(), path.Get(), &errors, &exception);
  if (pErrors != nullptr) *pErrors = errors.Str();
  EXPECT_TRUE(exception.IsNull());
  return status;
}

using xercesc::FileHandle;
using xercesc::MemoryManager;

// The XML library's way to files, with something that happens at the second read.
class CMeddling final : public xercesc::XMLFileMgr {
 public:
  explicit CMeddling(std::function<void()> meddle)
      : m_pReal(xercesc::XMLPlatformUtils::fgFileMgr), m_Meddle(std::move(meddle)) {
    xercesc::XMLPlatformUtils::fgFileMgr = this;
  }
  ~CMeddling() override { xercesc::XMLPlatformUtils::fgFileMgr = m_pReal; }

  XMLSize_t fileRead(FileHandle file, XMLSize_t most, XMLByte* pBytes,
                     MemoryManager* pMemory) override {
    if (++m_Reads == 2) m_Meddle();
    return m_pReal->fileRead(file, most, pBytes, pMemory);
  }
  int Reads() const { return m_Reads; }

  FileHandle fileOpen(const XMLCh* pPath, bool toWrite, MemoryManager* pMemory) override {
    return m_pReal->fileOpen(pPath, toWrite, pMemory);
  }
  FileHandle fileOpen(const char* pPath, bool toWrite, MemoryManager* pMemory) override {
    return m_pReal->fileOpen(pPath, toWrite, pMemory);
  }
  FileHandle openStdIn(MemoryManager* pMemory) override { return m_pReal->openStdIn(pMemory); }
  void fileClose(FileHandle file, MemoryManager* pMemory) override {
    m_pReal->fileClose(file, pMemory);
  }
  void fileReset(FileHandle file, MemoryManager* pMemory) override {
    m_pReal->fileReset(file, pMemory);
  }
  XMLFilePos curPos(FileHandle file, MemoryManager* pMemory) override {
    return m_pReal->curPos(file, pMemory);
  }
  XMLFilePos fileSize(FileHandle file, MemoryManager* pMemory) override {
    return m_pReal->fileSize(file, pMemory);
  }
  void fileWrite(FileHandle file, XMLSize_t count, const XMLByte* pBytes,
                 MemoryManager* pMemory) override {
    m_pReal->fileWrite(file, count, pBytes, pMemory);
  }
  XMLCh* getFullPath(const XMLCh* pPath, MemoryManager* pMemory) override {
    return m_pReal->getFullPath(pPath, pMemory);
  }
  XMLCh* getCurrentDirectory(MemoryManager* pMemory) override {
    return m_pReal->getCurrentDirectory(pMemory);
  }
  bool isRelative(const XMLCh* pPath, MemoryManager* pMemory) override {
    return m_pReal->isRelative(pPath, pMemory);
  }

 private:
  xercesc::XMLFileMgr* m_pReal;
  std::function<void()> m_Meddle;
  int m_Reads = 0;
};

class Changing : public support::CLedgerTest {};

TEST_F(Changing, FilesThatChangeWhileTheyAreReadAnswer) {
  CPath path("changing.xml"), other("other.xml");
  const std::string whole = "<r>" + std::string(300'000, 'x') + "</r>";
  const auto append = [&](const char* pText) {
    std::ofstream(path.Name(), std::ios::app) << pText;
  };
  struct {
    const char* pName;
    std::function<void()> meddle;
    const char* pMessage;  // null for a load that goes well
  } const rows[] = {
      {"is removed", [&] { std::filesystem::remove(path.Name()); }, nullptr},
      {"is replaced",
       [&] {
         other.Write("<other/>");
         std::filesystem::rename(other.Name(), path.Name());
       },
       nullptr},
      {"is cut", [&] { std::filesystem::resize_file(path.Name(), 1000); }, "ended before"},
      {"is emptied", [&] { path.Write(""); }, "ended before"},
      {"grows by a comment", [&] { append("<!-- more -->"); }, nullptr},
      {"grows by an element", [&] { append("<more/>"); },
       "comment or processing instruction expected"},
      {"cannot be read",
       [&] {
         throw xercesc::IOException(__FILE__, __LINE__,
                                    xercesc::XMLExcepts::File_CouldNotReadFromFile);
       },
       "unable to read data from file"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.pName);
    path.Write(whole);
    CDoc doc("<old/>");
    std::string errors;
    {
      const CMeddling meddling(row.meddle);
      EXPECT_EQ(LoadFile(doc, path, &errors), row.pMessage == nullptr ? 0 : domErrParse);
      EXPECT_GE(meddling.Reads(), 2);
    }
    EXPECT_NE(errors.find(row.pMessage == nullptr ? "" : row.pMessage), std::string::npos)
        << errors;
    EXPECT_EQ(support::Name(doc.Root()), "r") << "what was read before";
    path.Write("<again/>");
    EXPECT_EQ(LoadFile(doc, path), 0);
  }
}

TEST_F(Changing, ADocumentIsSavedToTheFileItCameFrom) {
  CPath path("itself.xml");
  path.Write("<r><a>" + std::string(200'000, 'x') + "</a><b/></r>");
  CDoc doc;
  for (const auto save : {TSXSaveFile, TSXSaveFilePP, TSXSaveFile}) {
    ASSERT_EQ(LoadFile(doc, path), 0);
    const TSXRefId root = doc.Root();
    ASSERT_EQ(TSXAppendChild(root, support::Create(doc.Id(), "more")), 0);
    CText errorText;
    ASSERT_EQ(save(doc.Id(), path.Get(), &errorText), 0);
  }
  EXPECT_EQ(path.Read(), doc.Xml());
  CText more("more");
  CIds added;
  EXPECT_EQ(TSXGetElementsByTagName(doc.Id(), &more, &added), 0);
  EXPECT_EQ(added.Get().size(), 3u);
}

}  // namespace
