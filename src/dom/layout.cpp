#include <memory>
#include <stdexcept>
#include <xercesc/dom/impl/DOMCasts.hpp>

#include "dom/look.h"

using xercesc::DOMDocument;
using xercesc::DOMDocumentImpl;

namespace dom {

namespace {

struct CReleaseDocument {
  void operator()(DOMDocument* pDocument) const { pDocument->release(); }
};

// Run-time casts are what this is checked against.
void Check(const DOMNode& node) {
  bool fits = &NodePart(node) == xercesc::castToNodeImpl(&node);
  fits = fits && NodePart(node).fContainingNode == &node && MarksOf(node) == 0;
  if (const auto* pParent = ParentPart(node)) {
    fits = fits && pParent == xercesc::castToParentImpl(&node);
  }
  if (const auto* pChild = ChildPart(node)) {
    fits = fits && pChild == xercesc::castToChildImpl(&node);
  }
  fits = fits && OwnerDocument(node) == node.getOwnerDocument();
  if (!fits) throw std::logic_error("Xerces-C is not laid out as this library knows it");
}

}  // namespace

void CheckLayout() {
  const std::unique_ptr<DOMDocument, CReleaseDocument> owner(
      xercesc::DOMImplementation::getImplementation()->createDocument());
  DOMDocumentImpl& document = Impl(*owner);
  const DOMNode* samples[] = {&document,
                              document.createElement(u"n"),
                              document.createElementNS(u"u", u"p:n"),
                              document.createAttribute(u"n"),
                              document.createAttributeNS(u"u", u"p:n"),
                              document.createTextNode(u""),
                              document.createCDATASection(u""),
                              document.createComment(u""),
                              document.createProcessingInstruction(u"n", u""),
                              document.createEntityReference(u"n"),
                              document.createEntity(u"n"),
                              document.createNotation(u"n"),
                              document.createDocumentFragment(),
                              document.createDocumentType(u"n")};
  for (const DOMNode* pNode : samples) Check(*pNode);
}

}  // namespace dom
