// Trees that are too deep for a recursion: an answer, never an overflow.
#include "document/treeparser.h"
#include "support/path.h"
#include "support/sanitizer.h"
#include "support/stack.h"

namespace {

using support::CDoc;
using support::CPath;
using support::CText;
using support::IdOf;
using support::OnStackOf;
using support::Repeated;

std::string Nested(int levels, std::string_view inner = "x") {
  return Repeated("<d>", levels) + std::string(inner) + Repeated("</d>", levels);
}

class Depth : public support::CLedgerTest {
 protected:
  static constexpr size_t kSmall = 256;  // kilobytes
  static constexpr size_t kUsual = 8192;

  // Every call that goes down a tree, on one of the given depth: `fits` says whether
  // the stack holds it for those that need it.
  static void CallEverything(int levels, bool fits) {
    CDoc doc(Nested(levels)), target("<t/>");
    const TSXRefId root = doc.Root();
    CText text, xml(Nested(levels)), errors, exception;
    EXPECT_EQ(TSXGetXML(doc.Id(), &text), 0);
    EXPECT_TRUE(text.Str().ends_with(Nested(levels))) << levels;
    CPath path("deep.xml");
    EXPECT_EQ(TSXSaveFile(doc.Id(), path.Get(), &errors), 0);
    EXPECT_TRUE(path.Read() == text.Str()) << levels;
    TSXRefId copy = 0;
    EXPECT_EQ(TSXCloneNode(root, &support::kDeep, &copy), 0);
    EXPECT_EQ(support::TextOf(TSXGetText, copy), "x");
    EXPECT_EQ(TSXImportNode(target.Id(), root, &support::kDeep, &copy), 0);
    EXPECT_EQ(support::TextOf(TSXGetText, copy), "x");
    EXPECT_EQ(TSXElementSetXML(target.Root(), &xml, &errors, &exception), 0);
    EXPECT_EQ(support::TextOf(TSXGetText, target.Root()), "x");
    EXPECT_EQ(support::TextOf(TSXGetText, root), "x");
    CText expression("//d[last()]"), textValue("/d[string() = 'x']");
    EXPECT_EQ(XPathEvaluateContextToNode(doc.Id(), &expression, &copy, &errors), 0);
    EXPECT_NE(copy, 0u);
    const TSXStatus status = XPathEvaluateContextToNode(doc.Id(), &textValue, &copy, &errors);
    EXPECT_TRUE(status == 0 || (!fits && status == domErrXPathXSL)) << status;
    EXPECT_EQ(copy != 0, status == 0);
    EXPECT_EQ(errors.IsNull(), status == 0);
    EXPECT_EQ(TSXRemoveChild(doc.Id(), root), 0);
    EXPECT_TRUE(support::Resolves(root)) << "another hand-out is open";
  }
};

TEST_F(Depth, CallsOnASmallStackAnswer) {
  OnStackOf(kSmall, [] { CallEverything(500, true); });
  OnStackOf(kSmall, [] { CallEverything(20000, false); });
}

// A sanitizer is slow: a smaller stack takes fewer levels.
TEST_F(Depth, CallsOnTheUsualStackAnswer) {
  OnStackOf(support::kSanitized ? 2048 : kUsual,
            [] { CallEverything(support::kSanitized ? 20000 : 100000, false); });
}

// A following sibling at every level, and two texts at the bottom.
TEST_F(Depth, NormalizingGoesDownWithoutTheStack) {
  OnStackOf(kSmall, [] {
    constexpr int kLevels = 100000;
    CDoc doc(Repeated("<d>", kLevels) + "<![CDATA[c]]>" + Repeated("</d><s/>", kLevels - 1) +
             "</d>");
    TSXRefId inside = doc.Root();
    for (int i = 1; i < kLevels; ++i) inside = support::FirstChild(inside);
    for (const char* pText : {"a", "b"}) {
      EXPECT_EQ(TSXAppendChild(inside, support::CreateText(doc.Id(), pText)), 0);
    }
    EXPECT_EQ(TSXNormalize(doc.Root()), 0);
    const TSXRefId merged = support::NextSibling(support::FirstChild(inside));
    EXPECT_EQ(support::TextOf(TSXGetNodeValue, merged, uint64_t{0}), "ab");
    EXPECT_EQ(support::NextSibling(merged), 0u);
  });
}

// Entity references stand at every level.
TEST_F(Depth, DeepSubtreesAreFreed) {
  OnStackOf(kSmall, [] {
    for (const char* pContent : {"", "&e;"}) {
      const int levels = *pContent == 0 ? 100000 : 5000;
      CDoc doc("<!DOCTYPE d [<!ENTITY e '<x><y/></x>'>]>" +
               Repeated("<d>" + std::string(pContent), levels) + Repeated("</d>", levels));
      const TSXRefId root = doc.Root();
      TSXRefId inside = support::FirstChild(support::FirstChild(root));
      for (int i = 0; *pContent == 0 && i < 50000; ++i) inside = support::FirstChild(inside);
      EXPECT_EQ(TSXRemoveChild(doc.Id(), root), 0);  // the only hand-out: freed
      for (const TSXRefId id : {root, inside}) EXPECT_FALSE(support::Resolves(id));
    }
  });
}

// What is within the limit of the parser may be looked into, copied and freed on any
// stack; what is beyond it never becomes a tree.
TEST_F(Depth, ContentOfEntitiesIsShallow) {
  const auto asElements = [](int levels) {
    return "<!DOCTYPE r [<!ENTITY e0 '" + Nested(levels) + "'>]><r>&e0;</r>";
  };
  const auto asReferences = [](int levels) {
    std::string xml = "<!DOCTYPE r [<!ENTITY e" + std::to_string(levels) + " 'x'>";
    for (int i = 0; i < levels; ++i) {
      xml += "<!ENTITY e" + std::to_string(i) + " '&e" + std::to_string(i + 1) + ";'>";
    }
    return xml + "]><r>&e0;</r>";
  };
  const auto useEntity = [&](const std::string& xml) {
    CDoc doc(xml);
    CText name("e0");
    EXPECT_NE(support::FirstChild(support::OfType(doc.Id(), TSXGetEntities, "e0")), 0u);
    EXPECT_NE(support::FirstChild(IdOf(TSXCreateEntityReference, doc.Id(), &name)), 0u);
    EXPECT_NE(IdOf(TSXCloneNode, doc.Root(), &support::kDeep), 0u);
    const TSXRefId root = doc.Root();
    TSXNodeClose(root);
    EXPECT_EQ(TSXRemoveChild(doc.Id(), root), 0);
  };
  constexpr int kMost = static_cast<int>(CTreeParser::kMostInEntity);
  const std::string message = "the content of an entity is nested more than 250 levels deep";
  OnStackOf(128, [&] {
    useEntity(asElements(kMost - 1));
    useEntity(asReferences(kMost - 1));
    for (const std::string& xml : {asElements(kMost), asReferences(kMost), asElements(100000)}) {
      CDoc doc;
      std::string errors;
      EXPECT_EQ(support::Load(doc.Id(), xml, &errors), domErrParse);
      EXPECT_TRUE(errors.ends_with(message)) << errors;
      EXPECT_EQ(support::Name(doc.Root()), "r");
      EXPECT_EQ(support::Load(doc.Id(), Nested(1000)), 0) << "levels are counted anew";
    }
  });
  // Levels are those inside references, however many of them there are.
  std::string many = "<!DOCTYPE r [<!ENTITY e ''><!ENTITY f 'x<a/><b>&e;</b>'>]><r>";
  CDoc doc(many + Repeated("&e;&f;", 1000) + Nested(1000) + "</r>");
}

// A validating parser makes an automaton of each content model, by recursion.
TEST_F(Depth, ContentModelsTooLargeForTheStackAreRefused) {
  const auto model = [](int names, char between) {
    std::string xml = "<!DOCTYPE r [<!ELEMENT a EMPTY><!ELEMENT r (a";
    for (int i = 1; i < names; ++i) {
      xml += between;
      xml += between == '|' ? "b" + std::to_string(i) : "a";
    }
    return xml + ")>]><r>" + Repeated("<a/>", between == '|' ? 1 : names) + "</r>";
  };
  for (const char between : {'|', ','}) {
    OnStackOf(kSmall, [&] {
      CDoc unvalidated(model(5000, between)), doc;
      EXPECT_EQ(TSXSetValidateOnLoad(doc.Id(), 0, &support::kAlways), 0);
      for (const int names : {800, 1500, 5000}) {
        std::string errors;
        EXPECT_EQ(support::Load(doc.Id(), model(names, between), &errors),
                  names == 800 ? 0 : domErrParse);
        EXPECT_TRUE(errors.ends_with(
            names == 800 ? "" : "the content model is too large for the stack of this thread"))
            << errors;
      }
    });
  }
}

}  // namespace
