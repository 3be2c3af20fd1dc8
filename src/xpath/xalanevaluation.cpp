#include "xpath/xalanevaluation.h"

#include <algorithm>
#include <xalanc/XPath/XObject.hpp>
#include <xalanc/XPath/XPathProcessorImpl.hpp>

#include "xpath/expressionform.h"
#include "xpath/expressionlimits.h"

// Errors are about the host's own text, so that is compiled first.
CXalanForm::CXalanForm(const CLexedExpression& expression, const CNamespaceScope& scope)
    : m_XPath(*xercesc::XMLPlatformUtils::fgMemoryManager) {
  CheckExpression(expression);
  Compile(expression.Text().c_str(), scope);
  const auto rewritten = CExpressionForm(expression).Rewritten();
  if (rewritten) Compile(rewritten->c_str(), scope);
  // Literals stay the expression's own. Otherwise Xalan-C copies each into an object
  // that keeps the number of the one before: "1 = '1' and 2 = '2'" was false.
  m_XPath.setInStylesheet(true);
}

void CXalanForm::Compile(const XMLCh* pExpression, const CNamespaceScope& scope) {
  xalanc::XPathProcessorImpl processor;
  processor.initXPath(m_XPath, m_Construction, xalanc::XalanDOMString(pExpression), scope);
}

CXalanEvaluation::CXalanEvaluation(xercesc::DOMNode& context, const CNamespaceScope& scope)
    : m_Scope(scope),
      m_Tree(context),
      m_Order(m_Tree),
      m_Focus(*xercesc::XMLPlatformUtils::fgMemoryManager),
      m_Execution(m_Environment, m_Order, m_Factory, &m_Tree.Context(), nullptr, &m_Scope) {
  m_Focus.addNode(&m_Tree.Context());
}

xalanc::XObjectPtr CXalanEvaluation::Execute(const CXalanForm& form) {
  return form.Get().execute(&m_Tree.Context(), m_Scope, m_Focus, m_Execution);
}

// A variable, which is never bound, is of no type: it cannot be converted.
xalanc::XObjectPtr CXalanEvaluation::Value(const CXalanForm& form) {
  const xalanc::XObjectPtr result = Execute(form);
  if (result->getType() == xalanc::XObject::eTypeUnknown) result->nodeset();
  return result;
}

std::u16string CXalanEvaluation::Text(const CXalanForm& form) {
  return Value(form)->str(m_Execution).c_str();
}

double CXalanEvaluation::Number(const CXalanForm& form) { return Value(form)->num(m_Execution); }

bool CXalanEvaluation::Truth(const CXalanForm& form) { return Value(form)->boolean(m_Execution); }

// Without the nodes that stand for none.
std::vector<xercesc::DOMNode*> CXalanEvaluation::Select(const CXalanForm& form, std::size_t most) {
  const xalanc::XObjectPtr result = Execute(form);
  const xalanc::NodeRefListBase& nodes = result->nodeset();
  const xalanc::NodeRefListBase::size_type count = nodes.getLength();
  std::vector<xercesc::DOMNode*> selected;
  selected.reserve(std::min<std::size_t>(count, most));
  for (xalanc::NodeRefListBase::size_type i = 0; i < count && selected.size() < most; ++i) {
    xercesc::DOMNode* pNode = CXPathTree::Unwrap(*nodes.item(i));
    if (pNode != nullptr) selected.push_back(pNode);
  }
  return selected;
}
