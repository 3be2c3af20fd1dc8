// What hostile texts cost at two sizes: neither the memory that the parser asks for nor its
// processor time may grow much faster than the text.
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <xercesc/internal/IGXMLScanner.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/validators/common/GrammarResolver.hpp>

#include "document/prefixscope.h"
#include "support/support.h"

namespace {

using support::CDoc;
using support::Repeated;
using xercesc::XMLPlatformUtils;

// Counts what parsers and documents ask for while it lives.
class CCounting final : public xercesc::MemoryManager {
 public:
  CCounting() : m_pBefore(XMLPlatformUtils::fgMemoryManager) {
    XMLPlatformUtils::fgMemoryManager = this;
  }
  ~CCounting() override { XMLPlatformUtils::fgMemoryManager = m_pBefore; }
  CCounting(const CCounting&) = delete;
  CCounting& operator=(const CCounting&) = delete;

  void* allocate(XMLSize_t size) override {
    m_Bytes += size;
    return m_pBefore->allocate(size);
  }
  void deallocate(void* pMemory) override { m_pBefore->deallocate(pMemory); }
  MemoryManager* getExceptionMemoryManager() override {
    return m_pBefore->getExceptionMemoryManager();
  }
  size_t Bytes() const { return m_Bytes; }

 private:
  MemoryManager* m_pBefore;
  size_t m_Bytes = 0;
};

double Seconds() {
  timespec time;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

struct CCost {
  size_t m_Bytes;
  double m_Seconds;
};

CCost CostOf(const std::string& xml, int32_t scheme) {
  const CCounting counting;
  CDoc doc;
  EXPECT_EQ(TSXSetDoNamespaces(doc.Id(), 0, &support::kOn), 0);
  EXPECT_EQ(TSXSetValidateOnLoad(doc.Id(), 0, &scheme), 0);
  const double start = Seconds();
  EXPECT_EQ(support::Load(doc.Id(), xml), 0);
  return {counting.Bytes(), Seconds() - start};
}

// The text with every # numbered, so many times.
std::string Numbered(std::string_view text, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) {
    for (const char c : text) c == '#' ? all += std::to_string(i) : all += c;
  }
  return all;
}

// The parts that are repeated: `pEach` n times, and at the end as often `pEnd`.
struct CRow {
  const char* pName;
  int n;
  const char* pStart;
  const char* pEach;
  const char* pMiddle;
  const char* pEnd;
  const char* pLast;
  int32_t scheme = 0;
};

// The sizes are such that what grew with the square took longer than all else.
constexpr CRow kRows[] = {
    {"levels", 2500, "", "<a>", "", "</a>", ""},
    {"levels with a prefix", 2500, "<p:a xmlns:p='u'>", "<p:a>", "", "</p:a>", "</p:a>"},
    {"levels with declarations", 1250, "", "<a xmlns:p#='u'>", "", "</a>", ""},
    {"attributes", 4000, "<a ", "x#='' ", "/>", "", ""},
    {"attributes, then elements", 5000, "<a><b ", "x#='' ", "/>", "<b x=''/>", "</a>"},
    {"declarations of namespaces", 4000, "<a ", "xmlns:p#='u' ", "/>", "", ""},
    {"defaults of an element", 2000, "<!DOCTYPE a [", "<!ATTLIST a x# CDATA ''>", "]><a/>", "", ""},
    {"defaults of elements", 5000, "<!DOCTYPE a [", "<!ATTLIST a# x CDATA ''>", "]><a/>", "", ""},
    {"names of elements", 5000, "<a>", "<x#/>", "</a>", "", ""},
    {"names of attributes", 5000, "<a>", "<x y#=''/>", "</a>", "", ""},
    {"namespaces", 1250, "<a>", "<b xmlns='u#'/>", "</a>", "", ""},
    {"entities", 500, "<!DOCTYPE a [", "<!ENTITY e# 'x'>", "]><a/>", "", ""},
    {"parameter entities", 250, "<!DOCTYPE a [", "<!ENTITY % e# ''>%e#;", "]><a/>", "", ""},
    {"references", 625, "<!DOCTYPE a [<!ENTITY e 'x'>]><a>", "&e;", "</a>", "", ""},
    {"notations", 500, "<!DOCTYPE a [", "<!NOTATION n# PUBLIC 'x'>", "]><a/>", "", ""},
    {"IDs and references", 1250,
     "<!DOCTYPE a [<!ELEMENT a (b)*><!ELEMENT b EMPTY>"
     "<!ATTLIST b i ID #IMPLIED r IDREF #IMPLIED>]><a>",
     "<b i='x#' r='x#'/>", "</a>", "", "", 1},
    {"siblings", 2500, "<!DOCTYPE a [<!ELEMENT a (b)*><!ELEMENT b EMPTY>]><a>", "<b/>", "</a>", "",
     "", 1},
    {"tokens", 2500, "<!DOCTYPE a [<!ELEMENT a ANY><!ATTLIST a t NMTOKENS #IMPLIED>]><a t='", "t# ",
     "'/>", "", "", 1},
    {"spaces", 25000, "<a", " ", "/>", "", ""},
    {"letters of a name", 12500, "<", "a", "/>", "", ""},
    {"letters of a prefix", 12500, "<", "p", ":a xmlns:", "p", "='u'/>"},
    {"brackets", 25000, "<a><![CDATA[", "]", "]]></a>", "", ""},
};

std::string TextOf(const CRow& row, int n) {
  return row.pStart + Numbered(row.pEach, n) + row.pMiddle + Repeated(row.pEnd, n) + row.pLast;
}

// At sixteen times the size, memory and time may be so many times as much. What grows with
// the square takes 256 times as long, and full caches make all else up to three times slower.
constexpr int kTimes = 16;
constexpr double kMostMemory = 20, kMostTime = 100;

// Another run makes up for one that was disturbed: the shortest times count.
constexpr int kMostRuns = 4;

TEST(Growth, WhatATextCostsAtSixteenTimesTheSize) {
  for (const CRow& row : kRows) {
    const std::string small = TextOf(row, row.n), large = TextOf(row, kTimes * row.n);
    CCost once = CostOf(small, row.scheme), more = CostOf(large, row.scheme);
    for (int run = 1; run < kMostRuns && more.m_Seconds > kMostTime * once.m_Seconds; ++run) {
      more.m_Seconds = std::min(more.m_Seconds, CostOf(large, row.scheme).m_Seconds);
    }
    std::printf("%-28s %6d %7.1f ms %7.1f ms %8zu KB %8zu KB\n", row.pName, row.n,
                once.m_Seconds * 1e3, more.m_Seconds * 1e3, once.m_Bytes >> 10, more.m_Bytes >> 10);
    EXPECT_LT(static_cast<double>(more.m_Bytes), kMostMemory * static_cast<double>(once.m_Bytes))
        << row.pName;
    EXPECT_LT(more.m_Seconds, kMostTime * once.m_Seconds) << row.pName;
  }
}

// The stack of a scanner of its own, which the scanner does not use.
class CScanner final : public xercesc::IGXMLScanner {
 public:
  explicit CScanner(xercesc::GrammarResolver& resolver) : IGXMLScanner(nullptr, &resolver) {}
  xercesc::ElemStack& Elements() { return fElemStack; }
};

// How many levels a prefix is looked for, from the element on.
TEST(Growth, PrefixesInScopeAreNear) {
  xercesc::RefVectorOf<xercesc::XMLAttr> none(1, true);
  for (const size_t prefixes : {1u, 10u, 100u}) {
    xercesc::GrammarResolver resolver(nullptr);
    CScanner scanner(resolver);
    xercesc::ElemStack& elements = scanner.Elements();
    elements.reset(1, 2, 3, 4);
    CPrefixScope scope;
    scope.Begin();
    std::vector<size_t> entered;  // of each level
    for (size_t level = 0; level < 1000; ++level) {
      elements.addLevel();
      const auto name = [&](size_t i) { return u"p" + std::u16string(1, char16_t(u'0' + i)); };
      for (size_t i = 0; level == 0 && i < prefixes; ++i) {
        elements.addPrefix(name(i).c_str(), static_cast<unsigned>(10 + i));
      }
      scope.Enter(scanner, name(level % prefixes).c_str(), none, 0);
      entered.push_back(elements.topElement()->fMapCount);
      for (size_t i = 0; i < prefixes; ++i) {
        bool isUnknown = true;
        EXPECT_EQ(elements.mapPrefixToURI(name(i).c_str(), isUnknown), 10 + i);
        EXPECT_FALSE(isUnknown);
      }
    }
    const size_t most = std::max<size_t>(16, prefixes + 1);
    size_t last = 0;
    for (size_t level = 0; level < entered.size(); ++level) {
      if (entered[level] >= prefixes) last = level;
      EXPECT_LE(level - last, most + prefixes) << level << ' ' << prefixes;
    }
  }
}

// A level that is left takes along what was entered there.
TEST(Growth, PrefixesMeanWhatTheyMeantBefore) {
  std::string xml = "<p:a xmlns:p='urn:0' xmlns='urn:d'>", expected = "urn:0 ", scope = "urn:d ";
  for (int i = 0; i < 100; ++i) {
    const std::string uri = "urn:" + std::to_string(i % 7);
    const bool endsDefault = i % 10 == 3;
    xml += "<b><p:c/><p:d xmlns:p='" + uri + "'>" + (endsDefault ? "<e xmlns=''>" : "<e>");
    expected += scope + "urn:" + std::to_string(i == 0 ? 0 : (i - 1) % 7) + ' ' + uri + ' ';
    if (endsDefault) scope = " ";
    expected += scope;
  }
  CDoc doc;
  EXPECT_EQ(TSXSetDoNamespaces(doc.Id(), 0, &support::kOn), 0);
  EXPECT_EQ(support::Load(doc.Id(), xml + Repeated("</e></p:d></b>", 100) + "</p:a>"), 0);
  std::string found;
  const auto add = [&](TSXRefId node) {
    found += support::TextOf(TSXGetNamespaceName, node, uint64_t{0}) + ' ';
  };
  add(doc.Root());
  for (TSXRefId b = support::FirstChild(doc.Root()); b != 0;) {
    const TSXRefId c = support::FirstChild(b), d = support::NextSibling(c);
    const TSXRefId e = support::FirstChild(d);
    for (const TSXRefId node : {b, c, d, e}) add(node);
    b = support::FirstChild(e);
  }
  EXPECT_EQ(found, expected);
}

}  // namespace
