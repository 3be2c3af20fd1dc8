// Evaluates one XPath expression.
#pragma once

#include <tessel/export.h>

#include <string>
#include <vector>
#include <xercesc/dom/DOMNode.hpp>

#include "xpath/namespacescope.h"
#include "xpath/plainform.h"

// A failure of our own: a status code, and the text for the host.
class KelXPathException {
 public:
  explicit KelXPathException(TSXStatus status, std::u16string message = {})
      : m_Status(status), m_Message(std::move(message)) {}

  TSXStatus GetStatus() const { return m_Status; }
  const std::u16string& GetMessage() const { return m_Message; }

 private:
  TSXStatus m_Status;
  std::u16string m_Message;
};

// Which engine evaluates what plainform.h calls plain. The results are the same: Xalan-C
// serves for comparison.
enum class EPlainPaths { kOnDom, kByXalan };

// Evaluations at one node; make it on the stack and let it go before the tree changes.
// One thread, and nobody else may work on the document meanwhile. Throws what RunXPath
// of xpathguard.h maps.
class XPathManager {
 public:
  // Borrows the context, a node of any kind. Null is domErrXPathContext.
  explicit XPathManager(xercesc::DOMNode* pContext, EPlainPaths plainPaths = EPlainPaths::kOnDom);
  XPathManager(const XPathManager&) = delete;
  XPathManager& operator=(const XPathManager&) = delete;

  // The selected nodes in document order, each once.
  std::vector<xercesc::DOMNode*> Evaluate(const XMLCh* pExpression);
  // As Evaluate, cut after the first node.
  std::vector<xercesc::DOMNode*> EvaluateFirst(const XMLCh* pExpression);
  // The value of an expression of any type.
  std::u16string EvaluateText(const XMLCh* pExpression);
  double EvaluateNumber(const XMLCh* pExpression);
  bool EvaluateTruth(const XMLCh* pExpression);
  // The type of an expression, which is not evaluated.
  plain::EType TypeOf(const XMLCh* pExpression);

 private:
  std::vector<xercesc::DOMNode*> Select(const XMLCh* pExpression, std::size_t most);
  template <class OnDom, class ByXalan>
  auto Run(const XMLCh* pExpression, OnDom onDom, ByXalan byXalan);
  template <class OnDom>
  auto RunPlain(const plain::CForm& form, OnDom onDom);

  const EPlainPaths m_PlainPaths;
  xercesc::DOMNode& m_Context;
  CNamespaceScope m_Scope;
};
