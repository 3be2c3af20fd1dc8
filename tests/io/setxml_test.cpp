// Replacing an element by XML text, and how the messages of parses keep apart.
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/RuntimeException.hpp>

#include "document/find.h"
#include "support/path.h"

namespace {

using support::CDoc;
using support::CText;
using support::IdOf;
using support::TextOf;

constexpr const char* kReadOnly =
    "attempt is made to modify an object where modifications are not allowed";

class SetXml : public support::CLedgerTest {
 protected:
  static TSXStatus Set(TSXRefId id, std::string_view xml, std::string* pErrors = nullptr,
                       std::string* pException = nullptr) {
    CText text(xml), errors("kept"), exception("kept");
    const TSXStatus status = TSXElementSetXML(id, &text, &errors, &exception);
    if (pErrors != nullptr) *pErrors = errors.Str();
    if (pException != nullptr) *pException = exception.Str();
    return status;
  }
};

TEST_F(SetXml, TheIdKeepsItsPlaceAndItsHandOuts) {
  CDoc doc("<r><a k='v'><c/></a><z/></r>");
  const TSXRefId root = doc.Root();
  const TSXRefId a = support::FirstChild(root);
  ASSERT_EQ(support::FirstChild(root), a) << "a second hand-out";
  CText any("*");
  const TSXRefId live = IdOf(TSXElementGetElementsByTagName, root, &any);
  const TSXRefId k = support::Attribute(a, "k"), c = support::FirstChild(a);
  const TSXRefId children = IdOf(TSXGetChildNodeList, a, uint64_t{0});
  const TSXRefId attributes = IdOf(TSXGetAttributes, a, uint64_t{0});
  std::string errors, exception;
  EXPECT_EQ(Set(a, "<!DOCTYPE b><!--x--><b x='1'><d/></b><?y?>", &errors, &exception), 0);
  EXPECT_EQ(errors, "") << "cleared";
  EXPECT_EQ(exception, "kept");
  EXPECT_EQ(TextOf(TSXGetXML, root), "<r><b x=\"1\"><d/></b><z/></r>");
  for (const TSXRefId dead : {k, c}) EXPECT_FALSE(support::Resolves(dead));
  int32_t length = 0;
  EXPECT_EQ(TSXGetListLength(children, 0, &length), domErrRefGetListLength);
  EXPECT_EQ(TSXGetNamedNodeMapLength(attributes, 0, &length), domErrRefGetNamedNodeMapLength);
  EXPECT_EQ(TSXGetListLength(live, 0, &length), 0);
  EXPECT_EQ(length, 3) << "b, d and z";
  TSXNodeClose(a);
  EXPECT_EQ(support::Name(a), "b");
  TSXNodeClose(a);
  EXPECT_FALSE(support::Resolves(a));
  TSXNodeListClose(live);
}

TEST_F(SetXml, EveryPlaceThatHoldsElements) {
  CDoc doc("<!--before--><!DOCTYPE r><r><a/></r><?after?>");
  const TSXRefId root = doc.Root();
  EXPECT_EQ(Set(root, "<!--lost--><!DOCTYPE top><top><a/></top><?lost?>"), 0);
  EXPECT_EQ(doc.Root(), root);
  EXPECT_TRUE(doc.Xml().ends_with("<!--before--><!DOCTYPE r><top><a/></top><?after?>"))
      << doc.Xml();
  const TSXRefId fragment = IdOf(TSXCreateDocumentFragment, doc.Id());
  const TSXRefId loose = support::Create(doc.Id(), "loose");
  for (const TSXRefId parent : {fragment, loose}) {
    const TSXRefId child = support::Create(doc.Id(), "child");
    ASSERT_EQ(TSXAppendChild(parent, child), 0);
    EXPECT_EQ(Set(child, "<new/>"), 0);
    EXPECT_EQ(support::FirstChild(parent), child);
    EXPECT_EQ(support::Name(child), "new");
  }
}

TEST_F(SetXml, WhatIsNoReplaceableElementIsRefused) {
  CDoc doc("<r k='v'>text</r>");
  const TSXRefId root = doc.Root(), loose = support::Create(doc.Id(), "loose");
  const TSXRefId clone = IdOf(TSXCloneNode, doc.Id(), &support::kDeep);
  const std::string before = doc.Xml();
  for (const TSXRefId id : {TSXRefId{999999}, doc.Id(), support::Parent(root),
                            support::FirstChild(root), loose, support::FirstChild(clone)}) {
    std::string errors, exception;
    EXPECT_EQ(Set(id, "<x/>", &errors, &exception), domErrRefDocument) << id;
    EXPECT_EQ(errors + exception, "keptkept");
  }
  EXPECT_EQ(doc.Xml(), before);
  EXPECT_EQ(support::Name(loose), "loose");
  TSXNodeClose(clone);
}

TEST_F(SetXml, MalformedTextReplacesWhenItHasARoot) {
  CDoc doc("<r><a/></r>");
  const TSXRefId a = support::FirstChild(doc.Root());
  struct {
    const char* pXml;
    const char* pErrors;
    const char* pTree;
  } const rows[] = {
      {"", "Line 1, Column 1,  Message: invalid document structure", "<r><a/></r>"},
      {"no xml", "Line 1, Column 1,  Message: invalid document structure", "<r><a/></r>"},
      {"<!--c-->", "Line 1, Column 9,  Message: invalid document structure", "<r><a/></r>"},
      {"<e><f></e>", "Line 1, Column 9,  Message: expected end of tag 'f'", "<r><e><f/></e></r>"},
      {"<g/><h/>", "Line 1, Column 5,  Message: comment or processing instruction expected",
       "<r><g/></r>"},
  };
  for (const auto& row : rows) {
    std::string errors, exception;
    EXPECT_EQ(Set(a, row.pXml, &errors, &exception), domErrParse);
    EXPECT_EQ(errors, row.pErrors);
    EXPECT_EQ(exception, "kept");
    EXPECT_EQ(TextOf(TSXGetXML, doc.Root()), row.pTree);
  }
}

TEST_F(SetXml, EntitiesAreReadOnlyAndReferencesComeEmpty) {
  CDoc doc("<!DOCTYPE r [<!ENTITY e '<in><deep/></in>'>]><r>&e;<a/></r>");
  const std::string before = doc.Xml();
  const TSXRefId reference = support::FirstChild(doc.Root());
  const TSXRefId in = support::FirstChild(reference);
  const TSXRefId entity = support::OfType(doc.Id(), TSXGetEntities, "e");
  for (const TSXRefId id : {in, support::FirstChild(in), support::FirstChild(entity)}) {
    std::string errors, exception;
    EXPECT_EQ(Set(id, "<x/>", &errors, &exception), domErrParse);
    EXPECT_EQ(errors, "kept");
    EXPECT_EQ(exception, kReadOnly);
  }
  EXPECT_EQ(doc.Xml(), before);
  // A reference is expanded as the document that it comes into declares it.
  const TSXRefId a = support::NextSibling(reference);
  EXPECT_EQ(Set(a, "<!DOCTYPE b [<!ENTITY u 'x'>]><b>&u;</b>"), 0);
  EXPECT_EQ(support::FirstChild(support::FirstChild(a)), 0u);
}

TEST_F(SetXml, ReadsWithTheOptionsOfTheDocument) {
  CDoc doc("<p:r xmlns:p='urn:p'><a/></p:r>");
  const TSXRefId a = support::FirstChild(doc.Root());
  EXPECT_EQ(Set(a, "<p:a/>"), 0);
  ASSERT_EQ(TSXSetDoNamespaces(doc.Id(), 0, &support::kOn), 0);
  std::string errors;
  EXPECT_EQ(Set(a, "<p:a/>", &errors), domErrParse) << "the text stands alone";
  EXPECT_EQ(errors, "Line 1, Column 7,  Message: prefix 'p' can not be resolved to namespace URI");
  EXPECT_EQ(Set(a, "<p:a xmlns:p='urn:q'/>"), 0);
  EXPECT_EQ(TextOf(TSXGetNamespaceName, a, uint64_t{0}), "urn:q");
  ASSERT_EQ(TSXSetValidateOnLoad(doc.Id(), 0, &support::kAlways), 0);
  ASSERT_EQ(TSXSetPreserveWhitespace(doc.Id(), 0, &support::kOff), 0);
  EXPECT_EQ(Set(a, "<!DOCTYPE b [<!ELEMENT b (c)><!ELEMENT c EMPTY>]><b> <c k='1'/> </b>", &errors),
            domErrParse);
  EXPECT_EQ(errors,
            "Line 1, Column 64,  Message: attribute 'k' is not declared for element 'c'\r\n");
  EXPECT_EQ(TextOf(TSXGetXML, a), "<b><c k=\"1\"/></b>");
}

// -- Messages -----------------------------------------------------------------

TEST_F(SetXml, LinesWaitForTheNextReportOfErrors) {
  CDoc doc("<!DOCTYPE r [<!ENTITY e '<in/>'>]><r>&e;<a/></r>");
  const TSXRefId reference = support::FirstChild(doc.Root());
  const TSXRefId in = support::FirstChild(reference), a = support::NextSibling(reference);
  const TSXRefId loose = support::Create(doc.Id(), "loose");
  std::string errors, exception;
  ASSERT_EQ(TSXSetValidateOnLoad(doc.Id(), 0, &support::kAlways), 0);
  EXPECT_EQ(Set(in, "<one/>", &errors, &exception), domErrParse);
  EXPECT_EQ(errors, "kept") << "there was an exception";
  EXPECT_EQ(exception, kReadOnly);
  ASSERT_EQ(TSXSetValidateOnLoad(doc.Id(), 0, &support::kNever), 0);
  EXPECT_EQ(Set(loose, "<two>", &errors), domErrRefDocument);
  EXPECT_EQ(errors, "kept");
  EXPECT_EQ(Set(a, "<good/>", &errors), 0);
  EXPECT_EQ(errors, "") << "a good parse neither reports the lines nor drops them";
  EXPECT_EQ(support::Load(doc.Id(), "<?xml version='1.9'?><r/>", &errors, &exception), domErrParse);
  EXPECT_EQ(errors, "");
  EXPECT_EQ(exception, "implementation does not support the requested type of object or operation");
  EXPECT_EQ(support::Name(doc.Root()), "r") << "the old tree is in place";
  CDoc other;
  EXPECT_EQ(support::Load(other.Id(), "<four>", &errors), domErrParse);
  EXPECT_EQ(errors,
            "Line 1, Column 7,  Message: input ended before all started tags were ended; "
            "last tag started is 'four'");
  EXPECT_EQ(support::Load(doc.Id(), "<three>", &errors), domErrParse);
  EXPECT_EQ(errors,
            "Line 1, Column 5,  Message: no declaration found for element 'one'\r\n"
            "Line 1, Column 6,  Message: input ended before all started tags were ended; "
            "last tag started is 'two'"
            "Line 1, Column 8,  Message: input ended before all started tags were ended; "
            "last tag started is 'three'");
  EXPECT_EQ(support::Load(doc.Id(), "", &errors), domErrParse);
  EXPECT_EQ(errors, "Line 1, Column 1,  Message: invalid document structure") << "reported once";
}

// What no text makes the parser throw is thrown by its error handler.
class CThrower : public xercesc::ErrorHandler {
 public:
  using CRaise = void (*)(const xercesc::SAXParseException&);
  explicit CThrower(CRaise pRaise) : m_pRaise(pRaise) {}
  void warning(const xercesc::SAXParseException&) override {}
  void error(const xercesc::SAXParseException&) override {}
  void fatalError(const xercesc::SAXParseException& exception) override { m_pRaise(exception); }
  void resetErrors() override {}

 private:
  CRaise m_pRaise;
};

TEST_F(SetXml, EachExceptionHasItsTextAndStatus) {
  using xercesc::DOMException;
  using xercesc::RuntimeException;
  const char* pIndex = "index is beyond maximum attribute index";
  const char* pMissing = "attempt is made to reference a node in a context where it does not exist";
  struct {
    CThrower thrower;
    TSXStatus status;
    const char* texts[3];  // of a file, a string, an element
  } rows[] = {
      {CThrower([](const auto&) {
         throw RuntimeException(__FILE__, __LINE__, xercesc::XMLExcepts::AttrList_BadIndex);
       }),
       domErrParse,
       {pIndex, pIndex, pIndex}},
      {CThrower([](const auto&) { throw DOMException(DOMException::NOT_FOUND_ERR); }),
       domErrParse,
       {pMissing, pMissing, pMissing}},
      {CThrower([](const auto& exception) { throw exception; }),
       domErrParse,
       {"SAXParseException caught while loading file",
        "SAXParseException caught while loading XML string",
        "SAXParseException caught while seting element XML."}},
      {CThrower([](const auto&) { throw 1; }),
       domErrUnexpected,
       {"Error occurred while loading file.", "Error occurred while loading XML string.",
        "Error occurred while seting element XML."}},
  };
  CDoc doc("<r><a/></r>");
  const TSXRefId a = support::FirstChild(doc.Root());
  auto* pDom = FindObject<CXercesDOM>(doc.Id());
  const support::CPlace nothing("/dev/null");
  for (auto& row : rows) {
    pDom->m_pParser->setErrorHandler(&row.thrower);
    CText xml("<r>"), errors("kept"), texts[3];
    EXPECT_EQ(TSXLoadFile(doc.Id(), nothing.Get(), &errors, &texts[0]), row.status);
    EXPECT_EQ(TSXLoadString(doc.Id(), &xml, &errors, &texts[1]), row.status);
    EXPECT_EQ(TSXElementSetXML(a, &xml, &errors, &texts[2]), row.status);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(texts[i].Str(), row.texts[i]);
    EXPECT_EQ(errors.Str(), "kept");
    EXPECT_EQ(TextOf(TSXGetXML, doc.Root()), "<r><a/></r>");
  }
  pDom->m_pParser->setErrorHandler(pDom->m_pErrorReporter);
  EXPECT_EQ(support::Load(doc.Id(), "<after/>"), 0) << "the parser is none the worse";
}

// The working folder is gone, so that the parser cannot even tell where the file is:
// it must not come back with the document of its last parse.
TEST_F(SetXml, AParseThatNeverBeginsBringsNoDocument) {
  const auto home = std::filesystem::current_path();
  CDoc doc("<r><a/></r>");
  {
    const support::CPath gone("gone");
    std::filesystem::create_directory(gone.Name());
    std::filesystem::current_path(gone.Name());
  }
  for (const char* pTree : {"<r><a/></r>", "<r><b/></r>"}) {
    std::string errors;
    EXPECT_EQ(support::LoadFile(doc.Id(), support::CPlace("relative.xml").Get(), &errors),
              domErrParse);
    EXPECT_EQ(errors, "Line 0, Column 0,  Message: unable to determine file base pathname");
    EXPECT_EQ(TextOf(TSXGetXML, doc.Root()), pTree);
    EXPECT_EQ(Set(support::FirstChild(doc.Root()), "<b/>"), 0);
  }
  std::filesystem::current_path(home);
}

}  // namespace
