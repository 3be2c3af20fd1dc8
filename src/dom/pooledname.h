// The names of the nodes that a parser makes.
#pragma once

#include <array>
#include <cstddef>

#include "dom/parts.h"

namespace dom {

// The pooled strings of a document for the names of its nodes. The same few names come
// again and again, and the document's own pool takes three passes for each.
class CPooledNames {
 public:
  // Forgets everything; the strings to come are this document's.
  void Start(xercesc::DOMDocumentImpl& document);
  // `slot` says where to look first, and may be anything.
  const XMLCh* Of(const XMLCh* pName, std::size_t slot);

 private:
  xercesc::DOMDocumentImpl* m_pDocument = nullptr;
  std::array<const XMLCh*, 1024> m_Slots;  // null for none yet
};

}  // namespace dom
