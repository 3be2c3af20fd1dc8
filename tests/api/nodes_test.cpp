// Editing: the codes of the DOM's refusals, and what becomes of ids.
#include "support/support.h"

namespace {

using support::CDoc;
using support::CText;
using support::IdOf;
using support::Resolves;
using support::TextOf;

constexpr uint8_t kDeep = 1;

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
  const TSXRefId inAttribute = support::Attribute(m_In, "k");
  TSXRefId out = 77;
  const struct {
    const char* pWhat;
    TSXStatus got, expected;
  } rows[] = {
      {"delete beyond", TSXDeleteData(text, 5, 1), domErrIndexSize},
      {"delete negative", TSXDeleteData(text, -1, 1), domErrIndexSize},
      {"delete read-only", TSXDeleteData(m_InText, 0, 1), domErrNoModificationAllowed},
      {"insert beyond", TSXInsertData(text, 5, &value), domErrIndexSize},
      {"insert read-only", TSXInsertData(m_InText, 0, &value), domErrNoModificationAllowed},
      {"replace beyond", TSXReplaceData(text, 9, 0, &value), domErrIndexSize},
      {"append read-only", TSXAppendData(m_InText, &value), domErrNoModificationAllowed},
      {"set data read-only", TSXSetCharacterDataData(m_InText, 0, &value),
       domErrNoModificationAllowed},
      {"split beyond", TSXSplitText(text, 5, &out), domErrIndexSize},
      {"split read-only", TSXSplitText(m_InText, 1, &out), domErrNoModificationAllowed},
      {"set value read-only", TSXSetNodeValue(m_InText, 0, &value), domErrNoModificationAllowed},
      {"set text read-only", TSXSetText(m_In, &value), domErrNoModificationAllowed},
      {"set attr value read-only", TSXSetAttrValue(inAttribute, 0, &value),
       domErrNoModificationAllowed},
      {"set attribute name", TSXSetAttribute(m_Root, &bad, &value), domErrInvalidCharacter},
      {"set attribute read-only", TSXSetAttribute(m_In, &name, &value),
       domErrNoModificationAllowed},
      {"set attribute ns", TSXSetAttributeNS(m_Root, &empty, &prefixed, &value), domErrNamespace},
      {"set attribute ns name", TSXSetAttributeNS(m_Root, &uri, &bad, &value),
       domErrInvalidCharacter},
      {"remove attribute read-only", TSXRemoveAttribute(m_In, &name), domErrNoModificationAllowed},
      {"remove ns read-only", TSXRemoveAttributeNS(m_In, &uri, &name), domErrNoModificationAllowed},
      {"attribute in use", TSXSetAttributeNode(m_C, attribute, &out), domErrInUseAttribute},
      {"attribute in use ns", TSXSetAttributeNodeNS(m_C, attribute, &out), domErrInUseAttribute},
      {"attribute elsewhere", TSXSetAttributeNode(foreign, loner, &out), domErrWrongDocument},
      {"attribute node read-only", TSXSetAttributeNode(m_In, loner, &out),
       domErrNoModificationAllowed},
      {"no attribute", TSXSetAttributeNode(m_C, text, &out), domErrWrongDocument},
      {"no attribute ns", TSXSetAttributeNodeNS(m_C, text, &out), domErrUnexpected},
      {"remove not had", TSXRemoveAttributeNode(m_C, loner), domErrNotFound},
      {"remove no attribute", TSXRemoveAttributeNode(m_C, m_Doc.Id()), domErrNotFound},
      {"remove read-only", TSXRemoveAttributeNode(m_In, inAttribute), domErrNoModificationAllowed},
      {"element name", TSXCreateElement(m_Doc.Id(), &bad, &out), domErrInvalidCharacter},
      {"element no name", TSXCreateElement(m_Doc.Id(), &empty, &out), domErrEmptyCreateElement},
      {"element ns", TSXCreateElementNS(m_Doc.Id(), &uri, &empty, &out),
       domErrEmptyCreateElementNS},
      {"attribute name", TSXCreateAttribute(m_Doc.Id(), &bad, &out), domErrInvalidCharacter},
      {"attribute no name", TSXCreateAttribute(m_Doc.Id(), &empty, &out),
       domErrEmptyCreateEntityReference},
      {"attribute no document", TSXCreateAttribute(0, &empty, &out), 0},
      {"reference name", TSXCreateEntityReference(m_Doc.Id(), &bad, &out), domErrInvalidCharacter},
      {"target", TSXCreateProcessingInstruction(m_Doc.Id(), &bad, &value, &out),
       domErrInvalidCharacter},
      {"no target", TSXCreateProcessingInstruction(m_Doc.Id(), &empty, &value, &out),
       domErrEmptyCreateProcessingInstruction},
      {"import document",
       TSXImportNode(m_Doc.Id(), foreign, &kDeep, &out) +
           TSXImportNode(m_Doc.Id(), other.Id(), &kDeep, &out),
       domErrNotSupported},
      {"append ancestor", TSXAppendChild(m_B, m_Root), domErrHierarchyRequest},
      {"insert into itself", TSXInsertBefore(m_B, 0, m_B), domErrHierarchyRequest},
      {"replace by itself", TSXReplaceChild(m_B, m_B, text), domErrHierarchyRequest},
      {"append foreign", TSXAppendChild(m_B, foreign), domErrWrongDocument},
      {"append read-only", TSXAppendChild(m_In, loose), domErrNoModificationAllowed},
      {"insert at stranger", TSXInsertBefore(m_B, m_C, loose), domErrNotFound},
      {"replace stranger", TSXReplaceChild(m_B, loose, m_C), domErrNotFound},
      {"replace foreign", TSXReplaceChild(m_Root, foreign, m_C), domErrWrongDocument},
      {"remove stranger", TSXRemoveChild(m_B, m_C), domErrNotFound},
      {"remove read-only child", TSXRemoveChild(m_In, m_InText), domErrNoModificationAllowed},
      {"prefix without namespace", TSXSetPrefixName(m_Root, 0, &name), domErrNamespace},
  };
  for (const auto& row : rows) EXPECT_EQ(row.got, row.expected) << row.pWhat;
  EXPECT_EQ(out, 0u);
  // Contract: the string getters drop their codes.
  EXPECT_EQ(TSXGetSubstringData(text, 5, 1, &kept), 0);
  EXPECT_TRUE(kept.IsNull());
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
  CText big(std::string(1 << 20, 'x'));
  EXPECT_EQ(TSXSetNodeValue(text, 0, &big), 0);
  EXPECT_EQ(TextOf(TSXGetText, text).size(), 1u << 20);
}

TEST_F(Nodes, OutsOfNavigationAndClone) {
  TSXRefId out = 77;
  EXPECT_EQ(TSXCloneNode(999999, &kDeep, &out), domErrRefCloneNode);
  EXPECT_EQ(out, 77u) << "Contract: the host's value survives";
  EXPECT_EQ(TSXGetFirstChild(m_C, 0, &out), 0);
  EXPECT_EQ(out, 0u);
  const TSXRefId clone = IdOf(TSXCloneNode, m_B, &kDeep);
  EXPECT_EQ(TextOf(TSXGetXML, clone), "<b>text</b>");
  EXPECT_EQ(support::Parent(clone), 0u);
  EXPECT_EQ(IdOf(TSXGetOwnerDocument, clone, uint64_t{0}), m_Doc.Id());
  TSXDocumentClose(m_Doc.Id());
}

// -- What becomes of ids ------------------------------------------------------

TEST_F(Nodes, RemovedAtTheLastHandOutOrKept) {
  EXPECT_EQ(support::NextSibling(m_B), m_C);  // a second hand-out
  const TSXRefId text = support::FirstChild(m_B);
  EXPECT_EQ(TSXRemoveChild(m_Root, m_C), 0);
  EXPECT_TRUE(Resolves(m_C));
  EXPECT_EQ(support::Parent(m_C), 0u);
  EXPECT_EQ(TSXInsertBefore(m_Root, m_B, m_C), 0);
  EXPECT_EQ(support::FirstChild(m_Root), m_C);
  EXPECT_EQ(TSXInsertBefore(m_Root, 424242, m_C), 0) << "no reference child: at the end";
  EXPECT_EQ(TSXRemoveChild(m_Root, m_B), 0);
  EXPECT_FALSE(Resolves(m_B));
  EXPECT_FALSE(Resolves(text)) << "went with its parent";
  const TSXRefId next = support::CreateText(m_Doc.Id(), "next");
  EXPECT_NE(next, text);
  EXPECT_FALSE(Resolves(text));
}

TEST_F(Nodes, AttributesSetReplacedAndRemoved) {
  CText name("a"), value("2");
  const TSXRefId old = support::Attribute(m_Root, "a");
  const TSXRefId oldText = support::FirstChild(old);
  EXPECT_EQ(support::SetAttribute(m_Root, "a", "3"), 0);
  EXPECT_TRUE(Resolves(old));
  EXPECT_FALSE(Resolves(oldText)) << "setting a value frees the old text";
  EXPECT_FALSE(Resolves(support::FirstChild(old)) && support::FirstChild(old) == oldText);
  const TSXRefId fresh = IdOf(TSXCreateAttribute, m_Doc.Id(), &name);
  EXPECT_EQ(IdOf(TSXSetAttributeNode, m_Root, fresh), old);
  EXPECT_EQ(TextOf(TSXGetAttrValue, old, uint64_t{0}), "3") << "the replaced one stays usable";
  EXPECT_EQ(IdOf(TSXOwnerElement, old, uint64_t{0}), 0u);
  const size_t entries = g_NodeDomMap.EntryCount();
  EXPECT_EQ(IdOf(TSXSetAttributeNode, m_Root, fresh), fresh) << "had already";
  EXPECT_EQ(IdOf(TSXOwnerElement, fresh, uint64_t{0}), m_Root);
  EXPECT_EQ(g_NodeDomMap.EntryCount(), entries);
  EXPECT_EQ(TSXRemoveAttributeNode(m_Root, fresh), 0);
  // Contract: the id is not withdrawn, but it names nothing.
  EXPECT_FALSE(Resolves(fresh));
  ASSERT_EQ(support::SetAttribute(m_Root, "z", "recycled"), 0);
  EXPECT_NE(support::Attribute(m_Root, "z"), fresh);
  const TSXRefId z = support::Attribute(m_Root, "z");
  CText zName("z");
  EXPECT_EQ(TSXRemoveAttribute(m_Root, &zName), 0);
  EXPECT_FALSE(Resolves(z));
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
  EXPECT_NE(copy, source);
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
  TSXNodeClose(m_B);
  EXPECT_FALSE(Resolves(m_B));
  TSXNodeClose(fragment);
  EXPECT_FALSE(Resolves(fragment));
  EXPECT_TRUE(m_Doc.Xml().ends_with("<r a=\"1\"><o><p/></o><c/>&e;</r>")) << m_Doc.Xml();
  m_Doc.Close();
  for (const TSXRefId id : {m_Root, copy, m_C, m_In}) EXPECT_FALSE(Resolves(id));
}

// An entry left in the index of IDs would name freed memory at the next look.
TEST_F(Nodes, IdAttributesLeaveTheIndexHoweverTheyGo) {
  CText id("id"), none, one("1"), two("2");
  const auto byName = [&](TSXRefId a) { return TSXRemoveAttribute(a, &id); };
  const auto byNamespace = [&](TSXRefId a) { return TSXRemoveAttributeNS(a, &none, &id); };
  const auto byNode = [](TSXRefId a) {
    return TSXRemoveAttributeNode(a, support::Attribute(a, "id"));
  };
  const auto check = [&](const char* pWhat, bool editsText, auto remove) {
    CDoc doc("<!DOCTYPE r [<!ATTLIST a id ID #IMPLIED>]><r><a id='1'/></r>");
    const TSXRefId a = support::FirstChild(doc.Root());
    const TSXRefId copy = IdOf(TSXCloneNode, a, &kDeep);
    if (editsText) {
      EXPECT_EQ(TSXSetNodeValue(support::FirstChild(support::Attribute(a, "id")), 0, &two), 0);
    }
    for (const TSXRefId element : {a, copy}) EXPECT_EQ(remove(element), 0) << pWhat;
    for (int i = 0; i < 10; ++i) support::SetAttribute(doc.Root(), "n" + std::to_string(i), "1");
    EXPECT_EQ(IdOf(TSXGetElementById, doc.Id(), &one), 0u) << pWhat;
    EXPECT_EQ(IdOf(TSXGetElementById, doc.Id(), &two), 0u) << pWhat;
  };
  for (const bool editsText : {false, true}) {
    check("by name", editsText, byName);
    check("by namespace", editsText, byNamespace);
    check("by node", editsText, byNode);
  }
}

TEST_F(Nodes, FreeDocumentTypeGoesWithTheDocumentThatTookIt) {
  CText name("r"), none;
  const TSXRefId implementation = IdOf(TSXGetImplementation, m_Doc.Id(), uint64_t{0});
  const auto create = [&] {
    return IdOf(TSXCreateDocumentType, implementation, &name, &none, &none);
  };
  CDoc taker("<r/>");
  const TSXRefId refused = create(), removed = create(), replaced = create(), last = create();
  EXPECT_EQ(TSXAppendChild(m_Doc.Id(), refused), domErrHierarchyRequest) << "it has one";
  EXPECT_EQ(TSXInsertBefore(taker.Id(), m_B, refused), domErrNotFound) << "but taken by then";
  EXPECT_EQ(TSXAppendChild(taker.Id(), removed), 0);
  EXPECT_EQ(IdOf(TSXGetDocType, taker.Id(), uint64_t{0}), removed);  // so that it outlives
  EXPECT_EQ(TSXRemoveChild(taker.Id(), removed), 0);
  EXPECT_EQ(TSXAppendChild(taker.Id(), replaced), 0);
  EXPECT_EQ(TSXReplaceChild(taker.Id(), last, replaced), 0);
  m_Doc.Close();
  for (const TSXRefId type : {refused, removed, replaced, last}) EXPECT_TRUE(Resolves(type));
  taker.Close();  // a leak shows under the sanitizer
  for (const TSXRefId type : {refused, removed, replaced, last}) EXPECT_FALSE(Resolves(type));
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
  const TSXRefId type = IdOf(TSXGetDocType, doc.Id(), uint64_t{0});
  const TSXRefId map = IdOf(TSXGetEntities, type, uint64_t{0});
  EXPECT_EQ(TextOf(TSXGetText, IdOf(TSXGetNamedItem, map, &e)), "in");
  TSXNamedNodeMapClose(map);
}

// The DOM stops halfway where it frees read-only attributes, as those in references.
TEST_F(Nodes, ReferenceToElementsWithAttributesIsFreedWhole) {
  CDoc doc("<!DOCTYPE r [<!ENTITY e '<m k=\"v\"/>'>]><r><a>&e;</a>&e;</r>");
  const TSXRefId a = support::FirstChild(doc.Root());
  const TSXRefId element = support::FirstChild(support::FirstChild(a));
  const TSXRefId attribute = support::Attribute(element, "k");
  EXPECT_EQ(TSXRemoveChild(doc.Root(), a), 0);
  for (const TSXRefId id : {a, element, attribute}) EXPECT_FALSE(Resolves(id));
  EXPECT_TRUE(doc.Xml().ends_with("<r>&e;</r>")) << doc.Xml();
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

TEST_F(Nodes, DocumentTypeTakesAlongWhatItsEntitiesHold) {
  CDoc doc("<!DOCTYPE r [<!ENTITY e '<m k=\"v\"/>'>]><r>&e;</r>");
  const TSXRefId type = IdOf(TSXGetDocType, doc.Id(), uint64_t{0});
  const TSXRefId map = IdOf(TSXGetEntities, type, uint64_t{0});
  CText e("e");
  const TSXRefId entity = IdOf(TSXGetNamedItem, map, &e);
  const TSXRefId attribute = support::Attribute(support::FirstChild(entity), "k");
  EXPECT_EQ(TSXRemoveChild(doc.Id(), type), 0);
  for (const TSXRefId id : {type, entity, attribute}) EXPECT_FALSE(Resolves(id));
  TSXNamedNodeMapClose(map);
}

}  // namespace
