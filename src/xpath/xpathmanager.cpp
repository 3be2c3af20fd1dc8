#include "xpath/xpathmanager.h"

#include <tessel/status.h>

#include <limits>

#include "xpath/expressioncache.h"
#include "xpath/nodetext.h"
#include "xpath/plainevaluation.h"
#include "xpath/treetop.h"

using xercesc::DOMNode;

namespace {

constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

DOMNode& Existing(DOMNode* pContext) {
  if (pContext == nullptr) throw KelXPathException(domErrXPathContext);
  return *pContext;
}

// False if a prefix is bound to nothing.
bool Resolve(const std::vector<std::u16string>& prefixes, const CNamespaceScope& scope,
             std::vector<std::u16string_view>& namespaces) {
  for (const std::u16string& prefix : prefixes) {
    namespaces.push_back(plain::View(scope.Find(prefix.c_str())));
    if (namespaces.back().empty()) return false;
  }
  return true;
}

}  // namespace

XPathManager::XPathManager(DOMNode* pContext, EPlainPaths plainPaths)
    : m_PlainPaths(plainPaths), m_Context(Existing(pContext)), m_Scope(m_Context) {}

std::vector<DOMNode*> XPathManager::Evaluate(const XMLCh* pExpression) {
  return Select(pExpression, kAll);
}

std::vector<DOMNode*> XPathManager::EvaluateFirst(const XMLCh* pExpression) {
  return Select(pExpression, 1);
}

std::vector<DOMNode*> XPathManager::Select(const XMLCh* pExpression, std::size_t most) {
  const auto pKnown = CExpressionCache::Instance().Find(plain::View(pExpression));
  if (m_PlainPaths == EPlainPaths::kOnDom && pKnown->Plain() != nullptr) {
    auto nodes = SelectPlain(*pKnown->Plain(), most);
    if (nodes) return std::move(*nodes);
  }
  const auto pForm = pKnown->Xalan(m_Scope);
  return CXalanEvaluation(m_Context, m_Scope).Select(*pForm, most);
}

// Nothing where that is Xalan-C's to do.
std::optional<std::vector<DOMNode*>> XPathManager::SelectPlain(const plain::CForm& form,
                                                               std::size_t most) {
  if (form.Expression().m_Type != plain::EType::kNodes) return std::nullopt;
  DOMNode* pRoot = form.LooksUp() ? TopOf(m_Context) : nullptr;
  if (pRoot != nullptr && !IsRoot(*pRoot)) return std::nullopt;
  std::vector<std::u16string_view> namespaces;
  if (!Resolve(form.Prefixes(), m_Scope, namespaces)) return std::nullopt;
  return plain::CPlainEvaluation(form, namespaces, m_Context, pRoot).Select(most);
}
