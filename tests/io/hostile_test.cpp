// Documents that mean harm, or are cut off: a code and a message each, and the
// document object goes on working.
#include <sys/stat.h>

#include <thread>

#include "support/path.h"
#include "support/sanitizer.h"

namespace {

using support::CDoc;
using support::CPath;
using support::CText;
using support::IdOf;
using support::Repeated;
using support::TextOf;

std::string Numbered(const char* pName, int number) { return pName + std::to_string(number); }

class Hostile : public support::CLedgerTest {
 protected:
  // The lines of a load; there are some where it fails, and else none.
  static std::string Load(const CDoc& doc, std::string_view xml) {
    std::string errors, exception;
    const TSXStatus status = support::Load(doc.Id(), xml, &errors, &exception);
    EXPECT_EQ(status, errors.empty() ? 0 : domErrParse);
    EXPECT_EQ(exception, "");
    return errors;
  }

  static std::string LoadFile(const CDoc& doc, const CPath& path) {
    std::string errors;
    const TSXStatus status = support::LoadFile(doc.Id(), path.Get(), &errors);
    EXPECT_EQ(status, errors.empty() ? 0 : domErrParse);
    return errors;
  }

  static void ExpectRefused(const std::string& errors, std::string_view message) {
    EXPECT_TRUE(!errors.empty() && errors.find(message) != std::string::npos) << errors;
  }

  static void ValidateWithSchemas(const CDoc& doc) {
    EXPECT_EQ(TSXSetDoNamespaces(doc.Id(), 0, &support::kOn), 0);
    EXPECT_EQ(TSXSetDoSchema(doc.Id(), 0, &support::kOn), 0);
    EXPECT_EQ(TSXSetValidateOnLoad(doc.Id(), 0, &support::kAlways), 0);
  }
};

// Twelve entities of ten references each, wherever references are expanded.
TEST_F(Hostile, EntitiesThatWantToBecomeGigabytesAreStopped) {
  std::string general = "<!DOCTYPE r [<!ENTITY e0 'ha'>";
  std::string parameter = "<!DOCTYPE r [<!ENTITY % e0 ''>";
  for (int i = 1; i < 12; ++i) {
    const std::string inner = Numbered("e", i - 1);
    general += "<!ENTITY " + Numbered("e", i) + " '" + Repeated("&" + inner + ";", 10) + "'>";
    parameter +=
        "<!ENTITY % " + Numbered("e", i) + " '" + Repeated("&#37;" + inner + ";", 10) + "'>";
  }
  CPath file("entity.txt");
  file.Write("text");
  const std::string rows[] = {
      general + "]><r>&e11;</r>",
      general + "]><r a='&e11;'/>",
      general + "<!ATTLIST r a CDATA '&e11;'>]><r/>",
      parameter + "%e11;]><r/>",
      general + "<!ENTITY f SYSTEM '" + file.Name() + "'>]><r>" + Repeated("&e0;", 50000) +
          "&f;</r>",
  };
  CDoc doc;
  for (const std::string& row : rows) {
    SCOPED_TRACE(row.substr(row.size() - 30));
    ExpectRefused(Load(doc, row), "more than '50000' entity expansions");
    EXPECT_EQ(Load(doc, "<r/>"), "") << "expansions are counted anew";
  }
  const std::string some = "<!DOCTYPE r [<!ENTITY % p ''>" + Repeated("%p;", 1000) +
                           "<!ENTITY e 'x'>]><r>" + Repeated("&e;", 1000) + "</r>";
  for (int i = 0; i < 30; ++i) EXPECT_EQ(Load(doc, some), "");
}

TEST_F(Hostile, ExpandedTextIsCountedWhereverItStands) {
  CPath ascii("ascii.txt"), utf8("utf8.txt"), utf16("utf16.txt"), type("limit.dtd");
  ascii.Write("0123456789");
  utf8.Write("\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80");
  utf16.Write(std::string_view("\xff\xfe\xac\x20\x3d\xd8\x00\xde", 8));
  type.Write("<!ENTITY e '<b/>'>" + Repeated(" ", 1000));
  const auto external = [](const CPath& path) {
    return "<!DOCTYPE r [<!ENTITY e SYSTEM '" + path.Name() + "'>]><r>&e;</r>";
  };
  const std::string start = "<!DOCTYPE r [<!ENTITY e '0123456789'><!ENTITY f '&e;&e;'>";
  struct {
    std::string xml;
    int64_t units;
  } const rows[] = {
      {start + "]><r>&e;&e;</r>", 20},
      {start + "]><r>&f;</r>", 26},
      {start + "]><r a='&e;'><b a='&#65;&f;&lt;'/></r>", 36},
      {start + "<!ATTLIST r a CDATA '-&e;-'>]><r a=''/>", 10},
      {start + "<!ATTLIST r a CDATA '-&e;-'>]><r><r/></r>", 10 + 2 * (12 + 1 + 16)},
      {"<!DOCTYPE r [<!ATTLIST r bc CDATA 'xyz' d CDATA ''>]><r><r/><r bc='' d=''/></r>",
       2 * (3 + 2 + 16 + 0 + 1 + 16)},
      {start + "<!ENTITY % p '<!--67890-->'>%p;%p;]><r/>", 24},
      {external(ascii), 10},
      {external(utf8), 4},
      {external(utf16), 4},
      {"<!DOCTYPE r SYSTEM '" + type.Name() + "'><r>&e;</r>", 4},
  };
  const auto load = [](const CDoc& doc, const std::string& xml, int64_t limit) {
    EXPECT_EQ(TSXSetEntityTextLimit(doc.Id(), 0, &limit), 0);
    return Load(doc, xml);
  };
  CDoc doc;
  for (const auto& [xml, units] : rows) {
    EXPECT_EQ(load(doc, xml, units), "") << xml;
    EXPECT_EQ(load(doc, xml, 0), "") << xml;
    const std::string less = std::to_string(units - 1);
    ExpectRefused(load(doc, xml, units - 1), "expansions add more than " + less + " characters");
    ExpectRefused(load(doc, xml, -1), "expansions add more than -1 characters");
  }
  EXPECT_EQ(load(doc, "<r>text</r>", -1), "");
  // What a short text asks for, and what it gets.
  const std::string much = "<!DOCTYPE r [<!ENTITY e '" + Repeated("0123456789", 10000) + "'>]><r>" +
                           Repeated("&e;", 40000) + "</r>";
  const long before = support::UsedBytes();
  ExpectRefused(load(doc, much, 1'000'000), "expansions add more than 1000000 characters");
  EXPECT_LT(support::UsedBytes() - before, 32 << 20);
}

TEST_F(Hostile, EveryPrefixOfAGoodDocumentAnswers) {
  const std::string good =
      "<?xml version='1.0' encoding='UTF-8'?>\n<!-- caf\xc3\xa9 -->\n"
      "<!DOCTYPE r [<!ELEMENT r ANY><!ATTLIST r a CDATA 'd' id ID #IMPLIED>"
      "<!ENTITY e '<b>\xe2\x82\xac</b>'><!ENTITY % p '<!--p-->'>%p;<!NOTATION n PUBLIC 'n'>]>\n"
      "<r id='i' xmlns:x='urn:x'>&e;&#x1F600;\xf0\x9f\x98\x80<x:y a=\"&lt;\"/>"
      "<![CDATA[<raw>]]><?pi data?></r>\n<?end?>";
  const size_t whole = good.find("</r>") + 4, lastPart = good.find("<?end");
  CDoc plain, validating, target("<t><u/></t>");
  ValidateWithSchemas(validating);
  const TSXRefId element = support::FirstChild(target.Root());
  for (size_t size = 0; size < good.size(); ++size) {
    SCOPED_TRACE(size);
    const TSXStatus expected = size >= whole && size <= lastPart ? 0 : domErrParse;
    CText text(good.substr(0, size)), errors, exception;
    EXPECT_EQ(TSXElementSetXML(element, &text, &errors, &exception), expected);
    for (const CDoc* pDoc : {&plain, &validating}) {
      const std::string lines = Load(*pDoc, good.substr(0, size));
      EXPECT_TRUE(lines.empty() || lines.starts_with("Line ")) << lines;
      if (pDoc == &plain || expected != 0) {
        EXPECT_EQ(lines.empty(), expected == 0);
      }
      pDoc->Xml();  // whatever was read can be written
    }
  }
}

TEST_F(Hostile, TruncatedCharactersAreRefused) {
  using namespace std::string_literals;
  CDoc doc;
  CPath path("cut.xml");
  // The first bytes of characters of two, three and four bytes, a byte that begins
  // none, and a surrogate.
  for (const std::string& cut : {"\xc3"s, "\xe2\x82"s, "\xf0\x9f\x98"s, "\xff"s, "\xed\xa0\x80"s}) {
    for (const auto& [before, after] : std::initializer_list<std::pair<std::string, std::string>>{
             {"<r>", "</r>"},
             {"<r>", ""},
             {"<r a='", "'/>"},
             {"<", "/>"},
             {"<!--", "--><r/>"},
             {"<!DOCTYPE r [<!ENTITY e '", "'>]><r/>"}}) {
      SCOPED_TRACE(before + after);
      path.Write(before + cut + after);
      ExpectRefused(Load(doc, before + cut + after), "Line 1, Column ");
      ExpectRefused(LoadFile(doc, path), "Line 1, Column ");
    }
  }
  // UTF-16: half a unit at the end, and the halves of a pair without the other.
  const auto utf16 = [](std::u16string_view text, size_t bytes) {
    const std::u16string all = u"\ufeff" + std::u16string(text);
    return std::string(reinterpret_cast<const char*>(all.data()),
                       bytes != 0 ? bytes : 2 * all.size());
  };
  const std::u16string high(1, char16_t{0xd83d}), low(1, char16_t{0xde00});
  for (const std::string& bytes : {utf16(u"<r>ab</r>", 19), utf16(u"<r>" + high + u"</r>", 0),
                                   utf16(u"<r>" + low + u"</r>", 0), utf16(u"<r>" + high, 0)}) {
    path.Write(bytes);
    ExpectRefused(LoadFile(doc, path), "Line 1, Column ");
  }
  path.Write(utf16(u"<r>" + high + low + u"</r>", 0));
  EXPECT_EQ(LoadFile(doc, path), "");
}

TEST_F(Hostile, WhatCannotBeFetchedIsAnErrorWithAMessage) {
  CPath folder("folder"), missing("missing");
  std::filesystem::create_directory(folder.Name());
  struct {
    std::string target, message;
  } const rows[] = {
      {missing.Name(), "unable to open"},
      {"file://" + missing.Name(), "unable to open"},
      {"", "unable to open"},
      {"strange://host/file", "unable to open"},
      {folder.Name(), "unable to read data from file"},
      {"/proc/self/mem", "unable to read data from file"},
      {"/dev/zero", "invalid "},
      {"http://127.0.0.1:1/file", "unable to connect socket for URL"},
      {"ftp://127.0.0.1:1/file", "unable to connect socket for URL"},
  };
  for (const auto& [target, message] : rows) {
    SCOPED_TRACE(target);
    CDoc doc;
    const std::string system = "SYSTEM '" + target + "'";
    ExpectRefused(Load(doc, "<!DOCTYPE r [<!ENTITY e " + system + ">]><r>&e;</r>"), message);
    EXPECT_EQ(support::Name(doc.Root()), "r") << "the part before the error";
    ExpectRefused(Load(doc, "<!DOCTYPE r [<!ENTITY % e " + system + "> %e;]><r/>"), message);
    ExpectRefused(Load(doc, "<!DOCTYPE r " + system + "><r/>"), message);
    ValidateWithSchemas(doc);
    ExpectRefused(Load(doc,
                       "<r xmlns:i='http://www.w3.org/2001/XMLSchema-instance' "
                       "i:noNamespaceSchemaLocation='" +
                           target + "'/>"),
                  "Message: ");
    EXPECT_EQ(Load(doc, "<!DOCTYPE r [<!ELEMENT r ANY>]><r/>"), "");
  }
}

// The parser never frees the entity that it makes for a document type, which a leak
// sanitizer sees: also not for one of a schema that it leaves at once.
TEST_F(Hostile, ADocumentTypeInASchemaThatCannotBeReadIsFreed) {
  CPath type("schema.dtd"), schema("typed.xsd");
  schema.Write("<!DOCTYPE s:schema SYSTEM '" + type.Name() +
               "'><s:schema xmlns:s='http://www.w3.org/2001/XMLSchema'/>");
  CDoc doc;
  ValidateWithSchemas(doc);
  for (const char* pText : {"<?xml encoding='none'?>", "<?xml version='9.0'?>", "\xff", "<!"}) {
    type.Write(pText);
    ExpectRefused(Load(doc,
                       "<r xmlns:i='http://www.w3.org/2001/XMLSchema-instance' "
                       "i:noNamespaceSchemaLocation='" +
                           schema.Name() + "'/>"),
                  "Message: ");
  }
}

// Devices and pipes are files like any: nothing is asked but their bytes.
TEST_F(Hostile, DevicesAndPipesAreReadToTheirEnd) {
  CDoc doc;
  EXPECT_EQ(Load(doc, "<!DOCTYPE r SYSTEM '/dev/null' [<!ENTITY e SYSTEM '/dev/null'>]><r>&e;</r>"),
            "");
  CPath null("/dev/null/none"), pipe("pipe");
  ASSERT_EQ(mkfifo(pipe.Name().c_str(), 0600), 0);
  for (const std::string& xml : {std::string("<r>whole</r>"), std::string("<r>cut")}) {
    std::thread writer([&] { pipe.Write(xml); });
    const std::string errors = LoadFile(doc, pipe);
    writer.join();
    EXPECT_EQ(errors.empty(), xml.ends_with("</r>")) << errors;
    EXPECT_EQ(support::Name(doc.Root()), "r");
  }
}

long AvailableGigabytes() {
  std::ifstream info("/proc/meminfo");
  std::string name;
  for (long kilobytes = 0; info >> name; info.ignore(100, '\n')) {
    if (name == "MemAvailable:" && info >> kilobytes) return kilobytes >> 20;
  }
  return 0;
}

TEST_F(Hostile, AMillionIds) {
  if (support::kSanitized) GTEST_SKIP() << "a sanitizer takes too much time";
  constexpr int kMillion = 1'000'000;
  std::string xml = "<!DOCTYPE r [<!ATTLIST b i ID #IMPLIED>]><r>";
  for (int i = 0; i < kMillion; ++i) xml += Numbered("<b i='x", i) + "'/>";
  CDoc doc(xml + "</r>");
  const auto find = [&](int number) {
    CText id(Numbered("x", number));
    return IdOf(TSXGetElementById, doc.Id(), &id);
  };
  const TSXRefId root = doc.Root(), last = IdOf(TSXGetLastChild, root, uint64_t{0});
  EXPECT_EQ(find(0), support::FirstChild(root));
  EXPECT_EQ(find(kMillion - 1), last);
  EXPECT_EQ(find(kMillion), 0u);
  CText path("id('x999999')"), error;
  TSXRefId found = 0;
  EXPECT_EQ(XPathEvaluateContextToNode(root, &path, &found, &error), 0);
  EXPECT_EQ(found, last);
  // Values that come and go take a place each.
  for (int i = 1; i <= kMillion; ++i) support::SetAttribute(last, "i", Numbered("y", i));
  EXPECT_EQ(find(kMillion - 1), 0u);
  EXPECT_EQ(find(kMillion - 2), IdOf(TSXGetPreviousSibling, last, uint64_t{0}));
}

// Half of it is text. The rest is white space in the end tag, which takes no memory.
TEST_F(Hostile, AGigabyte) {
  if (support::kSanitized) GTEST_SKIP() << "a sanitizer takes too much memory";
  if (AvailableGigabytes() < 10) GTEST_SKIP() << "less than 10 GB of memory are free";
  constexpr int32_t kGigabyte = 1 << 30, kText = 1 << 29;
  HStr text = static_cast<HStr>(HostNewHandle(sizeof(int32_t) + size_t{kGigabyte}));
  ASSERT_NE(text, nullptr);
  (*text)->count = kGigabyte;
  char* pBytes = reinterpret_cast<char*>(*text) + sizeof(int32_t);
  std::memset(pBytes, 'x', kText);
  std::memset(pBytes + kText, ' ', kGigabyte - kText);
  std::memcpy(pBytes, "<r>", 3);
  std::memcpy(pBytes + kText, "</r", 3);
  pBytes[kGigabyte - 1] = '>';
  CDoc doc;
  CText errors, exception;
  EXPECT_EQ(TSXLoadString(doc.Id(), &text, &errors, &exception), 0);
  ClearString(&text);
  int32_t length = 0;
  EXPECT_EQ(TSXGetCharacterDataLength(support::FirstChild(doc.Root()), 0, &length), 0);
  EXPECT_EQ(length, kText - 3);
}

}  // namespace
