#include "collections/elements.h"

#include <xercesc/util/XMLString.hpp>

using xercesc::DOMNode;
using xercesc::XMLString;

namespace {

bool IsAny(const XMLCh* pText) { return XMLString::equals(pText, u"*"); }

// The nodes below a root. The way down is kept: to ask a node for its parent costs the
// DOM a run-time cast.
class CWalk {
 public:
  explicit CWalk(const DOMNode& root) : m_pNode(root.getFirstChild()) {}

  DOMNode* Get() const { return m_pNode; }
  void Advance() {
    DOMNode* pNext = m_pNode->getFirstChild();
    if (pNext != nullptr) {
      m_Parents.push_back(m_pNode);
    } else {
      pNext = m_pNode->getNextSibling();
    }
    while (pNext == nullptr && !m_Parents.empty()) {
      pNext = m_Parents.back()->getNextSibling();
      m_Parents.pop_back();
    }
    m_pNode = pNext;
  }

 private:
  DOMNode* m_pNode;
  std::vector<DOMNode*> m_Parents;
};

template <class Test>
std::vector<DOMNode*> ElementsBelow(const DOMNode& root, Test test) {
  std::vector<DOMNode*> elements;
  for (CWalk walk(root); DOMNode* pNode = walk.Get(); walk.Advance()) {
    if (pNode->getNodeType() == DOMNode::ELEMENT_NODE && test(*pNode)) elements.push_back(pNode);
  }
  return elements;
}

}  // namespace

std::vector<DOMNode*> ElementsByName(const DOMNode& root, const XMLCh* pName) {
  return ElementsBelow(root, [pName, any = IsAny(pName)](const DOMNode& element) {
    return any || XMLString::equals(element.getNodeName(), pName);
  });
}

std::vector<DOMNode*> ElementsByNameNS(const DOMNode& root, const XMLCh* pURI, const XMLCh* pName) {
  const auto isIn = [pURI, any = IsAny(pURI)](const DOMNode& element) {
    return any || XMLString::equals(element.getNamespaceURI(), pURI);
  };
  return ElementsBelow(root, [&, any = IsAny(pName)](const DOMNode& element) {
    return isIn(element) && (any || XMLString::equals(element.getLocalName(), pName));
  });
}
