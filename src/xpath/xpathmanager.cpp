#include "xpath/xpathmanager.h"

#include <tessel/status.h>

#include <limits>

#include "xpath/expressioncache.h"
#include "xpath/expressiontype.h"
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

// Nothing where that is Xalan-C's to do.
template <class OnDom>
auto XPathManager::RunPlain(const plain::CForm& form, OnDom onDom) {
  DOMNode* pRoot = form.LooksUp() ? TopOf(m_Context) : nullptr;
  std::vector<std::u16string_view> namespaces;
  const bool isOurs =
      (pRoot == nullptr || IsRoot(*pRoot)) && Resolve(form.Prefixes(), m_Scope, namespaces);
  plain::CPlainEvaluation evaluation(form, namespaces, m_Context, pRoot);
  return isOurs ? onDom(evaluation) : decltype(onDom(evaluation))();
}

template <class OnDom, class ByXalan>
auto XPathManager::Run(const XMLCh* pExpression, OnDom onDom, ByXalan byXalan) {
  const auto pKnown = CExpressionCache::Instance().Find(plain::View(pExpression));
  if (m_PlainPaths == EPlainPaths::kOnDom && pKnown->Plain() != nullptr) {
    auto value = RunPlain(*pKnown->Plain(), onDom);
    if (value) return std::move(*value);
  }
  const auto pForm = pKnown->Xalan(m_Scope);
  CXalanEvaluation evaluation(m_Context, m_Scope);
  return byXalan(evaluation, *pForm);
}

std::vector<DOMNode*> XPathManager::Evaluate(const XMLCh* pExpression) {
  return Select(pExpression, kAll);
}

std::vector<DOMNode*> XPathManager::EvaluateFirst(const XMLCh* pExpression) {
  return Select(pExpression, 1);
}

std::u16string XPathManager::EvaluateText(const XMLCh* pExpression) {
  return Run(
      pExpression, [](auto& evaluation) { return evaluation.Text(); },
      [](auto& evaluation, const CXalanForm& form) { return evaluation.Text(form); });
}

double XPathManager::EvaluateNumber(const XMLCh* pExpression) {
  return Run(
      pExpression, [](auto& evaluation) { return evaluation.Number(); },
      [](auto& evaluation, const CXalanForm& form) { return evaluation.Number(form); });
}

bool XPathManager::EvaluateTruth(const XMLCh* pExpression) {
  return Run(
      pExpression, [](auto& evaluation) { return evaluation.Truth(); },
      [](auto& evaluation, const CXalanForm& form) { return evaluation.Truth(form); });
}

// What is wrong with an expression, Xalan-C says.
plain::EType XPathManager::TypeOf(const XMLCh* pExpression) {
  const auto pKnown = CExpressionCache::Instance().Find(plain::View(pExpression));
  const plain::CForm* pPlain = pKnown->Plain();
  if (pPlain != nullptr && pPlain->Prefixes().empty()) return pPlain->Expression().m_Type;
  pKnown->Xalan(m_Scope);
  return TypeOfExpression(pKnown->Lexed());
}

std::vector<DOMNode*> XPathManager::Select(const XMLCh* pExpression, std::size_t most) {
  return Run(
      pExpression, [&](auto& evaluation) { return evaluation.Select(most); },
      [&](auto& evaluation, const CXalanForm& form) { return evaluation.Select(form, most); });
}
