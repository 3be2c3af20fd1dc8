// The document object: what a document id stands for.
#pragma once

#include <memory>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/util/SecurityManager.hpp>

#include "document/errorreporter.h"
#include "document/prefixbindings.h"
#include "document/treeparser.h"

// Owns a document, the parser that fills it and the reporter that collects the
// parser's messages. It is a DOM node itself, so that a document id serves every
// node operation: each passes straight on to the wrapped document. Two effects
// are wanted: it has no owner document, and release() frees the tree but not
// this object.
//
// Loading replaces m_pDoc; it is null only while it is made and after release().
class CXercesDOM : public xercesc::DOMNode {
 public:
  CXercesDOM();
  ~CXercesDOM() override;
  CXercesDOM(const CXercesDOM&) = delete;
  CXercesDOM& operator=(const CXercesDOM&) = delete;

  const XMLCh* getNodeName() const override;
  const XMLCh* getNodeValue() const override;
  NodeType getNodeType() const override;
  DOMNode* getParentNode() const override;
  xercesc::DOMNodeList* getChildNodes() const override;
  DOMNode* getFirstChild() const override;
  DOMNode* getLastChild() const override;
  DOMNode* getPreviousSibling() const override;
  DOMNode* getNextSibling() const override;
  xercesc::DOMNamedNodeMap* getAttributes() const override;
  xercesc::DOMDocument* getOwnerDocument() const override;
  DOMNode* cloneNode(bool deep) const override;
  DOMNode* insertBefore(DOMNode* newChild, DOMNode* refChild) override;
  DOMNode* replaceChild(DOMNode* newChild, DOMNode* oldChild) override;
  DOMNode* removeChild(DOMNode* oldChild) override;
  DOMNode* appendChild(DOMNode* newChild) override;
  bool hasChildNodes() const override;
  void setNodeValue(const XMLCh* nodeValue) override;
  void normalize() override;
  bool isSupported(const XMLCh* feature, const XMLCh* version) const override;
  const XMLCh* getNamespaceURI() const override;
  const XMLCh* getPrefix() const override;
  const XMLCh* getLocalName() const override;
  void setPrefix(const XMLCh* prefix) override;
  bool hasAttributes() const override;
  bool isSameNode(const DOMNode* other) const override;
  bool isEqualNode(const DOMNode* arg) const override;
  void* setUserData(const XMLCh* key, void* data, xercesc::DOMUserDataHandler* handler) override;
  void* getUserData(const XMLCh* key) const override;
  const XMLCh* getBaseURI() const override;
  short compareDocumentPosition(const DOMNode* other) const override;
  const XMLCh* getTextContent() const override;
  void setTextContent(const XMLCh* textContent) override;
  const XMLCh* lookupPrefix(const XMLCh* namespaceURI) const override;
  bool isDefaultNamespace(const XMLCh* namespaceURI) const override;
  const XMLCh* lookupNamespaceURI(const XMLCh* prefix) const override;
  void* getFeature(const XMLCh* feature, const XMLCh* version) const override;
  void release() override;

  // The document node as a DOMNode: not the address of m_pDoc as a DOMDocument.
  DOMNode* DocumentNode() const { return m_pDoc; }

  xercesc::DOMDocument* m_pDoc = nullptr;
  CTreeParser* m_pParser = nullptr;
  DOMTreeErrorReporter* m_pErrorReporter = nullptr;
  CPrefixBindings m_PrefixBindings;
  bool m_WritesDeclaration = true;
  CPositions m_Positions;  // of the nodes of m_pDoc

 private:
  // Ends a parse that expands more than 50,000 entities in its content, the XML
  // library's own limit: a kilobyte of text must not grow to gigabytes. CTreeParser
  // looks after all other expansions.
  xercesc::SecurityManager m_SecurityManager;
};
