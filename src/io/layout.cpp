#include "io/layout.h"

#include <algorithm>
#include <vector>

#include "io/characters.h"

using xercesc::DOMElement;
using xercesc::DOMNode;

namespace layout {

namespace {

bool IsSpace(const DOMNode& text) { return characters::IsSpace(text.getNodeValue()); }

// A reference that stands for white space is as good as that; an empty one may stand
// for anything.
bool IsSpaceReference(const DOMNode& reference) {
  const DOMNode* pChild = reference.getFirstChild();
  if (pChild == nullptr) return false;
  for (; pChild != nullptr; pChild = pChild->getNextSibling()) {
    if (pChild->getNodeType() != DOMNode::TEXT_NODE || !IsSpace(*pChild)) return false;
  }
  return true;
}

bool IsText(const DOMNode& node) {
  switch (node.getNodeType()) {
    case DOMNode::TEXT_NODE:
    case DOMNode::CDATA_SECTION_NODE:
      return !IsSpace(node);
    case DOMNode::ENTITY_REFERENCE_NODE:
      return !IsSpaceReference(node);
    default:
      return false;
  }
}

}  // namespace

EContent ContentOf(const DOMNode& parent) {
  EContent content = EContent::kNone;
  for (const DOMNode* pChild = parent.getFirstChild(); pChild != nullptr;
       pChild = pChild->getNextSibling()) {
    if (IsText(*pChild)) return EContent::kText;
    if (pChild->getNodeType() == DOMNode::ELEMENT_NODE) content = EContent::kElements;
  }
  return content;
}

bool IsPreserved(const DOMElement& element, bool isPreservedAround) {
  const std::u16string_view value = element.getAttribute(u"xml:space");
  if (value == u"preserve") return true;
  return value != u"default" && isPreservedAround;
}

bool IsPreservedAround(const DOMNode& node) {
  for (const DOMNode* pNode = node.getParentNode(); pNode != nullptr;
       pNode = pNode->getParentNode()) {
    if (pNode->getNodeType() != DOMNode::ELEMENT_NODE) continue;
    const std::u16string_view value =
        static_cast<const DOMElement*>(pNode)->getAttribute(u"xml:space");
    if (value == u"preserve") return true;
    if (value == u"default") return false;
  }
  return false;
}

}  // namespace layout
