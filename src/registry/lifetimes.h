// How the registries learn of nodes that go.
#pragma once

#include "dom/listener.h"

// Withdraws the ids of freed nodes and of their collections, and their map entries.
class CLifetimes final : public dom::IListener {
 public:
  static CLifetimes& Instance();

  void NodesGo(std::span<xercesc::DOMNode* const> nodes) noexcept override;
  void TreeGoes(xercesc::DOMDocument& document) noexcept override;
  void TypeIsTaken(xercesc::DOMDocumentType& type, xercesc::DOMDocument& document) override;
};
