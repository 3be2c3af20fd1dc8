// The parser that makes trees by the parts of their nodes.
#pragma once

#include <cstddef>
#include <unordered_set>
#include <vector>
#include <xercesc/parsers/XercesDOMParser.hpp>

#include "dom/pooledname.h"

namespace dom {

// Makes the tree that its base would make: the same nodes, flags, IDs and exceptions.
// The base finds the parts of nodes by run-time casts, several for each node, and an
// attribute among many by looking at each. Entity references are left to it.
class CBuilder : public xercesc::XercesDOMParser {
 public:
  using XercesDOMParser::XercesDOMParser;

  void startDocument() override;
  void startIntSubset() override;
  void endIntSubset() override;
  void endAttList(const xercesc::DTDElementDecl& declaration) override;
  void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                    const XMLCh* pPrefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                    XMLSize_t attributeCount, bool isEmpty, bool isRoot) override;
  void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri, bool isRoot,
                  const XMLCh* pPrefix) override;
  void docCharacters(const XMLCh* pText, XMLSize_t length, bool isCData) override;
  void ignorableWhitespace(const XMLCh* pText, XMLSize_t length, bool isCData) override;
  void docComment(const XMLCh* pText) override;
  void docPI(const XMLCh* pTarget, const XMLCh* pData) override;

 protected:
  bool IsInInternalSubset() const { return m_IsInInternalSubset; }

 private:
  const XMLCh* NamespaceOf(unsigned int uri);
  xercesc::DOMElementImpl& MakeElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                                       const XMLCh* pPrefix);
  xercesc::DOMAttrImpl& MakeAttribute(const xercesc::XMLAttr& source, std::size_t slot);
  xercesc::DOMAttrImpl& MakeWithValue(const xercesc::XMLAttr& source, std::size_t slot);
  void AddAttributes(xercesc::DOMElementImpl& element,
                     const xercesc::RefVectorOf<xercesc::XMLAttr>& sources, XMLSize_t count,
                     std::size_t slot);
  static bool HasDefaults(const xercesc::XMLElementDecl& declaration);
  xercesc::DOMElementImpl& MakeElementOfType(const xercesc::XMLElementDecl& declaration,
                                             unsigned int uri, const XMLCh* pPrefix);
  xercesc::DOMElementImpl& MakeForType(const XMLCh* pName, bool isFirst);
  xercesc::DOMAttrImpl& MakeDefault(const XMLCh* pName, const XMLCh* pNamespace);
  const XMLCh* NamespaceInScope(const XMLCh* pName);
  void GiveValue(xercesc::DOMAttrImpl& attribute, const XMLCh* pValue);
  void AddDefaults(xercesc::DOMElementImpl& element, const xercesc::XMLElementDecl& declaration);
  void AddText(const XMLCh* pText, XMLSize_t length, bool isIgnorable);
  void Add(xercesc::DOMNode& child);

  CPooledNames m_Names;
  // The namespace that was asked for last.
  unsigned int m_LastURI = 0;
  const XMLCh* m_pLastNamespace = nullptr;          // null for none yet
  std::vector<xercesc::DOMAttrImpl*> m_Attributes;  // of the element at hand
  // The elements of which the document type keeps defaults.
  std::unordered_set<const xercesc::XMLElementDecl*> m_InType;
  bool m_IsInInternalSubset = false;
};

}  // namespace dom
