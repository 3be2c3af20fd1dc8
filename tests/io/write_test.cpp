// What is written can be read again, and means the same.
#include <array>
#include <xercesc/framework/MemBufFormatTarget.hpp>

#include "document/xercesdom.h"
#include "host/domowner.h"
#include "support/path.h"
#include "support/snapshot.h"

namespace {

using support::CDoc;
using support::CPath;
using support::CPlace;
using support::CText;
using support::IdOf;
using support::LoadFile;
using support::TextOf;
using xercesc::DOMNode;

const std::string kHead = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>";

void SetNamespaces(const CDoc& doc) {
  EXPECT_EQ(TSXSetDoNamespaces(doc.Id(), 0, &support::kOn), 0);
}

const DOMNode& Tree(const CDoc& doc) {
  return *static_cast<CXercesDOM*>(g_NodeSessMap.GetPtrBySess(doc.Id()))->m_pDoc;
}
std::string Seen(const CDoc& doc, support::ETold told = support::ETold::kAll) {
  return support::Snapshot(Tree(doc), told);
}

std::string Saved(decltype(&TSXSaveFile) save, TSXRefId document) {
  CPath path("written.xml");
  CText error;
  EXPECT_EQ(save(document, path.Get(), &error), 0);
  return path.Read();
}

// What the XML library's own writer makes of a tree.
std::string ByXerces(const DOMNode& node) {
  const XMLCh features[] = u"LS";
  auto* pImplementation = xercesc::DOMImplementationRegistry::getDOMImplementation(features);
  CDOMOwner<xercesc::DOMLSSerializer> serializer(pImplementation->createLSSerializer());
  CDOMOwner<xercesc::DOMLSOutput> output(pImplementation->createLSOutput());
  xercesc::MemBufFormatTarget target;
  output->setByteStream(&target);
  output->setEncoding(static_cast<const xercesc::DOMDocument&>(node).getXmlEncoding());
  EXPECT_TRUE(serializer->write(&node, output.get()));
  return {reinterpret_cast<const char*>(target.getRawBuffer()), target.getLen()};
}

class Write : public support::CLedgerTest {
 protected:
  // All four ways out, and in again: the same tree, the same text the next time, and no
  // difference between a string and a file.
  static void ExpectRoundTrip(const std::string& xml, bool hasNamespaces = true) {
    SCOPED_TRACE(xml);
    using support::ETold;
    const struct {
      decltype(&TSXGetXML) get;
      decltype(&TSXSaveFile) save;
      ETold told;
    } ways[] = {{TSXGetXML, TSXSaveFile, ETold::kAll},
                {TSXGetXMLPP, TSXSaveFilePP, ETold::kLayout}};
    CDoc doc;
    if (hasNamespaces) SetNamespaces(doc);
    std::string errors;
    ASSERT_EQ(support::Load(doc.Id(), xml, &errors), 0) << errors;
    for (const auto& way : ways) {
      const std::string text = TextOf(way.get, doc.Id());
      EXPECT_EQ(Saved(way.save, doc.Id()), text);
      CPath path("again.xml");
      path.Write(text);
      CDoc again;
      if (hasNamespaces) SetNamespaces(again);
      ASSERT_EQ(LoadFile(again.Id(), path.Get(), &errors), 0) << text << errors;
      EXPECT_EQ(Seen(again, way.told), Seen(doc, way.told)) << text;
      EXPECT_EQ(TextOf(way.get, again.Id()), text);
    }
  }

  static std::string Subset(const CDoc& doc) {
    return TextOf(TSXGetInternalSubset, IdOf(TSXGetDocType, doc.Id(), uint64_t{0}), uint64_t{0});
  }
};

// -- The internal subset ----------------------------------------------------------

const char* const kSubsets[] = {
    "<!ENTITY q '\"x\"'>",
    "<!ENTITY l \"&#38;#60;\">",
    "<!ENTITY % p \"x\">",
    "<!ENTITY % p \"<!ENTITY q 'h'>\">%p;",
    "<!NOTATION x SYSTEM 's'><!ATTLIST r n NOTATION (x) #IMPLIED>",
    "<!NOTATION n PUBLIC \"-//n\">",
    "<!NOTATION n PUBLIC '-//n' 's\"'>",
    "<!ATTLIST r a CDATA #FIXED 'it\"s' b (x | y) 'x' c NMTOKENS #REQUIRED d CDATA \"'\">",
    "<!--a--><!-- a --><!---->",
    "<!--]>--><?pi ]> ?><?p?><!ENTITY e ']>'><!ENTITY f \"']\">",
    " \n\t<!ELEMENT  r  ( #PCDATA\n|e)* >\n<!ELEMENT e EMPTY> ",
    "<!ENTITY primary 'normalize-space(concat(primary/@sortas, \" \", primary))'>",
    "<!ENTITY u PUBLIC 'p' \"u\" NDATA n><!NOTATION n SYSTEM ''>",
    "<!ENTITY a '<x y=\"&#34;\">&b;</x>'><!ENTITY b '&#38;amp;&#37;'>",
    "<!ENTITY SYSTEM 'x'><!ENTITY %\np '\n'>%p;<!ATTLIST r xmlns CDATA #FIXED 'urn:r'>",
    "<!ENTITY e 'caf\xc3\xa9 \xf0\x9f\x98\x80'>",
    "",
};

TEST_F(Write, GivesTheInternalSubsetAsItWas) {
  for (const std::string subset : kSubsets) {
    const std::string xml = "<!DOCTYPE r [" + subset + "]><r c=''><x/></r>";
    ExpectRoundTrip(xml);
    ExpectRoundTrip(xml, false);
    ExpectRoundTrip("<?x [<!DOCTYPE \"?><!-- <!DOCTYPE y [ -->\n<!DOCTYPE r [" + subset +
                    "]\n><r c=''>&lt;</r>");
    const CDoc doc(xml);
    EXPECT_EQ(Subset(doc), subset);
    EXPECT_TRUE(doc.Xml().starts_with(kHead + "<!DOCTYPE r" +
                                      (subset.empty() ? "" : " [" + subset + "]") + "><r"))
        << doc.Xml();
    ASSERT_EQ(support::SetAttribute(doc.Root(), "c", "new"), 0);
    EXPECT_EQ(Subset(doc), subset) << "after an edit";
  }
}

TEST_F(Write, ReadsTheSubsetInEveryEncoding) {
  const std::string text = "<!DOCTYPE r [<!ENTITY e '\xe9'>\r\n<!--\xe9-->]><r>&e;</r>";
  std::string utf16 = "\xff\xfe", utf8;
  for (const char c : text) utf16 += {c, '\0'};
  for (const char c : text) utf8 += c == '\xe9' ? std::string("\xc3\xa9") : std::string(1, c);
  const std::string rows[] = {"<?xml version='1.0' encoding='ISO-8859-1'?>" + text,
                              "<?xml version='1.0' encoding='windows-1252'?>" + text, utf16, utf8,
                              "\xef\xbb\xbf" + utf8};
  for (const std::string& bytes : rows) {
    CPath path("subset.xml");
    path.Write(bytes);
    CDoc doc;
    ASSERT_EQ(LoadFile(doc.Id(), path.Get()), 0) << bytes;
    EXPECT_EQ(Subset(doc), "<!ENTITY e '\xc3\xa9'>\n<!--\xc3\xa9-->") << bytes;
    // The encoding that is declared now, and may not have been before.
    path.Write(doc.Xml());
    const std::string seen = Seen(doc);
    ASSERT_EQ(LoadFile(doc.Id(), path.Get()), 0) << bytes;
    EXPECT_EQ(Seen(doc), seen);
  }
  // Longer than the parser reads at once, in front of the subset and in it.
  const std::string padding = "<!--" + std::string(200'000, 'x') + "\xc3\xa9-->";
  const CDoc large(padding + "<!DOCTYPE r [" + padding + "]><r/>");
  EXPECT_EQ(Subset(large), padding);
  // A load that fails leaves nothing behind for the next one.
  CDoc doc;
  EXPECT_EQ(support::Load(doc.Id(), "<!DOCTYPE r [<!ENTITY a 'x'> <!"), domErrParse);
  ASSERT_EQ(support::Load(doc.Id(), "<!DOCTYPE r [<!-- -->]><r/>"), 0);
  EXPECT_EQ(Subset(doc), "<!-- -->");
}

TEST_F(Write, WritesTheDeclarationsOfEntities) {
  const CDoc doc(
      "<!DOCTYPE r [<!ENTITY % e 'no'><!ENTITY e '\"&#60;x/>'><!ENTITY e 'later'>"
      "<!NOTATION n SYSTEM 's'><!ENTITY u PUBLIC 'p' \"u'\" NDATA n>"
      "<!ENTITY % d \"<!ENTITY v SYSTEM 'v' NDATA n><!ENTITY w 'w'>\">%d;]><r/>");
  const std::pair<const char*, const char*> rows[] = {
      {"e", "<!ENTITY e '\"&#60;x/>'>"},
      {"u", "<!ENTITY u PUBLIC 'p' \"u'\" NDATA n>"},
      {"v", "<!ENTITY v SYSTEM \"v\" NDATA n>"},
  };
  for (const auto& [pName, pText] : rows) {
    EXPECT_EQ(TextOf(TSXGetXML, support::OfType(doc.Id(), TSXGetEntities, pName)), pText);
  }
  CText kept("kept");
  EXPECT_EQ(TSXGetXML(support::OfType(doc.Id(), TSXGetEntities, "w"), &kept), domErrSerialize);
  EXPECT_EQ(TSXGetXML(support::OfType(doc.Id(), TSXGetNotations, "n"), &kept), domErrSerialize);
  EXPECT_EQ(kept.Str(), "kept");
}

// -- Texts ------------------------------------------------------------------------

const char* const kDocuments[] = {
    "<r a='1' b=\"&quot;'&lt;>&#9;&#10;&#13;&amp;\">x&lt;y&gt;&amp;&#13;\r\n\t\"'</r>",
    "<?a?><?b c?><!--d--><r><?e f?><!--g--><h/></r><!-- --><?i?>",
    "<r><![CDATA[<&]]]]><![CDATA[>]]><![CDATA[]]>x<![CDATA[y]]></r>",
    "<!DOCTYPE r [<!ENTITY e 'a<b c=\"d\"/>'><!ENTITY f '&e;&e;'>]><r x='&amp;1'>&e; &f;</r>",
    "<!DOCTYPE r [<!ENTITY e 'v'>]><r a='x&e;y' b='&e;'/>",
    "<!DOCTYPE r [<!ATTLIST r a CDATA 'd' b CDATA #FIXED 'f' xml:space CDATA 'preserve'>]>"
    "<r b='f'> <x/> </r>",
    "<p:r xmlns:p='u' xmlns='v' p:a='1' a='2'><c xmlns=''><d p:b='' xmlns:p='w'/></c><p:e/></p:r>",
    "<r xmlns='u'><a xmlns='u'/><b xmlns='w'><c xmlns='u'/></b></r>",
    "<x xmlns:a='u' xmlns:b='u'><b:y a:z=''/><xml:w xml:lang='en'/></x>",
    "<!DOCTYPE r [<!ATTLIST r xmlns CDATA 'u' xmlns:p CDATA 'v'>]><r p:a=''><p:b/><r "
    "xmlns='w'/></r>",
    "<?xml version='1.1'?><r a='&#1;&#x7f;&#x85;'>&#2;&#x9f;&#x85;&#x2028;\xc2\xa0</r>",
    "<?xml version='1.1'?><\xf0\x90\x90\x80:a xmlns:\xf0\x90\x90\x80='u' \xf0\x90\x90\x81='1'>"
    "<b/></\xf0\x90\x90\x80:a>",
    "<?xml version='1.0' standalone='yes'?><r>caf\xc3\xa9 \xef\xbf\xbd \x7f</r>",
    "<p>See <a>the manual</a>, <b>bold \xf0\x9f\x98\x80</b>!</p>",
    "<p> <a>  </a> <b>\n\n<c/>\n\n</b><!-- d --><e><!-- f --></e>\n<g><?h?> </g></p>",
    "<p xml:space='preserve'> <a> <b/> </a><c xml:space='default'> <d/> </c></p>",
    "<!DOCTYPE p [<!ENTITY s ' '><!ENTITY t 't'>]><p>&s;<a>&t;<b/> <c/></a> <d/><![CDATA[ ]]></p>",
    "<p>text <a> <b> <c/> </b> </a></p>",
};

TEST_F(Write, ComesBackAsTheSameTree) {
  for (const std::string xml : kDocuments) {
    ExpectRoundTrip(xml);
    if (xml.find("xmlns:\xf0") == std::string::npos) ExpectRoundTrip(xml, false);
  }
}

// Where the XML library's own writer is right, hosts may compare texts.
TEST_F(Write, GivesTheBytesOfTheXmlLibrary) {
  const std::string rows[] = {
      "<r a='1' b=\"&quot;'&lt;>&#9;&#10;&#13;&amp;\">x&lt;y&gt;&amp;&#13;\r\n\t\"'</r>",
      "<?a?><?b c?><!--d--><r><?e f?><!--g--><h></h></r><!-- --><?i?>",
      "<!DOCTYPE r [<!ENTITY e 'a<b c=\"d\"/>'><!ENTITY f '&e;&e;'>]><r x='&amp;1'>&e; &f;</r>",
      "<!DOCTYPE r [<!ENTITY e 'v'><!ATTLIST r c CDATA 'd'>]><r a='x&e;y' b='&e;'/>",
      "<?xml version='1.0' standalone='yes'?><r>caf\xc3\xa9 \xef\xbf\xbd \x7f</r>",
      "<r xmlns='u'><a xmlns='u'/><b xmlns='w'><c xmlns='u'/><d xmlns=''/></b></r>",
      "<p:r b='1' p:a='2' z:a='3' xmlns:p='v' xmlns:z='u' xmlns:y='u'><p:b/><c/></p:r>",
      "<r><![CDATA[a]b]]></r>",
      "<!DOCTYPE r SYSTEM 's' []><r/>",
      "<!DOCTYPE r PUBLIC 'p' 's'><r/>",
  };
  for (const std::string& xml : rows) {
    for (const uint8_t hasNamespaces : {support::kOff, support::kOn}) {
      CDoc doc;
      EXPECT_EQ(TSXSetDoNamespaces(doc.Id(), 0, &hasNamespaces), 0);
      EXPECT_EQ(TSXSetLoadExternalDTD(doc.Id(), 0, &support::kOff), 0);
      ASSERT_EQ(support::Load(doc.Id(), xml), 0) << xml;
      for (const char* pEncoding : {"UTF-8", "UTF-16", "US-ASCII", "ISO-8859-1", "windows-1251"}) {
        CText encoding(pEncoding);
        ASSERT_EQ(TSXSetEncoding(doc.Id(), 0, &encoding), 0);
        EXPECT_EQ(doc.Xml(), ByXerces(Tree(doc))) << xml << pEncoding;
      }
    }
  }
}

TEST_F(Write, HasReferencesForWhatTheEncodingLacks) {
  const std::string xml =
      "<!DOCTYPE r [<!ENTITY e '\xe2\x82\xac'><!ATTLIST r d CDATA '\xf0\x9f\x98\x80'>]>"
      "<r "
      "a='\xc3\xa9\xe2\x82\xac'>\xc3\xa9\xf0\x9f\x98\x80\xe2\x80\x8d<![CDATA[a\xc3\xa9]]>&e;</r>";
  struct {
    const char *pEncoding, *pText;
  } const rows[] = {
      {"US-ASCII",
       "<!DOCTYPE r [<!ENTITY e '&#x20AC;'><!ATTLIST r d CDATA '&#x1F600;'>]>"
       "<r a=\"&#xE9;&#x20AC;\">&#xE9;&#x1F600;&#x200D;<![CDATA[a]]>&#xE9;&e;</r>"},
      {"ISO-8859-1",
       "<!DOCTYPE r [<!ENTITY e '&#x20AC;'><!ATTLIST r d CDATA '&#x1F600;'>]>"
       "<r a=\"\xe9&#x20AC;\">\xe9&#x1F600;&#x200D;<![CDATA[a\xe9]]>&e;</r>"},
      {"windows-1252",
       "<!DOCTYPE r [<!ENTITY e '\x80'><!ATTLIST r d CDATA '&#x1F600;'>]>"
       "<r a=\"\xe9\x80\">\xe9&#x1F600;&#x200D;<![CDATA[a\xe9]]>&e;</r>"},
      {"Shift_JIS",
       "<!DOCTYPE r [<!ENTITY e '&#x20AC;'><!ATTLIST r d CDATA '&#x1F600;'>]>"
       "<r a=\"&#xE9;&#x20AC;\">&#xE9;&#x1F600;&#x200D;<![CDATA[a]]>&#xE9;&e;</r>"},
      {"GB18030",
       "<!DOCTYPE r [<!ENTITY e '\xa2\xe3'><!ATTLIST r d CDATA '\x94\x39\xfc\x36'>]>"
       "<r "
       "a=\"\xa8\xa6\xa2\xe3\">\xa8\xa6\x94\x39\xfc\x36\x81\x36\xa4\x39<![CDATA[a\xa8\xa6]]>&e;</"
       "r>"},
  };
  for (const auto& row : rows) {
    CDoc doc(xml), again;
    CText encoding(row.pEncoding);
    ASSERT_EQ(TSXSetEncoding(doc.Id(), 0, &encoding), 0);
    EXPECT_TRUE(doc.Xml().ends_with(row.pText)) << doc.Xml();
    ASSERT_EQ(support::Load(again.Id(), doc.Xml()), 0) << row.pEncoding;
    EXPECT_EQ(Seen(again, support::ETold::kRuns), Seen(doc, support::ETold::kRuns));
  }
  // Where no reference can stand.
  for (const char* pXml :
       {"<\xc3\xa9/>", "<r \xc3\xa9=''/>", "<r><!--\xc3\xa9--></r>", "<?\xc3\xa9?><r/>",
        "<?p \xc3\xa9?><r/>", "<!DOCTYPE r [<!--\xc3\xa9-->]><r/>"}) {
    CDoc doc(pXml);
    CText encoding("US-ASCII"), kept("kept");
    ASSERT_EQ(TSXSetEncoding(doc.Id(), 0, &encoding), 0);
    EXPECT_EQ(TSXGetXML(doc.Id(), &kept), domErrInvalidCharacter) << pXml;
    EXPECT_EQ(kept.Str(), "kept");
  }
}

// -- What is no XML ---------------------------------------------------------------

TEST_F(Write, RefusesWhatNoParserTakes) {
  const auto comment = [](TSXRefId doc, HStr* pData, TSXRefId* pId) {
    return TSXCreateComment(doc, pData, pId);
  };
  const auto text = [](TSXRefId doc, HStr* pData, TSXRefId* pId) {
    return TSXCreateTextNode(doc, pData, pId);
  };
  const auto cdata = [](TSXRefId doc, HStr* pData, TSXRefId* pId) {
    return TSXCreateCDATASection(doc, pData, pId);
  };
  const auto instruction = [](TSXRefId doc, HStr* pData, TSXRefId* pId) {
    CText target("x");
    return TSXCreateProcessingInstruction(doc, &target, pData, pId);
  };
  const auto target = [](TSXRefId doc, HStr* pData, TSXRefId* pId) {
    CText data("x");
    return TSXCreateProcessingInstruction(doc, pData, &data, pId);
  };
  struct {
    TSXStatus (*create)(TSXRefId, HStr*, TSXRefId*);
    const char *pData, *pText;  // null for a refusal
  } const rows[] = {
      {comment, "a -- b", nullptr},
      {comment, "ends-", nullptr},
      {comment, "-", nullptr},
      {comment, "-a - b", "<!---a - b-->"},
      {comment, "\x01", nullptr},
      {instruction, "x?>y", nullptr},
      {instruction, "\x02", nullptr},
      {instruction, "?", "<?x ?\?>"},
      {target, "XmL", nullptr},
      {target, "xml-s", "<?xml-s x?>"},
      {text, "\x1f", nullptr},
      {text, "]]>", "]]&gt;"},
      {text, "\xef\xbf\xbf", nullptr},
      {cdata, "\x03", nullptr},
      {cdata, "a]]>b", "<![CDATA[a]]]]><![CDATA[>b]]>"},
      {cdata, "]]>]]>", "<![CDATA[]]]]><![CDATA[>]]]]><![CDATA[>]]>"},
      {cdata, "a\rb", "<![CDATA[a]]>&#xD;<![CDATA[b]]>"},
      {cdata, "", "<![CDATA[]]>"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.pData);
    CDoc doc("<r/>");
    CText data(row.pData), kept("kept"), error;
    TSXRefId node = 0;
    ASSERT_EQ(row.create(doc.Id(), &data, &node), 0);
    ASSERT_EQ(TSXAppendChild(doc.Root(), node), 0);
    CPath path("refused.xml");
    path.Write("old");
    const bool isRefused = row.pText == nullptr;
    for (const auto get : {TSXGetXML, TSXGetXMLPP}) {
      EXPECT_EQ(get(node, &kept), isRefused ? domErrSerialize : 0);
      EXPECT_EQ(kept.Str(), isRefused ? "kept" : row.pText);
      EXPECT_EQ(get(doc.Id(), &kept), isRefused ? domErrSerialize : 0);
    }
    for (const auto save : {TSXSaveFile, TSXSaveFilePP}) {
      EXPECT_EQ(save(doc.Id(), path.Get(), &error), isRefused ? domErrSaveFile : 0);
      EXPECT_EQ(path.Read() == "old", isRefused);
    }
    EXPECT_EQ(error.Str(), isRefused ? "Failed to write file" : "");
    if (!isRefused) {
      CDoc again;
      EXPECT_EQ(support::Load(again.Id(), doc.Xml()), 0);
      EXPECT_EQ(TextOf(TSXGetText, again.Root()), TextOf(TSXGetText, doc.Root()));
    }
  }
}

TEST_F(Write, RefusesIdentifiersThatAreNone) {
  const CDoc doc("<r/>");
  const TSXRefId implementation = IdOf(TSXGetImplementation, doc.Id(), uint64_t{0});
  struct {
    const char *pPublic, *pSystem, *pText;
  } const rows[] = {
      {"", "a\"b", "<!DOCTYPE t SYSTEM 'a\"b'>"},
      {"p'", "s", "<!DOCTYPE t PUBLIC \"p'\" \"s\">"},
      {"", "a\"'b", nullptr},
      {"p{}", "s", nullptr},
      {"p", "", nullptr},
  };
  for (const auto& row : rows) {
    CText name("t"), publicId(row.pPublic), systemId(row.pSystem);
    const TSXRefId type = IdOf(TSXCreateDocumentType, implementation, &name, &publicId, &systemId);
    CText text;
    EXPECT_EQ(TSXGetXML(type, &text), row.pText != nullptr ? 0 : domErrSerialize) << row.pSystem;
    EXPECT_EQ(text.Str(), row.pText != nullptr ? row.pText : "");
    TSXNodeClose(type);
  }
  TSXImplementationClose(implementation);
}

// -- Namespaces -------------------------------------------------------------------

TEST_F(Write, DeclaresPrefixesWhereTheyAreMissing) {
  CDoc doc;
  SetNamespaces(doc);
  ASSERT_EQ(
      support::Load(doc.Id(), "<p:r xmlns:p='u' xmlns='v'><a><b p:x='1' y='2'/></a><p:c/></p:r>"),
      0);
  const TSXRefId root = doc.Root(), a = support::FirstChild(root), c = support::NextSibling(a);
  EXPECT_EQ(TextOf(TSXGetXML, root),
            "<p:r xmlns:p=\"u\" xmlns=\"v\"><a><b p:x=\"1\" y=\"2\"/></a><p:c/></p:r>");
  EXPECT_EQ(TextOf(TSXGetXML, a), "<a xmlns=\"v\"><b xmlns:p=\"u\" p:x=\"1\" y=\"2\"/></a>");
  EXPECT_EQ(TextOf(TSXGetXML, c), "<p:c xmlns:p=\"u\"/>");
  // Moved to where its prefixes mean something else, or nothing.
  CDoc target;
  SetNamespaces(target);
  ASSERT_EQ(support::Load(target.Id(), "<t xmlns:p='w'/>"), 0);
  const TSXRefId copy = IdOf(TSXImportNode, target.Id(), a, &support::kDeep);
  ASSERT_EQ(TSXAppendChild(target.Root(), copy), 0);
  EXPECT_EQ(TextOf(TSXGetXML, target.Root()),
            "<t xmlns:p=\"w\"><a xmlns=\"v\"><b xmlns:p=\"u\" p:x=\"1\" y=\"2\"/></a></t>");
}

TEST_F(Write, NamespacesMadeOddlyComeBack) {
  const auto set = [](TSXRefId element, const char* pUri, const char* pName, const char* pValue) {
    CText uri(pUri), name(pName), value(pValue);
    EXPECT_EQ(TSXSetAttributeNS(element, &uri, &name, &value), 0) << pName;
  };
  const char* const pXmlns = "http://www.w3.org/2000/xmlns/";
  struct {
    const char *pUri, *pName;
    std::vector<std::array<const char*, 3>> attributes;
    const char* pText;
  } const rows[] = {
      {"u", "p:e", {{pXmlns, "xmlns:p", "other"}}, "<p:e xmlns:p=\"u\"/>"},
      {"u", "e", {{pXmlns, "xmlns", "other"}}, "<e xmlns=\"u\"/>"},
      {"", "e", {{pXmlns, "xmlns", "other"}}, "<e/>"},
      {"u", "e", {{"v", "a", "1"}}, "<e xmlns=\"u\" xmlns:NS1=\"v\" NS1:a=\"1\"/>"},
      {"u", "p:e", {{"v", "p:a", "1"}}, "<p:e xmlns:p=\"u\" xmlns:NS1=\"v\" NS1:a=\"1\"/>"},
      {"u", "p:e", {{"u", "a", "1"}}, "<p:e xmlns:p=\"u\" p:a=\"1\"/>"},
      {"",
       "e",
       {{"v", "q:a", "1"}, {"w", "q:b", "2"}},
       "<e xmlns:q=\"v\" q:a=\"1\" xmlns:NS1=\"w\" NS1:b=\"2\"/>"},
      {"", "e", {{"v", "q:a", "1"}, {pXmlns, "xmlns:q", "w"}}, "<e xmlns:q=\"v\" q:a=\"1\"/>"},
      {"",
       "e",
       {{"v", "z:a", "1"}, {pXmlns, "xmlns:z", "w"}},
       "<e xmlns:z=\"w\" xmlns:NS1=\"v\" NS1:a=\"1\"/>"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.pText);
    CDoc doc("<r/>");
    CText uri(row.pUri), name(row.pName);
    const TSXRefId element = IdOf(TSXCreateElementNS, doc.Id(), &uri, &name);
    for (const auto& [pUri, pName, pValue] : row.attributes) set(element, pUri, pName, pValue);
    ASSERT_EQ(TSXAppendChild(doc.Root(), element), 0);
    EXPECT_EQ(TextOf(TSXGetXML, element), row.pText);
    ExpectRoundTrip(doc.Xml());
  }
}

// Elements that were made without namespaces are in none, unless they say so.
TEST_F(Write, ElementsWithoutNamespacesStayOutside) {
  CDoc doc;
  SetNamespaces(doc);
  ASSERT_EQ(support::Load(doc.Id(), "<r xmlns='u'/>"), 0);
  const TSXRefId plain = support::Create(doc.Id(), "a"), own = support::Create(doc.Id(), "b");
  ASSERT_EQ(support::SetAttribute(own, "xmlns", "v"), 0);
  ASSERT_EQ(TSXAppendChild(own, support::Create(doc.Id(), "c")), 0);
  for (const TSXRefId element : {plain, own}) ASSERT_EQ(TSXAppendChild(doc.Root(), element), 0);
  EXPECT_EQ(TextOf(TSXGetXML, doc.Root()),
            "<r xmlns=\"u\"><a xmlns=\"\"/><b xmlns=\"v\"><c/></b></r>");
  const CDoc level1("<r xmlns='u'><a/><p:b xmlns:p='v' p:c=''/></r>");
  EXPECT_EQ(TextOf(TSXGetXML, level1.Root()),
            "<r xmlns=\"u\"><a/><p:b p:c=\"\" xmlns:p=\"v\"/></r>");
}

// -- Pretty text ------------------------------------------------------------------

TEST_F(Write, PrettyTextLosesNothing) {
  const std::pair<const char*, const char*> rows[] = {
      {"<p>See <a>the manual</a>, <b>bold</b>!</p>", "<p>See <a>the manual</a>, <b>bold</b>!</p>"},
      {"<p>x<a> <b/></a></p>", "<p>x<a> <b/></a></p>"},
      {"<p> <a/>\n\n\n<b> </b><c></c></p>", "<p>\n  <a/>\n  <b> </b>\n  <c/>\n</p>"},
      {"<p><a><b><c/></b></a></p>", "<p>\n  <a>\n    <b>\n      <c/>\n    </b>\n  </a>\n</p>"},
      {"<p><!--a--><b/><?c?></p>", "<p>\n  <!--a-->\n  <b/>\n  <?c?>\n</p>"},
      {"<p><!--a--></p>", "<p><!--a--></p>"},
      {"<p><![CDATA[x]]><a/></p>", "<p><![CDATA[x]]><a/></p>"},
      {"<p><![CDATA[ ]]><a/></p>", "<p>\n  <![CDATA[ ]]>\n  <a/>\n</p>"},
      {"<p xml:space='preserve'><a> <b/></a></p>", "<p xml:space=\"preserve\"><a> <b/></a></p>"},
      {"<p xml:space='preserve'><a xml:space='default'> <b/></a></p>",
       "<p xml:space=\"preserve\"><a xml:space=\"default\">\n    <b/>\n  </a></p>"},
  };
  for (const auto& [pXml, pPretty] : rows) {
    const CDoc doc(pXml);
    EXPECT_EQ(TextOf(TSXGetXMLPP, doc.Id()), kHead + "\n" + pPretty + "\n");
    EXPECT_EQ(TextOf(TSXGetXMLPP, doc.Root()), pPretty);
    ExpectRoundTrip(pXml);
  }
  const CDoc around("<p xml:space='preserve'><a><b/></a></p>");
  EXPECT_EQ(TextOf(TSXGetXMLPP, support::FirstChild(around.Root())), "<a><b/></a>");
}

// -- Files of others ----------------------------------------------------------------

// A copy of a folder, which goes with it.
class CFolder {
 public:
  explicit CFolder(const char* pOriginal)
      : m_Name(::testing::TempDir() + "tessel_folder_" + std::to_string(getpid())) {
    std::filesystem::copy(pOriginal, m_Name, std::filesystem::copy_options::recursive);
  }
  ~CFolder() { std::filesystem::remove_all(m_Name); }
  CFolder(const CFolder&) = delete;
  CFolder& operator=(const CFolder&) = delete;

  std::vector<std::string> XmlFiles() const {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(m_Name)) {
      const auto extension = entry.path().extension();
      const bool isXml = extension == ".xml" || extension == ".xsl";
      if (entry.is_regular_file() && isXml) files.push_back(entry.path());
    }
    return files;
  }

 private:
  std::string m_Name;
};

void Prepare(const CDoc& doc) {
  SetNamespaces(doc);
  EXPECT_EQ(TSXSetLoadExternalDTD(doc.Id(), 0, &support::kOff), 0);
}

// What is on the network is not asked for; what is no document by itself is passed over.
bool LoadsByItself(const CDoc& doc, const CPlace& place, const std::string& name) {
  std::ifstream in(name);
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  const size_t subset = text.find("<!ENTITY");
  if (subset != text.npos && text.find("http:", subset) < text.find("]>", subset)) return false;
  CText errors, exception;
  return TSXLoadFile(doc.Id(), place.Get(), &errors, &exception) == 0;
}

// Each is written over itself, plain and then pretty, where what it names is found.
TEST_F(Write, FilesOfPackagesComeBack) {
  const std::pair<const char*, size_t> rows[] = {
      {"/usr/share/mime/packages", 1},
      {"/usr/share/xml/iso-codes", 10},
      {"/usr/share/xml/docbook/stylesheet/docbook-xsl", 400},
  };
  for (const auto& [pFolder, least] : rows) {
    ASSERT_TRUE(std::filesystem::exists(pFolder)) << pFolder << ": ./setup installs it";
    const CFolder folder(pFolder);
    size_t count = 0;
    for (const std::string& name : folder.XmlFiles()) {
      const CPlace place(name);
      const CDoc doc;
      Prepare(doc);
      if (!LoadsByItself(doc, place, name)) continue;
      ++count;
      for (const bool isPretty : {false, true}) {
        const auto told = isPretty ? support::ETold::kLayout : support::ETold::kAll;
        CText error;
        ASSERT_EQ((isPretty ? TSXSaveFilePP : TSXSaveFile)(doc.Id(), place.Get(), &error), 0)
            << name;
        const CDoc again;
        Prepare(again);
        ASSERT_EQ(LoadFile(again.Id(), place.Get()), 0) << name;
        EXPECT_TRUE(Seen(again, told) == Seen(doc, told)) << name;
        const auto get = isPretty ? TSXGetXMLPP : TSXGetXML;
        EXPECT_TRUE(TextOf(get, again.Id()) == TextOf(get, doc.Id())) << name;
      }
    }
    EXPECT_GE(count, least) << pFolder;
  }
}

}  // namespace
