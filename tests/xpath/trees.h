// Trees for the tests of XPath: documents from text, and their nodes in order.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>

inline std::u16string Wide(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }

inline std::string Narrow(const XMLCh* pText) {
  const std::u16string_view text = pText == nullptr ? std::u16string_view() : pText;
  return {text.begin(), text.end()};
}

struct CRelease {
  void operator()(xercesc::DOMNode* pNode) const { pNode->release(); }
};
using CDocument = std::unique_ptr<xercesc::DOMDocument, CRelease>;

inline CDocument Parse(std::string_view text, bool namespaces = true) {
  xercesc::XercesDOMParser parser;
  parser.setDoNamespaces(namespaces);
  parser.setCreateEntityReferenceNodes(true);
  parser.parse(xercesc::MemBufInputSource(reinterpret_cast<const XMLByte*>(text.data()),
                                          text.size(), "test"));
  return CDocument(parser.adoptDocument());
}

// Adds the nodes of a tree as they stand in the text.
inline void Walk(xercesc::DOMNode* pNode, std::vector<xercesc::DOMNode*>& nodes) {
  nodes.push_back(pNode);
  if (pNode->getNodeType() == xercesc::DOMNode::ATTRIBUTE_NODE) return;
  if (const xercesc::DOMNamedNodeMap* pMap = pNode->getAttributes()) {
    for (XMLSize_t i = 0; i < pMap->getLength(); ++i) Walk(pMap->item(i), nodes);
  }
  for (auto* p = pNode->getFirstChild(); p != nullptr; p = p->getNextSibling()) Walk(p, nodes);
}

inline std::vector<xercesc::DOMNode*> Walk(xercesc::DOMNode* pRoot) {
  std::vector<xercesc::DOMNode*> nodes;
  Walk(pRoot, nodes);
  return nodes;
}
