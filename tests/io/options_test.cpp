// Parser options: what they hold, and what they do to a load.
#include "support/path.h"

namespace {

using support::CDoc;
using support::CText;
using support::TextOf;

struct CFlag {
  const char* pName;
  decltype(&TSXSetDoSchema) set;
  decltype(&TSXGetDoSchema) get;
  uint8_t fresh;
};
constexpr CFlag kNamespaces{"namespaces", TSXSetDoNamespaces, TSXGetDoNamespaces, 0};
constexpr CFlag kSchema{"schema", TSXSetDoSchema, TSXGetDoSchema, 0};
constexpr CFlag kFull{"full checking", TSXSetValidationSchemaFullChecking,
                      TSXGetValidationSchemaFullChecking, 0};
constexpr CFlag kExternal{"external DTD", TSXSetLoadExternalDTD, TSXGetLoadExternalDTD, 1};
constexpr CFlag kSpace{"whitespace", TSXSetPreserveWhitespace, TSXGetPreserveWhitespace, 1};
constexpr CFlag kFlags[] = {kNamespaces, kSchema, kFull, kExternal, kSpace};

void Set(TSXRefId document, const CFlag& flag, uint8_t value) {
  EXPECT_EQ(flag.set(document, 99, &value), 0) << flag.pName;
}

uint8_t Get(TSXRefId document, const CFlag& flag) {
  uint8_t values[] = {77, 77};
  EXPECT_EQ(flag.get(document, 99, values), 0) << flag.pName;
  EXPECT_EQ(values[1], 77) << "one byte is written";
  return values[0];
}

int32_t Scheme(TSXRefId document) {
  int32_t scheme = 77;
  EXPECT_EQ(TSXGetValidateOnLoad(document, 99, &scheme), 0);
  return scheme;
}

void SetScheme(TSXRefId document, int32_t scheme) {
  EXPECT_EQ(TSXSetValidateOnLoad(document, 99, &scheme), 0);
}

// Grammars in a folder of the test's own.
class Options : public support::CLedgerTest {
 protected:
  Options() { std::filesystem::create_directory(m_Folder.Name()); }
  ~Options() override { std::filesystem::remove_all(m_Folder.Name()); }

  std::string Name(const char* pFile) const { return m_Folder.Name() + "/" + pFile; }
  void Write(const char* pFile, std::string_view text) const { std::ofstream(Name(pFile)) << text; }

  // Writes the text to a file beside the grammars and loads that; returns the lines.
  std::string Load(TSXRefId document, std::string_view xml) const {
    const support::CPath instance(Name("instance.xml"));
    instance.Write(xml);
    std::string errors;
    const TSXStatus status = support::LoadFile(document, instance.Get(), &errors);
    EXPECT_EQ(status, errors.empty() ? 0 : domErrParse);
    return errors;
  }

 private:
  support::CPath m_Folder{"options"};
};

TEST_F(Options, FlagsHoldABitPerDocumentThroughLoads) {
  CDoc doc("<r><e/></r>"), other;
  const TSXRefId e = support::FirstChild(doc.Root());
  for (const CFlag& flag : kFlags) {
    EXPECT_EQ(Get(doc.Id(), flag), flag.fresh) << flag.pName;
    for (const auto& [in, out] : {std::pair<uint8_t, uint8_t>{2, 1}, {0, 0}, {128, 1}}) {
      Set(doc.Id(), flag, in);
      EXPECT_EQ(Get(doc.Id(), flag), out) << flag.pName;
    }
    Set(doc.Id(), flag, !flag.fresh);
  }
  CText xml("<e/>"), errors, exception;
  EXPECT_EQ(TSXElementSetXML(e, &xml, &errors, &exception), 0);
  EXPECT_EQ(support::Load(doc.Id(), "<r>"), domErrParse);
  EXPECT_EQ(support::Load(doc.Id(), "<r/>"), 0);
  for (const CFlag& flag : kFlags) {
    EXPECT_EQ(Get(doc.Id(), flag), !flag.fresh) << flag.pName;
    EXPECT_EQ(Get(other.Id(), flag), flag.fresh) << flag.pName;
  }
}

TEST_F(Options, AnyNumberIsAScheme) {
  CDoc doc, other;
  EXPECT_EQ(Scheme(doc.Id()), 0);
  for (const auto& [in, out] : {std::pair{2, 2}, {1, 1}, {7, 2}, {0, 0}, {-1, 2}}) {
    SetScheme(doc.Id(), in);
    EXPECT_EQ(Scheme(doc.Id()), out) << in;
  }
  EXPECT_EQ(Load(doc.Id(), "<r><undeclared/></r>"), "") << "7 and its like ask for a grammar";
  EXPECT_EQ(Scheme(doc.Id()), 2);
  EXPECT_EQ(Scheme(other.Id()), 0);
}

TEST_F(Options, NamespacesGiveNamesTheirParts) {
  CDoc doc;
  const std::string_view xml = "<p:a xmlns:p='urn:p' xmlns='urn:d' p:k='1' l='2'><b/></p:a>";
  // Name, namespace URI, prefix and base name of each node.
  const auto parts = [&] {
    const TSXRefId a = doc.Root();
    std::string all;
    for (const TSXRefId node : {a, support::Attribute(a, "p:k"), support::Attribute(a, "l"),
                                support::Attribute(a, "xmlns:p"), support::FirstChild(a)}) {
      all += support::Name(node);
      for (const auto get : {TSXGetNamespaceName, TSXGetPrefixName, TSXGetBaseName}) {
        all += ' ' + TextOf(get, node, uint64_t{0});
      }
      all += '\n';
    }
    return all;
  };
  EXPECT_EQ(Load(doc.Id(), xml), "");
  EXPECT_EQ(parts(), "p:a   \np:k   \nl   \nxmlns:p   \nb   \n");
  EXPECT_EQ(Load(doc.Id(), "<q:a/>"), "") << "off, a colon is a letter";
  Set(doc.Id(), kNamespaces, 1);
  EXPECT_EQ(Load(doc.Id(), xml), "");
  EXPECT_EQ(parts(),
            "p:a urn:p p a\np:k urn:p p k\nl   l\n"
            "xmlns:p http://www.w3.org/2000/xmlns/ xmlns p\nb urn:d  b\n");
  EXPECT_EQ(Load(doc.Id(), "<q:a/>"),
            "Line 1, Column 7,  Message: prefix 'q' can not be resolved to namespace URI");
}

TEST_F(Options, ValidationAgainstADtdDependsOnTheScheme) {
  constexpr std::string_view kDtd = "<!ELEMENT r (a,b)><!ELEMENT a EMPTY><!ELEMENT b EMPTY>";
  Write("r.dtd", kDtd);
  const std::string body = "\n<r><a k='1'/>\n</r>";
  const std::string internal = "<!DOCTYPE r [" + std::string(kDtd) + "]>" + body;
  const std::string external = "<!DOCTYPE r SYSTEM 'r.dtd'>" + body;
  const std::string valid = "<!DOCTYPE r SYSTEM 'r.dtd'><r><a/><b/></r>";
  const std::string two =
      "Line 2, Column 9,  Message: attribute 'k' is not declared for element 'a'\r\n"
      "Line 3, Column 5,  Message: missing elements in content model '(a,b)'\r\n";
  const std::string undeclared =
      "Line 2, Column 3,  Message: no declaration found for element 'r'\r\n";
  struct {
    std::string xml;
    int32_t scheme;
    std::string lines;
  } const rows[] = {
      {internal, 0, ""},  {internal, 1, two}, {internal, 2, two}, {external, 0, ""},
      {external, 1, two}, {external, 2, two}, {"\n<r/>", 0, ""},  {"\n<r/>", 1, undeclared},
      {"\n<r/>", 2, ""},  {valid, 1, ""},     {valid, 2, ""},
  };
  CDoc doc;
  for (const auto& row : rows) {
    SetScheme(doc.Id(), row.scheme);
    EXPECT_EQ(Load(doc.Id(), row.xml), row.lines) << row.scheme << ' ' << row.xml;
    EXPECT_EQ(support::Name(doc.Root()), "r") << "the tree is built all the same";
  }
}

TEST_F(Options, SchemasAreFoundFromTheInstance) {
  const auto writeSchema = [&](const char* pFile, const char* pTarget, const std::string& content) {
    Write(pFile, "<s:schema xmlns:s='http://www.w3.org/2001/XMLSchema' " + std::string(pTarget) +
                     "><s:element name='r'><s:complexType><s:sequence>" + content +
                     "</s:sequence></s:complexType></s:element></s:schema>");
  };
  const std::string n = "<s:element name='n' type='s:int'/>";
  const std::string optional = "<s:element name='n' type='s:int' minOccurs='0'/>";
  writeSchema("plain.xsd", "", n);
  writeSchema("target.xsd", "targetNamespace='urn:t' elementFormDefault='qualified'", n);
  // Which of the two takes a single n is undecided: a costly rule forbids that.
  writeSchema("unclear.xsd", "", optional + optional);
  const std::string start = "<r xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' ";
  const auto instance = [&](const char* pFile) {
    return start + "xsi:noNamespaceSchemaLocation='" + pFile + "'>\n";
  };
  const std::string plain = instance("plain.xsd"), unclear = instance("unclear.xsd");
  const std::string targeted = start + "xmlns='urn:t'\n xsi:schemaLocation='urn:t target.xsd'>\n";
  const std::string good = "<n>1</n></r>", bad = "<n>one</n>\n<m/></r>";
  // The lines that `bad` gives where it begins in the line of that number.
  const auto lines = [](int first) {
    const std::string m = "Line " + std::to_string(first + 1);
    return "Line " + std::to_string(first) +
           ", Column 11,  Message: value 'one' does not match regular expression "
           "facet '[+\\-]?[0-9]+'\r\n" +
           m + ", Column 5,  Message: no declaration found for element 'm'\r\n" + m +
           ", Column 9,  Message: element 'm' is not allowed for content model '(n)'\r\n";
  };
  const std::string refused =
      "Line 1, Column 102,  Message: complex type '__AnonC0' violates the unique particle "
      "attribution rule in its components 'n' and 'n'\r\n";
  struct {
    std::string xml;
    uint8_t namespaces, schema, full;
    int32_t scheme;
    std::string lines;
  } const rows[] = {
      {plain + good, 1, 1, 1, 1, ""},
      {plain + bad, 1, 1, 0, 1, lines(2)},
      {plain + bad, 1, 1, 0, 2, lines(2)},
      {plain + bad, 1, 1, 0, 0, ""},
      {plain + bad, 1, 0, 0, 2, ""},
      {plain + bad, 0, 1, 0, 2, ""},
      {targeted + good, 1, 1, 1, 2, ""},
      {targeted + bad, 1, 1, 0, 1, lines(3)},
      {targeted + bad, 1, 1, 0, 2, lines(3)},
      {unclear + good, 1, 1, 0, 1, ""},
      {unclear + good, 1, 1, 1, 1, refused},
      {unclear + good, 1, 1, 1, 0, ""},
      // That it is missing is a warning, and without grammar scheme 2 asks nothing.
      {instance("missing.xsd") + bad, 1, 1, 0, 2, ""},
  };
  CDoc doc;
  for (const auto& row : rows) {
    Set(doc.Id(), kNamespaces, row.namespaces);
    Set(doc.Id(), kSchema, row.schema);
    Set(doc.Id(), kFull, row.full);
    SetScheme(doc.Id(), row.scheme);
    EXPECT_EQ(Load(doc.Id(), row.xml), row.lines) << row.scheme << ' ' << row.xml;
    EXPECT_EQ(support::Name(doc.Root()), "r");
  }
}

TEST_F(Options, ExternalDtdIsReadWhereTheOptionOrValidationAsks) {
  Write("r.dtd", "<!ELEMENT r ANY><!ATTLIST r d CDATA 'v'>");
  const std::string missing =
      "Line 1, Column 34,  Message: unable to open DTD document '" + Name("missing.dtd") + "'";
  for (const int32_t scheme : {0, 1, 2}) {
    for (const uint8_t external : {support::kOff, support::kOn}) {
      const bool isRead = scheme != 0 || external != 0;
      SCOPED_TRACE(::testing::Message() << scheme << ' ' << int{external});
      CDoc doc;
      SetScheme(doc.Id(), scheme);
      Set(doc.Id(), kExternal, external);
      EXPECT_EQ(Load(doc.Id(), "<!DOCTYPE r SYSTEM 'r.dtd'><r/>"), "");
      EXPECT_EQ(support::Attribute(doc.Root(), "d") != 0, isRead);
      EXPECT_EQ(Load(doc.Id(), "<!DOCTYPE r SYSTEM 'missing.dtd'><r/>"), isRead ? missing : "");
      EXPECT_EQ(doc.Root() != 0, !isRead) << "a fatal error before the root";
    }
  }
}

TEST_F(Options, IgnorableWhitespaceGoesWhereALoadValidates) {
  Write("r.dtd", "<!ELEMENT r (a,m)><!ELEMENT a EMPTY><!ELEMENT m (#PCDATA|a)*>");
  const std::string kept = "<r> <a/>\n<m> <a/> </m>\n</r>", dropped = "<r><a/><m> <a/> </m></r>";
  for (const int32_t scheme : {0, 1, 2}) {
    for (const uint8_t preserve : {support::kOff, support::kOn}) {
      CDoc doc;
      SetScheme(doc.Id(), scheme);
      Set(doc.Id(), kSpace, preserve);
      EXPECT_EQ(Load(doc.Id(), "<!DOCTYPE r SYSTEM 'r.dtd'>" + kept), "");
      EXPECT_EQ(TextOf(TSXGetXML, doc.Root()), preserve != 0 || scheme == 0 ? kept : dropped)
          << scheme;
    }
  }
}

}  // namespace
