// An XPath text at each of a few nodes of a document with every kind of node. What is
// evaluated on the DOM itself must give what Xalan-C gives.
#include <algorithm>

#include "document/xercesdom.h"
#include "harness.h"
#include "registry/globals.h"
#include "xpath/xpathguard.h"
#include "xpath/xpathmanager.h"

namespace {

constexpr std::string_view kXml =
    "<!DOCTYPE r [<!ENTITY e 'x<b/>'><!ATTLIST a id ID #IMPLIED d CDATA 'y'>]>"
    "<r xmlns:p='u' xml:lang='en'>t<a id='i' p:n='1'>2<p:c/>&e;<![CDATA[s]]></a><!--o--><?i d?>"
    "<a id='j'><a>10</a></a></r>";

// The first node is the first of all.
void Evaluate(TSXRefId context, HStr* pExpression) {
  fuzz::CIds nodes;
  fuzz::CText errors;
  TSXRefId first = 0;
  const TSXStatus one = XPathEvaluateContextToNode(context, pExpression, &first, errors.Out());
  const TSXStatus all =
      XPathEvaluateContextToNodeArray(context, pExpression, nodes.Out(), errors.Out());
  fuzz::RequireKnown(one);
  if (one != all) fuzz::Fail("one node and all nodes differ in their status");
  if (first != (nodes.Count() == 0 ? 0 : nodes.At(0))) fuzz::Fail("the first node is another");
  nodes.CloseNodes();
  TSXNodeClose(first);
}

void CompareWays(TSXRefId context, std::string_view path) {
  const std::u16string text(path.begin(), path.end());
  const auto entry = g_NodeSessMap.GetEntryBySess(context);
  xercesc::DOMNode* pNode = entry.m_pNode;
  if (entry.m_Kind == ENodeKind::kDocumentObject) {
    pNode = static_cast<CXercesDOM*>(pNode)->DocumentNode();
  }
  std::u16string message;
  const auto evaluate = [&](EPlainPaths way) {
    std::vector<xercesc::DOMNode*> nodes;
    std::u16string value;
    const auto status =
        RunXPath([&] { nodes = XPathManager(pNode, way).Evaluate(text.c_str()); }, message);
    const auto valueStatus =
        RunXPath([&] { value = XPathManager(pNode, way).EvaluateText(text.c_str()); }, message);
    return std::make_tuple(status, nodes, valueStatus, value);
  };
  if (evaluate(EPlainPaths::kOnDom) != evaluate(EPlainPaths::kByXalan)) {
    fuzz::Fail("the two ways of evaluation differ");
  }
}

bool IsAscii(std::string_view text) {
  return std::ranges::all_of(text, [](char byte) { return byte > 0; });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t size) {
  fuzz::CBytes bytes(pData, size);
  const std::string_view path = bytes.Rest();
  if (!fuzz::IsTame(path)) return 0;
  fuzz::CLedger ledger;
  fuzz::CDoc document;
  const uint8_t namespaces = 1;
  TSXSetDoNamespaces(document.Id(), 0, &namespaces);
  fuzz::RequireKnown(document.Load(kXml));
  fuzz::CText expression(path);
  TSXRefId root = 0, text = 0, element = 0;
  TSXGetDocumentElement(document.Id(), 0, &root);
  TSXGetFirstChild(root, 0, &text);
  TSXGetNextSibling(text, 0, &element);
  for (const TSXRefId context : {document.Id(), element, text}) {
    Evaluate(context, expression.Out());
    if (IsAscii(path)) CompareWays(context, path);
  }
  return 0;
}
