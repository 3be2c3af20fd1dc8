// What a document may read beside itself: every way to name a file or an address, from
// every place where a document can name one, in every mode.
#include <fcntl.h>
#include <sys/stat.h>

#include <atomic>
#include <set>
#include <thread>

#include "io/access_rows.h"
#include "support/outside.h"
#include "support/path.h"

namespace {

using support::CDoc;
using support::CPath;
using support::CText;

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

// Two folders beside each other: the document's, and one that is none of its business.
class Access : public support::CLedgerTest {
 protected:
  Access() {
    std::filesystem::create_directories(m_Folder.Name() + "/sub");
    std::filesystem::create_directory(m_Outside.Name());
    for (const std::string& folder : {Dir(), Dir() + "/sub", m_Outside.Name()}) {
      for (const std::string ending : {".txt", ".xsd"}) Write(folder + "/f" + ending, Text(ending));
      m_Watch.Add(folder);
    }
    Write(Dir() + "/nested.txt", "&e;");
    mkfifo((Dir() + "/pipe").c_str(), 0600);
    Link("pipe", "link-pipe");
    Link(m_Outside.Name(), "link-folder");
    Link("none", "dangling");
    for (const char* pEnding : {".txt", ".xsd"}) {
      Link(Dir() + "/f" + pEnding, "link-in" + std::string(pEnding));
      Link("../" + Base(m_Outside) + "/f" + pEnding, "link-out" + std::string(pEnding));
    }
  }
  ~Access() override {
    std::filesystem::remove_all(m_Folder.Name());
    std::filesystem::remove_all(m_Outside.Name());
  }

  static void Write(const std::string& name, std::string_view text) { std::ofstream(name) << text; }
  static std::string Text(const std::string& ending) {
    return ending == ".txt" ? "<!--read-->" : XSD "><s:element name='t'/></s:schema>";
  }
  static std::string Base(const CPath& path) {
    return std::filesystem::path(path.Name()).filename();
  }
  const std::string& Dir() const { return m_Folder.Name(); }
  void Link(const std::string& target, const std::string& name) const {
    std::filesystem::create_symlink(target, Dir() + "/" + name);
  }
  std::string Filled(std::string text, const std::string& ending) const {
    if (text == "link-in" || text == "link-out") text += ending;
    const std::pair<const char*, std::string> fills[] = {
        {"{F}", "f" + ending},   {"{D}", Dir()},           {"{O}", m_Outside.Name()},
        {"{d}", Base(m_Folder)}, {"{o}", Base(m_Outside)}, {"{S}", m_Server.Host()}};
    for (const auto& [from, to] : fills) text = Replaced(std::move(text), from, to);
    return text;
  }

  static void Prepare(const CDoc& doc, int32_t mode, int32_t scheme) {
    EXPECT_EQ(TSXSetExternalAccess(doc.Id(), 0, &mode), 0);
    EXPECT_EQ(TSXSetValidateOnLoad(doc.Id(), 0, &scheme), 0);
    EXPECT_EQ(TSXSetDoNamespaces(doc.Id(), 0, &support::kOn), 0);
    EXPECT_EQ(TSXSetDoSchema(doc.Id(), 0, &support::kOn), 0);
  }
  // What the one who reads gets, and what happens while he does.
  struct CTry {
    TSXStatus m_Status = 0;
    std::string m_Errors;
    bool m_WasAsked = false;
    std::set<std::string> m_Opened;
  };
  // Waits for a reader.
  void WriteToPipe(const std::string& text, const std::atomic<bool>& isOver) const {
    int pipe = -1;
    while (pipe < 0 && !isOver) pipe = open((Dir() + "/pipe").c_str(), O_WRONLY | O_NONBLOCK);
    if (pipe < 0) return;
    EXPECT_EQ(write(pipe, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    close(pipe);
  }
  // With someone at the other end of the pipe or of the line where that is expected.
  CTry Try(const CDoc& doc, const CPath& document, const std::string& ending, bool hasPipe,
           bool hasServer) const {
    CTry result;
    std::atomic<bool> isOver = false;
    m_Watch.Opened();
    std::thread other([&] {
      if (hasPipe) WriteToPipe(Text(ending), isOver);
      if (hasServer) result.m_WasAsked = m_Server.AnswerUntil(isOver, Text(ending));
    });
    result.m_Status = support::LoadFile(doc.Id(), document.Get(), &result.m_Errors);
    result.m_Opened = m_Watch.Opened();
    isOver = true;
    other.join();
    result.m_WasAsked = m_Server.WasAsked() || result.m_WasAsked;
    return result;
  }

  // Read, refused by that name, or missing.
  static char Outcome(TSXStatus status, const std::string& errors, const std::string& name) {
    if (status == 0) return 'r';
    EXPECT_EQ(status, domErrParse);
    const size_t refused = errors.find("access to '" + name + "' was refused: ");
    if (refused == std::string::npos) return 'm';
    EXPECT_EQ(errors.find("\r\n", refused), std::string::npos) << "the load goes on\n" << errors;
    return 'x';
  }

  const support::CServer m_Server;
  const support::CFolderWatch m_Watch;
  const CPath m_Folder{"access"}, m_Outside{"outside"};
};

TEST_F(Access, EveryNameInEveryPlaceAndMode) {
  const CPath document(Dir() + "/document.xml");
  for (const CPlace& place : kPlaces) {
    const bool isSchema = std::string_view(place.pEnding) == ".xsd";
    for (const CName& row : kNames) {
      const std::string name = Filled(row.pName, place.pEnding);
      const std::string xml =
          Replaced(Replaced(place.pDocument, "{N}", name), "{S}", m_Server.Host());
      document.Write(xml);
      Write(Dir() + "/main.xsd", Replaced(place.pSchema, "{N}", name));
      for (const int32_t mode : {0, 1, 2, 3}) {
        const char expected = row.pModes[mode];
        SCOPED_TRACE(std::string(place.pWhat) + ", " + name + ", mode " + std::to_string(mode));
        CDoc doc;
        Prepare(doc, mode, place.scheme);
        const bool hasPipe = expected == 'r' && name.ends_with("pipe");
        const bool hasServer = name.find("://") != std::string::npos;
        const CTry result = Try(doc, document, place.pEnding, hasPipe, hasServer);
        // What is on the way to the name is refused first.
        const bool isNested = mode == 3 && xml.find("nested") != std::string::npos;
        const bool isBehind = mode == 3 && *place.pSchema != 0;
        const char outcome = Outcome(result.m_Status, result.m_Errors,
                                     isNested   ? "nested.txt"
                                     : isBehind ? "main.xsd"
                                                : name);
        // Of a schema that is missing or empty the parser only warns, if at all.
        const bool isLost = expected == 'm' || (expected == 'e' && isSchema);
        const bool isWarning = isLost && outcome == 'r' && isSchema;
        const char wanted = isLost ? 'm' : expected == 'x' ? 'x' : 'r';
        EXPECT_TRUE(isWarning || outcome == wanted) << outcome << result.m_Errors;
        EXPECT_TRUE(expected == 'm' || result.m_WasAsked == (expected == 's'));
        EXPECT_FALSE(mode != 0 && result.m_WasAsked);
        for (const std::string& opened : result.m_Opened) {
          const bool isOfTest =
              opened == "document.xml" || opened == "main.xsd" || opened == "nested.txt";
          EXPECT_TRUE(expected != 'x' || isOfTest) << "opened " << opened;
          EXPECT_TRUE(mode != 3 || opened == "document.xml") << "opened " << opened;
        }
      }
    }
  }
}

TEST_F(Access, ATextHasNoFolder) {
  for (const CPlace& place : kPlaces) {
    if (*place.pSchema != 0 ||
        std::string_view(place.pDocument).find("nested") != std::string::npos)
      continue;
    const std::string name = Dir() + "/f" + place.pEnding;
    const std::string xml = Replaced(place.pDocument, "{N}", name);
    for (const int32_t mode : {1, 2, 3}) {
      SCOPED_TRACE(std::string(place.pWhat) + ", mode " + std::to_string(mode));
      const char expected = mode == 1 ? 'r' : 'x';
      CDoc doc;
      EXPECT_EQ(support::Load(doc.Id(), "<old><new/></old>"), 0);
      Prepare(doc, mode, place.scheme);
      const TSXRefId element = support::FirstChild(doc.Root());
      CText text(xml), lines, exception;
      const TSXStatus replaced = TSXElementSetXML(element, &text, &lines, &exception);
      EXPECT_EQ(Outcome(replaced, lines.Str(), name), expected) << lines.Str();
      std::string errors;
      const TSXStatus status = support::Load(doc.Id(), xml, &errors);
      EXPECT_EQ(Outcome(status, errors, name), expected) << errors;
    }
  }
}

// Without validation a document type is not needed, and it is no error that it is refused.
// Schemas are never validated by theirs.
TEST_F(Access, ADocumentTypeThatNobodyNeedsIsPassedOver) {
  const std::string type = "<!DOCTYPE t SYSTEM 'http://" + m_Server.Host() + "/t.dtd'";
  const CPath document(Dir() + "/document.xml");
  document.Write("<t " XSI "i:noNamespaceSchemaLocation='main.xsd'/>");
  for (const std::string& name :
       {"http://" + m_Server.Host() + "/t.dtd", m_Outside.Name() + "/f.txt"}) {
    Write(Dir() + "/main.xsd", "<!DOCTYPE s:schema SYSTEM '" + name + "'>" + Text(".xsd"));
    CDoc doc;
    Prepare(doc, 2, 1);
    const CTry result = Try(doc, document, ".txt", false, true);
    EXPECT_EQ(result.m_Status, 0) << result.m_Errors;
    EXPECT_FALSE(result.m_WasAsked);
    EXPECT_EQ(result.m_Opened, (std::set<std::string>{"document.xml", "main.xsd"}));
  }
  for (const std::string& xml : {type + "><t/>", type + " [<!ATTLIST t a CDATA 'v'>]><t/>"}) {
    for (const int32_t mode : {1, 2, 3}) {
      for (const int32_t scheme : {0, 1, 2}) {
        CDoc doc;
        Prepare(doc, mode, scheme);
        std::string errors;
        const TSXStatus status = support::Load(doc.Id(), xml, &errors);
        EXPECT_EQ(status, scheme == 0 ? 0 : domErrParse) << xml << errors;
        EXPECT_EQ(errors.find("was refused") == std::string::npos, scheme == 0) << errors;
        EXPECT_FALSE(m_Server.WasAsked());
      }
    }
  }
}

TEST_F(Access, TheMessageIsOneLineHoweverLongTheName) {
  const std::string start = "<!DOCTYPE t [<!ENTITY e SYSTEM '", end = "'>]><t>&e;</t>";
  const std::string nothing = "nothing outside the document may be read";
  struct {
    int32_t mode;
    std::string name, shown, why;
  } const rows[] = {
      {3, "a\nb\tc", "a b c", nothing},
      {3, std::string(500, 'n'), std::string(500, 'n'), nothing},
      {3, std::string(8192, 'n'), std::string(500, 'n') + "...", nothing},
      {0, std::string(8193, 'n'), std::string(500, 'n') + "...", "its name is too long"},
  };
  for (const auto& [mode, name, shown, why] : rows) {
    CDoc doc;
    Prepare(doc, mode, 0);
    std::string errors;
    EXPECT_EQ(support::Load(doc.Id(), start + name + end, &errors), domErrParse);
    EXPECT_TRUE(errors.ends_with("Message: access to '" + shown + "' was refused: " + why))
        << errors;
    EXPECT_EQ(errors.find('\n'), std::string::npos);
  }
}

}  // namespace
