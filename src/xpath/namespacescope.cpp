#include "xpath/namespacescope.h"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "document/xercesdom.h"
#include "dom/look.h"
#include "registry/globals.h"

using xercesc::DOMNode;
using xercesc::XMLString;
using xercesc::XMLUni;

namespace {

const XMLCh* DeclaredByAttributes(const DOMNode& element, const XMLCh* pPrefix) {
  const xercesc::DOMNamedNodeMap* pAttributes = element.getAttributes();
  const XMLSize_t count = pAttributes->getLength();
  for (XMLSize_t i = 0; i < count; ++i) {
    const DOMNode* pAttribute = pAttributes->item(i);
    if (XMLString::equals(pAttribute->getNamespaceURI(), XMLUni::fgXMLNSURIName) &&
        XMLString::equals(pAttribute->getPrefix(), XMLUni::fgXMLNSString) &&
        XMLString::equals(pAttribute->getLocalName(), pPrefix)) {
      return pAttribute->getNodeValue();
    }
  }
  return nullptr;
}

const XMLCh* Declared(const DOMNode& element, const XMLCh* pPrefix) {
  const XMLCh* pURI = element.getNamespaceURI();
  const XMLCh* pOwnPrefix = element.getPrefix();
  if (pURI != nullptr && pOwnPrefix != nullptr && XMLString::equals(pOwnPrefix, pPrefix)) {
    return pURI;
  }
  return DeclaredByAttributes(element, pPrefix);
}

const XMLCh* BoundByHost(const DOMNode& context, const XMLCh* pPrefix) {
  const CXercesDOM* pDom = g_NodeDomMap.GetDomByNode(dom::TreeOf(context));
  return pDom != nullptr ? pDom->m_PrefixBindings.Find(pPrefix) : nullptr;
}

}  // namespace

const xalanc::XalanDOMString* CNamespaceScope::getNamespaceForPrefix(
    const xalanc::XalanDOMString& prefix) const {
  const XMLCh* pURI = Find(prefix.c_str());
  return pURI == nullptr ? nullptr : &m_Answers.emplace_back(pURI);
}

const XMLCh* CNamespaceScope::Find(const XMLCh* pPrefix) const {
  if (XMLString::equals(pPrefix, XMLUni::fgXMLString)) return XMLUni::fgXMLURIName;
  if (const XMLCh* pBound = BoundByHost(m_Context, pPrefix)) return pBound;
  const DOMNode* pNode = &m_Context;
  if (pNode->getNodeType() == DOMNode::DOCUMENT_NODE) {
    pNode = static_cast<const xercesc::DOMDocument*>(pNode)->getDocumentElement();
  }
  for (; pNode != nullptr; pNode = dom::ParentOrElement(*pNode)) {
    if (pNode->getNodeType() != DOMNode::ELEMENT_NODE) continue;
    const XMLCh* pURI = Declared(*pNode, pPrefix);
    if (pURI != nullptr) return pURI;
  }
  return nullptr;
}
