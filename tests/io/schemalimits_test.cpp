// What the patterns of schemas and their depth may cost, however a schema is read.
#include <functional>

#include "support/path.h"
#include "support/stack.h"

namespace {

using support::CDoc;
using support::CPath;
using support::CText;
using support::Repeated;

#define XSD "<s:schema xmlns:s='http://www.w3.org/2001/XMLSchema'>"

#define OFU "<s:schema xmlns:s='http://www.w3.org/2001/XMLSchema' targetNamespace='u'>"

constexpr const char* kTooDeep = "a schema is nested too deep for the stack of this thread";
constexpr std::size_t kSmall = 256;  // kilobytes

// Types {t}, with patterns, and {l}, a list of these; an element {r} of what is given.
std::string Schema(const std::string& patterns, const std::string& element) {
  return XSD "<s:simpleType name='t'><s:restriction base='s:string'>" + patterns +
         "</s:restriction></s:simpleType>"
         "<s:simpleType name='l'><s:list itemType='t'/></s:simpleType>" +
         element + "</s:schema>";
}
std::string Pattern(const std::string& pattern) { return "<s:pattern value='" + pattern + "'/>"; }

// The same schema, read in each way that there is.
class SchemaLimits : public support::CLedgerTest {
 protected:
  static std::string Errors(const std::function<void(TSXRefId)>& set, const std::string& xml) {
    const CDoc doc;
    EXPECT_EQ(TSXSetDoNamespaces(doc.Id(), 0, &support::kOn), 0);
    EXPECT_EQ(TSXSetDoSchema(doc.Id(), 0, &support::kOn), 0);
    EXPECT_EQ(TSXSetValidateOnLoad(doc.Id(), 0, &support::kAlways), 0);
    set(doc.Id());
    std::string errors;
    const TSXStatus status = support::Load(doc.Id(), xml, &errors);
    EXPECT_EQ(status, errors.empty() ? 0 : domErrParse);
    return errors;
  }
  std::string ByDocument(const std::string& schema, const std::string& content) const {
    return Errors([](TSXRefId) {},
                  "<r xmlns:i='http://www.w3.org/2001/XMLSchema-instance' "
                  "i:noNamespaceSchemaLocation='" +
                      schema + "'>" + content + "</r>");
  }
  std::string ByImport(const std::string& content) const {
    return Errors([](TSXRefId) {},
                  "<r xmlns:i='http://www.w3.org/2001/XMLSchema-instance' i:schemaLocation='u " +
                      m_Outer.Name() + "'>" + content + "</r>");
  }
  std::string ByHost(const std::string& schema, const std::string& content) const {
    return Errors(
        [&](TSXRefId document) {
          CText name(schema);
          EXPECT_EQ(TSXSetNoNamespaceSchemaLocation(document, 0, &name), 0);
        },
        "<r>" + content + "</r>");
  }

  // An empty message is for none at all.
  static void ExpectIn(const std::string& errors, const std::string& message) {
    EXPECT_TRUE(message.empty() ? errors.empty() : errors.find(message) != errors.npos)
        << errors.substr(0, 500);
  }
  void Expect(const std::string& schema, const std::string& content, const std::string& message) {
    m_File.Write(schema);
    ExpectIn(ByDocument(m_File.Name(), content), message);
  }
  void ExpectEveryWay(const std::string& schema, const std::string& content,
                      const std::string& message) {
    Expect(schema, content, message);
    for (const char* pWay : {"by the host", "once more"}) {
      SCOPED_TRACE(pWay);
      ExpectIn(ByHost(m_File.Name(), content), message);
    }
    for (const std::string way : {"include", "redefine", "import"}) {
      SCOPED_TRACE(way);
      // What is imported is of another namespace.
      m_Outer.Write((way == "import" ? OFU : XSD) + ("<s:" + way) + " schemaLocation='" +
                    m_File.Name() + "'/></s:schema>");
      const std::string errors =
          way == "import" ? ByImport(content) : ByDocument(m_Outer.Name(), content);
      ExpectIn(errors, message);
    }
  }

  CPath m_File{"limits.xsd"}, m_Outer{"outer.xsd"};
};

TEST_F(SchemaLimits, PatternsAndLongValuesEndNoProcess) {
  const struct {
    std::string pattern, value, message;
  } rows[] = {
      {"(a*)*b", "aaab", ""},
      {"(a*)*b", "aaa", "the pattern '(a*)*b' takes more stack for a value than this thread has"},
      {"(a*|c)*b", "aaa", "takes more stack"},
      {"(a|aa)*b", Repeated("a", 100), "the pattern '(a|aa)*b' takes too many steps"},
      {Repeated("a?", 40) + Repeated("a", 40), Repeated("a", 40), "takes too many steps"},
      {Repeated("(|)", 40) + "b", "", "takes too many steps"},
      {"((a{999}){999}){999}", "a", "the pattern '((a{999}){999}){999}' is too large"},
      {Repeated("(", 30) + "a" + Repeated(")+", 30), "a", "is too large"},
      {Repeated("(", 101) + "a" + Repeated(")", 101), "a", "is too large"},
      {"[a" + Repeated("-[a", 101) + Repeated("]", 102), "a", "is too large"},
      {Repeated("(", 100) + "a" + Repeated(")", 100), "a", ""},
      {"(a|b)*c", Repeated("a", 500000), "takes more stack"},
      {"(ab|c)+d", Repeated("ab", 250000), "takes more stack"},
      // Long values of what does not branch, or has nothing to come back to.
      {"(a|b)*", Repeated("a", 500000), ""},
      {"(ab)*", Repeated("ab", 250000), ""},
      {"[a-z]*x", Repeated("a", 300), "value 'aaa"},
      {"([a-z]+\\.)*[a-z]+", Repeated("ab.", 100000) + "a", ""},
      {".*", Repeated("a", 500000), ""},
      // What is spelled anew means the same.
      {"(\xF0\x9D\x92\x9C|b)?\xF0\x9D\x92\x9Cx\\p{Lu}[a\\]]", "b\xF0\x9D\x92\x9CxA]", ""},
      {"(\xF0\x9D\x92\x9C|b)?\xF0\x9D\x92\x9Cx", "b\xF0\x9D\x92\x9Dx", "does not match"},
      {"(abc|abd)*", "abcabdabc", ""},
      {"(abc|abd)*", "abcabeabc", "does not match"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.pattern.substr(0, 30));
    Expect(Schema(Pattern(row.pattern), "<s:element name='r' type='t'/>"), row.value, row.message);
  }
  const auto schema = [](const char* pPattern) {
    return Schema(Pattern(pPattern), "<s:element name='r' type='t'/>");
  };
  ExpectEveryWay(schema("(a*)*b"), "aaa", "the pattern '(a*)*b' takes more stack");
  support::OnStackOf(kSmall, [&] {
    Expect(schema("(a|b)*c"), Repeated("a", 10000), "takes more stack");
    Expect(schema("(a|b)*c"), Repeated("a", 100) + "c", "");
  });
}

// The parser matches these while it makes the grammar.
TEST_F(SchemaLimits, ValuesOfTheSchemaItselfAreMatchedWithinThem) {
  const char* const elements[] = {
      "<s:element name='r' type='t' default='aaa'/>",
      "<s:element name='r' type='t' fixed='aaa'/>",
      "<s:element name='r' type='l' default='aab &#9; aaa'/>",
      "<s:element name='r'><s:complexType><s:attribute name='a' type='t' default='aaa'/>"
      "</s:complexType></s:element>",
      "<s:element name='r'><s:simpleType><s:restriction base='t'><s:enumeration value='aaa'/>"
      "</s:restriction></s:simpleType></s:element>",
  };
  for (const char* pElement : elements) {
    SCOPED_TRACE(pElement);
    ExpectEveryWay(Schema(Pattern("(a*)*b"), pElement), "",
                   "the pattern '(a*)*b' takes more stack");
    // Patterns side by side are alternatives.
    Expect(Schema(Pattern("(a*") + Pattern(")*b"), pElement), "", "the pattern '(a*|)*b' takes");
    // What is no pattern leaves the others watched.
    Expect(Schema(Pattern("(a"), "<s:simpleType name='u'><s:restriction base='s:string'>" +
                                     Pattern("(a*)*b") + "</s:restriction></s:simpleType>" +
                                     std::string(pElement)),
           "", "the pattern '(a*)*b' takes more stack");
  }
}

TEST_F(SchemaLimits, DepthIsBoundedByTheStack) {
  const auto repeated = [](const std::string& begin, const std::string& middle,
                           const std::string& end) {
    return "<s:element name='r'>" + Repeated(begin, 2000) + middle + Repeated(end, 2000) +
           "</s:element>";
  };
  std::string chain, many;
  for (int i = 0; i < 2000; ++i) {
    const std::string number = std::to_string(i), next = std::to_string(i + 1);
    chain += "<s:complexType name='t" + number + "'><s:sequence><s:element name='a' type='t" +
             next + "' minOccurs='0'/></s:sequence></s:complexType>";
    many += "<s:element name='a" + number + "'/>";
  }
  const std::string schemas[] = {
      repeated("<s:complexType><s:sequence><s:element name='a' minOccurs='0'>", "",
               "</s:element></s:sequence></s:complexType>"),
      "<s:element name='r'><s:complexType>" + Repeated("<s:sequence>", 2000) +
          Repeated("</s:sequence>", 2000) + "</s:complexType></s:element>",
      chain + "<s:complexType name='t2000'/><s:element name='r' type='t0'/>",
      "<s:element name='r'><s:complexType><s:choice minOccurs='0'>" + many +
          "</s:choice></s:complexType></s:element>",
  };
  for (const std::string& schema : schemas) {
    SCOPED_TRACE(schema.substr(0, 70));
    const std::string whole = XSD + schema + "</s:schema>";
    Expect(whole, "", "");
    support::OnStackOf(kSmall, [&] { Expect(whole, "", kTooDeep); });
  }
}

// Each type and named group has a number of its own, and an element by itself is no group.
TEST_F(SchemaLimits, CopiesOfGroupsAreBounded) {
  const auto groups = [](const std::string& name, const std::vector<const char*>& occurs) {
    std::string text;
    for (const char* pOccurs : occurs) text += "<s:" + name + " " + pOccurs + ">";
    text += "<s:element name='a' minOccurs='0'/><s:element name='b' minOccurs='0'/>";
    return text + Repeated("</s:" + name + ">", static_cast<int>(occurs.size()));
  };
  const auto type = [](const std::string& content) {
    return XSD "<s:element name='r'><s:complexType>" + content +
           "</s:complexType></s:element></s:schema>";
  };
  const char* pRefused = "repeats groups of more than 20000 elements in all";
  const struct {
    std::string schema;
    const char* pMessage;
  } rows[] = {
      {type(groups("sequence", {"maxOccurs='20'", "maxOccurs='20'", "maxOccurs='26'"})), pRefused},
      {type(groups("choice", {"maxOccurs='99999999999999999999'"})), pRefused},
      {type(groups("sequence", {"minOccurs='10001' maxOccurs='unbounded'"})), pRefused},
      {type("<s:group ref='g' maxOccurs='20001'/>"), pRefused},
      {type("<s:group ref='g' maxOccurs=' &#9;20001 '/>"), pRefused},
      {type("<s:group ref='g' maxOccurs='+20001'/>"), pRefused},
      {type("<s:group ref='g' maxOccurs='-4294947295'/>"), pRefused},  // 20001 in 32 bits
      {type(groups("choice", {"minOccurs='0' maxOccurs='unbounded'"})), ""},
      {type(groups("sequence", {"maxOccurs='20'", "maxOccurs='20'"})), ""},
      {type("<s:sequence><s:element name='a' minOccurs='0' maxOccurs='99999'/></s:sequence>"), ""},
      {XSD "<s:element name='r'/><s:complexType name='u'>" +
           groups("sequence", {"maxOccurs='9999'"}) + "</s:complexType><s:complexType name='v'>" +
           groups("sequence", {"maxOccurs='9999'"}) + "</s:complexType></s:schema>",
       ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.schema.substr(60, 120));
    Expect(row.schema, "", row.pMessage);
  }
}

}  // namespace
