#include "document/release.h"

#include <algorithm>

#include "document/depth.h"
#include "document/domimpl.h"
#include "document/takentypes.h"
#include "document/xercesdom.h"
#include "registry/globals.h"
#include "registry/nodetree.h"

using xercesc::DOMDocument;
using xercesc::DOMNode;

namespace {

// What is remembered of a whole tree beside its nodes' ids, and what the DOM would
// not free with it.
void ForgetTree(DOMDocument* pDoc) {
  g_NodeDomMap.DeleteByTree(pDoc);
  g_NodeListSessMap.WithdrawHeldIn(pDoc);
  g_NamedNodeMapSessMap.WithdrawHeldIn(pDoc);
  for (DOMNode* pType : takentypes::TakeOf(pDoc)) {
    if (!domimpl::IsOwned(*pType)) ReleaseNode(pType);
  }
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
  g_NodeListSessMap.WithdrawHeldBy(m_Nodes);
  g_NamedNodeMapSessMap.WithdrawHeldBy(m_Nodes);
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

void CDoomedNodes::MakeReleasable() const {
  for (DOMNode* pNode : m_Nodes) {
    if (pNode->getNodeType() == DOMNode::ELEMENT_NODE && domimpl::IsReadOnly(*pNode)) {
      domimpl::MakeReleasable(static_cast<xercesc::DOMElement&>(*pNode));
    }
  }
}

bool CDoomedNodes::LeaveModels() const {
  const auto isModel = [](const DOMNode* pNode) {
    return pNode->getNodeType() == DOMNode::ENTITY_REFERENCE_NODE && domimpl::MayBeModel(*pNode);
  };
  std::vector<DOMNode*> models;
  for (DOMNode* pNode : m_Nodes) {
    if (!isModel(pNode)) continue;
    const DOMNode* pUp = pNode->getParentNode();
    while (pUp != nullptr && !isModel(pUp)) pUp = pUp->getParentNode();
    if (pUp == nullptr) models.push_back(pNode);
  }
  for (DOMNode* pModel : models) domimpl::Detach(*pModel);
  return models.empty() || models.front() != m_Nodes.front();
}

void ReleaseNode(DOMNode* pNode) {
  if (domimpl::IsOwned(*pNode)) {
    pNode->release();  // throws, and nothing has changed
    return;
  }
  CDoomedNodes doomed = CDoomedNodes::Whole(pNode);
  doomed.RemoveFromIndex();
  doomed.MakeReleasable();
  takentypes::Forget(*pNode);
  // A document type may lie in the heap that all threads share: withdrawn first, as
  // whole trees are.
  const bool mayGo = doomed.LeaveModels();
  doomed.Withdraw();
  if (mayGo) depth::Release(*pNode);
}

// A document's memory goes back to the heap that all threads share, so what
// points at it is withdrawn first.
void ReleaseTree(DOMDocument* pDoc) {
  g_NodeSessMap.WithdrawDocument(pDoc);
  ForgetTree(pDoc);
  pDoc->release();
}

void DeleteDocumentObject(CXercesDOM* pDom) {
  g_NodeSessMap.Withdraw(pDom->DocumentNode());
  ForgetTree(pDom->m_pDoc);
  delete pDom;
}
