#include "dom/release.h"

#include <algorithm>
#include <utility>

#include "dom/idindex.h"
#include "dom/listener.h"
#include "dom/look.h"
#include "dom/takentypes.h"

using xercesc::DOMAttr;
using xercesc::DOMDocument;

namespace dom {

namespace {

IListener* s_pListener = nullptr;

// Whether this entity reference may be the one that its entity copies its content from,
// when it is first asked for it, and that later references copy theirs from: the last
// one that the parser met. An entity that is no longer in its document may have any.
bool MayBeModel(const DOMNode& reference) {
  const xercesc::DOMDocumentType* pType = OwnerDocument(reference)->getDoctype();
  if (pType == nullptr) return true;
  const DOMNode* pEntity = pType->getEntities()->getNamedItem(reference.getNodeName());
  return pEntity == nullptr || As<xercesc::DOMEntityImpl>(*pEntity).getEntityRef() == &reference;
}

bool IsModel(const DOMNode& node) {
  return node.getNodeType() == DOMNode::ENTITY_REFERENCE_NODE && MayBeModel(node);
}

// A reference inside one that stays behind stays with it.
bool IsInModel(const DOMNode& reference) {
  const DOMNode* pUp = ParentOrElement(reference);
  while (pUp != nullptr && !IsModel(*pUp)) pUp = ParentOrElement(*pUp);
  return pUp != nullptr;
}

// Takes a node out of the children of its parent, whatever that allows.
void Unhang(DOMNode& node) {
  DOMNode* pParent = Parent(node);
  if (pParent == nullptr) return;
  NodePart(*pParent).isReadOnly(false);
  pParent->removeChild(&node);
}

// The node hangs nowhere from now on, which lets the DOM release it.
void Disown(DOMNode& node) {
  DOMDocument* pDocument = OwnerDocument(node);
  NodePart(node).fOwnerNode = pDocument;
  NodePart(node).isOwned(false);
}

// An element in an entity reference is read-only, and its attributes would stop the DOM
// halfway; those of an element with a namespace the DOM would not free at all.
void FreeAttributes(xercesc::DOMElementImpl& element) {
  NodePart(element).isReadOnly(false);
  xercesc::DOMNodeVector* pItems = AttributesOf(element);
  while (pItems != nullptr && pItems->size() != 0) {
    DOMNode* pAttribute = pItems->lastElement();
    pItems->removeElementAt(pItems->size() - 1);
    Disown(*pAttribute);
    pAttribute->release();
  }
}

// Frees a node without children; its parent has let go of it.
void FreeLeaf(DOMNode& node) {
  if (node.getNodeType() == DOMNode::ELEMENT_NODE) {
    FreeAttributes(As<xercesc::DOMElementImpl>(node));
  }
  Disown(node);
  node.release();
}

// From the leaves up, so that neither this nor the DOM goes down the tree by recursion.
void FreeAll(DOMNode& root) {
  DOMNode* pNode = &root;
  while (true) {
    while (DOMNode* pChild = MadeFirstChild(*pNode)) pNode = pChild;
    if (pNode == &root) break;
    DOMNode* pParent = NodePart(*pNode).fOwnerNode;
    DOMNode* pNext = NextSibling(*pNode);
    ParentPart(*pParent)->fFirstChild = pNext;
    FreeLeaf(*pNode);
    pNode = pNext != nullptr ? pNext : pParent;
  }
  FreeLeaf(root);
}

}  // namespace

void SetListener(IListener* pListener) { s_pListener = pListener; }
IListener& Listener() { return *s_pListener; }

void CDoomedNodes::AddWhole(DOMNode& root) {
  m_Roots.push_back(&root);
  Collect(root);
}

void CDoomedNodes::AddBelow(DOMNode& parent) {
  for (DOMNode* pChild = MadeFirstChild(parent); pChild != nullptr; pChild = NextSibling(*pChild)) {
    AddWhole(*pChild);
  }
}

void CDoomedNodes::Collect(DOMNode& root) {
  ForEachWithin(root, [this](DOMNode& node) {
    if (MarksOf(node) != 0) m_Marked.push_back(&node);
    if (node.getNodeType() == DOMNode::ATTRIBUTE_NODE && NodePart(node).isIdAttr()) {
      Refile(As<DOMAttr>(node));
      m_Ids.push_back(&As<DOMAttr>(node));
    }
    if (IsModel(node) && !IsInModel(node)) m_Models.push_back(&node);
  });
}

void CDoomedNodes::Free() {
  if (!m_Marked.empty()) Listener().NodesGo(m_Marked);
  for (DOMAttr* pAttribute : m_Ids) RemoveFromIndex(*pAttribute);
  // Entity references that entities copy from stay behind till the document goes, with
  // all that is in them.
  for (DOMNode* pModel : m_Models) Unhang(*pModel);
  for (DOMNode* pRoot : std::exchange(m_Roots, {})) {
    if (!std::ranges::count(m_Models, pRoot)) FreeAll(*pRoot);
  }
}

void Release(DOMNode& node) {
  if (IsOwned(node)) {
    node.release();  // throws
    return;
  }
  CDoomedNodes doomed;
  doomed.AddWhole(node);
  takentypes::Forget(node);
  doomed.Free();
}

void CReleaseNode::operator()(DOMNode* pNode) const {
  if (pNode->getNodeType() == DOMNode::DOCUMENT_NODE) {
    pNode->release();
  } else {
    Release(*pNode);
  }
}

void BeforeTreeGoes(DOMDocument& document) {
  Listener().TreeGoes(document);
  for (xercesc::DOMDocumentType* pType : takentypes::TakeOf(document)) {
    if (!IsOwned(*pType)) Release(*pType);
  }
}

void ReleaseTree(DOMDocument& document) {
  BeforeTreeGoes(document);
  document.release();
}

}  // namespace dom
