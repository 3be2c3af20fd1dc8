#include <tessel/status.h>
#include <tessel/xpath.h>

#include "collections/fillers.h"
#include "document/find.h"
#include "host/text.h"
#include "xpath/xpathguard.h"
#include "xpath/xpathmanager.h"

using xercesc::DOMNode;

namespace {

using CNodes = std::vector<DOMNode*>;

// Selects nodes and stores them when all went well; a failure's message goes to
// the host.
template <class Select, class Store>
TSXStatus Evaluate(TSXRefId context, HStr* pExpression, HStr* pErrorText, Select select,
                   Store store) {
  ClearString(pErrorText);
  std::u16string message;
  const TSXStatus status = RunXPath(
      [&] {
        XPathManager manager(FindObject<DOMNode>(context));
        store(select(manager, CWideText(pExpression).Get()));
      },
      message);
  if (!message.empty()) StoreText(message.c_str(), pErrorText);
  return status;
}

}  // namespace

TSXStatus XPathEvaluateContextToNode(TSXRefId context, HStr* expression, TSXRefId* nodeOut,
                                     HStr* errorText) {
  *nodeOut = 0;
  return Evaluate(
      context, expression, errorText,
      [](XPathManager& manager, const XMLCh* pText) { return manager.EvaluateFirst(pText); },
      [&](const CNodes& nodes) {
        if (!nodes.empty()) *nodeOut = g_NodeSessMap.Insert(nodes.front());
      });
}

TSXStatus XPathEvaluateContextToNodeArray(TSXRefId context, HStr* expression,
                                          GenericRefObjSessionArray* nodesOut, HStr* errorText) {
  ClearSessionArray(nodesOut);
  return Evaluate(
      context, expression, errorText,
      [](XPathManager& manager, const XMLCh* pText) { return manager.Evaluate(pText); },
      [&](const CNodes& nodes) { StoreNodes(nodes, nodesOut); });
}
