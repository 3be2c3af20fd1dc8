#include "xpath/xpathmanager.h"

#include <tessel/status.h>

#include <algorithm>
#include <limits>
#include <xalanc/XPath/XObject.hpp>
#include <xalanc/XPath/XPathProcessorImpl.hpp>

#include "xpath/expressionform.h"
#include "xpath/expressionlimits.h"
#include "xpath/plainpath.h"
#include "xpath/xalanlibrary.h"

namespace {

constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

// The first step of an evaluation.
xercesc::DOMNode& Begin(xercesc::DOMNode* pContext) {
  if (pContext == nullptr) throw KelXPathException(domErrXPathContext);
  CXalanLibrary::Use();
  return *pContext;
}

// An expression made ready; its strings are those of the construction context.
class CCompiled {
 public:
  CCompiled(const XMLCh* pExpression, const xalanc::PrefixResolver& scope)
      : m_Xpath(*xercesc::XMLPlatformUtils::fgMemoryManager) {
    xalanc::XPathProcessorImpl processor;
    processor.initXPath(m_Xpath, m_Construction, xalanc::XalanDOMString(pExpression), scope);
    // Literals stay the expression's own. Otherwise Xalan-C copies each into an object
    // that keeps the number of the one before: "1 = '1' and 2 = '2'" was false.
    m_Xpath.setInStylesheet(true);
  }
  const xalanc::XPath& Get() const { return m_Xpath; }

 private:
  CSilentConstruction m_Construction;
  xalanc::XPath m_Xpath;
};

// The first nodes of a list, without those that stand for none.
std::vector<xercesc::DOMNode*> Unwrap(const xalanc::NodeRefListBase& nodes, std::size_t most) {
  std::vector<xercesc::DOMNode*> result;
  const xalanc::NodeRefListBase::size_type count = nodes.getLength();
  result.reserve(std::min<std::size_t>(count, most));
  for (xalanc::NodeRefListBase::size_type i = 0; i < count && result.size() < most; ++i) {
    xercesc::DOMNode* pNode = CXPathTree::Unwrap(*nodes.item(i));
    if (pNode != nullptr) result.push_back(pNode);
  }
  return result;
}

}  // namespace

XPathManager::XPathManager(xercesc::DOMNode* pContext, EPlainPaths plainPaths)
    : m_PlainPaths(plainPaths),
      m_Tree(Begin(pContext)),
      m_Order(m_Tree),
      m_Scope(*pContext),
      m_Execution(m_Environment, m_Order, m_Factory, &m_Tree.Context(), nullptr, &m_Scope) {}

std::vector<xercesc::DOMNode*> XPathManager::Evaluate(const XMLCh* pExpression) {
  return Select(pExpression, kAll);
}

std::vector<xercesc::DOMNode*> XPathManager::EvaluateFirst(const XMLCh* pExpression) {
  return Select(pExpression, 1);
}

std::vector<xercesc::DOMNode*> XPathManager::Select(const XMLCh* pExpression, std::size_t most) {
  CheckExpression(pExpression);
  const CCompiled asWritten(pExpression, m_Scope);  // errors are about the host's own text
  if (m_PlainPaths == EPlainPaths::kOnDom && m_Tree.HasPlainRoot()) {
    const auto path = CPlainPath::Read(pExpression, m_Scope);
    if (path) return path->Select(*CXPathTree::Unwrap(m_Tree.Context()), *m_Tree.Top(), most);
  }
  const auto rewritten = CExpressionForm(pExpression).Rewritten();
  if (!rewritten) return Execute(asWritten.Get(), most);
  return Execute(CCompiled(rewritten->c_str(), m_Scope).Get(), most);
}

std::vector<xercesc::DOMNode*> XPathManager::Execute(const xalanc::XPath& xpath, std::size_t most) {
  const xalanc::XObjectPtr result = xpath.execute(&m_Tree.Context(), m_Scope, m_Execution);
  return Unwrap(result->nodeset(), most);
}
