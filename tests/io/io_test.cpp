// What no row of answers can say of loads and writers: sizes, memory, what is thrown.
#include <filesystem>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/RuntimeException.hpp>

#include "document/find.h"
#include "support/path.h"
#include "support/sanitizer.h"

namespace {

using support::CDoc;
using support::CPlace;
using support::CText;
using support::IdOf;
using support::TextOf;

class Io : public support::CLedgerTest {};

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

// At the sizes where the memory that is written to grows.
TEST_F(Io, WritesTextsOfAllSizes) {
  for (const size_t size : {1015u, 1016u, 1017u, 1018u, 2045u, 2046u, 2047u, 5000000u}) {
    const std::string xml = "<r>" + std::string(size, 'x') + "</r>";
    const CDoc large(xml);
    EXPECT_TRUE(TextOf(TSXGetXML, large.Root()) == xml) << size;
  }
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

// The XML library hands on a pair of units in two blocks, and begins a block with a shift.
TEST_F(Io, PositionsAreRightBehindManyBlocks) {
  for (const auto& [encoding, character] :
       {std::pair("GB18030", "\x94\x39\xFC\x36"), std::pair("ISO-2022-JP", "\x1B$BF|\x1B(Bx")}) {
    for (const std::string first : {"", "y"}) {
      const std::string before = std::string("<?xml version='1.0' encoding='") + encoding +
                                 "'?><r>" + first + support::Repeated(character, 10000);
      CDoc doc;
      TSXSetKeepPositions(doc.Id(), 0, &support::kOn);
      EXPECT_EQ(support::Load(doc.Id(), before + "<b/></r>"), 0);
      const TSXRefId text = support::FirstChild(doc.Root()), b = support::NextSibling(text);
      int32_t line = 0, column = 0;
      int64_t begin = 0, end = 0;
      EXPECT_EQ(TSXGetSourcePosition(b, &line, &column, &begin, &end), 0);
      EXPECT_EQ(begin, static_cast<int64_t>(before.size())) << encoding << first;
      TSXNodeClose(text);
      TSXNodeClose(b);
    }
  }
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

// -- Messages -----------------------------------------------------------------

TEST_F(Io, ReporterKeepsExactLines) {
  DOMTreeErrorReporter reporter;
  const xercesc::SAXParseException exception(u"b\u00e9", u"", u"", static_cast<XMLFileLoc>(-1), 7);
  reporter.warning(exception);
  EXPECT_EQ(reporter.getEHMsg(), nullptr);
  reporter.error(exception);
  reporter.fatalError(exception);
  reporter.resetErrors();
  reporter.error(exception);
  CText text;
  EXPECT_EQ(domCopyHStr(reporter.getEHMsg(), &text), 0);
  // Contract: a fatal error's line has no line break.
  EXPECT_EQ(text.Str(),
            "Line -1, Column 7,  Message: b\xc3\xa9\r\nLine -1, Column 7,  Message: b\xc3\xa9"
            "Line -1, Column 7,  Message: b\xc3\xa9\r\n");
}

// The reporter alone still knows what the writer said when a save fails.
TEST_F(Io, ReporterKeepsTheWritersLastProblem) {
  CDoc doc("<r/>");
  CText data("a--b"), errorText;
  const support::CPath path("comment.xml");
  ASSERT_EQ(TSXAppendChild(doc.Root(), IdOf(TSXCreateComment, doc.Id(), &data)), 0);
  EXPECT_EQ(TSXSaveFile(doc.Id(), path.Get(), &errorText), domErrSaveFile);
  const DOMTreeErrorReporter& reporter = *FindObject<CXercesDOM>(doc.Id())->m_pErrorReporter;
  EXPECT_EQ(reporter.getDOMEHCode(), xercesc::DOMError::DOM_SEVERITY_FATAL_ERROR);
  EXPECT_STREQ(reporter.getDOMError(), "a comment has two hyphens, or one at its end");
}

class CSilentReporter : public DOMTreeErrorReporter {
 public:
  bool handleError(const xercesc::DOMError&) override { return false; }
};

TEST_F(Io, AWriterThatGivesUpWithoutAnErrorLeavesOnlyTheText) {
  CDoc doc("<r/>");
  CText encoding("x-nobody"), errorText;
  const support::CPath path("silent.xml");
  ASSERT_EQ(TSXSetEncoding(doc.Id(), 0, &encoding), 0);
  CSilentReporter silent;
  auto* pDom = FindObject<CXercesDOM>(doc.Id());
  DOMTreeErrorReporter* pOwn = std::exchange(pDom->m_pErrorReporter, &silent);
  EXPECT_EQ(TSXSaveFile(doc.Id(), path.Get(), &errorText), 0);
  EXPECT_EQ(errorText.Str(), "Failed to write file");
  pDom->m_pErrorReporter = pOwn;
}

// What no text makes the parser throw is thrown by its error handler.
class CThrower : public xercesc::ErrorHandler {
 public:
  using CRaise = void (*)(const xercesc::SAXParseException&);
  explicit CThrower(CRaise pRaise) : m_pRaise(pRaise) {}
  void warning(const xercesc::SAXParseException&) override {}
  void error(const xercesc::SAXParseException&) override {}
  void fatalError(const xercesc::SAXParseException& exception) override { m_pRaise(exception); }
  void resetErrors() override {}

 private:
  CRaise m_pRaise;
};

TEST_F(Io, EachExceptionHasItsTextAndStatus) {
  using xercesc::DOMException;
  using xercesc::RuntimeException;
  const char* pIndex = "index is beyond maximum attribute index";
  const char* pMissing = "attempt is made to reference a node in a context where it does not exist";
  struct {
    CThrower thrower;
    TSXStatus status;
    const char* texts[3];  // of a file, a string, an element
  } rows[] = {
      {CThrower([](const auto&) {
         throw RuntimeException(__FILE__, __LINE__, xercesc::XMLExcepts::AttrList_BadIndex);
       }),
       domErrParse,
       {pIndex, pIndex, pIndex}},
      {CThrower([](const auto&) { throw DOMException(DOMException::NOT_FOUND_ERR); }),
       domErrParse,
       {pMissing, pMissing, pMissing}},
      {CThrower([](const auto& exception) { throw exception; }),
       domErrParse,
       {"SAXParseException caught while loading file",
        "SAXParseException caught while loading XML string",
        "SAXParseException caught while seting element XML."}},
      {CThrower([](const auto&) { throw 1; }),
       domErrUnexpected,
       {"Error occurred while loading file.", "Error occurred while loading XML string.",
        "Error occurred while seting element XML."}},
  };
  CDoc doc("<r><a/></r>");
  const TSXRefId a = support::FirstChild(doc.Root());
  auto* pDom = FindObject<CXercesDOM>(doc.Id());
  const support::CPlace nothing("/dev/null");
  for (auto& row : rows) {
    pDom->m_pParser->setErrorHandler(&row.thrower);
    CText xml("<r>"), errors("kept"), texts[3];
    EXPECT_EQ(TSXLoadFile(doc.Id(), nothing.Get(), &errors, &texts[0]), row.status);
    EXPECT_EQ(TSXLoadString(doc.Id(), &xml, &errors, &texts[1]), row.status);
    EXPECT_EQ(TSXElementSetXML(a, &xml, &errors, &texts[2]), row.status);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(texts[i].Str(), row.texts[i]);
    EXPECT_EQ(errors.Str(), "kept");
    EXPECT_EQ(TextOf(TSXGetXML, doc.Root()), "<r><a/></r>");
  }
  pDom->m_pParser->setErrorHandler(pDom->m_pErrorReporter);
  EXPECT_EQ(support::Load(doc.Id(), "<after/>"), 0) << "the parser is none the worse";
}

// The working folder is gone, so that the parser cannot even tell where the file is:
// it must not come back with the document of its last parse.
TEST_F(Io, AParseThatNeverBeginsBringsNoDocument) {
  const auto home = std::filesystem::current_path();
  CDoc doc("<r><a/></r>");
  {
    const support::CPath gone("gone");
    std::filesystem::create_directory(gone.Name());
    std::filesystem::current_path(gone.Name());
  }
  for (const char* pTree : {"<r><a/></r>", "<r><b/></r>"}) {
    std::string errors;
    EXPECT_EQ(support::LoadFile(doc.Id(), support::CPlace("relative.xml").Get(), &errors),
              domErrParse);
    EXPECT_EQ(errors, "Line 0, Column 0,  Message: unable to determine file base pathname");
    EXPECT_EQ(TextOf(TSXGetXML, doc.Root()), pTree);
    CText xml("<b/>"), text;
    EXPECT_EQ(TSXElementSetXML(support::FirstChild(doc.Root()), &xml, &text, &text), 0);
  }
  std::filesystem::current_path(home);
}

}  // namespace
