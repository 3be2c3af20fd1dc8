// Document types that were made for no document and taken by one later.
//
// The DOM frees such a type with its document only where it is the document's child
// by then. One that was removed or replaced, or whose insertion was refused after the
// document had taken it, is freed from here.
#pragma once

#include <vector>
#include <xercesc/dom/DOM.hpp>

// A node that is offered to a document. Tie it when the offer was made, whether it was
// accepted or not: the id of a type that was taken goes with the document from then on.
class COfferedNode {
 public:
  explicit COfferedNode(xercesc::DOMNode* pNode)
      : m_pFreeType(pNode != nullptr && IsFreeType(*pNode) ? pNode : nullptr) {}
  void Tie() const;

  // Whether this is a document type that no document has taken.
  static bool IsFreeType(const xercesc::DOMNode& node) {
    return node.getNodeType() == xercesc::DOMNode::DOCUMENT_TYPE_NODE &&
           node.getOwnerDocument() == nullptr;
  }

 private:
  xercesc::DOMNode* m_pFreeType;
};

namespace takentypes {

// The node is about to be freed.
void Forget(xercesc::DOMNode& node);

// The types of a document that is about to go. They are the caller's to free, but for
// the document's child.
std::vector<xercesc::DOMNode*> TakeOf(const xercesc::DOMDocument* pDoc);

}  // namespace takentypes
