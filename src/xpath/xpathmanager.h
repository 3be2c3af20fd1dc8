// Evaluates one XPath expression.
#pragma once

#include <tessel/export.h>

#include <string>
#include <vector>
#include <xalanc/DOMSupport/DOMSupport.hpp>
#include <xalanc/XPath/XPath.hpp>
#include <xercesc/dom/DOMNode.hpp>

#include "xpath/execution.h"
#include "xpath/namespacescope.h"
#include "xpath/numberguard.h"
#include "xpath/silentcontexts.h"
#include "xpath/xpathtree.h"

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

// Document order as the tree has it.
class CXPathOrder final : public xalanc::DOMSupport {
 public:
  explicit CXPathOrder(CXPathTree& tree) : m_Tree(tree) {}

  void reset() override {}
  const xalanc::XalanDOMString& getUnparsedEntityURI(const xalanc::XalanDOMString&,
                                                     const xalanc::XalanDocument&) const override {
    return m_None;
  }
  bool isNodeAfter(const xalanc::XalanNode& node, const xalanc::XalanNode& other) const override {
    return m_Tree.IsAfter(node, other);
  }

 private:
  CXPathTree& m_Tree;
  const xalanc::XalanDOMString m_None;
};

// Who follows what plainpath.h calls plain. The results are the same: Xalan-C serves
// for comparison.
enum class EPlainPaths { kOnDom, kByXalan };

// One evaluation; make it on the stack and let it go before the tree changes. One
// thread, and nobody else may work on the document meanwhile. Throws what RunXPath
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

 private:
  std::vector<xercesc::DOMNode*> Select(const XMLCh* pExpression, std::size_t most);
  std::vector<xercesc::DOMNode*> Execute(const xalanc::XPath& xpath, std::size_t most);

  const EPlainPaths m_PlainPaths;
  CXPathTree m_Tree;
  CXPathOrder m_Order;
  CNamespaceScope m_Scope;
  CSilentEnvironment m_Environment;
  CNumberGuard m_Factory;
  CExecution m_Execution;
};
