// Xalan-C at work on a tree.
#pragma once

#include <cstddef>
#include <string>
#include <vector>
#include <xalanc/DOMSupport/DOMSupport.hpp>
#include <xalanc/XPath/MutableNodeRefList.hpp>
#include <xalanc/XPath/XPath.hpp>
#include <xercesc/dom/DOMNode.hpp>

#include "xpath/execution.h"
#include "xpath/expressionlexer.h"
#include "xpath/namespacescope.h"
#include "xpath/numberguard.h"
#include "xpath/silentcontexts.h"
#include "xpath/xpathtree.h"

// An expression as Xalan-C evaluates it. Nothing changes it, so threads can share it.
class CXalanForm {
 public:
  // Throws for what is no expression, or beyond the limits. The namespaces of its
  // prefixes are part of the form.
  CXalanForm(const CLexedExpression& expression, const CNamespaceScope& scope);

  const xalanc::XPath& Get() const { return m_XPath; }

 private:
  void Compile(const XMLCh* pExpression, const CNamespaceScope& scope);

  CSilentConstruction m_Construction;  // has the form's strings
  xalanc::XPath m_XPath;
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

// One evaluation.
class CXalanEvaluation {
 public:
  // Borrows both.
  CXalanEvaluation(xercesc::DOMNode& context, const CNamespaceScope& scope);

  // The first nodes that the expression selects, in document order, each once.
  std::vector<xercesc::DOMNode*> Select(const CXalanForm& form, std::size_t most);
  // The value of the expression as a text, a number or a truth value.
  std::u16string Text(const CXalanForm& form);
  double Number(const CXalanForm& form);
  bool Truth(const CXalanForm& form);

 private:
  xalanc::XObjectPtr Execute(const CXalanForm& form);
  xalanc::XObjectPtr Value(const CXalanForm& form);

  const CNamespaceScope& m_Scope;
  CXPathTree m_Tree;
  CXPathOrder m_Order;
  xalanc::MutableNodeRefList m_Focus;  // the context alone, so position() and last() are 1
  CSilentEnvironment m_Environment;
  CNumberGuard m_Factory;
  CExecution m_Execution;
};
