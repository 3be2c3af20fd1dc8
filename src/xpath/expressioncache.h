// Expressions that were evaluated lately, ready for the next time.
#pragma once

#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

#include "xpath/plainform.h"
#include "xpath/xalanevaluation.h"

// What is known of an expression by its text. Threads share it.
class CKnownExpression {
 public:
  explicit CKnownExpression(std::u16string_view text)
      : m_Expression(text), m_pPlain(plain::CForm::Read(m_Expression)) {}

  const std::u16string& Text() const { return m_Expression.Text(); }
  const CLexedExpression& Lexed() const { return m_Expression; }
  // Null if the expression is not plain.
  const plain::CForm* Plain() const { return m_pPlain.get(); }
  // Compiled when first asked for, and kept if it has no prefix: those mean something
  // else elsewhere. Throws as CXalanForm.
  std::shared_ptr<const CXalanForm> Xalan(const CNamespaceScope& scope) const;

 private:
  const CLexedExpression m_Expression;
  const std::unique_ptr<const plain::CForm> m_pPlain;
  mutable std::mutex m_Mutex;
  mutable std::shared_ptr<const CXalanForm> m_pXalan;
};

// The most recent ones, of all threads. It is made after Xalan-C has been started and
// goes before that ends. A thread's own would not do: what a thread has to destroy keeps
// the library from being unloaded.
class CExpressionCache {
 public:
  static CExpressionCache& Instance();

  // Never null.
  std::shared_ptr<const CKnownExpression> Find(std::u16string_view text);

 private:
  static constexpr std::size_t kMost = 100;
  static constexpr std::size_t kLongest = 1000;  // code units; longer ones are not kept

  using CList = std::list<std::shared_ptr<const CKnownExpression>>;

  std::shared_ptr<const CKnownExpression> Look(std::u16string_view text);
  void Keep(const std::shared_ptr<const CKnownExpression>& pExpression);

  std::mutex m_Mutex;
  CList m_Recent;  // the last one used comes first
  std::unordered_map<std::u16string_view, CList::iterator> m_ByText;  // which the entry holds
};
