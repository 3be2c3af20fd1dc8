// Which texts need no parser, and that their trees are the parser's. The fuzzer of built
// trees compares these down to the flags.
#include "document/plaintext.h"

#include <gtest/gtest.h>

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>

namespace {

using namespace std::string_literals;

enum class EPlain { kNever, kAlways, kWithoutNamespaces };
struct CRow {
  EPlain m_Plain;
  std::vector<std::string> m_Texts;
};

const CRow kRows[] = {
    {EPlain::kAlways,
     {"<r/>", "<r></r >", "\xEF\xBB\xBF<r/>", " \r\n<r\t/>\n ", "<?xml version='1.0'?><r/>",
      "<?xml version = \"1.0\" encoding='utf-8'  standalone='yes' ?>\n<r>&lt;</r>",
      "<?xml version='1.0' encoding='UTF-8'?><r/>",
      "<r a='1' b = \"2'\"\n c='&quot;&#9;\r\n\t\"'/>",
      "<r>a\rb\r\nc\n &amp;&lt;&gt;&quot;&apos;&#38;&#x1F600;&#x10FFFF; ]] ]&gt; > '\"\x7F</r>",
      "<r>\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\xEF\xBF\xBD</r>", "<\xC3\xA9 \xC3\xA8='\xC3\xA0'/>",
      "<!--a-b--><?p?><?p  d? ?e?><r><!----><?q ?>x</r><!-- c --><?s t?>",
      "<r><![CDATA[]]>a<![CDATA[<&]>]]]]><b/>c<d/></r>", "<xml/>", "<r xmlns='u'><c xmlns=''/></r>",
      "<p:r xmlns:p='u'><p:c p:a='1' a='2' xmlns:p='v' xml:lang='x'/><p:d/></p:r>"}},
    {EPlain::kWithoutNamespaces,
     {"<a:b/>", "<:/>", "<a:b:c/>", "<r a:b='1'/>", "<r xmlns:p=''/>", "<xmlns:r/>",
      "<?a:b c?><r/>", "<r xmlns:a='u' xmlns:b='u' a:x='' b:x=''/>", "<r xmlns:xml='u'/>",
      "<r xmlns:xmlns='u'/>", "<r xmlns='http://www.w3.org/2000/xmlns/'/>",
      "<r><p:a xmlns:p='u'/><p:b/></r>", "<r xmlns:p='http://www.w3.org/XML/1998/namespace'/>"}},
    {EPlain::kNever,
     {"",
      " ",
      "a",
      "<",
      "<r",
      "<r>",
      "<r>a",
      "<r></s>",
      "<r></rr>",
      "<r></r",
      "</r>",
      "< r/>",
      "<r / >",
      "<1/>",
      "<r/>x",
      "x<r/>",
      "<r/><r/>",
      "<r/>\0"s,
      "<r>\0</r>"s,
      "<r a/>",
      "<r a=/>",
      "<r a=1/>",
      "<r a='1'b='2'/>",
      "<r a='1' a='2'/>",
      "<r a='<'/>",
      "<r a='1/>",
      "<r a='&b;'/>",
      "<r>]]></r>",
      "<r>&</r>",
      "<r>&b;</r>",
      "<r>&lt</r>",
      "<r>&#;</r>",
      "<r>&#x;</r>",
      "<r>&#0;</r>",
      "<r>&#1;</r>",
      "<r>&#xD800;</r>",
      "<r>&#xFFFE;</r>",
      "<r>&#x110000;</r>",
      "<r>&#-38;</r>",
      "<r>&#38</r>",
      "<r>\x01</r>",
      "<r>\xC0\x80</r>",
      "<r>\xED\xA0\x80</r>",
      "<r>\xEF\xBF\xBE</r>",
      "<r>\xFF</r>",
      "<r>\xC3</r>",
      "<r a='\x01'/>",
      "<r \xF0\x90\x80\x80='1'/>",
      "<\xC3\x97/>",
      "<!--a--b--><r/>",
      "<!--a---><r/>",
      "<!--\x01--><r/>",
      "<!--a",
      "<?p",
      "<?\?><r/>",
      "<?p\x01?><r/>",
      "<?xml?><r/>",
      "<?XmL a?><r/>",
      " <?xml version='1.0'?><r/>",
      "<?xml version='1.1'?><r/>",
      "<?xml version='1.0' encoding='UTF-16'?><r/>",
      "<?xml version='1.0' encoding='latin1'?><r/>",
      "<?xml version='1.0' standalone='maybe'?><r/>",
      "<?xml encoding='UTF-8'?><r/>",
      "<?xml version='1.0' standalone='no' encoding='UTF-8'?><r/>",
      "<![CDATA[a]]><r/>",
      "<r><![CDATA[a</r>",
      "<r><![CDATA[\x01]]></r>",
      "<r><!a></r>",
      "<!DOCTYPE r><r/>",
      "<?xml version='1.0'" + std::string(2000, ' ') + "?><r/>",
      "<r/><!DOCTYPE r>",
      "<\0r\0/\0>\0"s}},
};

TEST(PlainText, IsWhatIsRightForCertainAndHasTheParsersTree) {
  for (const CRow& row : kRows) {
    for (const std::string& text : row.m_Texts) {
      for (const bool hasNamespaces : {false, true}) {
        SCOPED_TRACE(text + (hasNamespaces ? " with namespaces" : ""));
        const auto plain = BuildPlain(text, u"text", hasNamespaces);
        const EPlain other = hasNamespaces ? EPlain::kAlways : EPlain::kWithoutNamespaces;
        ASSERT_EQ(plain != nullptr, row.m_Plain == EPlain::kAlways || row.m_Plain == other);
        if (plain == nullptr) continue;
        xercesc::XercesDOMParser parser;
        parser.setDoNamespaces(hasNamespaces);
        parser.parse(xercesc::MemBufInputSource(reinterpret_cast<const XMLByte*>(text.data()),
                                                text.size(), "text"));
        EXPECT_EQ(parser.getErrorCount(), 0u);
        EXPECT_TRUE(plain->isEqualNode(parser.getDocument()));
      }
    }
  }
}

}  // namespace
