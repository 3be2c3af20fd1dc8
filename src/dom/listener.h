// Who is told of what ends and what changes hands, before it does.
#pragma once

#include <span>
#include <xercesc/dom/DOM.hpp>

namespace dom {

// The registries, which keep ids and entries for nodes. What they do may not change a
// tree.
class IListener {
 public:
  // These nodes are about to be freed. Only nodes with a mark are told of.
  virtual void NodesGo(std::span<xercesc::DOMNode* const> nodes) noexcept = 0;
  // A whole tree is about to be freed, with its document node.
  virtual void TreeGoes(xercesc::DOMDocument& document) noexcept = 0;
  // A document type that belonged to no document is this document's from now on.
  virtual void TypeIsTaken(xercesc::DOMDocumentType& type, xercesc::DOMDocument& document) = 0;

 protected:
  ~IListener() = default;
};

// The listener, there is one, outlives every document.
void SetListener(IListener* pListener);
IListener& Listener();

}  // namespace dom
