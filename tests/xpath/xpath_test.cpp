// XPath on plain DOM nodes, below the ids: what is selected, in which order, and
// how it fails.
#include "xpath/xpathmanager.h"

#include <map>
#include <new>
#include <xalanc/XalanDOM/XalanDOMException.hpp>

#include "support/stack.h"
#include "support/support.h"
#include "xpath/expressionlimits.h"
#include "xpath/grammar.h"
#include "xpath/plainform.h"
#include "xpath/trees.h"
#include "xpath/xpathguard.h"

namespace {

using support::OnStackOf;
using support::Repeated;
using xercesc::DOMDocument;
using xercesc::DOMElement;
using xercesc::DOMNode;

CDocument NewDocument() {
  return CDocument(xercesc::DOMImplementation::getImplementation()->createDocument());
}

// A node as the tables write it.
std::string Label(const DOMNode& node) {
  const std::string name = Narrow(node.getNodeName());
  const std::string value = Narrow(node.getNodeValue());
  switch (node.getNodeType()) {
    case DOMNode::ATTRIBUTE_NODE:
      return "@" + name + "=" + value;
    case DOMNode::TEXT_NODE:
      return "'" + value + "'";
    case DOMNode::CDATA_SECTION_NODE:
      return "[" + value + "]";
    case DOMNode::ENTITY_REFERENCE_NODE:
      return "&" + name;
    case DOMNode::PROCESSING_INSTRUCTION_NODE:
      return "?" + name;
    case DOMNode::COMMENT_NODE:
      return "!" + value;
    case DOMNode::DOCUMENT_TYPE_NODE:
      return "type:" + name;
    default:
      return name;
  }
}

struct CAnswer {
  TSXStatus m_Status;
  std::u16string m_Message;
  std::vector<DOMNode*> m_Nodes;
};

CAnswer Ask(DOMNode* pContext, const std::u16string& expression,
            EPlainPaths plainPaths = EPlainPaths::kOnDom) {
  CAnswer answer{};
  answer.m_Status = RunXPath(
      [&] { answer.m_Nodes = XPathManager(pContext, plainPaths).Evaluate(expression.c_str()); },
      answer.m_Message);
  return answer;
}

// The labels of all selected nodes, or the status of a failure.
std::string Select(DOMNode* pContext, std::string_view expression) {
  const CAnswer answer = Ask(pContext, Wide(expression));
  if (answer.m_Status != 0) return std::to_string(answer.m_Status);
  std::string labels;
  for (const DOMNode* pNode : answer.m_Nodes) {
    if (!labels.empty()) labels += ' ';
    labels += Label(*pNode);
  }
  return labels;
}

struct CRow {
  const char* m_pContext;  // a label: the first such node of the tree
  const char* m_pExpression;
  const char* m_pSelected;
};

void ExpectRows(DOMNode* pTree, const std::vector<CRow>& rows) {
  const std::vector<DOMNode*> nodes = Walk(pTree);
  for (const CRow& row : rows) {
    const auto context =
        std::ranges::find(nodes, row.m_pContext, [](const DOMNode* p) { return Label(*p); });
    ASSERT_NE(nodes.end(), context) << row.m_pContext;
    EXPECT_EQ(row.m_pSelected, Select(*context, row.m_pExpression))
        << row.m_pExpression << " at " << row.m_pContext;
  }
}

constexpr std::size_t kSmallStack = 256;  // kilobytes

constexpr const char* kAllKinds =
    "<!DOCTYPE s [<!ENTITY e 'in<i/>'><!NOTATION n SYSTEM 'n'>"
    "<!ATTLIST a id ID #IMPLIED k CDATA 'dflt'>]>"
    "<?pre x?><!--head-->"
    "<s><a id='A' p='1'>t<b><c q='2'/></b><![CDATA[cd]]>u</a>"
    "<!--mid--><?mid y?>"
    "<a id='B' xml:lang='en'>&e;<b>v</b></a><d/></s><!--tail-->";

// Child, parent, attribute and descendant axes are those of the plain paths below.
TEST(XPathNodes, EveryKindInDocumentOrder) {
  const CDocument document = Parse(kAllKinds);
  const std::vector<CRow> rows{
      {"#document", "node()", "type:s ?pre !head s !tail"},
      {"#document", "..", ""},
      {"a", "descendant::node()", "'t' b c [cd] 'u'"},
      {"@q=2", "ancestor::node()", "#document s a b c"},
      {"c", "ancestor::*[1]", "b"},
      {"i", "ancestor::node()", "#document s a &e"},
      {"!mid", "following-sibling::node()", "?mid a d"},
      {"?mid", "preceding-sibling::node()[1]", "!mid"},
      {"[cd]", "preceding-sibling::node()", "'t' b"},
      {"c", "following::node()", "[cd] 'u' !mid ?mid a &e 'in' i b 'v' d !tail"},
      {"@q=2", "following::* | following-sibling::node() | node()", "a i b d"},
      {"&e", "preceding::node()", "type:s ?pre !head a 't' b c [cd] 'u' !mid ?mid"},
      {"d", "preceding::*[1]", "b"},
      {"a", "namespace::*", ""},
      {"type:s", "following-sibling::* | node()", "s"},
      // Paths and functions that ask the tree.
      {"'t'", "(/) | ..", "#document a"},
      {"#document", "//processing-instruction('mid') | //comment()", "!head !mid ?mid !tail"},
      {"#document", "//@*[. = '2']/..", "c"},
      {"#document", "//a[2]/b | //a[1]/b | //b", "b b"},
      {"c", "//d | @q | .. | . | /", "#document b c @q=2 d"},
      {"#document", "//c[. != '//b']", "c"},
      {"#document", "id('B A C')/@id", "@id=A @id=B"},
      {"#document", "//*[lang('en')]", "a i b"},
      {"#document", "//*[local-name() = 'd' or name() = 'i']", "i d"},
      {"a", "node()[position() > 3][position() = 1 and position() < 2]", "'u'"},
      // Entity references and CDATA sections are not seen through.
      {"&e", "../text()", ""},
      {"#document", "//a[. = 'v']/@id", "@id=B"},
      {"#document", "//text()", "'t' 'u' 'in' 'v'"},
      {"a", "self::*[. = 'tcdu']/@id", "@id=A"},
  };
  ExpectRows(document.get(), rows);
}

TEST(XPathNodes, OutsideTheDocumentHaveTreesOfTheirOwn) {
  const CDocument document = Parse(kAllKinds);
  const xercesc::DOMDocumentType* pType = document->getDoctype();
  ExpectRows(pType->getEntities()->item(0),
             {{"e", ". | .. | following::node() | preceding::node() | //i | node()", "e 'in' i"}});
  ExpectRows(pType->getNotations()->item(0), {{"n", ". | //node() | ancestor::node()", "n"}});
  DOMNode* pP = document->getElementById(u"A")->getAttributeNode(u"p");
  ExpectRows(pP->getFirstChild(),
             {{"'1'", ". | ancestor::node() | preceding::node() | /", "@p=1 '1'"}});
}

TEST(XPathNodes, DetachedStayInTheTreeOfTheContext) {
  const CDocument document =
      Parse("<real><top x='1'><one>T</one><two/></top><one/><left/><right/></real>");
  DOMNode* pRoot = document->getDocumentElement();
  const auto take = [&] { return pRoot->removeChild(pRoot->getFirstChild()); };
  const std::vector<CRow> rows{
      {"top", "descendant-or-self::node() | @*", "top @x=1 one 'T' two"},
      {"two", "../@x | .. | ancestor::* | preceding-sibling::*", "top @x=1 one"},
      {"top", ".. | following::node() | preceding::node()", ""},
      {"two", "preceding::node()", "one 'T'"},
      {"two", "/", ""},
      {"two", "//one | /top | /real", "top one"},
      {"top", "self::*[not(..)]", "top"},
  };
  ExpectRows(take(), rows);
  take();
  DOMNode* pFragment = document->createDocumentFragment();
  pFragment->appendChild(take());
  pFragment->appendChild(take());
  ExpectRows(
      pFragment,
      {{"#document-fragment", ". | node() | //right", "#document-fragment left right"},
       {"left", ".. | following-sibling::* | following::* | /", "#document-fragment right"}});
  xercesc::DOMAttr* pLoose = document->createAttribute(u"loose");
  pLoose->setValue(u"v");
  ExpectRows(pLoose, {{"@loose=v", ".. | following::node() | preceding::node() | node() | /", ""},
                      {"@loose=v", ". | //@loose[. = 'v']", "@loose=v"}});
  ExpectRows(pLoose->getFirstChild(),
             {{"'v'", ".. | . | following::node() | preceding::node()", "@loose=v 'v'"}});
  ExpectRows(document->createTextNode(u"alone"), {{"'alone'", ". | .. | //node() | /", "'alone'"}});
}

TEST(XPathDocument, WithoutRootElement) {
  const CDocument document = NewDocument();
  ExpectRows(document.get(),
             {{"#document", "(/) | //a | /a/b", "#document"}, {"#document", "/a[", "-2768"}});
  document->appendChild(document->createComment(u"c"));
  ExpectRows(document.get(), {{"!c", "//node() | p | /", "#document !c"},
                              {"!c", "self::node()[not(/a)]", "!c"},
                              {"!c", "p:a", "-2768"}});
}

TEST(XPathDocument, ItsStringIsAllOfItsText) {
  const CDocument document = Parse("<!--c--><r>o<a>n</a>e<![CDATA[s]]></r><?i d?>");
  ExpectRows(document.get(), {{"#document", "/r[string(/) = '']", ""},
                              {"#document", "/r[string(/) = 'ones' and string() = (/)]", "r"},
                              {"a", "/*[contains(string(/), 'ne') and //a[.. = (/)]]", "r"},
                              {"#document", "self::node()[string-length() = 4]", "#document"}});
  DOMNode* pFragment = document->createDocumentFragment();
  for (const char16_t* pText : {u"f", u"g"}) {
    pFragment->appendChild(document->createTextNode(pText));
    pFragment->appendChild(document->getDocumentElement()->cloneNode(true));
  }
  ExpectRows(pFragment, {{"#document-fragment", "*[string(/) = 'fonesgones'][1]", "r"}});
  DOMElement* pDetached = document->createElement(u"top");
  pDetached->setTextContent(u"t");
  ExpectRows(pDetached, {{"top", "self::*[string(/) = 't']", "top"}});
  xercesc::DOMAttr* pLoose = document->createAttribute(u"loose");
  pLoose->setValue(u"v");
  ExpectRows(pLoose, {{"@loose=v", "self::node()[string(/) = '']", "@loose=v"}});
  ExpectRows(pLoose->getFirstChild(), {{"'v'", ".[string(/) = 'v']", "-2768"},
                                       {"'v'", "self::node()[string(/) = 'v']", "'v'"}});
}

TEST(XPathNamespaces, PrefixesAreThoseInScopeAtTheContext) {
  const CDocument document = Parse(
      "<r xmlns='urn:d' xmlns:q='urn:q' q:a='1'><x/><q:x/>"
      "<n xmlns='' xmlns:q='urn:n'><x/><q:x/></n><p:y xmlns:p='urn:p'><p:z/></p:y></r>");
  const std::vector<CRow> rows{
      {"r", "//x/..", "n"},
      {"#document", "//q:x/..", "r"},
      {"@q:a=1", "//q:x/..", "r"},
      {"n", "//q:x/..", "n"},
      {"r", "q:* | @q:a | @a | //@xml:space", "@q:a=1 q:x"},
      {"r", "//p:z", "-2768"},
      {"r", "namespace::*", "@xmlns=urn:d @xmlns:q=urn:q"},
      {"p:z", "namespace::*", "@xmlns=urn:d @xmlns:q=urn:q @xmlns:p=urn:p"},
      {"n", "namespace::* | x/namespace::*/..", "n @xmlns:q=urn:n"},
      {"r", "*[namespace-uri() = 'urn:d']", "x"},
  };
  ExpectRows(document.get(), rows);
  EXPECT_EQ("m:made", Select(document->createElementNS(u"urn:made", u"m:made"), "self::m:made"));
}

TEST(XPathNamespaces, SwitchedOffNamesMatchAsWritten) {
  const CDocument document = Parse("<a xmlns:p='urn:p'><b c='1'/><p:b/></a>", false);
  ExpectRows(document.get(),
             {{"a", "b/@c", "@c=1"}, {"a", "p:b", "-2768"}, {"a", "*[name() = 'p:b']", "p:b"}});
}

TEST(XPathNames, BeyondASCII) {
  const CDocument document = Parse("<größe><寸法>\U00020000</寸法></größe>");
  EXPECT_EQ(1u, Ask(document.get(), u"/größe/寸法[. = '\U00020000']").m_Nodes.size());
}

// -- Order -------------------------------------------------------------------------

// Few results are ordered by their way through the tree, many by numbers: both, and
// the change from one to the other, must agree with the text.
TEST(XPathOrder, HoldsForFewAndForMany) {
  constexpr const char* kUnions[] = {
      "following::node() | preceding::node() | ancestor::node() | . | //@*",
      "../following-sibling::*//@* | preceding-sibling::node() | /",
      "//x[@n mod 7 = 3]/.. | //x/@n | //text()/ancestor::*",
      "id('none') | following::*[1] | preceding::*[1] | ../@* | @* | ../..",
  };
  for (const int groups : {2, 20, 300}) {
    std::string text = "<r>";
    for (int i = 0; i < groups; ++i) {
      text +=
          "<g k='" + std::to_string(i) + "'><x n='" + std::to_string(i) + "' m='0'>t</x>-<y/></g>";
    }
    const CDocument document = Parse(text + "</r>");
    const std::vector<DOMNode*> nodes = Walk(document.get());
    std::map<const DOMNode*, std::size_t> positions;
    for (std::size_t i = 0; i < nodes.size(); ++i) positions[nodes[i]] = i;
    DOMNode* pMiddle = document->getElementsByTagName(u"y")->item(XMLSize_t(groups) / 2);
    for (const char* pUnion : kUnions) {
      const CAnswer answer = Ask(pMiddle, Wide(pUnion));
      EXPECT_FALSE(answer.m_Nodes.empty()) << pUnion;
      for (std::size_t i = 1; i < answer.m_Nodes.size(); ++i) {
        ASSERT_LT(positions.at(answer.m_Nodes[i - 1]), positions.at(answer.m_Nodes[i]))
            << pUnion << " of " << groups << ", result " << i;
      }
    }
  }
}

// -- Failures ------------------------------------------------------------------------

TEST(XPathErrors, CodeAndMessageAndSilence) {
  struct CFailure {
    const char* m_pExpression;
    TSXStatus m_Status;
    const char* m_pInMessage;
  };
  constexpr CFailure kFailures[] = {
      {"", domErrXPathParse, "The expression is empty"},
      {"//a[", domErrXPathParse, "Expected ']'"},
      {"a b", domErrXPathParse, "Extra illegal token"},
      {"@", domErrXPathParse, "A node test was expected"},
      {".[1]", domErrXPathParse, "self::node()[predicate]"},
      {"/ | a", domErrXPathParse, "'|' was unexpected"},  // "(/) | a" is understood
      {"nope()", domErrXPathParse, "'nope' was not found"},
      {"p:a", domErrXPathParse, "The prefix 'p' is not declared"},
      {"'open", domErrXPathParse, "expression = ''open'"},
      {"count(//a)", domErrXPathConversion, "Cannot convert 'number'"},
      {"true()", domErrXPathConversion, "Cannot convert 'boolean'"},
      {"'text'", domErrXPathConversion, "Cannot convert 'string'"},
      {"$unbound", domErrXPathConversion, "Cannot convert"},
      {"count(1)", domErrXPathXSL, "does not evaluate to a node-set"},
      {"key('a', 'b')", domErrXPathXSL, "'key' is not implemented"},
      {"document('x')", domErrXPathXSL, "'document' is not implemented"},
      {"format-number(1, '0')", domErrXPathXSL, "'format-number' is not implemented"},
      {"concat('a')", domErrXPathXSL, "requires two or more arguments"},
  };
  const CDocument document = Parse("<a/>");
  testing::internal::CaptureStderr();
  for (const CFailure& row : kFailures) {
    const CAnswer answer = Ask(document.get(), Wide(row.m_pExpression));
    EXPECT_EQ(row.m_Status, answer.m_Status) << row.m_pExpression;
    EXPECT_NE(std::string::npos, Narrow(answer.m_Message.c_str()).find(row.m_pInMessage))
        << row.m_pExpression << ": " << Narrow(answer.m_Message.c_str());
  }
  EXPECT_EQ("", testing::internal::GetCapturedStderr());
  EXPECT_EQ("", Select(document.get(), "/a[$unbound]"));  // false, and no error
  EXPECT_EQ("-2766", Select(nullptr, "a"));
}

TEST(XPathErrors, NothingElseGetsOut) {
  std::u16string message;
  const auto throwOther = [] { throw xalanc::XalanDOMException(); };
  const auto throwMemory = [] { throw std::bad_alloc(); };
  EXPECT_EQ(domErrUnexpected, RunXPath(throwOther, message));
  EXPECT_EQ(domErrUnexpected, RunXPath(throwMemory, message));
  EXPECT_EQ(domErrXPathConversion,
            RunXPath([] { throw KelXPathException(domErrXPathConversion, u"m"); }, message));
  EXPECT_EQ(u"m", message);
}

// Numbers that would end the process in Xalan-C: too long for its buffer, or the
// smallest integer divided by -1.
TEST(XPathErrors, NumbersCannotEndTheProcess) {
  const CDocument document =
      Parse("<a huge='" + Repeated("9", 300) + "' least='-9223372036854775808' minus='-1' i='7'/>");
  constexpr const char* kTooLong[] = {"string(@huge * 1)",         "concat('', -@huge)",
                                      "string-length(sum(@huge))", "contains(@huge + 0, '9')",
                                      "id(round(@huge))",          "string((number(@huge)))"};
  for (const char* pValue : kTooLong) {
    EXPECT_EQ("-2767", Select(document.get(), "//a[" + std::string(pValue) + " = 'x']")) << pValue;
  }
  EXPECT_EQ("-2768", Select(document.get(), Repeated("9", 100)));
  constexpr const char* kTrue[] = {"@least mod @minus = 0",
                                   "@least mod -1 = 0",
                                   "-@i mod (2 + 2) = -3",
                                   "10 - @i mod (8 mod 5) = 9",
                                   "@i mod -4 = 3",
                                   "not(12 mod /)",
                                   "string(string(@i - 7)) = '0'",
                                   "string-length(1 div 4) = 4",
                                   "string(1 = 1) = 'true'",
                                   "count(@i) = '1' and count(@*) = '4'",
                                   "@i > '6' and @i < '8' and @minus < '0'",
                                   "concat(@i + 1, '-', @minus, 'x') = '8--1x'"};
  for (const char* pTruth : kTrue) {
    EXPECT_EQ(std::vector<DOMNode*>{document->getDocumentElement()},
              Ask(document.get(), u"/a[" + Wide(pTruth) + u"]").m_Nodes)
        << pTruth;
  }
}

// -- Limits --------------------------------------------------------------------------

// What the limits let through must fit a small stack, nested and chained at once.
TEST(XPathLimits, HoldOnASmallStack) {
  struct CForm {
    const char* m_pOpen;
    const char* m_pClose;
    int m_Nested;     // brackets in one
    int m_Operators;  // operators in one
  };
  constexpr CForm kForms[] = {{"(", ")", 1, 0},          {"*[", "]", 1, 0},
                              {"self::a[1=", "]", 1, 1}, {"self::a[0 or 1 and 2!=1<=", "]", 1, 4},
                              {"not(", ")", 1, 0},       {"self::a[-(count(", "))]", 3, 1},
                              {"1+", "", 0, 1},          {"0 or ", "", 0, 1},
                              {"1<", "", 0, 1},          {"2 div ", "", 0, 1}};
  const CDocument document = Parse("<a><b/></a>");
  DOMNode* pContext = document->getDocumentElement();
  OnStackOf(kSmallStack, [&] {
    for (const CForm& form : kForms) {
      const int byDepth = form.m_Nested == 0 ? kMostOperators : kMostNested / form.m_Nested;
      const int byCount = form.m_Operators == 0 ? byDepth : kMostOperators / form.m_Operators;
      const int most = std::min(byDepth, byCount);
      const auto ask = [&](int times) {
        return Ask(pContext,
                   Wide(Repeated(form.m_pOpen, times) + "*" + Repeated(form.m_pClose, times)));
      };
      const CAnswer within = ask(most);
      EXPECT_TRUE(within.m_Status == 0 || within.m_Status == domErrXPathConversion) << form.m_pOpen;
      const CAnswer beyond = ask(most + 1);
      EXPECT_EQ(domErrXPathParse, beyond.m_Status) << form.m_pOpen;
      EXPECT_EQ(0U, beyond.m_Message.find(u"The expression has too many")) << form.m_pOpen;
    }
    const std::string all = Repeated("self::a[", kMostNested) + "1" +
                            Repeated("+1", kMostOperators) + Repeated("]", kMostNested);
    EXPECT_EQ(0, Ask(pContext, Wide(all)).m_Status);
    EXPECT_EQ(domErrXPathParse, Ask(pContext, Wide(Repeated("(", 1000000))).m_Status);
  });
}

TEST(XPathLimits, OnlyOperatorsCount) {
  const CDocument document = Parse("<a><b-c>or</b-c></a>");
  EXPECT_EQ("b-c", Select(document.get(), "//b-c" + Repeated(" | //b-c", 1000)));
  EXPECT_EQ("b-c", Select(document.get(), "a/*" + Repeated("/../*", 600)));
  EXPECT_EQ("", Select(document.get(), "//*[. = '" + Repeated("+(<[", 1000) + "']"));
  EXPECT_EQ("", Select(document.get(), "//or/and/div/mod" + Repeated("|or/and/div/mod", 500)));
}

TEST(XPathLimits, LongPathsEndByTheStack) {
  const CDocument document = Parse("<a/>");
  OnStackOf(kSmallStack, [&] {
    EXPECT_EQ("a", Select(document->getDocumentElement(), "." + Repeated("/.", 1000)));
    EXPECT_EQ("-2767", Select(document->getDocumentElement(), "." + Repeated("/.", 100000)));
  });
}

TEST(XPathLimits, DeepTrees) {
  constexpr int kLevels = 100000;
  const CDocument document = NewDocument();
  DOMNode* pDeepest = document.get();
  for (int i = 0; i < kLevels; ++i) {
    pDeepest = pDeepest->appendChild(i == 0 ? document->createElementNS(u"urn:p", u"p:top")
                                            : document->createElement(u"e"));
  }
  pDeepest->appendChild(document->createTextNode(u"T"));
  OnStackOf(kSmallStack, [&] {
    EXPECT_EQ("p:top 'T'", Select(pDeepest, "ancestor::p:top | text() | //text()"));
    EXPECT_EQ("e", Select(document.get(), "//*[not(*)]"));
    const CAnswer answer = Ask(document.get(), u"/*[. = 'T']");
    EXPECT_EQ(domErrXPathXSL, answer.m_Status);
    EXPECT_EQ(u"The evaluation goes too deep for this thread's stack.", answer.m_Message);
  });
  OnStackOf(64 * 1024, [&] { EXPECT_EQ("p:top", Select(document.get(), "/*[. = 'T']")); });
}

// -- Plain paths -----------------------------------------------------------------------

void ExpectAsByXalan(DOMNode* pContext, const std::string& expression) {
  const std::u16string wide = Wide(expression);
  CAnswer slow = Ask(pContext, wide, EPlainPaths::kByXalan);
  const CAnswer answer = Ask(pContext, wide);
  EXPECT_EQ(slow.m_Status, answer.m_Status) << expression;
  EXPECT_EQ(slow.m_Message, answer.m_Message) << expression;
  EXPECT_EQ(slow.m_Nodes, answer.m_Nodes) << expression << " at " << Label(*pContext);
  std::u16string longForm = wide;
  for (std::size_t at = 0; (at = longForm.find(u"//", at)) != longForm.npos;) {
    longForm.replace(at, 2, u"/descendant-or-self::node()/");
  }
  EXPECT_EQ(Ask(pContext, longForm, EPlainPaths::kByXalan).m_Nodes, answer.m_Nodes) << expression;
  if (slow.m_Status != 0) return;
  slow.m_Nodes.resize(std::min<std::size_t>(slow.m_Nodes.size(), 1));
  EXPECT_EQ(slow.m_Nodes, XPathManager(pContext).EvaluateFirst(wide.c_str())) << expression;
}

// Of what may be plain, the one that is and the one that is not.
TEST(XPathPlain, TellsPlainFromOther) {
  constexpr std::u16string_view kPlain[] = {
      u"/",
      u"@id",
      u".//p:a/*/b/@c",
      u"child::* [7]",
      u"self::node()/parent::p:*",
      u"//a[@x='1' and b]/b | //a[last()]",
      u"(//a)[2]/../@b",
      u"//a[position() mod 2 = 0]/following-sibling::a[1]",
      u"//a[contains(b, 'c') or not(starts-with(., \"d\"))]",
      u"a[count(b) > 1 and position() < last() - 1]",
      u"//comment() | text()[string-length(normalize-space()) = 0]",
  };
  constexpr std::u16string_view kOther[] = {
      u"@node()",     u"following::a", u"a[1 - 1 - 1]",    u"a[b or $c]", u"/ | a",
      u"a[key('b')]", u"(a = b) <= 1", u"a[b and(c)]",     u"//and",      u"a[-b]",
      u"a[1.]",       u"a[last()-1]",  u"id('a')/b",       u".[a]",       u"a[string(1) = 1]",
      u"a-",          u"a[1 = 2 = 3]", u"a[b][c][d][e][f]"};
  for (const auto text : kPlain) EXPECT_TRUE(plain::CForm::Read(text)) << Narrow(text.data());
  for (const auto text : kOther) EXPECT_FALSE(plain::CForm::Read(text)) << Narrow(text.data());
}

// What follows a path on the DOM must give what Xalan-C gives, and the shorter form that
// "//" is evaluated in what the long one gives, whatever the tree.
TEST(XPathPlain, SelectsWhatXalanAndTheLongFormSelect) {
  for (unsigned seed = 0; seed < 40; ++seed) {
    CGrammar grammar(seed, EGrammar::kOurs);
    const CDocument document = Parse(grammar.Document(), seed % 4 != 0);
    DOMElement* pRoot = document->getDocumentElement();
    pRoot->setAttribute(u"xmlns:r", u"u");  // as names without namespaces
    pRoot->appendChild(document->createElement(u"p:a"));
    DOMNode* pFragment = document->createDocumentFragment();
    pFragment->appendChild(pRoot->cloneNode(true));
    DOMNode* pDetached = pRoot->cloneNode(true);
    std::vector<DOMNode*> contexts;
    for (DOMNode* pTree : {static_cast<DOMNode*>(document.get()), pFragment, pDetached}) {
      Walk(pTree, contexts);
    }
    for (const std::string predicate :
         {"[1]", "[2]", "[last()]", "[position() = 2]", "['1']", "[1 + 0]", "[1 or 0]", "[@a * 1]",
          "[@a = 1][1]", "[a or b]", "[.//a[1]]", "[b][2]", "[a//b]/..//b", "[ancestor::a]"}) {
      for (const char* pStart :
           {"//a", "//*", "//self::a", "//child :: b", "//@a", ".//or | //b"}) {
        ExpectAsByXalan(pRoot, pStart + predicate);
      }
    }
    for (int i = 0; i < 50 && !HasFailure(); ++i) {
      DOMNode* pContext = contexts[grammar.Below(contexts.size())];
      ExpectAsByXalan(pContext, grammar.Union());
      if (i % 3 == 0) ExpectAsByXalan(pContext, "//node()[" + grammar.Value(3) + "]");
    }
  }
}

}  // namespace
