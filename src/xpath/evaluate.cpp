#include <tessel/status.h>
#include <tessel/xpath.h>

#include <xercesc/util/XMLChar.hpp>

#include "collections/fillers.h"
#include "document/find.h"
#include "host/guards.h"
#include "host/text.h"
#include "xpath/xpathguard.h"
#include "xpath/xpathmanager.h"

using xercesc::DOMNode;

namespace {

using CNodes = std::vector<DOMNode*>;

// Evaluates, and stores the value when all went well; a failure's message goes to the
// host.
template <class Call, class Store>
TSXStatus Evaluate(TSXRefId context, HStr* pExpression, HStr* pErrorText, Call call, Store store) {
  ClearString(pErrorText);
  std::u16string message;
  const TSXStatus status = RunXPath(
      [&] {
        XPathManager manager(FindObject<DOMNode>(context));
        store(call(manager, CWideText(pExpression).Get()));
      },
      message);
  if (message.empty()) return status;
  const TSXStatus unexpected =
      Always<domErrUnexpected>::Run([&] { StoreText(message.c_str(), pErrorText); });
  return unexpected != 0 ? unexpected : status;
}

// The code for what may not be bound, 0 for a prefix that may.
TSXStatus RefusalOfPrefix(std::u16string_view prefix) {
  if (!xercesc::XMLChar1_0::isValidNCName(prefix.data(), prefix.size())) {
    return domErrInvalidCharacter;
  }
  return prefix == u"xml" || prefix == u"xmlns" ? domErrNamespace : 0;
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

TSXStatus XPathEvaluateContextToString(TSXRefId context, HStr* expression, HStr* valueOut,
                                       HStr* errorText) {
  ClearString(valueOut);
  TSXStatus stored = 0;
  const TSXStatus status = Evaluate(
      context, expression, errorText,
      [](XPathManager& manager, const XMLCh* pText) { return manager.EvaluateText(pText); },
      [&](const std::u16string& value) { stored = StoreText(value.c_str(), valueOut); });
  return status != 0 ? status : stored;
}

TSXStatus XPathEvaluateContextToNumber(TSXRefId context, HStr* expression, double* valueOut,
                                       HStr* errorText) {
  *valueOut = 0;
  return Evaluate(
      context, expression, errorText,
      [](XPathManager& manager, const XMLCh* pText) { return manager.EvaluateNumber(pText); },
      [&](double value) { *valueOut = value; });
}

TSXStatus XPathEvaluateContextToBoolean(TSXRefId context, HStr* expression, uint8_t* valueOut,
                                        HStr* errorText) {
  *valueOut = 0;
  return Evaluate(
      context, expression, errorText,
      [](XPathManager& manager, const XMLCh* pText) { return manager.EvaluateTruth(pText); },
      [&](bool value) { *valueOut = value ? 1 : 0; });
}

TSXStatus XPathGetExpressionType(TSXRefId context, HStr* expression, int32_t* typeOut,
                                 HStr* errorText) {
  *typeOut = 0;
  return Evaluate(
      context, expression, errorText,
      [](XPathManager& manager, const XMLCh* pText) { return manager.TypeOf(pText); },
      [&](plain::EType type) { *typeOut = static_cast<int32_t>(type) + 1; });
}

TSXStatus XPathBindPrefix(TSXRefId document, HStr* prefix, HStr* namespaceURI) {
  auto* pDom = FindObject<CXercesDOM>(document);
  if (pDom == nullptr) return domErrRefDocument;
  TSXStatus refused = 0;
  const TSXStatus status = Always<domErrUnexpected>::Run([&] {
    const CWideText name(prefix);
    refused = RefusalOfPrefix(name.Get());
    if (refused == 0) pDom->m_PrefixBindings.Bind(name.Get(), CWideText(namespaceURI).Get());
  });
  return status != 0 ? status : refused;
}
