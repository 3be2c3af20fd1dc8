#include "dom/text.h"

#include <algorithm>

#include "dom/attributes.h"
#include "dom/checks.h"
#include "dom/edit.h"
#include "dom/look.h"

using xercesc::DOMAttr;
using xercesc::DOMException;
using xercesc::DOMText;

namespace dom {

namespace {

constexpr unsigned kTextTypes = Bit(DOMNode::TEXT_NODE) | Bit(DOMNode::CDATA_SECTION_NODE);
constexpr unsigned kContainers = Bit(DOMNode::ELEMENT_NODE) | Bit(DOMNode::ENTITY_NODE) |
                                 Bit(DOMNode::ENTITY_REFERENCE_NODE) |
                                 Bit(DOMNode::DOCUMENT_FRAGMENT_NODE);
constexpr unsigned kWithoutText =
    Bit(DOMNode::DOCUMENT_NODE) | Bit(DOMNode::DOCUMENT_TYPE_NODE) | Bit(DOMNode::NOTATION_NODE);

bool IsText(const DOMNode& node) { return node.getNodeType() == DOMNode::TEXT_NODE; }

// Merges the texts behind `text` into it.
void TakeFollowing(DOMNode& parent, DOMNode& text) {
  while (DOMNode* pNext = NextSibling(text)) {
    if (!IsText(*pNext)) return;
    As<DOMText>(text).appendData(pNext->getNodeValue());
    RemoveChild(parent, *pNext);
  }
}

}  // namespace

std::u16string TextContent(DOMNode& node) {
  std::u16string text;
  const auto append = [&](const DOMNode& part) {
    if (part.getNodeValue() != nullptr) text += part.getNodeValue();
  };
  if (IsOneOf(node, kContainers)) {
    static_cast<void>(FirstChild(node));
    ForEachBelow(node, [&](const DOMNode& part) {
      if (IsOneOf(part, kTextTypes)) append(part);
    });
  } else if (!IsOneOf(node, kWithoutText)) {
    append(node);
  }
  return text;
}

void SetNodeValue(DOMNode& node, const XMLCh* pValue) {
  if (node.getNodeType() == DOMNode::ATTRIBUTE_NODE) {
    SetValue(As<DOMAttr>(node), pValue);
  } else {
    node.setNodeValue(pValue);
  }
}

void SetTextContent(DOMNode& node, const XMLCh* pText) {
  if (IsOneOf(node, kWithoutText)) return;
  RequireWritable(node);
  if (!IsOneOf(node, kContainers)) return SetNodeValue(node, pText);
  DOMNode& text = *OwnerDocument(node)->createTextNode(pText);
  RemoveChildren(node);
  InsertBefore(node, text, nullptr);
}

const XMLCh* Substring(const xercesc::DOMCharacterData& data, XMLSize_t offset, XMLSize_t count) {
  const XMLSize_t length = data.getLength();
  return data.substringData(offset, offset > length ? count : std::min(count, length - offset));
}

DOMText& SplitText(DOMText& text, XMLSize_t offset) {
  RequireWritable(text);
  const XMLSize_t length = text.getLength();
  if (offset > length) throw DOMException(DOMException::INDEX_SIZE_ERR);
  DOMNode* pParent = Parent(text);
  if (pParent != nullptr) RequireWritable(*pParent);
  xercesc::DOMDocument& document = *OwnerDocument(text);
  const XMLCh* pRest = text.getData() + offset;
  DOMText& rest =
      IsText(text) ? *document.createTextNode(pRest) : *document.createCDATASection(pRest);
  if (pParent != nullptr) InsertBefore(*pParent, rest, NextSibling(text));
  text.deleteData(offset, length - offset);
  return rest;
}

void Normalize(DOMNode& root) {
  static_cast<void>(FirstChild(root));
  const DOMNode* pNode = &root;
  while (pNode != nullptr) {
    if (IsText(*pNode) && pNode != &root) {
      TakeFollowing(*Parent(*pNode), const_cast<DOMNode&>(*pNode));
    }
    const bool goesDown = pNode == &root || pNode->getNodeType() == DOMNode::ELEMENT_NODE;
    pNode = goesDown ? Next(*pNode, root) : After(*pNode, root);
  }
}

}  // namespace dom
