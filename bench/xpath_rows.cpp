#include <libxml/xpath.h>

#include <optional>
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

// The medium document with an item of its middle, where every expression starts.
struct CContext {
  explicit CContext(const CSizes& sizes) : m_Documents(ItemsXml(sizes.m_MediumItems)) {
    const size_t middle = sizes.m_MediumItems / 2;
    CIds items(Children<CTesselTree>(m_Documents.Root()));
    std::swap(*m_Tessel.Out(), items.Get()[middle]);  // with its hand-out
    m_pXerces = Children<CXercesTree>(m_Documents.m_Xerces.Root())[middle];
    m_pLibxml2 = Children<CLibxml2Tree>(m_Documents.Libxml2Root())[middle];
    m_Pugixml = Children<CPugixmlTree>(m_Documents.PugixmlRoot())[middle];
  }
  CDocuments m_Documents;
  CNode m_Tessel;
  xercesc::DOMNode* m_pXerces;
  xmlNode* m_pLibxml2;
  pugi::xml_node m_Pugixml;
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

struct CFreeContext {
  void operator()(xmlXPathContext* pContext) const { xmlXPathFreeContext(pContext); }
};
struct CFreeResult {
  void operator()(xmlXPathObject* pResult) const { xmlXPathFreeObject(pResult); }
};

uint64_t EvaluateLibxml2(const CContext& context, const std::string& expression) {
  const std::unique_ptr<xmlXPathContext, CFreeContext> evaluation(
      xmlXPathNewContext(context.m_Documents.m_Libxml2.get()));
  evaluation->node = context.m_pLibxml2;
  const std::unique_ptr<xmlXPathObject, CFreeResult> result(xmlXPathEvalExpression(
      reinterpret_cast<const xmlChar*>(expression.c_str()), evaluation.get()));
  if (result == nullptr) throw std::runtime_error("libxml2 refuses " + expression);
  return result->nodesetval == nullptr ? 0 : static_cast<uint64_t>(result->nodesetval->nodeNr);
}

uint64_t EvaluatePugixml(const CContext& context, const std::string& expression) {
  pugi::xpath_node_set nodes = context.m_Pugixml.select_nodes(expression.c_str());
  nodes.sort();  // the others give document order
  return nodes.size();
}

// The ids are closed after the clock has stopped.
CContestant EvaluateTessel(const std::shared_ptr<CContext>& context,
                           const std::string& expression) {
  const auto text = std::make_shared<CText>(expression);
  const auto nodes = std::make_shared<std::optional<CNodeArray>>();
  return {.m_Name = "Tessel",
          .m_Work =
              [=] {
                CText errorText;
                Require(XPathEvaluateContextToNodeArray(context->m_Tessel.Get(), text->Get(),
                                                        (*nodes)->Get(), errorText.Get()),
                        "XPathEvaluateContextToNodeArray");
                return (*nodes)->Size();
              },
          .m_Before = [=] { nodes->emplace(); },
          .m_After = [=] { nodes->reset(); }};
}

CRow EvaluateRow(const CSizes& sizes, const std::string& expression) {
  const auto context = std::make_shared<CContext>(sizes);
  const std::u16string wide = Wide(expression.c_str());
  return {"evaluation",
          1,
          {EvaluateTessel(context, expression),
           {"Xalan-C", [=] { return EvaluateXalan(*context, wide); }},
           {"libxml2", [=] { return EvaluateLibxml2(*context, expression); }},
           {"pugixml", [=] { return EvaluatePugixml(*context, expression); }}}};
}

CRowEntry Row(const char* pId, const char* pTitle, const char* pAim, const char* pExpression) {
  return {pId, pTitle, pAim, [=](const CSizes& sizes) { return EvaluateRow(sizes, pExpression); }};
}

}  // namespace

CRowTable XPathRows() {
  constexpr const char* kLocal = "1; 10 to libxml2";
  constexpr const char* kWhole = "1; 5 to libxml2";
  // By value, an item that both the full and the quick documents have.
  const auto byId = [](const CSizes& sizes) {
    return EvaluateRow(sizes, "//item[@id='" + ItemId(sizes.m_MediumItems / 3) + "']");
  };
  return {
      Row("xpath.attribute", "XPath @id", kLocal, "@id"),
      Row("xpath.sibling", "XPath ../item[3]", kLocal, "../item[3]"),
      Row("xpath.first", "XPath /list/item[1]", kLocal, "/list/item[1]"),
      Row("xpath.last", "XPath /list/item[last()]", "1", "/list/item[last()]"),
      Row("xpath.items", "XPath //item", kWhole, "//item"),
      Row("xpath.names", "XPath //name", kWhole, "//name"),
      {"xpath.id", "XPath //item[@id='...']", kWhole, byId},
      Row("xpath.text", "XPath //item[name='amber delta']", kWhole, "//item[name='amber delta']"),
      Row("xpath.union", "XPath //name | //note", "1", "//name | //note"),
  };
}

}  // namespace bench
