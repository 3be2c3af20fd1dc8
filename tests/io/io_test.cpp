// From text and files to trees and back.
#include <filesystem>

#include "support/path.h"
#include "support/sanitizer.h"

namespace {

using support::CDoc;
using support::CPath;
using support::CPlace;
using support::CText;
using support::IdOf;
using support::LoadFile;
using support::TextOf;

class Io : public support::CLedgerTest {};

TEST_F(Io, LoadReplacesTheTreeAndWithdrawsItsIds) {
  CDoc doc("<r a='1'><x/></r>");
  const TSXRefId root = doc.Root();
  const TSXRefId x = support::FirstChild(root), a = support::Attribute(root, "a");
  const TSXRefId loose = support::Create(doc.Id(), "loose");
  ASSERT_EQ(support::Load(doc.Id(), "<s><y/></s>"), 0);
  for (const TSXRefId dead : {root, x, a, loose}) EXPECT_FALSE(support::Resolves(dead));
  EXPECT_EQ(support::Name(doc.Root()), "s");
  EXPECT_EQ(g_NodeDomMap.EntryCount(), 1u) << "only the document node is left";
}

// The source of an import is entered against the importing document: the entry must
// go with the source's own tree.
TEST_F(Io, EntriesOfImportedSourcesGoWithTheirTree) {
  CDoc target("<t/>");
  {
    CDoc source("<s/>");
    IdOf(TSXImportNode, target.Id(), source.Root(), &support::kDeep);
    EXPECT_EQ(g_NodeDomMap.EntryCount(), 3u);
    EXPECT_EQ(support::Load(source.Id(), "<again/>"), 0);
    EXPECT_EQ(g_NodeDomMap.EntryCount(), 2u);
    IdOf(TSXImportNode, target.Id(), source.Root(), &support::kDeep);
  }
  EXPECT_EQ(g_NodeDomMap.EntryCount(), 1u);
}

TEST_F(Io, StringErrorsAreReportedOnceAndThenCleared) {
  CDoc doc("<old/>");
  std::string errors, exception;
  EXPECT_EQ(support::Load(doc.Id(), "<r><a></r>", &errors, &exception), domErrParse);
  EXPECT_EQ(errors, "Line 1, Column 9,  Message: expected end of tag 'a'");
  EXPECT_EQ(exception, "");
  EXPECT_EQ(support::Name(doc.Root()), "r") << "the part before the error is the document";
  EXPECT_EQ(support::Load(doc.Id(), "", &errors), domErrParse);
  EXPECT_EQ(doc.Root(), 0u);
  CText text("<good/>"), parseErrors("stale"), untouched("untouched");
  EXPECT_EQ(TSXLoadString(doc.Id(), &text, &parseErrors, &untouched), 0);
  EXPECT_TRUE(parseErrors.IsNull());
  EXPECT_EQ(untouched.Str(), "untouched");
  using namespace std::string_literals;
  EXPECT_EQ(support::Load(doc.Id(), "<cut/>\0<garbage"s), 0);
}

TEST_F(Io, FilesInThreeEncodingsComeBackAsTheyWere) {
  std::string utf16 = "\xff\xfe";
  for (const char c : std::string("<?xml version='1.0' encoding='UTF-16'?><r>caf\xe9</r>")) {
    utf16 += {c, '\0'};
  }
  struct {
    std::string bytes, encoding, written;
  } const rows[] = {
      {"<?xml version='1.0' encoding='UTF-8'?><r>caf\xc3\xa9</r>", "UTF-8", "caf\xc3\xa9</r>"},
      {"<?xml version='1.0' encoding='ISO-8859-1'?><r>caf\xe9</r>", "ISO-8859-1", "caf\xe9</r>"},
      {utf16, "UTF-16", std::string("c\0a\0f\0\xe9\0<\0/\0r\0>\0", 16)},
      {"<r>caf\xc3\xa9</r>", "", "caf\xc3\xa9</r>"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.encoding);
    CPath path("in.xml"), out("out.xml");
    path.Write(row.bytes);
    CDoc doc;
    ASSERT_EQ(LoadFile(doc.Id(), path.Get()), 0);
    EXPECT_EQ(TextOf(TSXGetEncoding, doc.Id(), uint64_t{0}), row.encoding);
    EXPECT_EQ(TextOf(TSXGetNodeValue, support::FirstChild(doc.Root()), uint64_t{0}), "caf\xc3\xa9");
    const std::string text = doc.Xml();
    EXPECT_TRUE(text.ends_with(row.written)) << text;
    CText errorText("untouched");
    ASSERT_EQ(TSXSaveFile(doc.Id(), out.Get(), &errorText), 0);
    EXPECT_EQ(errorText.Str(), "untouched");
    EXPECT_EQ(out.Read(), text);
  }
}

TEST_F(Io, FilesThatCannotBeReadLeaveTheOldTree) {
  CDoc doc("<old/>");
  CPath missing("missing");
  for (const char* pName : {missing.Name().c_str(), "/"}) {
    std::string errors;
    EXPECT_EQ(LoadFile(doc.Id(), CPlace(pName).Get(), &errors), domErrParse);
    EXPECT_TRUE(errors.starts_with("Line 0, Column 0,  Message: unable to ")) << errors;
    EXPECT_EQ(support::Name(doc.Root()), "old");
  }
  CText errorText("untouched");
  const CPlace empty("");
  for (HostPath path : {empty.Get(), HostPath{}}) {
    EXPECT_EQ(LoadFile(doc.Id(), path), domErrPathLoadFile);
    EXPECT_EQ(TSXSaveFile(doc.Id(), path, &errorText), domErrPathSaveFile);
    EXPECT_EQ(errorText.Str(), "untouched");
  }
}

TEST_F(Io, WritesNodesAlone) {
  CDoc doc("<?xml version='1.0' encoding='ISO-8859-1'?><!--c--><r><a>\xe9</a><b/></r>");
  const TSXRefId root = doc.Root(), bare = support::Parent(root);
  EXPECT_EQ(TextOf(TSXGetXML, support::FirstChild(root)), "<a>\xe9</a>") << "as the document says";
  EXPECT_EQ(TextOf(TSXGetXML, support::FirstChild(doc.Id())), "<!--c-->");
  EXPECT_EQ(TextOf(TSXGetXML, bare), doc.Xml());
  EXPECT_EQ(TextOf(TSXGetXMLPP, root), "\n<r>\n\n  <a>\xe9</a>\n\n  <b/>\n\n</r>");
  TSXNodeClose(bare);
  // At the sizes where the memory that is written to grows.
  for (const size_t size : {1015u, 1016u, 1017u, 1018u, 2045u, 2046u, 2047u, 5000000u}) {
    const std::string xml = "<r>" + std::string(size, 'x') + "</r>";
    const CDoc large(xml);
    EXPECT_TRUE(TextOf(TSXGetXML, large.Root()) == xml) << size;
  }
}

TEST_F(Io, EncodingNamesAreCheckedByTheirForm) {
  CDoc doc("<r>\xc3\xa9</r>");
  const auto set = [&](const char* pName) {
    CText name(pName);
    return TSXSetEncoding(doc.Id(), 0, &name);
  };
  EXPECT_EQ(set("ISO-8859-1"), 0);
  for (const char* pBad : {"8bit", "", "UTF 8", "latin\xc3\xa9"}) {
    EXPECT_EQ(set(pBad), domErrInvalidCharacter) << pBad;
    EXPECT_EQ(TextOf(TSXGetEncoding, doc.Id(), uint64_t{0}), "ISO-8859-1");
  }
  EXPECT_TRUE(doc.Xml().ends_with("\xe9</r>"));
  // A name that nobody knows fails only when a writer uses it.
  ASSERT_EQ(set("x-nobody"), 0);
  CText kept("kept");
  EXPECT_EQ(TSXGetXML(doc.Id(), &kept), domErrInvalidCharacter);
  EXPECT_EQ(kept.Str(), "kept");
  CPath path("encoding.xml");
  CText errorText;
  path.Write("old");
  EXPECT_EQ(TSXSaveFile(doc.Id(), path.Get(), &errorText), domErrSaveFile);
  EXPECT_EQ(errorText.Str(), "Failed to write file");
  EXPECT_EQ(path.Read(), "");
}

TEST_F(Io, EveryFailedSaveLeavesTheSameText) {
  CDoc plain("<r>text</r>"), doc("<r/>");
  // The writer warns of "]]>" inside a CDATA section, and the reporter stops it.
  CText data("a]]>b");
  ASSERT_EQ(TSXAppendChild(doc.Root(), IdOf(TSXCreateCDATASection, doc.Id(), &data)), 0);
  CPath path("cdata.xml");
  const std::pair<const CDoc*, const char*> rows[] = {
      {&doc, path.Name().c_str()},
      {&plain, "/no/such/folder/file.xml"},
      {&plain, "/dev/full"},  // shows only when the target flushes
  };
  for (const auto& [pDoc, pName] : rows) {
    for (const auto save : {TSXSaveFile, TSXSaveFilePP}) {
      CText errorText;
      EXPECT_EQ(save(pDoc->Id(), CPlace(pName).Get(), &errorText), domErrSaveFile) << pName;
      EXPECT_EQ(errorText.Str(), "Failed to write file");
    }
  }
  EXPECT_TRUE(path.Read().ends_with("<r>")) << path.Read();
}

TEST_F(Io, WideTrees) {
  constexpr int kChildren = 100000;
  CDoc doc("<r>" + support::Repeated("<a/>", kChildren) + "</r>");
  int count = 0;
  for (TSXRefId id = support::FirstChild(doc.Root()); id != 0; ++count) {
    const TSXRefId next = support::NextSibling(id);
    TSXNodeClose(id);
    id = next;
  }
  EXPECT_EQ(count, kChildren);
}

// A sanitizer is slow, but counts every byte: it needs fewer turns. The document keeps
// some 250 bytes a turn, as it does without us: the DOM does not use the memory of
// attribute maps again.
TEST_F(Io, TenThousandLoadsAndReplacementsKeepMemoryFlat) {
  constexpr int kWarming = support::kSanitized ? 50 : 2000;
  constexpr int kTurns = support::kSanitized ? 400 : 8000;
  constexpr long kMostGrowth = support::kSanitized ? 150'000 : 20'000'000;
  const auto turn = [](TSXRefId document, TSXRefId element) {
    CText xml("<e a='1'><b>text</b></e>"), errors, exception;
    EXPECT_EQ(TSXElementSetXML(element, &xml, &errors, &exception), 0);
    EXPECT_EQ(support::Load(document, "<r><e/></r>"), 0);
  };
  CDoc kept("<r><e/></r>"), loaded;
  const TSXRefId element = support::FirstChild(kept.Root());
  for (int i = 0; i < kWarming; ++i) turn(loaded.Id(), element);
  const long before = support::UsedBytes();
  for (int i = 0; i < kTurns; ++i) turn(loaded.Id(), element);
  EXPECT_LT(support::UsedBytes() - before, kMostGrowth) << "bytes";
}

}  // namespace
