// Prefixes as they are in scope at a node.
#pragma once

#include <deque>
#include <xalanc/PlatformSupport/PrefixResolver.hpp>
#include <xalanc/XalanDOM/XalanDOMString.hpp>
#include <xercesc/dom/DOMNode.hpp>

// Gives what the host has bound in the context's document; else what lookupNamespaceURI
// of the context gives (at a document: of its root
// element), without its recursion over the ancestors; "xml" is always bound.
class CNamespaceScope final : public xalanc::PrefixResolver {
 public:
  // Borrows the context.
  explicit CNamespaceScope(const xercesc::DOMNode& context) : m_Context(context) {}

  // Null for a prefix that is not bound.
  const XMLCh* Find(const XMLCh* pPrefix) const;

  const xalanc::XalanDOMString* getNamespaceForPrefix(
      const xalanc::XalanDOMString& prefix) const override;
  const xalanc::XalanDOMString& getURI() const override { return m_BaseURI; }

 private:
  const xercesc::DOMNode& m_Context;
  const xalanc::XalanDOMString m_BaseURI;
  mutable std::deque<xalanc::XalanDOMString> m_Answers;  // Xalan-C keeps pointers to them
};
