#include "document/release.h"

#include <algorithm>

#include "document/depth.h"
#include "document/domimpl.h"
#include "document/xercesdom.h"
#include "registry/globals.h"
#include "registry/nodetree.h"

using xercesc::DOMDocument;
using xercesc::DOMNode;

namespace {

// What is remembered of a whole tree beside its nodes' ids.
void ForgetTree(DOMDocument* pDoc) {
  g_NodeDomMap.DeleteByTree(pDoc);
  g_NodeListSessMap.ForgetHeldIn(pDoc);
  g_NamedNodeMapSessMap.ForgetHeldIn(pDoc);
}

// The DOM is about to take the attribute out of its index, or to file it anew.
void RefileIfAttribute(DOMNode& node) {
  if (node.getNodeType() == DOMNode::ATTRIBUTE_NODE) {
    domimpl::Refile(static_cast<xercesc::DOMAttr&>(node));
  }
}

}  // namespace

CDoomedNodes CDoomedNodes::Whole(DOMNode* pNode) {
  CDoomedNodes doomed;
  if (pNode != nullptr) doomed.Collect(pNode);
  return doomed;
}

CDoomedNodes CDoomedNodes::Below(DOMNode* pNode) {
  CDoomedNodes doomed;
  if (pNode == nullptr) return doomed;
  RefileIfAttribute(*pNode);
  for (DOMNode* pChild = pNode->getFirstChild(); pChild != nullptr;
       pChild = pChild->getNextSibling()) {
    doomed.Collect(pChild);
  }
  return doomed;
}

void CDoomedNodes::Collect(DOMNode* pNode) {
  nodetree::ForEach(pNode, [this](DOMNode* pDoomed) {
    RefileIfAttribute(*pDoomed);
    m_Nodes.push_back(pDoomed);
  });
}

void CDoomedNodes::Withdraw() {
  if (m_Nodes.empty()) return;
  std::sort(m_Nodes.begin(), m_Nodes.end());
  g_NodeListSessMap.ForgetHeldBy(m_Nodes);
  g_NamedNodeMapSessMap.ForgetHeldBy(m_Nodes);
  g_NodeSessMap.Withdraw(m_Nodes);
  g_NodeDomMap.Delete(m_Nodes);
}

void CDoomedNodes::RemoveFromIndex() const {
  for (DOMNode* pNode : m_Nodes) {
    if (pNode->getNodeType() != DOMNode::ATTRIBUTE_NODE) continue;
    auto& attribute = static_cast<xercesc::DOMAttr&>(*pNode);
    if (attribute.isId()) domimpl::RemoveFromIndex(attribute);
  }
}

void ReleaseNode(DOMNode* pNode) {
  if (domimpl::IsOwned(*pNode)) {
    pNode->release();  // throws, and nothing has changed
    return;
  }
  CDoomedNodes doomed = CDoomedNodes::Whole(pNode);
  doomed.RemoveFromIndex();
  depth::Release(*pNode);
  g_NodeSessMap.Forget(pNode);
  doomed.Withdraw();
}

// A document's memory goes back to the heap that all threads share, so what
// points at it is withdrawn first.
void ReleaseTree(DOMDocument* pDoc) {
  g_NodeSessMap.WithdrawDocument(pDoc);
  ForgetTree(pDoc);
  pDoc->release();
}

void DeleteDocumentObject(CXercesDOM* pDom) {
  g_NodeSessMap.Forget(pDom->DocumentNode());
  ForgetTree(pDom->m_pDoc);
  delete pDom;
}
