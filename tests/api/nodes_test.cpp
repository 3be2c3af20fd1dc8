// Editing: the codes of the DOM's refusals, and what becomes of ids.
#include "support/support.h"

namespace {

using support::CDoc;
using support::CText;
using support::IdOf;
using support::kDeep;
using support::Resolves;
using support::TextOf;

class Nodes : public support::CLedgerTest {
 protected:
  Nodes()
      : m_Doc(
            "<!DOCTYPE r [<!ENTITY e '<in k=\"v\">text</in>'>]>"
            "<r a='1'><b>text</b><c/>&e;</r>"),
        m_Root(m_Doc.Root()),
        m_B(support::FirstChild(m_Root)),
        m_C(support::NextSibling(m_B)),
        m_In(support::FirstChild(support::NextSibling(m_C))),
        m_InText(support::FirstChild(m_In)) {}

  void TearDown() override {
    m_Doc.Close();
    CLedgerTest::TearDown();
  }

  CDoc m_Doc;
  TSXRefId m_Root, m_B, m_C;
  TSXRefId m_In, m_InText;  // read-only: inside an entity reference
};

TEST_F(Nodes, RefusalsOfTheDomKeepTheirNumbersWhereListed) {
  CDoc other("<o/>");
  CText bad("1 x"), name("n"), value("v"), uri("u"), empty, prefixed("p:n"), kept("kept");
  const TSXRefId text = support::FirstChild(m_B), loose = support::Create(m_Doc.Id(), "l");
  const TSXRefId foreign = other.Root(), attribute = support::Attribute(m_Root, "a");
  const TSXRefId loner = IdOf(TSXCreateAttribute, m_Doc.Id(), &name);
  const TSXRefId inAttribute = support::Attribute(m_In, "k"), doc = m_Doc.Id();
  TSXRefId out = 77;
  const std::pair<TSXStatus, std::vector<TSXStatus>> rows[] = {
      {domErrIndexSize,
       {TSXDeleteData(text, 5, 1), TSXDeleteData(text, -1, 1), TSXInsertData(text, 5, &value),
        TSXReplaceData(text, 9, 0, &value), TSXSplitText(text, 5, &out)}},
      {domErrNoModificationAllowed,
       {TSXDeleteData(m_InText, 0, 1), TSXInsertData(m_InText, 0, &value),
        TSXAppendData(m_InText, &value), TSXSetCharacterDataData(m_InText, 0, &value),
        TSXSplitText(m_InText, 1, &out), TSXSetNodeValue(m_InText, 0, &value),
        TSXSetText(m_In, &value), TSXSetAttrValue(inAttribute, 0, &value),
        TSXSetAttribute(m_In, &name, &value), TSXRemoveAttribute(m_In, &name),
        TSXRemoveAttributeNS(m_In, &uri, &name), TSXSetAttributeNode(m_In, loner, &out),
        TSXRemoveAttributeNode(m_In, inAttribute), TSXAppendChild(m_In, loose),
        TSXRemoveChild(m_In, m_InText)}},
      {domErrInvalidCharacter,
       {TSXSetAttribute(m_Root, &bad, &value), TSXSetAttributeNS(m_Root, &uri, &bad, &value),
        TSXCreateElement(doc, &bad, &out), TSXCreateAttribute(doc, &bad, &out),
        TSXCreateEntityReference(doc, &bad, &out),
        TSXCreateProcessingInstruction(doc, &bad, &value, &out)}},
      {domErrNamespace,
       {TSXSetAttributeNS(m_Root, &empty, &prefixed, &value), TSXSetPrefixName(m_Root, 0, &name)}},
      {domErrInUseAttribute,
       {TSXSetAttributeNode(m_C, attribute, &out), TSXSetAttributeNodeNS(m_C, attribute, &out)}},
      {domErrWrongDocument,
       {TSXSetAttributeNode(foreign, loner, &out), TSXSetAttributeNode(m_C, text, &out),
        TSXAppendChild(m_B, foreign), TSXReplaceChild(m_Root, foreign, m_C)}},
      {domErrUnexpected, {TSXSetAttributeNodeNS(m_C, text, &out)}},
      {domErrNotFound,
       {TSXRemoveAttributeNode(m_C, loner), TSXRemoveAttributeNode(m_C, doc),
        TSXInsertBefore(m_B, m_C, loose), TSXReplaceChild(m_B, loose, m_C),
        TSXRemoveChild(m_B, m_C)}},
      {domErrHierarchyRequest,
       {TSXAppendChild(m_B, m_Root), TSXInsertBefore(m_B, 0, m_B),
        TSXReplaceChild(m_B, m_B, text)}},
      {domErrEmptyCreateElement, {TSXCreateElement(doc, &empty, &out)}},
      {domErrEmptyCreateElementNS, {TSXCreateElementNS(doc, &uri, &empty, &out)}},
      {domErrEmptyCreateEntityReference, {TSXCreateAttribute(doc, &empty, &out)}},
      {domErrEmptyCreateProcessingInstruction,
       {TSXCreateProcessingInstruction(doc, &empty, &value, &out)}},
      // Contract: a bad document is no failure here, and string getters drop their codes.
      {0, {TSXCreateAttribute(0, &empty, &out), TSXGetSubstringData(text, 5, 1, &kept)}},
      {0, {TSXImportNode(doc, foreign, &kDeep, &out)}},
  };
  for (const auto& [expected, got] : rows) {
    EXPECT_EQ(got, std::vector(got.size(), expected));
  }
  EXPECT_TRUE(kept.IsNull());
  EXPECT_EQ(TSXImportNode(doc, other.Id(), &kDeep, &out), domErrNotSupported);
  EXPECT_EQ(out, 0u);
  EXPECT_TRUE(m_Doc.Xml().ends_with("<r a=\"1\"><b>text</b><c/>&e;</r>")) << "nothing half-done";
}

TEST_F(Nodes, OffsetsAreUtf16UnitsAndNegativeCountsRunToTheEnd) {
  CText data("a\xf0\x9f\x98\x80z");  // one letter, a pair, one letter
  const TSXRefId text = support::CreateText(m_Doc.Id(), "");
  ASSERT_EQ(TSXSetCharacterDataData(text, 0, &data), 0);
  int32_t length = 0;
  EXPECT_EQ(TSXGetCharacterDataLength(text, 0, &length), 0);
  EXPECT_EQ(length, 4);
  EXPECT_EQ(TextOf(TSXGetSubstringData, text, 1, 2), "\xf0\x9f\x98\x80");
  EXPECT_EQ(TextOf(TSXGetSubstringData, text, 3, -1), "z");
  EXPECT_EQ(TextOf(TSXGetSubstringData, text, 0, 0x7fffffff), data.Str());
  EXPECT_EQ(TextOf(TSXGetSubstringData, text, 0, 2), "a\xef\xbf\xbd") << "half a pair";
  TSXRefId rest = 0;
  EXPECT_EQ(TSXSplitText(text, 2, &rest), 0);
  EXPECT_EQ(TextOf(TSXGetCharacterDataData, rest, uint64_t{0}), "\xef\xbf\xbdz");
  EXPECT_EQ(TSXDeleteData(text, 1, -5), 0);
  EXPECT_EQ(TextOf(TSXGetNodeValue, text, uint64_t{0}), "a");
}

// -- What becomes of ids ------------------------------------------------------

TEST_F(Nodes, ClonedMovedAndRemoved) {
  TSXRefId out = 77;
  EXPECT_EQ(TSXGetFirstChild(m_C, 0, &out), 0);
  EXPECT_EQ(out, 0u);
  const TSXRefId clone = IdOf(TSXCloneNode, m_B, &kDeep);
  EXPECT_EQ(TextOf(TSXGetXML, clone), "<b>text</b>");
  EXPECT_EQ(support::Parent(clone), 0u);
  EXPECT_EQ(IdOf(TSXGetOwnerDocument, clone, uint64_t{0}), m_Doc.Id());
  TSXNodeClose(m_Doc.Id());
  EXPECT_EQ(support::NextSibling(m_B), m_C);  // a second hand-out
  EXPECT_EQ(TSXRemoveChild(m_Root, m_C), 0);
  EXPECT_EQ(support::Parent(m_C), 0u);
  EXPECT_EQ(TSXInsertBefore(m_Root, m_B, m_C), 0);
  EXPECT_EQ(support::FirstChild(m_Root), m_C);
  EXPECT_EQ(TSXInsertBefore(m_Root, 424242, m_C), 0) << "no reference child: at the end";
  EXPECT_TRUE(m_Doc.Xml().ends_with("<b>text</b>&e;<c/></r>")) << m_Doc.Xml();
  EXPECT_EQ(TSXRemoveChild(m_Root, m_B), 0);
  EXPECT_FALSE(Resolves(m_B)) << "the last hand-out";
}

TEST_F(Nodes, AttributesSetReplacedAndRemoved) {
  CText name("a");
  const TSXRefId old = support::Attribute(m_Root, "a");
  const TSXRefId oldText = support::FirstChild(old);
  EXPECT_EQ(support::SetAttribute(m_Root, "a", "3"), 0);
  EXPECT_TRUE(Resolves(old));
  EXPECT_FALSE(Resolves(oldText)) << "setting a value frees the old text";
  const TSXRefId fresh = IdOf(TSXCreateAttribute, m_Doc.Id(), &name);
  EXPECT_EQ(IdOf(TSXSetAttributeNode, m_Root, fresh), old);
  EXPECT_EQ(TextOf(TSXGetAttrValue, old, uint64_t{0}), "3") << "the replaced one stays usable";
  EXPECT_EQ(IdOf(TSXOwnerElement, old, uint64_t{0}), 0u);
  EXPECT_EQ(IdOf(TSXSetAttributeNode, m_Root, fresh), fresh) << "had already";
  EXPECT_EQ(IdOf(TSXOwnerElement, fresh, uint64_t{0}), m_Root);
  EXPECT_EQ(TSXRemoveAttributeNode(m_Root, fresh), 0);
  // Contract: the id is not withdrawn, but it names nothing.
  EXPECT_FALSE(Resolves(fresh));
  ASSERT_EQ(support::SetAttribute(m_Root, "z", "recycled"), 0);
  EXPECT_NE(support::Attribute(m_Root, "z"), fresh);
  TSXNodeClose(old);
  EXPECT_FALSE(Resolves(old)) << "detached: freed at its first close";
}

TEST_F(Nodes, TextSetAndNormalisedLeavesDetachedNodesAlive) {
  const TSXRefId text = support::FirstChild(m_B);
  CText value("new");
  EXPECT_EQ(TSXSetText(m_B, &value), 0);
  EXPECT_EQ(TextOf(TSXGetText, m_B), "new");
  EXPECT_TRUE(Resolves(text)) << "the DOM detaches without freeing";
  const TSXRefId more = support::CreateText(m_Doc.Id(), "er");
  ASSERT_EQ(TSXAppendChild(m_B, more), 0);
  EXPECT_EQ(TSXNormalize(m_Root), 0);
  EXPECT_EQ(TextOf(TSXGetXML, m_B), "<b>newer</b>");
  EXPECT_TRUE(Resolves(more));
}

TEST_F(Nodes, ImportsFragmentsAndReplacements) {
  CDoc other("<o><p/></o>");
  const TSXRefId source = other.Root();
  const TSXRefId copy = IdOf(TSXImportNode, m_Doc.Id(), source, &kDeep);
  // Contract: the source is entered, the copy is not; a close of the source, which
  // its own tree owns, frees nothing.
  TSXNodeClose(source);
  EXPECT_EQ(TextOf(TSXGetXML, other.Root()), "<o><p/></o>");
  const TSXRefId fragment = IdOf(TSXCreateDocumentFragment, m_Doc.Id());
  ASSERT_EQ(TSXAppendChild(fragment, copy), 0);
  ASSERT_EQ(TSXAppendChild(m_C, fragment), 0);
  EXPECT_EQ(support::Parent(copy), m_C);
  EXPECT_EQ(support::FirstChild(fragment), 0u);
  EXPECT_EQ(TSXReplaceChild(m_Root, copy, m_B), 0);
  EXPECT_TRUE(Resolves(m_B));
  for (const TSXRefId loose : {m_B, fragment}) {
    TSXNodeClose(loose);
    EXPECT_FALSE(Resolves(loose));
  }
  EXPECT_TRUE(m_Doc.Xml().ends_with("<r a=\"1\"><o><p/></o><c/>&e;</r>")) << m_Doc.Xml();
}

// An entry left in the index of IDs would name freed memory at the next look.
TEST_F(Nodes, IdAttributesLeaveTheIndexHoweverTheyGo) {
  CText id("id"), none, one("1"), two("2");
  for (int way = 0; way < 6; ++way) {
    SCOPED_TRACE(way);
    CDoc doc("<!DOCTYPE r [<!ATTLIST a id ID #IMPLIED>]><r><a id='1'/></r>");
    const TSXRefId a = support::FirstChild(doc.Root());
    const TSXRefId copy = IdOf(TSXCloneNode, a, &kDeep);
    if (way >= 3) {
      EXPECT_EQ(TSXSetNodeValue(support::FirstChild(support::Attribute(a, "id")), 0, &two), 0);
    }
    for (const TSXRefId element : {a, copy}) {
      const TSXStatus status =
          way % 3 == 0   ? TSXRemoveAttribute(element, &id)
          : way % 3 == 1 ? TSXRemoveAttributeNS(element, &none, &id)
                         : TSXRemoveAttributeNode(element, support::Attribute(element, "id"));
      EXPECT_EQ(status, 0);
    }
    for (int i = 0; i < 10; ++i) support::SetAttribute(doc.Root(), "n" + std::to_string(i), "1");
    EXPECT_EQ(IdOf(TSXGetElementById, doc.Id(), &one), 0u);
    EXPECT_EQ(IdOf(TSXGetElementById, doc.Id(), &two), 0u);
  }
}

TEST_F(Nodes, FreeDocumentTypeGoesWithTheDocumentThatTookIt) {
  CText name("r"), none;
  const TSXRefId implementation = IdOf(TSXGetImplementation, m_Doc.Id(), uint64_t{0});
  CDoc taker("<r/>");
  TSXRefId types[4];
  for (TSXRefId& type : types) {
    type = IdOf(TSXCreateDocumentType, implementation, &name, &none, &none);
  }
  const auto& [refused, removed, replaced, last] = types;
  EXPECT_EQ(TSXAppendChild(m_Doc.Id(), refused), domErrHierarchyRequest) << "it has one";
  EXPECT_EQ(TSXInsertBefore(taker.Id(), m_B, refused), domErrNotFound) << "but taken by then";
  EXPECT_EQ(TSXAppendChild(taker.Id(), removed), 0);
  EXPECT_EQ(IdOf(TSXGetDocType, taker.Id(), uint64_t{0}), removed);  // so that it outlives
  EXPECT_EQ(TSXRemoveChild(taker.Id(), removed), 0);
  EXPECT_EQ(TSXAppendChild(taker.Id(), replaced), 0);
  EXPECT_EQ(TSXReplaceChild(taker.Id(), last, replaced), 0);
  m_Doc.Close();
  for (const TSXRefId type : types) EXPECT_TRUE(Resolves(type));
  taker.Close();  // a leak shows under the sanitizer
  for (const TSXRefId type : types) EXPECT_FALSE(Resolves(type));
  TSXImplementationClose(implementation);
}

// An entity copies its content from the last reference in the text, when it is first
// asked for it, which may be after that reference has gone.
TEST_F(Nodes, EntityOutlivesItsReferences) {
  CDoc doc(
      "<!DOCTYPE r [<!ENTITY f 'in'><!ENTITY e '<b>&f;</b>'><!ENTITY other 'o'>]>"
      "<r>&e;<a>&e;</a>&other;</r>");
  const TSXRefId reference = support::FirstChild(doc.Root());
  const TSXRefId a = support::NextSibling(reference);
  for (const TSXRefId node : {a, reference}) EXPECT_EQ(TSXRemoveChild(doc.Root(), node), 0);
  CText e("e"), other("other");
  for (int i = 0; i < 5; ++i) IdOf(TSXCreateEntityReference, doc.Id(), &other);
  EXPECT_EQ(TextOf(TSXGetText, IdOf(TSXCreateEntityReference, doc.Id(), &e)), "in");
  EXPECT_EQ(TextOf(TSXGetText, support::OfType(doc.Id(), TSXGetEntities, "e")), "in");
}

// The DOM stops halfway where it frees read-only attributes, as those in references
// and entities.
TEST_F(Nodes, ReadOnlyAttributesAreFreedWithWhatHoldsThem) {
  CDoc doc("<!DOCTYPE r [<!ENTITY e '<m k=\"v\"/>'>]><r><a>&e;</a>&e;</r>");
  const TSXRefId a = support::FirstChild(doc.Root());
  const TSXRefId element = support::FirstChild(support::FirstChild(a));
  const TSXRefId type = IdOf(TSXGetDocType, doc.Id(), uint64_t{0});
  const TSXRefId entity = support::OfType(doc.Id(), TSXGetEntities, "e");
  const TSXRefId inEntity = support::Attribute(support::FirstChild(entity), "k");
  const TSXRefId inReference = support::Attribute(element, "k");
  EXPECT_EQ(TSXRemoveChild(doc.Root(), a), 0);
  for (const TSXRefId id : {a, element, inReference}) EXPECT_FALSE(Resolves(id));
  EXPECT_TRUE(doc.Xml().ends_with("<r>&e;</r>")) << doc.Xml();
  EXPECT_EQ(TSXRemoveChild(doc.Id(), type), 0);
  for (const TSXRefId id : {type, entity, inEntity}) EXPECT_FALSE(Resolves(id));
}

// What the document calls its element or its type would else be freed later.
TEST_F(Nodes, ChildThatReplacesItselfIsRemoved) {
  const TSXRefId type = IdOf(TSXGetDocType, m_Doc.Id(), uint64_t{0});
  for (const TSXRefId child : {m_Root, type}) {
    EXPECT_EQ(TSXReplaceChild(m_Doc.Id(), child, child), 0);
    EXPECT_EQ(support::Parent(child), 0u);
  }
  EXPECT_EQ(m_Doc.Root(), 0u);
  EXPECT_EQ(IdOf(TSXGetDocType, m_Doc.Id(), uint64_t{0}), 0u);
}

}  // namespace
