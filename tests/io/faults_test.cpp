// What fails below the library: disks and files.
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
using support::CPath;
using support::CText;
using support::LoadFile;

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

// The XML library's way to files, with something that happens between two reads, once unless
// it throws.
class CMeddling final : public xercesc::PosixFileMgr {
 public:
  explicit CMeddling(std::function<void()> meddle)
      : m_pReal(xercesc::XMLPlatformUtils::fgFileMgr), m_Meddle(std::move(meddle)) {
    xercesc::XMLPlatformUtils::fgFileMgr = this;
  }
  ~CMeddling() override { xercesc::XMLPlatformUtils::fgFileMgr = m_pReal; }

  XMLSize_t fileRead(xercesc::FileHandle file, XMLSize_t most, XMLByte* pBytes,
                     xercesc::MemoryManager* pMemory) override {
    ++m_Reads;
    if (!m_HasMeddled && curPos(file, pMemory) != 0) {
      m_Meddle();
      m_HasMeddled = true;
    }
    return PosixFileMgr::fileRead(file, most, pBytes, pMemory);
  }
  int Reads() const { return m_Reads; }

 private:
  xercesc::XMLFileMgr* m_pReal;
  std::function<void()> m_Meddle;
  int m_Reads = 0;
  bool m_HasMeddled = false;
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
    const char* pRoot = "r";  // of what was read
  } const rows[] = {
      {"is removed", nullptr, [&] { std::filesystem::remove(path.Name()); }},
      {"is replaced", nullptr,
       [&] {
         other.Write("<other/>");
         std::filesystem::rename(other.Name(), path.Name());
       }},
      {"is cut", "ended before", [&] { std::filesystem::resize_file(path.Name(), 1000); }},
      {"is written anew", "ended before", [&] { path.Write("<s>"); }, "s"},
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
    EXPECT_EQ(support::Name(doc.Root()), row.pRoot);
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
