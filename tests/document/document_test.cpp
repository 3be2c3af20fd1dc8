// A document's life: opened, created, shared, closed, cleaned up.
#include "document/errorreporter.h"
#include "document/xercesdom.h"
#include "support/support.h"

#include <xercesc/sax/SAXParseException.hpp>

namespace {

using support::CDoc;
using support::CText;
using support::IdOf;

class Document : public support::CLedgerTest {
 protected:
  // Creates a document; the codes are what the cases are about.
  static TSXStatus Create(TSXRefId impl, const char* pURI, const char* pName, TSXRefId type,
                          TSXRefId* pId) {
    CText uri(pURI), name(pName);
    return TSXCreateDocument(impl, &uri, &name, type, pId);
  }
  static TSXRefId Type(TSXRefId impl, const char* pName) {
    CText name(pName), publicId("p"), systemId("s");
    return IdOf(TSXCreateDocumentType, impl, &name, &publicId, &systemId);
  }
};

TEST_F(Document, CreationRefusesWithItsCodesAndKeepsTheType) {
  CDoc doc;
  const TSXRefId impl = IdOf(TSXGetImplementation, doc.Id(), uint64_t{0});
  const TSXRefId type = Type(impl, "r");
  struct {
    const char* pName;
    TSXRefId type;
    TSXStatus code;
  } const rows[] = {
      {"1r", 0, domErrInvalidCharacter},
      {"1r", type, domErrInvalidCharacter},
      {"p:r", type, domErrNamespace},
      {"", type, domErrInvalidCharacter},
  };
  for (const auto& row : rows) {
    TSXRefId id = 0;
    EXPECT_EQ(Create(impl, "", row.pName, row.type, &id), row.code) << row.pName;
  }
  TSXRefId id = 0, again = 0;
  ASSERT_EQ(Create(impl, "u", "r", type, &id), 0) << "the type serves a second try";
  EXPECT_EQ(Create(impl, "", "r", type, &again), domErrWrongDocument);
  EXPECT_EQ(support::TextOf(TSXGetXML, id),
            "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>"
            "<!DOCTYPE r PUBLIC \"p\" \"s\"><r xmlns=\"u\"/>");
  TSXDocumentClose(id);
  EXPECT_FALSE(support::Resolves(type)) << "the type went with its document";
  TSXImplementationClose(impl);
}

TEST_F(Document, TypeThatNoDocumentTakesGoesWithItsLastHandOut) {
  CDoc doc;
  const TSXRefId impl = IdOf(TSXGetImplementation, doc.Id(), uint64_t{0});
  doc.Close();
  const TSXRefId type = Type(impl, "t");
  EXPECT_EQ(support::Name(type), "t");
  EXPECT_EQ(support::TextOf(TSXGetText, type), "") << "must not reach the DOM";
  EXPECT_EQ(support::TextOf(TSXGetXML, type), "<!DOCTYPE t PUBLIC \"p\" \"s\">");
  TSXNodeClose(type);
  EXPECT_FALSE(support::Resolves(type));
  TSXImplementationClose(impl);
}

TEST_F(Document, CloseFreesOnlyWhatNoTreeOwns) {
  CDoc doc("<r><a/></r>");
  const TSXRefId loose = support::Create(doc.Id(), "loose");
  const TSXRefId child = support::Create(doc.Id(), "child");
  EXPECT_EQ(TSXAppendChild(loose, child), 0);
  EXPECT_EQ(support::FirstChild(loose), child);
  EXPECT_EQ(support::Parent(child), loose);  // a second hand-out of both
  TSXNodeClose(loose);
  // Contract: freed at every close. The count stays, the object does not.
  EXPECT_FALSE(support::Resolves(loose));
  EXPECT_FALSE(support::Resolves(child));
  // The DOM recycles the freed node: its address must come back under a new id.
  const TSXRefId next = support::Create(doc.Id(), "next");
  EXPECT_FALSE(support::Resolves(loose));
  auto* pNext = g_NodeSessMap.GetPtrBySess(next);
  TSXDocumentClose(next);  // no document: its id goes, and the node stays
  EXPECT_FALSE(support::Resolves(next));
  EXPECT_NE(g_NodeDomMap.GetDomByNode(pNext), nullptr);
  TSXNodeClose(support::FirstChild(doc.Root()));
  EXPECT_TRUE(doc.Xml().ends_with("<r><a/></r>")) << doc.Xml();
}

// The DOM leaves the ID attributes of a released element in its index of IDs.
TEST_F(Document, ReleasedElementsAreNotFoundByTheirId) {
  for (const char* pNamespaces : {"", " xmlns='u'"}) {
    const uint8_t on = *pNamespaces != 0;
    CDoc doc;
    ASSERT_EQ(TSXSetDoNamespaces(doc.Id(), 0, &on), 0);
    ASSERT_EQ(support::Load(doc.Id(), std::string("<!DOCTYPE r [<!ATTLIST a id ID #IMPLIED>]><r") +
                                          pNamespaces + "><a id='x'/><z/></r>"),
              0);
    const TSXRefId root = doc.Root();
    const TSXRefId a = support::FirstChild(root);
    CText id("x");
    EXPECT_EQ(IdOf(TSXGetElementById, doc.Id(), &id), a);
    TSXNodeClose(a);
    EXPECT_EQ(TSXRemoveChild(root, a), 0);
    const TSXRefId next = support::Create(doc.Id(), "next");  // at the old address
    EXPECT_EQ(support::SetAttribute(next, "k", "x"), 0);
    EXPECT_EQ(IdOf(TSXGetElementById, doc.Id(), &id), 0u);
  }
}

TEST_F(Document, CleanupASecondTimeDoesNothing) {
  CDoc doc("<r><a/></r>");
  const TSXRefId id = doc.Id(), root = doc.Root();
  unsigned char data[8];
  std::memcpy(data, &id, sizeof id);
  CleanupProcCXercesDOM(data);
  EXPECT_FALSE(support::Resolves(id));
  CleanupProcCXercesDOM(data);
  TSXNodeClose(root);
  std::memset(data, 0, sizeof data);
  CleanupProcCXercesDOM(data);
}

TEST_F(Document, CloneOfADocumentGoesWithItsLastHandOut) {
  CDoc doc("<r><a/></r>");
  const uint8_t deep = 1;
  const TSXRefId clone = IdOf(TSXCloneNode, doc.Id(), &deep);
  const TSXRefId copy = support::FirstChild(clone);
  EXPECT_EQ(IdOf(TSXGetOwnerDocument, copy, uint64_t{0}), 0u) << "no document object behind it";
  TSXNodeClose(clone);
  EXPECT_FALSE(support::Resolves(copy));
}

TEST_F(Document, ReporterKeepsExactLines) {
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

}  // namespace
