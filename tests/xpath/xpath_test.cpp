// XPath on plain DOM nodes, below the ids: what the rows of answers cannot say of order,
// failures and limits.
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

// An element's name, or the text of a text node.
std::string Label(const DOMNode& node) {
  const bool isText = node.getNodeType() == DOMNode::TEXT_NODE;
  return isText ? "'" + Narrow(node.getNodeValue()) + "'" : Narrow(node.getNodeName());
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

constexpr std::size_t kSmallStack = 256;  // kilobytes

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

TEST(XPathErrors, AreSilent) {
  const CDocument document = Parse("<a/>");
  testing::internal::CaptureStderr();
  for (const char* pExpression : {"//a[", "nope()", "count(//a)", "$unbound", "document('x')"}) {
    EXPECT_NE(0, Ask(document.get(), Wide(pExpression)).m_Status) << pExpression;
  }
  EXPECT_EQ("", testing::internal::GetCapturedStderr());
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

// The text of a value, or what is wrong.
std::u16string TextOf(DOMNode* pContext, const std::u16string& expression, EPlainPaths way) {
  std::u16string text;
  std::u16string message;
  const TSXStatus status = RunXPath(
      [&] { text = XPathManager(pContext, way).EvaluateText(expression.c_str()); }, message);
  return status == 0 ? text : message;
}

void ExpectTextAsByXalan(DOMNode* pContext, const std::string& expression) {
  const std::u16string wide = Wide(expression);
  EXPECT_EQ(TextOf(pContext, wide, EPlainPaths::kByXalan),
            TextOf(pContext, wide, EPlainPaths::kOnDom))
      << expression << " at " << Label(*pContext);
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
      u"preceding::a[last()-1]/following::processing-instruction('i')",
      u"a[1 - 1 - -b]",
      u"a[concat(' ', translate(@c, 'x', string(.5)), 1)]",
  };
  constexpr std::u16string_view kOther[] = {
      u"@node()",     u"namespace::a", u"a[.-1]",          u"a[b or $c]", u"/ | a",
      u"a[key('b')]", u"(a = b) <= 1", u"a[b and(c)]",     u"//and",      u"a[--b]",
      u"a[1.]",       u"lang('a')",    u"id('a')/b",       u".[a]",       u"a[concat(b)]",
      u"a-",          u"a[1 = 2 = 3]", u"a[b][c][d][e][f]"};
  for (const auto text : kPlain)
    EXPECT_TRUE(plain::CForm::Read(CLexedExpression(text))) << Narrow(text.data());
  for (const auto text : kOther)
    EXPECT_FALSE(plain::CForm::Read(CLexedExpression(text))) << Narrow(text.data());
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
      if (i % 3 == 0) ExpectAsByXalan(pContext, "//node()[" + grammar.Value(2) + "]");
      ExpectTextAsByXalan(pContext, grammar.Value(3));
    }
  }
}

}  // namespace
