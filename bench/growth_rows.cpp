#include <libxml/xpath.h>

#include <algorithm>

#include "documents.h"
#include "libraries.h"
#include "rows.h"

// How the cost of work grows when its document doubles.

namespace bench {
namespace {

constexpr const char* kHalf = "half the size";
constexpr const char* kSiblings = "by sibling";

// The root of a document that only Tessel has.
struct CTesselTop {
  explicit CTesselTop(const std::string& xml) : m_Document(OpenDocument(xml)) {
    Require(TSXGetDocumentElement(m_Document.Get(), 0, m_Root.Out()), "TSXGetDocumentElement");
  }
  CDocument m_Document;
  CNode m_Root;
};

// -- The children of an element -------------------------------------------------

// The loop that every program writes.
uint64_t ReadByIndex(TSXRefId root) {
  CId<TSXNodeListClose> list;
  Require(TSXGetChildNodeList(root, 0, list.Out()), "TSXGetChildNodeList");
  int32_t length = 1;
  int32_t i = 0;
  for (; i < length; ++i) {
    CNode node;
    Require(TSXGetListLength(list.Get(), 0, &length), "TSXGetListLength");
    Require(TSXGetItem(list.Get(), i, node.Out()), "TSXGetItem");
  }
  return static_cast<uint64_t>(i);
}

uint64_t ReadBySibling(TSXRefId root) {
  CNode node;
  Require(TSXGetFirstChild(root, 0, node.Out()), "TSXGetFirstChild");
  uint64_t count = 0;
  while (node) {
    ++count;
    CNode next;
    Require(TSXGetNextSibling(node.Get(), 0, next.Out()), "TSXGetNextSibling");
    node = std::move(next);
  }
  return count;
}

CRow ListStep(const CSizes& sizes) {
  const auto top = std::make_shared<CTesselTop>(SiblingsXml(2 * sizes.m_Growth));
  return {"item",
          2 * sizes.m_Growth,
          {{"Tessel", [=] { return ReadByIndex(top->m_Root.Get()); }},
           {kSiblings, [=] { return ReadBySibling(top->m_Root.Get()); }}}};
}

// The same work on two documents, whose results differ.
CRow GrowthRow(std::function<uint64_t()> large, std::function<uint64_t()> small) {
  const auto none = [] { return uint64_t{0}; };
  return {"run",
          1,
          {{.m_Name = "Tessel", .m_Work = std::move(large), .m_Check = none},
           {.m_Name = kHalf, .m_Work = std::move(small), .m_Check = none}}};
}

CRow ListGrowth(const CSizes& sizes) {
  const auto large = std::make_shared<CTesselTop>(SiblingsXml(2 * sizes.m_Growth));
  const auto small = std::make_shared<CTesselTop>(SiblingsXml(sizes.m_Growth));
  return GrowthRow([=] { return ReadByIndex(large->m_Root.Get()); },
                   [=] { return ReadByIndex(small->m_Root.Get()); });
}

// -- Expressions ----------------------------------------------------------------

uint64_t Evaluate(const CTesselTop& top, CText& expression) {
  CNodeArray nodes;
  CText errorText;
  Require(XPathEvaluateContextToNodeArray(top.m_Root.Get(), expression.Get(), nodes.Get(),
                                          errorText.Get()),
          "XPathEvaluateContextToNodeArray");
  return nodes.Size();
}

CRow ExpressionGrowth(const CSizes& sizes, const char* pExpression) {
  const auto large = std::make_shared<CTesselTop>(SiblingsXml(2 * sizes.m_Growth));
  const auto small = std::make_shared<CTesselTop>(SiblingsXml(sizes.m_Growth));
  const auto text = std::make_shared<CText>(pExpression);
  return GrowthRow([=] { return Evaluate(*large, *text); },
                   [=] { return Evaluate(*small, *text); });
}

CRowEntry Row(const char* pId, const char* pTitle, const char* pExpression) {
  return {pId, pTitle, Times(2.3, kHalf),
          [=](const CSizes& sizes) { return ExpressionGrowth(sizes, pExpression); }};
}

}  // namespace

CRowTable GrowthRows() {
  return {
      {"list.step", "Read a child list by index", More(200, kSiblings), ListStep},
      {"growth.list", "Read a child list of 10,000 by index", Times(2.1, kHalf), ListGrowth},
      Row("growth.next", "XPath //a/following-sibling::a[1], of 10,000",
          "//a/following-sibling::a[1]"),
      Row("growth.even", "XPath //a[position() mod 2 = 0], of 10,000", "//a[position() mod 2 = 0]"),
      Row("growth.mixed", "XPath //a[@x='1' and b]/b | //a[last()], of 10,000",
          "//a[@x='1' and b]/b | //a[last()]"),
  };
}

}  // namespace bench
