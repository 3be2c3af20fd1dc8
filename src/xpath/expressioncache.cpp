#include "xpath/expressioncache.h"

#include "xpath/xalanlibrary.h"

namespace {

// "::" follows an axis; any other colon, be it in a literal, may follow a prefix.
bool MayHavePrefix(std::u16string_view text) {
  for (std::size_t at = 0; (at = text.find(u':', at)) != text.npos; at += 2) {
    if (!text.substr(at).starts_with(u"::")) return true;
  }
  return false;
}

}  // namespace

std::shared_ptr<const CXalanForm> CKnownExpression::Xalan(const CNamespaceScope& scope) const {
  {
    const std::lock_guard lock(m_Mutex);
    if (m_pXalan != nullptr) return m_pXalan;
  }
  auto pForm = std::make_shared<const CXalanForm>(m_Expression, scope);
  if (!MayHavePrefix(Text())) {
    const std::lock_guard lock(m_Mutex);
    m_pXalan = pForm;
  }
  return pForm;
}

CExpressionCache& CExpressionCache::Instance() {
  CXalanLibrary::Use();
  static CExpressionCache s_Cache;
  return s_Cache;
}

std::shared_ptr<const CKnownExpression> CExpressionCache::Find(std::u16string_view text) {
  auto pExpression = Look(text);
  if (pExpression == nullptr) {
    pExpression = std::make_shared<const CKnownExpression>(text);
    if (text.size() <= kLongest) Keep(pExpression);
  }
  return pExpression;
}

std::shared_ptr<const CKnownExpression> CExpressionCache::Look(std::u16string_view text) {
  const std::lock_guard lock(m_Mutex);
  const auto found = m_ByText.find(text);
  if (found == m_ByText.end()) return nullptr;
  m_Recent.splice(m_Recent.begin(), m_Recent, found->second);
  return m_Recent.front();
}

void CExpressionCache::Keep(const std::shared_ptr<const CKnownExpression>& pExpression) {
  const std::lock_guard lock(m_Mutex);
  if (m_ByText.contains(pExpression->Text())) return;  // another thread was faster
  m_Recent.push_front(pExpression);
  m_ByText.emplace(pExpression->Text(), m_Recent.begin());
  if (m_Recent.size() <= kMost) return;
  m_ByText.erase(m_Recent.back()->Text());
  m_Recent.pop_back();
}
