#include "dom/entering.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <utility>

#include "dom/builtnodes.h"

using xercesc::DOMAttrImpl;
using xercesc::DOMAttrMapImpl;
using xercesc::DOMAttrNSImpl;
using xercesc::DOMElementImpl;
using xercesc::DOMNodeVector;
using xercesc::XMLString;

namespace dom {

namespace {

using CAttributes = std::vector<DOMAttrImpl*>;

// From so many attributes on, looking them up by hash is faster.
constexpr std::size_t kMany = 16;

// What makes two attributes one. The names of a document are pooled, so equal ones have
// one address.
struct CIdentity {
  const XMLCh* m_pName;
  const XMLCh* m_pURI;

  bool operator==(const CIdentity&) const = default;
  static CIdentity Of(const DOMNode& node, bool hasNamespaces) {
    const auto& attribute = As<DOMAttrImpl>(node);
    if (!hasNamespaces) return {attribute.fName, nullptr};
    const auto& named = static_cast<const DOMAttrNSImpl&>(attribute);
    return {named.*CAttributeNames::kLocal, named.*CAttributeNames::kURI};
  }
};
struct CHash {
  std::size_t operator()(const CIdentity& identity) const {
    const auto of = [](const XMLCh* pText) { return reinterpret_cast<std::uintptr_t>(pText); };
    return (of(identity.m_pName) / 2 * 31 + of(identity.m_pURI) / 2) * 0x9e3779b97f4a7c15u;
  }
};

void Own(DOMElementImpl& element, DOMAttrImpl& attribute) {
  attribute.fNode.fOwnerNode = &element;
  attribute.fNode.isOwned(true);
}

DOMNodeVector& ItemsOf(DOMElementImpl& element, DOMAttrMapImpl& map, XMLSize_t room) {
  auto*& pItems = map.*reveal::CAttributes::kItems;
  auto& document = static_cast<xercesc::DOMDocumentImpl&>(*element.fParent.fOwnerDocument);
  if (pItems == nullptr) pItems = new (&document) DOMNodeVector(&document, room);
  return *pItems;
}

bool IsBefore(const DOMAttrImpl* pLeft, const DOMAttrImpl* pRight) {
  return XMLString::compareString(pLeft->fName, pRight->fName) < 0;
}

// The order of a map of which everything is known: each name is there once and in its
// place, and whoever gives way does so for its own name.
class COrder {
 public:
  COrder(DOMNodeVector& items, bool hasNamespaces) : m_HasNamespaces(hasNamespaces) {
    m_Places.reserve(items.size());
    for (XMLSize_t i = 0; i < items.size(); ++i) {
      m_Items.push_back(&As<DOMAttrImpl>(*items.elementAt(i)));
      m_Places.emplace(CIdentity::Of(*m_Items.back(), hasNamespaces), i);
    }
    m_OldCount = m_Items.size();
    m_IsClear = IsSorted(0);
  }

  void Add(DOMAttrImpl& attribute) {
    const auto [place, isNew] =
        m_Places.emplace(CIdentity::Of(attribute, m_HasNamespaces), m_Items.size());
    if (isNew) return m_Items.push_back(&attribute);
    m_IsClear = m_IsClear && m_Items[place->second]->fName == attribute.fName;
    m_Replaced.push_back(std::exchange(m_Items[place->second], &attribute));
  }

  // False where the order depends on who came first.
  bool Finish() {
    const auto added = m_Items.begin() + static_cast<std::ptrdiff_t>(m_OldCount);
    std::sort(added, m_Items.end(), IsBefore);
    m_IsClear = m_IsClear && IsSorted(m_OldCount);
    // Whoever comes with a name that is there goes before it.
    CAttributes all(m_Items.size());
    std::merge(added, m_Items.end(), m_Items.begin(), added, all.begin(), IsBefore);
    m_Items = std::move(all);
    return m_IsClear;
  }

  const CAttributes& Items() const { return m_Items; }
  CAttributes& Replaced() { return m_Replaced; }

 private:
  bool IsSorted(std::size_t from) const {
    for (std::size_t i = from + 1; i < m_Items.size(); ++i) {
      if (!IsBefore(m_Items[i - 1], m_Items[i])) return false;
    }
    return true;
  }

  bool m_HasNamespaces;
  bool m_IsClear = true;
  std::size_t m_OldCount = 0;
  CAttributes m_Items;  // those that were there, and the new ones
  CAttributes m_Replaced;
  std::unordered_map<CIdentity, std::size_t, CHash> m_Places;
};

CAttributes OneByOne(DOMElementImpl& element, DOMAttrMapImpl& map, const CAttributes& attributes,
                     bool hasNamespaces) {
  CAttributes replaced;
  for (DOMAttrImpl* pAttribute : attributes) {
    DOMAttrImpl* pReplaced = Enter(element, map, *pAttribute, hasNamespaces);
    if (pReplaced != nullptr) replaced.push_back(pReplaced);
  }
  return replaced;
}

}  // namespace

DOMAttrImpl* Enter(DOMElementImpl& element, DOMAttrMapImpl& map, DOMAttrImpl& attribute,
                   bool hasNamespaces) {
  Own(element, attribute);
  DOMNodeVector& items = ItemsOf(element, map, 1);
  const CIdentity identity = CIdentity::Of(attribute, hasNamespaces);
  const XMLSize_t count = items.size();
  for (XMLSize_t i = 0; i < count; ++i) {
    DOMNode& item = *items.elementAt(i);
    if (CIdentity::Of(item, hasNamespaces) != identity) continue;
    items.setElementAt(&attribute, i);
    return &As<DOMAttrImpl>(item);
  }
  if (count == 0) {
    items.addElement(&attribute);
  } else {
    const int place = map.findNamePoint(attribute.fName);
    items.insertElementAt(&attribute, static_cast<XMLSize_t>(place < 0 ? -1 - place : place));
  }
  return nullptr;
}

CAttributes EnterAll(DOMElementImpl& element, DOMAttrMapImpl& map, const CAttributes& attributes,
                     bool hasNamespaces, bool mustDiffer) {
  if (attributes.size() < kMany) return OneByOne(element, map, attributes, hasNamespaces);
  DOMNodeVector& items = ItemsOf(element, map, attributes.size());
  COrder order(items, hasNamespaces);
  for (DOMAttrImpl* pAttribute : attributes) order.Add(*pAttribute);
  if (mustDiffer && !order.Replaced().empty()) return std::move(order.Replaced());
  if (!order.Finish()) return OneByOne(element, map, attributes, hasNamespaces);
  items.reset();
  for (DOMAttrImpl* pAttribute : order.Items()) items.addElement(pAttribute);
  for (DOMAttrImpl* pAttribute : attributes) Own(element, *pAttribute);
  return std::move(order.Replaced());
}

}  // namespace dom
