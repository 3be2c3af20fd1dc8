// Schemas that the host names: read once for documents in a row, read anew when anything of
// them has changed, and what they may name in turn.
#include <sys/inotify.h>

#include <map>

#include "support/path.h"

namespace {

using support::CDoc;
using support::CPath;
using support::CText;
namespace fs = std::filesystem;

#define XSD "<s:schema xmlns:s='http://www.w3.org/2001/XMLSchema' "

// A folder with schemas, which tells how many of its files were opened.
class CSchemas {
 public:
  CSchemas() : m_Watch(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    fs::create_directories(m_Folder / "in" / "sub");
    EXPECT_GE(inotify_add_watch(m_Watch, (m_Folder / "in").c_str(), IN_OPEN), 0);
  }
  ~CSchemas() {
    close(m_Watch);
    fs::remove_all(m_Folder);
  }
  CSchemas(const CSchemas&) = delete;
  CSchemas& operator=(const CSchemas&) = delete;

  std::string Name(const std::string& name) const { return m_Folder / "in" / name; }
  void Write(const std::string& name, const std::string& text) const {
    std::ofstream(Name(name)) << text;
  }
  // By a new file in its place.
  void Replace(const std::string& name, const std::string& text) const {
    Write(name + ".new", text);
    fs::rename(Name(name + ".new"), Name(name));
  }
  size_t Opened() const {
    alignas(inotify_event) char events[4096];
    size_t count = 0;
    for (ssize_t size; (size = read(m_Watch, events, sizeof events)) > 0;) {
      for (ssize_t at = 0; at < size; ++count) {
        at += static_cast<ssize_t>(sizeof(inotify_event)) +
              static_cast<ssize_t>(reinterpret_cast<inotify_event*>(events + at)->len);
      }
    }
    return count;
  }

 private:
  const fs::path m_Folder = CPath("schemas").Name();
  int m_Watch;
};

// An element in an entity of a schema, and its type, which a test defines, in a file that
// the schema includes.
void WriteTypes(const CSchemas& schemas, const std::string& base) {
  schemas.Write("main.xsd", "<!DOCTYPE s:schema [<!ENTITY r SYSTEM 'r.ent'>]>" XSD
                            "><s:include schemaLocation='part.xsd'/>&r;</s:schema>");
  schemas.Write("r.ent", "<s:element name='r' type='p'/>");
  schemas.Write("part.xsd", XSD "><s:simpleType name='p'><s:restriction base='s:" + base +
                                "'/></s:simpleType></s:schema>");
}

class Schemas : public support::CLedgerTest {
 protected:
  static void Use(TSXRefId document, const std::string& schema, int32_t access = 0) {
    CText name(schema);
    EXPECT_EQ(TSXSetDoNamespaces(document, 0, &support::kOn), 0);
    EXPECT_EQ(TSXSetDoSchema(document, 0, &support::kOn), 0);
    EXPECT_EQ(TSXSetValidateOnLoad(document, 0, &support::kAlways), 0);
    EXPECT_EQ(TSXSetExternalAccess(document, 0, &access), 0);
    EXPECT_EQ(TSXSetNoNamespaceSchemaLocation(document, 0, &name), 0);
  }
  // The errors of a document of its own.
  static std::string Errors(const std::string& schema, const std::string& xml, int32_t access = 0) {
    const CDoc doc;
    Use(doc.Id(), schema, access);
    std::string errors;
    const TSXStatus status = support::Load(doc.Id(), xml, &errors);
    EXPECT_EQ(status, errors.empty() ? 0 : domErrParse);
    return errors;
  }
  // Loads until nothing is opened: a file that has just been written is not trusted.
  static void Settle(const CSchemas& schemas, const std::string& schema) {
    schemas.Opened();
    for (int i = 0; i < 100000; ++i) {
      EXPECT_EQ(Errors(schema, "<r>1</r>"), "");
      if (schemas.Opened() == 0) return;
    }
    FAIL() << "the schema is read for every document";
  }
};

TEST_F(Schemas, AreReadOnceForDocumentsInARow) {
  const CSchemas schemas;
  WriteTypes(schemas, "int");
  Settle(schemas, schemas.Name("main.xsd"));
  CDoc kept;
  Use(kept.Id(), schemas.Name("main.xsd"));
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(support::Load(kept.Id(), "<r>x</r>"), domErrParse);
    EXPECT_NE(Errors(schemas.Name("main.xsd"), "<r>x</r>"), "");
    EXPECT_EQ(Errors(schemas.Name("main.xsd"), "<!DOCTYPE r [<!ENTITY e '1'>]><r>&e;</r>"), "");
    EXPECT_NE(Errors(schemas.Name("main.xsd"), "<unclosed>"), "");
  }
  EXPECT_EQ(schemas.Opened(), 0u);
  // The grammar is with no load between two, so another document may have it; not in
  // another mode, in which it might have been refused.
  EXPECT_EQ(Errors(schemas.Name("main.xsd"), "<r>1</r>", 3), "");
  EXPECT_EQ(schemas.Opened(), 3u);
}

TEST_F(Schemas, AreReadAnewWhenAnyFileHasChanged) {
  const CSchemas schemas;
  const std::string main = schemas.Name("main.xsd");
  const std::map<std::string, std::function<void()>> changes{
      {"an included file is written", [&] { WriteTypes(schemas, "QName"); }},
      {"it is another file",
       [&] {
         schemas.Replace("part.xsd", XSD
                         "><s:simpleType name='p'><s:restriction base='s:QName'/>"
                         "</s:simpleType></s:schema>");
       }},
      {"an entity is written",
       [&] { schemas.Write("r.ent", "<s:element name='r' type='s:QName'/>"); }},
      {"the first file is written",
       [&] { schemas.Write("main.xsd", XSD "><s:element name='r' type='s:QName'/></s:schema>"); }},
      {"it is a link",
       [&] {
         schemas.Write("other.xsd", XSD "><s:element name='r' type='s:QName'/></s:schema>");
         fs::remove(main);
         fs::create_symlink("other.xsd", main);
       }},
  };
  for (const auto& [what, change] : changes) {
    SCOPED_TRACE(what);
    fs::remove(main);
    WriteTypes(schemas, "int");
    Settle(schemas, main);
    change();
    EXPECT_NE(Errors(main, "<r>1</r>"), "");
    EXPECT_EQ(Errors(main, "<r>x</r>"), "");
  }
  // Also when it is gone, and when it is there again.
  fs::remove(main);
  EXPECT_TRUE(
      Errors(main, "<r>1</r>")
          .starts_with("Line 0, Column 0,  Message: schema '" + main + "': it cannot be read\r\n"));
  WriteTypes(schemas, "int");
  EXPECT_EQ(Errors(main, "<r>1</r>"), "");
}

// Of the same size, in the same file, and mostly within one tick of the clock.
TEST_F(Schemas, AreReadAnewHoweverSoonTheyChange) {
  const CSchemas schemas;
  for (int i = 0; i < 50; ++i) {
    WriteTypes(schemas, i % 2 == 0 ? "byte" : "date");
    EXPECT_EQ(Errors(schemas.Name("main.xsd"), "<r>1</r>").empty(), i % 2 == 0);
  }
}

// The head of a substitution group knows its members: those of the one document must not
// be there for the next.
TEST_F(Schemas, OfADocumentLeaveNoTraceInThoseOfTheHost) {
  const CSchemas schemas;
  const std::string main = schemas.Name("main.xsd");
  schemas.Write("main.xsd", XSD
                "><s:element name='h' type='s:string'/><s:element name='r'><s:complexType>"
                "<s:sequence><s:element ref='h'/></s:sequence></s:complexType></s:element>"
                "</s:schema>");
  schemas.Write("own.xsd", XSD
                "targetNamespace='u'><s:import schemaLocation='main.xsd'/>"
                "<s:element name='m' type='s:string' substitutionGroup='h'/></s:schema>");
  const std::string own =
      "<r xmlns:i='http://www.w3.org/2001/XMLSchema-instance' i:schemaLocation='u " +
      schemas.Name("own.xsd") + "'><u:m xmlns:u='u'/></r>";
  for (int i = 0; i < 3; ++i) {
    Errors(main, own);
    EXPECT_NE(Errors(main, "<r><u:m xmlns:u='u'/></r>"), "");
    EXPECT_EQ(Errors(main, "<r><h/></r>"), "");
  }
}

// {main} is read in every mode. What it includes is kept to its folder where the document
// is kept to its own, or to itself.
TEST_F(Schemas, MayNameFilesOfTheirFolderInEveryMode) {
  const struct {
    const char* pIncluded;
    std::string modes;  // read, or refused (x)
  } rows[] = {{"part.xsd", "rrrr"},
              {"sub/part.xsd", "rrrr"},
              {"../part.xsd", "rrxx"},
              {"sub/../../part.xsd", "rrxx"},
              {"link.xsd", "rrxx"}};
  const CSchemas schemas;
  const std::string part = XSD "><s:element name='r' type='s:int'/></s:schema>";
  for (const char* pName : {"part.xsd", "sub/part.xsd", "../part.xsd"}) schemas.Write(pName, part);
  fs::create_symlink("../part.xsd", schemas.Name("link.xsd"));
  for (const auto& row : rows) {
    schemas.Write("main.xsd", XSD "><s:include schemaLocation='" + std::string(row.pIncluded) +
                                  "'/></s:schema>");
    for (int32_t mode = 0; mode < 4; ++mode) {
      SCOPED_TRACE(row.pIncluded + std::to_string(mode));
      const std::string errors = Errors(schemas.Name("main.xsd"), "<r>1</r>", mode);
      const std::string refused = "access to '" + std::string(row.pIncluded) + "' was refused: ";
      if (row.modes[static_cast<size_t>(mode)] == 'r') {
        EXPECT_EQ(errors, "");
      } else {
        EXPECT_TRUE(errors.find(refused) != errors.npos) << errors;
      }
    }
  }
  // What the document names is not the host's choice.
  const std::string errors = Errors(
      schemas.Name("part.xsd"),
      "<u:r xmlns:u='u' xmlns:i='http://www.w3.org/2001/XMLSchema-instance' i:schemaLocation='u " +
          schemas.Name("main.xsd") + "'/>",
      3);
  EXPECT_TRUE(errors.find("' was refused: nothing outside") != errors.npos) << errors;
}

}  // namespace
