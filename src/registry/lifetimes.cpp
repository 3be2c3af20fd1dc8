#include "registry/lifetimes.h"

#include "dom/look.h"
#include "registry/globals.h"

using xercesc::DOMNode;

CLifetimes& CLifetimes::Instance() {
  static constinit CLifetimes s_Lifetimes;
  return s_Lifetimes;
}

// Most nodes have no more than an id, and most edits free no such node: the marks spare
// the look at the other registries.
void CLifetimes::NodesGo(std::span<DOMNode* const> nodes) noexcept {
  unsigned marks = 0;
  for (const DOMNode* pNode : nodes) marks |= dom::MarksOf(*pNode);
  if ((marks & dom::kHasCollection) != 0) {
    g_NodeListSessMap.WithdrawHeldBy(nodes);
    g_NamedNodeMapSessMap.WithdrawHeldBy(nodes);
  }
  if ((marks & dom::kHasId) != 0) g_NodeSessMap.Withdraw(nodes);
  if ((marks & dom::kHasEntry) != 0) g_NodeDomMap.Delete(nodes);
}

void CLifetimes::TreeGoes(xercesc::DOMDocument& document) noexcept {
  g_NodeSessMap.WithdrawDocument(document);
  g_NodeDomMap.DeleteByTree(&document);
  g_NodeListSessMap.WithdrawHeldIn(document);
  g_NamedNodeMapSessMap.WithdrawHeldIn(document);
}

void CLifetimes::TypeIsTaken(xercesc::DOMDocumentType& type, xercesc::DOMDocument& document) {
  g_NodeSessMap.Tie(type, document);
}
