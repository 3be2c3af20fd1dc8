#include <libxml/xpath.h>

#include <stdexcept>
#include <xalanc/XPath/NodeRefList.hpp>
#include <xalanc/XPath/XPathEvaluator.hpp>
#include <xalanc/XalanDOM/XalanDOMString.hpp>
#include <xalanc/XercesParserLiaison/XercesDOMSupport.hpp>
#include <xalanc/XercesParserLiaison/XercesDocumentWrapper.hpp>
#include <xalanc/XercesParserLiaison/XercesParserLiaison.hpp>

#include "documents.h"
#include "libraries.h"
#include "rows.h"

namespace bench {
namespace {

struct CFreeContext {
  void operator()(xmlXPathContext* pContext) const { xmlXPathFreeContext(pContext); }
};
struct CFreeResult {
  void operator()(xmlXPathObject* pResult) const { xmlXPathFreeObject(pResult); }
};

// A document of items with one of its middle, where every expression starts. What
// libxml2 evaluates with is kept, as its programs keep it.
struct CContext {
  explicit CContext(const CSizes& sizes) : m_Documents(QueryXml(sizes.m_QueryItems)) {
    const size_t middle = sizes.m_QueryItems / 2;
    CIds items(Children<CTesselTree>(m_Documents.Root()));
    std::swap(*m_Tessel.Out(), items.Get()[middle]);  // with its hand-out
    m_pXerces = Children<CXercesTree>(m_Documents.m_Xerces.Root())[middle];
    m_Libxml2.reset(xmlXPathNewContext(m_Documents.m_Libxml2.get()));
    m_Libxml2->node = Children<CLibxml2Tree>(m_Documents.Libxml2Root())[middle];
    m_Pugixml = Children<CPugixmlTree>(m_Documents.PugixmlRoot())[middle];
  }
  CDocuments m_Documents;
  CNode m_Tessel;
  xercesc::DOMNode* m_pXerces;
  std::unique_ptr<xmlXPathContext, CFreeContext> m_Libxml2;
  pugi::xml_node m_Pugixml;
};

// All rows share one, which the first of them makes.
class CSharedContext {
 public:
  std::shared_ptr<CContext> Get(const CSizes& sizes) {
    if (m_Context == nullptr) m_Context = std::make_shared<CContext>(sizes);
    return m_Context;
  }

 private:
  std::shared_ptr<CContext> m_Context;
};

// A program that keeps nothing between two evaluations, as the tree may change.
uint64_t EvaluateXalan(const CContext& context, const std::u16string& expression) {
  xalanc::XercesParserLiaison liaison;
  xalanc::XercesDOMSupport support(liaison);
  constexpr bool kThreadSafe = false, kBuildWrapper = true, kBuildMaps = true;
  const xalanc::XalanDocument* pDocument = liaison.createDocument(
      context.m_Documents.m_Xerces.Get(), kThreadSafe, kBuildWrapper, kBuildMaps);
  xalanc::XalanNode* pNode = liaison.mapDocumentToWrapper(pDocument)->mapNode(context.m_pXerces);
  xalanc::XPathEvaluator evaluator;
  xalanc::NodeRefList nodes;
  evaluator.selectNodeList(nodes, support, pNode, expression.c_str());
  return nodes.getLength();
}

// Compiles the expression every time.
uint64_t EvaluateLibxml2(const CContext& context, const std::string& expression) {
  const std::unique_ptr<xmlXPathObject, CFreeResult> result(xmlXPathEvalExpression(
      reinterpret_cast<const xmlChar*>(expression.c_str()), context.m_Libxml2.get()));
  if (result == nullptr) throw std::runtime_error("libxml2 refuses " + expression);
  return result->nodesetval == nullptr ? 0 : static_cast<uint64_t>(result->nodesetval->nodeNr);
}

uint64_t EvaluatePugixml(const CContext& context, const std::string& expression) {
  pugi::xpath_node_set nodes = context.m_Pugixml.select_nodes(expression.c_str());
  nodes.sort();  // the others give document order
  return nodes.size();
}

// The ids are closed after the clock has stopped.
CContestant EvaluateTessel(const std::shared_ptr<CContext>& context, const std::string& expression,
                           size_t times) {
  const auto text = std::make_shared<CText>(expression);
  const auto results = std::make_shared<std::vector<CNodeArray>>();
  return {.m_Name = "Tessel",
          .m_Work =
              [=] {
                CText errorText;
                uint64_t nodes = 0;
                for (CNodeArray& result : *results) {
                  Require(XPathEvaluateContextToNodeArray(context->m_Tessel.Get(), text->Get(),
                                                          result.Get(), errorText.Get()),
                          "XPathEvaluateContextToNodeArray");
                  nodes += result.Size();
                }
                return nodes;
              },
          .m_Before = [=] { *results = std::vector<CNodeArray>(times); },
          .m_After = [=] { results->clear(); }};
}

CRow EvaluateRow(const std::shared_ptr<CContext>& context, const std::string& expression,
                 size_t times) {
  const std::u16string wide = Wide(expression.c_str());
  const auto repeated = [=](auto evaluate) {
    return [=] {
      uint64_t nodes = 0;
      for (size_t i = 0; i < times; ++i) nodes += evaluate();
      return nodes;
    };
  };
  CRow row{"evaluation",
           times,
           {EvaluateTessel(context, expression, times),
            {kLibxml2, repeated([=] { return EvaluateLibxml2(*context, expression); })},
            {kPugixml, repeated([=] { return EvaluatePugixml(*context, expression); })}}};
  // To build a wrapper for each of many evaluations takes minutes.
  if (times == 1) {
    row.m_Contestants.push_back({"Xalan-C", [=] { return EvaluateXalan(*context, wide); }});
  }
  return row;
}

}  // namespace

CRowTable XPathRows() {
  struct CExpression {
    const char* m_pId;
    const char* m_pTitle;  // "XPath " and the expression
    bool m_IsShort = false;
  };
  static constexpr size_t kTitleStart = 6;
  static constexpr CExpression kExpressions[] = {
      {"xpath.attribute", "XPath @id", true},
      {"xpath.sibling", "XPath ../item[3]", true},
      {"xpath.first", "XPath /list/item[1]", true},
      {"xpath.own.text", "XPath name/text()", true},
      {"xpath.items", "XPath //item"},
      {"xpath.names", "XPath //name"},
      {"xpath.path", "XPath /list/item/name"},
      {"xpath.by.id", "XPath //item[@id='777']"},
      {"xpath.by.name", "XPath //item[name='Name 777']"},
      {"xpath.above", "XPath /list/item[@id > 30000]/name"},
      {"xpath.last", "XPath //item[last()]"},
      {"xpath.position", "XPath //item[position() < 10]"},
      {"xpath.union", "XPath //name | //item"},
      {"xpath.contains", "XPath //item[contains(name, '77')]"},
      {"xpath.parents", "XPath //name/.."},
      {"xpath.texts", "XPath //item[@id]/name/text()"},
  };
  const auto context = std::make_shared<CSharedContext>();
  CRowTable rows;
  for (const CExpression& expression : kExpressions) {
    rows.push_back(
        {expression.m_pId, expression.m_pTitle, Times(2, kLibxml2), [=](const CSizes& sizes) {
           return EvaluateRow(context->Get(sizes), expression.m_pTitle + kTitleStart,
                              expression.m_IsShort ? sizes.m_Calls / 10 : 1);
         }});
  }
  return rows;
}

}  // namespace bench
