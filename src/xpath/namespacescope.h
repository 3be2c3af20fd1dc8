// Prefixes as they are in scope at a node.
#pragma once

#include <deque>
#include <xalanc/PlatformSupport/PrefixResolver.hpp>
#include <xalanc/XalanDOM/XalanDOMString.hpp>
#include <xercesc/dom/DOMNode.hpp>

// Gives what lookupNamespaceURI of the context gives (at a document: of its root
// element), without its recursion over the ancestors; "xml" is always bound.
class CNamespaceScope final : public xalanc::PrefixResolver {
 public:
  // Borrows the context.
  explicit CNamespaceScope(const xercesc::DOMNode& context) : m_context(context) {}

  const xalanc::XalanDOMString* getNamespaceForPrefix(
      const xalanc::XalanDOMString& prefix) const override;
  const xalanc::XalanDOMString& getURI() const override { return m_baseURI; }

 private:
  const XMLCh* Find(const XMLCh* pPrefix) const;

  const xercesc::DOMNode& m_context;
  const xalanc::XalanDOMString m_baseURI;
  mutable std::deque<xalanc::XalanDOMString> m_answers;  // Xalan-C keeps pointers to them
};
