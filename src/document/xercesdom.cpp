#include "document/xercesdom.h"

#include <xercesc/dom/DOMImplementation.hpp>
#include <xercesc/dom/DOMImplementationRegistry.hpp>

using xercesc::DOMDocument;
using xercesc::DOMImplementationRegistry;
using xercesc::DOMNode;

namespace {

// Made without a document element: one that was made and dropped again would leave a
// block of the document's heap behind, 16 KB of it.
DOMDocument* NewEmptyDocument() {
  // Found once: to search takes a twentieth of the time of a parser.
  static xercesc::DOMImplementation& s_Implementation =
      *DOMImplementationRegistry::getDOMImplementation(u"Core");
  return s_Implementation.createDocument();
}

}  // namespace

CXercesDOM::CXercesDOM() {
  // Held by owners until the last step that may throw has passed.
  auto reporter = std::make_unique<DOMTreeErrorReporter>();
  auto parser = std::make_unique<CTreeParser>();
  parser->setErrorHandler(reporter.get());
  parser->setSecurityManager(&m_SecurityManager);
  m_pDoc = NewEmptyDocument();
  m_pParser = parser.release();
  m_pErrorReporter = reporter.release();
}

// The document goes before the parser that may have produced it.
CXercesDOM::~CXercesDOM() {
  if (m_pDoc != nullptr) m_pDoc->release();
  delete m_pErrorReporter;
  delete m_pParser;
}

const XMLCh* CXercesDOM::getNodeName() const { return m_pDoc->getNodeName(); }
const XMLCh* CXercesDOM::getNodeValue() const { return m_pDoc->getNodeValue(); }
DOMNode::NodeType CXercesDOM::getNodeType() const { return m_pDoc->getNodeType(); }
DOMNode* CXercesDOM::getParentNode() const { return m_pDoc->getParentNode(); }
xercesc::DOMNodeList* CXercesDOM::getChildNodes() const { return m_pDoc->getChildNodes(); }
DOMNode* CXercesDOM::getFirstChild() const { return m_pDoc->getFirstChild(); }
DOMNode* CXercesDOM::getLastChild() const { return m_pDoc->getLastChild(); }
DOMNode* CXercesDOM::getPreviousSibling() const { return m_pDoc->getPreviousSibling(); }
DOMNode* CXercesDOM::getNextSibling() const { return m_pDoc->getNextSibling(); }
xercesc::DOMNamedNodeMap* CXercesDOM::getAttributes() const { return m_pDoc->getAttributes(); }
DOMDocument* CXercesDOM::getOwnerDocument() const { return m_pDoc->getOwnerDocument(); }
DOMNode* CXercesDOM::cloneNode(bool deep) const { return m_pDoc->cloneNode(deep); }
DOMNode* CXercesDOM::insertBefore(DOMNode* newChild, DOMNode* refChild) {
  return m_pDoc->insertBefore(newChild, refChild);
}
DOMNode* CXercesDOM::replaceChild(DOMNode* newChild, DOMNode* oldChild) {
  return m_pDoc->replaceChild(newChild, oldChild);
}
DOMNode* CXercesDOM::removeChild(DOMNode* oldChild) { return m_pDoc->removeChild(oldChild); }
DOMNode* CXercesDOM::appendChild(DOMNode* newChild) { return m_pDoc->appendChild(newChild); }
bool CXercesDOM::hasChildNodes() const { return m_pDoc->hasChildNodes(); }
void CXercesDOM::setNodeValue(const XMLCh* nodeValue) { m_pDoc->setNodeValue(nodeValue); }
void CXercesDOM::normalize() { m_pDoc->normalize(); }
bool CXercesDOM::isSupported(const XMLCh* feature, const XMLCh* version) const {
  return m_pDoc->isSupported(feature, version);
}
const XMLCh* CXercesDOM::getNamespaceURI() const { return m_pDoc->getNamespaceURI(); }
const XMLCh* CXercesDOM::getPrefix() const { return m_pDoc->getPrefix(); }
const XMLCh* CXercesDOM::getLocalName() const { return m_pDoc->getLocalName(); }
void CXercesDOM::setPrefix(const XMLCh* prefix) { m_pDoc->setPrefix(prefix); }
bool CXercesDOM::hasAttributes() const { return m_pDoc->hasAttributes(); }
bool CXercesDOM::isSameNode(const DOMNode* other) const { return m_pDoc->isSameNode(other); }
bool CXercesDOM::isEqualNode(const DOMNode* arg) const { return m_pDoc->isEqualNode(arg); }
void* CXercesDOM::setUserData(const XMLCh* key, void* data, xercesc::DOMUserDataHandler* handler) {
  return m_pDoc->setUserData(key, data, handler);
}
void* CXercesDOM::getUserData(const XMLCh* key) const { return m_pDoc->getUserData(key); }
const XMLCh* CXercesDOM::getBaseURI() const { return m_pDoc->getBaseURI(); }
short CXercesDOM::compareDocumentPosition(const DOMNode* other) const {
  return m_pDoc->compareDocumentPosition(other);
}
const XMLCh* CXercesDOM::getTextContent() const { return m_pDoc->getTextContent(); }
void CXercesDOM::setTextContent(const XMLCh* textContent) { m_pDoc->setTextContent(textContent); }
const XMLCh* CXercesDOM::lookupPrefix(const XMLCh* namespaceURI) const {
  return m_pDoc->lookupPrefix(namespaceURI);
}
bool CXercesDOM::isDefaultNamespace(const XMLCh* namespaceURI) const {
  return m_pDoc->isDefaultNamespace(namespaceURI);
}
const XMLCh* CXercesDOM::lookupNamespaceURI(const XMLCh* prefix) const {
  return m_pDoc->lookupNamespaceURI(prefix);
}
void* CXercesDOM::getFeature(const XMLCh* feature, const XMLCh* version) const {
  return m_pDoc->getFeature(feature, version);
}
void CXercesDOM::release() {
  m_pDoc->release();
  m_pDoc = nullptr;
}
