// The same random edits by the room for the DOM and by the DOM's own methods, on two
// documents that were equal: codes, trees and flags must stay so. Where the DOM is known
// to be wrong (a node put into itself, a document that keeps what has left it, an index
// that keeps what is gone) the edit is left to the room alone, or put right behind it.
#include <functional>
#include <xercesc/dom/impl/DOMCasts.hpp>

#include "dom/attributes.h"
#include "dom/copy.h"
#include "dom/edit.h"
#include "dom/idindex.h"
#include "dom/look.h"
#include "dom/text.h"
#include "twins.h"

namespace {

using fuzz::CBytes;
using fuzz::CTwins;
using xercesc::DOMAttr;
using xercesc::DOMDocument;
using xercesc::DOMElement;
using xercesc::DOMException;
using xercesc::DOMNode;

constexpr const char* kDocuments[] = {
    "<!DOCTYPE r [<!ENTITY e 'x<b k=\"v\">y</b>z'><!ENTITY t 'text'><!NOTATION n SYSTEM 's'>"
    "<!ATTLIST a id ID #IMPLIED d CDATA 'y'>]>"
    "<r xmlns:p='u'>t<a id='i' p:n='1'>2<p:c/>&e;<![CDATA[s]]></a><!--o--><?i d?>"
    "<a id='j'><a>10</a>&t;<c/></a>end</r>",
    "<r><a><b/><c>t</c></a><d k='1' l='2' m='3'>u<e/>v</d></r><!--last-->",
    "<p:r xmlns:p='u' xmlns='d' p:a='1' a='2'><b p:c='3'/>text<b/>more</p:r>",
};

constexpr const char16_t* kNames[] = {u"a",   u"b",   u"k", u"id", u"d",
                                      u"p:n", u"q:n", u"1", u"",   u"xmlns"};
constexpr const char16_t* kURIs[] = {u"u", u"d", u""};
constexpr const char16_t* kTexts[] = {u"v", u"", u" ", u"longer text than before", u"i", u"k"};

template <class Items>
auto Pick(CBytes& bytes, const Items& items) {
  return items[bytes.Byte() % std::size(items)];
}

// What a call answered: the code of its exception, and the node that it gave.
struct CAnswer {
  int m_Code = 0;
  DOMNode* m_pNode = nullptr;
};
CAnswer Answer(const std::function<DOMNode*()>& call) {
  try {
    return {0, call()};
  } catch (const DOMException& exception) {
    return {exception.code, nullptr};
  }
}

class CEdits {
 public:
  CEdits(CTwins& twins, CBytes& bytes) : m_Twins(twins), m_Bytes(bytes) {}

  void Step() {
    constexpr void (CEdits::*kEdits[])() = {
        &CEdits::Insert,     &CEdits::Insert,   &CEdits::Replace,      &CEdits::Remove,
        &CEdits::Create,     &CEdits::Create,   &CEdits::SetAttribute, &CEdits::SetAttributeNS,
        &CEdits::SetNode,    &CEdits::SetNode,  &CEdits::RemoveByName, &CEdits::RemoveByNameNS,
        &CEdits::RemoveNode, &CEdits::SetValue, &CEdits::SetText,      &CEdits::Split,
        &CEdits::Normalize,  &CEdits::Clone,    &CEdits::Import,       &CEdits::Attributes};
    (this->*kEdits[m_Bytes.Byte() % std::size(kEdits)])();
    m_Twins.Compare(m_WithIds);
  }

 private:
  using CCall = std::function<DOMNode*()>;

  DOMNode& Choose() { return m_Twins.Choose(m_Bytes); }
  DOMNode& Twin(const DOMNode& node) { return m_Twins.TwinOf(node); }
  DOMElement* ChooseElement() {
    DOMNode& node = Choose();
    return node.getNodeType() == DOMNode::ELEMENT_NODE ? static_cast<DOMElement*>(&node) : nullptr;
  }
  DOMElement& TwinElement(const DOMElement& ours) { return static_cast<DOMElement&>(Twin(ours)); }

  // Both in turn; results are paired, codes compared.
  void Both(const char* pEdit, const CCall& ours, const CCall& theirs) {
    m_Twins.Begin(pEdit);
    const CAnswer answer = Answer(ours), expected = Answer(theirs);
    if (answer.m_Code != expected.m_Code) {
      fuzz::Fail(std::string(pEdit) + ": code " + std::to_string(answer.m_Code) + ", the DOM's " +
                 std::to_string(expected.m_Code));
    }
    m_Twins.Pair(answer.m_pNode, expected.m_pNode);
  }

  // Of ours alone, where it must refuse and leave everything as it is.
  void Refused(const char* pEdit, const CCall& ours) {
    m_Twins.Begin(pEdit);
    if (Answer(ours).m_Code == 0) fuzz::Fail(std::string(pEdit) + ": not refused");
  }

  static bool IsDocument(const DOMNode& node) {
    return node.getNodeType() == DOMNode::DOCUMENT_NODE;
  }
  static bool IsFragment(const DOMNode& node) {
    return node.getNodeType() == DOMNode::DOCUMENT_FRAGMENT_NODE;
  }

  void Insert() {
    DOMNode &parent = Choose(), &child = Choose(), &place = Choose();
    const bool appends = m_Bytes.Byte() % 2 == 0;
    const CCall ours = [&] {
      dom::InsertBefore(parent, child, appends ? nullptr : &place);
      return nullptr;
    };
    if (&parent == &child) return Refused("insert into itself", ours);
    // The DOM moves what it can of a fragment before it refuses the rest.
    if (IsDocument(parent) && IsFragment(child)) return;
    Both("insert", ours, [&] {
      Twin(parent).insertBefore(&Twin(child), appends ? nullptr : &Twin(place));
      return nullptr;
    });
  }

  void Replace() {
    DOMNode &parent = Choose(), &child = Choose();
    DOMNode& old = m_Bytes.Byte() % 8 == 0 ? child : Choose();
    const CCall ours = [&] {
      dom::ReplaceChild(parent, child, old);
      return nullptr;
    };
    if (&parent == &child) return Refused("replace by the parent itself", ours);
    if (IsDocument(parent) && (IsFragment(child) || &child == &old)) return;
    Both("replace", ours, [&] {
      Twin(parent).replaceChild(&Twin(child), &Twin(old));
      return nullptr;
    });
  }

  void Remove() {
    DOMNode& child = Choose();
    DOMNode* pParent = child.getParentNode();
    DOMNode& parent = pParent != nullptr && m_Bytes.Byte() % 8 != 0 ? *pParent : Choose();
    Both(
        "remove",
        [&] {
          dom::RemoveChild(parent, child);
          return nullptr;
        },
        [&] {
          Twin(parent).removeChild(&Twin(child));
          return nullptr;
        });
  }

  // Made by the DOM for both: the room makes none of these.
  void Create() {
    const auto make = [kind = m_Bytes.Byte() % 8, name = Pick(m_Bytes, kNames),
                       uri = Pick(m_Bytes, kURIs),
                       text = Pick(m_Bytes, kTexts)](DOMDocument& document) -> DOMNode* {
      switch (kind) {
        case 0:
          return document.createElement(name);
        case 1:
          return document.createElementNS(uri, name);
        case 2:
          return document.createAttribute(name);
        case 3:
          return document.createAttributeNS(uri, name);
        case 4:
          return document.createTextNode(text);
        case 5:
          return document.createCDATASection(text);
        case 6:
          return document.createEntityReference(name[0] == u'a' ? u"e" : name);
        default:
          return document.createDocumentFragment();
      }
    };
    Both(
        "create", [&] { return make(m_Twins.Ours()); }, [&] { return make(m_Twins.Theirs()); });
  }

  // The DOM frees references that entities still copy from.
  static bool HoldsReference(const DOMNode* pAttribute) {
    const DOMNode* p = pAttribute != nullptr ? pAttribute->getFirstChild() : nullptr;
    while (p != nullptr && p->getNodeType() != DOMNode::ENTITY_REFERENCE_NODE) {
      p = p->getNextSibling();
    }
    return p != nullptr;
  }

  void ForgetText(const DOMAttr* pAttribute) {
    if (pAttribute != nullptr && !dom::IsReadOnly(*pAttribute)) m_Twins.ForgetBelow(*pAttribute);
  }

  void SetAttribute() {
    DOMElement* pElement = ChooseElement();
    const auto *pName = Pick(m_Bytes, kNames), *pValue = Pick(m_Bytes, kTexts);
    if (pElement == nullptr || HoldsReference(pElement->getAttributeNode(pName))) return;
    if (!dom::IsReadOnly(*pElement)) ForgetText(pElement->getAttributeNode(pName));
    Both(
        "set attribute",
        [&] {
          dom::SetAttribute(*pElement, pName, pValue);
          return nullptr;
        },
        [&] {
          TwinElement(*pElement).setAttribute(pName, pValue);
          return nullptr;
        });
  }

  void SetAttributeNS() {
    DOMElement* pElement = ChooseElement();
    const auto *pURI = Pick(m_Bytes, kURIs), *pName = Pick(m_Bytes, kNames);
    const auto* pValue = Pick(m_Bytes, kTexts);
    if (pElement == nullptr) return;
    if (HoldsReference(pElement->getAttributeNodeNS(pURI, pName))) return;
    const std::u16string_view name = pName;
    const bool isPlain = name.find(u':') == name.npos && !name.empty();
    if (isPlain && !dom::IsReadOnly(*pElement)) {
      ForgetText(pElement->getAttributeNodeNS(pURI, pName));
    }
    Both(
        "set attribute by namespace",
        [&] {
          dom::SetAttributeNS(*pElement, pURI, pName, pValue);
          return nullptr;
        },
        [&] {
          TwinElement(*pElement).setAttributeNS(pURI, pName, pValue);
          return nullptr;
        });
  }

  void SetNode() {
    DOMElement* pElement = ChooseElement();
    DOMNode& node = Choose();
    const bool byNamespace = m_Bytes.Byte() % 2 == 0;
    if (pElement == nullptr) return;
    // The DOM marks as free what it sets again, and takes one nameless attribute for
    // another.
    if (node.getNodeType() != DOMNode::ATTRIBUTE_NODE) return;
    if (dom::ParentOrElement(node) == pElement) return;
    if (byNamespace && node.getLocalName() == nullptr) return;
    auto& theirs = static_cast<DOMAttr&>(Twin(node));
    Both(
        "set attribute node",
        [&] {
          return byNamespace ? dom::SetAttributeNodeNS(*pElement, node)
                             : dom::SetAttributeNode(*pElement, node);
        },
        [&]() -> DOMNode* {
          DOMElement& element = TwinElement(*pElement);
          return byNamespace ? element.setAttributeNodeNS(&theirs)
                             : element.setAttributeNode(&theirs);
        });
  }

  // The nodes that the DOM frees with an attribute go from its index of IDs first.
  void ForgetAttribute(const DOMElement& element, const DOMAttr* pAttribute) {
    if (pAttribute == nullptr || dom::IsReadOnly(element)) return;
    auto& theirs = static_cast<DOMAttr&>(Twin(*pAttribute));
    if (theirs.isId()) {
      dom::Refile(theirs);
      dom::RemoveFromIndex(theirs);
    }
    m_Twins.Forget(*pAttribute);
  }

  void RemoveByName() {
    DOMElement* pElement = ChooseElement();
    const auto* pName = Pick(m_Bytes, kNames);
    if (pElement == nullptr || HoldsReference(pElement->getAttributeNode(pName))) return;
    ForgetAttribute(*pElement, pElement->getAttributeNode(pName));
    Both(
        "remove attribute",
        [&] {
          dom::RemoveAttribute(*pElement, pName);
          return nullptr;
        },
        [&] {
          TwinElement(*pElement).removeAttribute(pName);
          return nullptr;
        });
  }

  void RemoveByNameNS() {
    DOMElement* pElement = ChooseElement();
    const auto *pURI = Pick(m_Bytes, kURIs), *pName = Pick(m_Bytes, kNames);
    if (pElement == nullptr || HoldsReference(pElement->getAttributeNodeNS(pURI, pName))) return;
    ForgetAttribute(*pElement, pElement->getAttributeNodeNS(pURI, pName));
    Both(
        "remove attribute by namespace",
        [&] {
          dom::RemoveAttributeNS(*pElement, pURI, pName);
          return nullptr;
        },
        [&] {
          TwinElement(*pElement).removeAttributeNS(pURI, pName);
          return nullptr;
        });
  }

  void RemoveNode() {
    DOMElement* pElement = ChooseElement();
    if (pElement == nullptr || pElement->getAttributes()->getLength() == 0) return;
    DOMNode& attribute =
        *pElement->getAttributes()->item(m_Bytes.Byte() % pElement->getAttributes()->getLength());
    // Of two attributes that it takes for one, the DOM finds the first.
    const XMLCh* pLocal = attribute.getLocalName();
    const DOMAttr* pFound = pLocal != nullptr
                                ? pElement->getAttributeNodeNS(attribute.getNamespaceURI(), pLocal)
                                : pElement->getAttributeNode(attribute.getNodeName());
    if (pFound != &attribute || HoldsReference(&attribute)) return;
    auto& theirs = static_cast<DOMAttr&>(Twin(attribute));
    ForgetAttribute(*pElement, static_cast<DOMAttr*>(&attribute));
    Both(
        "remove attribute node",
        [&] {
          dom::RemoveAttributeNode(*pElement, attribute);
          return nullptr;
        },
        [&] {
          TwinElement(*pElement).removeAttributeNode(&theirs)->release();
          return nullptr;
        });
  }

  void SetValue() {
    DOMNode& node = Choose();
    const auto* pValue = Pick(m_Bytes, kTexts);
    if (HoldsReference(&node) && node.getNodeType() == DOMNode::ATTRIBUTE_NODE) return;
    if (node.getNodeType() == DOMNode::ATTRIBUTE_NODE) ForgetText(static_cast<DOMAttr*>(&node));
    Both(
        "set value",
        [&] {
          dom::SetNodeValue(node, pValue);
          return nullptr;
        },
        [&] {
          Twin(node).setNodeValue(pValue);
          return nullptr;
        });
  }

  void SetText() {
    DOMNode& node = Choose();
    const auto* pText = Pick(m_Bytes, kTexts);
    if (HoldsReference(&node) && node.getNodeType() == DOMNode::ATTRIBUTE_NODE) return;
    if (node.getNodeType() == DOMNode::ATTRIBUTE_NODE) ForgetText(static_cast<DOMAttr*>(&node));
    Both(
        "set text",
        [&] {
          dom::SetTextContent(node, pText);
          return nullptr;
        },
        [&] {
          Twin(node).setTextContent(pText);
          return nullptr;
        });
  }

  void Split() {
    DOMNode& node = Choose();
    const XMLSize_t offset = m_Bytes.Byte() % 4;
    const auto type = node.getNodeType();
    if (type != DOMNode::TEXT_NODE && type != DOMNode::CDATA_SECTION_NODE) return;
    Both(
        "split", [&] { return &dom::SplitText(static_cast<xercesc::DOMText&>(node), offset); },
        [&] { return static_cast<xercesc::DOMText&>(Twin(node)).splitText(offset); });
  }

  void Normalize() {
    DOMNode& node = Choose();
    Both(
        "normalize",
        [&] {
          dom::Normalize(node);
          return nullptr;
        },
        [&] {
          Twin(node).normalize();
          return nullptr;
        });
  }

  // The DOM's copy of a first child takes itself for one. It files the ID attributes of
  // copies under no value, or twice.
  void Clone() {
    DOMNode& node = Choose();
    const bool deep = m_Bytes.Byte() % 2 == 0;
    if (IsDocument(node) || IsLarge(node)) return;
    m_WithIds = false;
    Both(
        "clone", [&] { return dom::Clone(node, deep); },
        [&] {
          DOMNode* pClone = Twin(node).cloneNode(deep);
          xercesc::castToNodeImpl(pClone)->isFirstChild(false);
          return pClone;
        });
  }

  void Import() {
    DOMNode& node = Choose();
    const bool deep = m_Bytes.Byte() % 2 == 0;
    if (IsLarge(node)) return;
    m_WithIds = false;
    Both(
        "import", [&] { return dom::Import(m_Twins.Ours(), node, deep); },
        [&] { return m_Twins.Theirs().importNode(&Twin(node), deep); });
  }

  // The names and values as the room looks them up.
  void Attributes() {
    DOMElement* pElement = ChooseElement();
    const auto *pURI = Pick(m_Bytes, kURIs), *pName = Pick(m_Bytes, kNames);
    if (pElement == nullptr) return;
    Both(
        "look up attribute", [&] { return dom::Attribute(*pElement, pName); },
        [&] { return TwinElement(*pElement).getAttributeNode(pName); });
    Both(
        "look up attribute by namespace", [&] { return dom::AttributeNS(*pElement, pURI, pName); },
        [&] { return TwinElement(*pElement).getAttributeNodeNS(pURI, pName); });
  }

  static bool IsLarge(const DOMNode& node) {
    size_t count = 0;
    dom::ForEachBelow(const_cast<DOMNode&>(node), [&](const DOMNode&) { ++count; });
    return count > 100;
  }

  CTwins& m_Twins;
  CBytes& m_Bytes;
  bool m_WithIds = true;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t size) {
  CBytes bytes(pData, size);
  CTwins twins(kDocuments[bytes.Byte() % std::size(kDocuments)]);
  CEdits edits(twins, bytes);
  for (int i = 0; i < 150 && !bytes.IsEmpty(); ++i) edits.Step();
  return 0;
}
