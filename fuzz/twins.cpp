#include "twins.h"

#include <algorithm>
#include <xercesc/dom/impl/DOMCasts.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>

using xercesc::DOMAttr;
using xercesc::DOMDocument;
using xercesc::DOMNode;
using xercesc::XMLString;

namespace fuzz {

namespace {

DOMDocument* Parse(const char* pXml) {
  xercesc::XercesDOMParser parser;
  parser.setDoNamespaces(true);
  const auto* pBytes = reinterpret_cast<const XMLByte*>(pXml);
  parser.parse(xercesc::MemBufInputSource(pBytes, XMLString::stringLen(pXml), "twin"));
  return parser.adoptDocument();
}

// Asked by the parts, as the library's own answers are what is looked at.
const DOMNode* Previous(const DOMNode& node) {
  return node.getNodeType() == DOMNode::ATTRIBUTE_NODE ? nullptr : node.getPreviousSibling();
}

const DOMNode* Holder(const DOMNode& node) {
  if (node.getNodeType() != DOMNode::ATTRIBUTE_NODE) return node.getParentNode();
  return static_cast<const DOMAttr&>(node).getOwnerElement();
}

unsigned FlagsOf(const xercesc::DOMNodeImpl& part) {
  constexpr unsigned kOurMarks = 7u << 13;
  return part.flags & ~kOurMarks;
}

template <class Visit>
void ForEachIn(const DOMNode& node, const Visit& visit) {
  visit(node);
  const auto* pMap = node.getAttributes();
  for (XMLSize_t i = 0; pMap != nullptr && i < pMap->getLength(); ++i) {
    ForEachIn(*pMap->item(i), visit);
  }
  for (const DOMNode* p = node.getFirstChild(); p != nullptr; p = p->getNextSibling()) {
    ForEachIn(*p, visit);
  }
}

}  // namespace

CTwins::CTwins(const char* pXml) : m_pOurs(Parse(pXml)), m_pTheirs(Parse(pXml)) {
  Pair(m_pOurs, m_pTheirs);
}

CTwins::~CTwins() {
  m_pOurs->release();
  m_pTheirs->release();
}

DOMNode& CTwins::Choose(CBytes& bytes) const {
  const size_t at = (bytes.Byte() * 256u + bytes.Byte()) % m_Order.size();
  return const_cast<DOMNode&>(*m_Order[at]);
}

void CTwins::Pair(const DOMNode* pOurs, DOMNode* pTheirs) {
  Require((pOurs == nullptr) == (pTheirs == nullptr), "result");
  if (pOurs == nullptr) return;
  const auto [place, isNew] = m_Twins.try_emplace(pOurs);
  if (isNew) {
    // Found once, as asking for the parts is slow.
    place->second = {pTheirs, xercesc::castToNodeImpl(pOurs), xercesc::castToNodeImpl(pTheirs)};
    m_Order.push_back(pOurs);
  }
  Require(place->second.m_pTheirs == pTheirs, "identity");
  const auto* pMap = pOurs->getAttributes();
  const auto* pTheirMap = pTheirs->getAttributes();
  const XMLSize_t count = pMap != nullptr ? pMap->getLength() : 0;
  Require(pMap == nullptr || pTheirMap->getLength() == count, "attributes");
  for (XMLSize_t i = 0; i < count; ++i) Pair(pMap->item(i), pTheirMap->item(i));
  DOMNode* pTheirChild = pTheirs->getFirstChild();
  for (const DOMNode* p = pOurs->getFirstChild(); p != nullptr; p = p->getNextSibling()) {
    Require(pTheirChild != nullptr, "children");
    Pair(p, pTheirChild);
    pTheirChild = pTheirChild->getNextSibling();
  }
  Require(pTheirChild == nullptr, "children");
}

void CTwins::Forget(const DOMNode& ours) {
  ForEachIn(ours, [this](const DOMNode& node) {
    m_Twins.erase(&node);
    std::erase(m_Order, &node);
  });
}

void CTwins::ForgetBelow(const DOMNode& ours) {
  for (const DOMNode* p = ours.getFirstChild(); p != nullptr; p = p->getNextSibling()) Forget(*p);
}

void CTwins::Compare(bool withIds) {
  // What an edit made is found from the nodes that were there, and what hangs in one of
  // these by way of it.
  for (const DOMNode* pNode : std::vector(m_Order)) {
    if (!m_Twins.contains(Holder(*pNode))) Pair(pNode, &TwinOf(*pNode));
  }
  for (const DOMNode* pNode : m_Order) CompareNode(*pNode, m_Twins.at(pNode));
  CompareLink(m_pOurs->getDocumentElement(), m_pTheirs->getDocumentElement(), "element");
  CompareLink(m_pOurs->getDoctype(), m_pTheirs->getDoctype(), "type");
  for (const char16_t* pId : {u"i", u"j", u"k", u"v"}) {
    if (!withIds) break;
    CompareLink(m_pOurs->getElementById(pId), m_pTheirs->getElementById(pId), "element by ID");
  }
}

void CTwins::CompareNode(const DOMNode& ours, const CTwin& twin) {
  const DOMNode& theirs = *twin.m_pTheirs;
  Require(ours.getNodeType() == theirs.getNodeType(), "type");
  Require(FlagsOf(*twin.m_pOurPart) == FlagsOf(*twin.m_pTheirPart), "flags");
  CompareText(ours.getNodeName(), theirs.getNodeName(), "name");
  CompareText(ours.getNodeValue(), theirs.getNodeValue(), "value");
  CompareText(ours.getNamespaceURI(), theirs.getNamespaceURI(), "namespace");
  CompareText(ours.getPrefix(), theirs.getPrefix(), "prefix");
  CompareText(ours.getLocalName(), theirs.getLocalName(), "local name");
  CompareLink(Holder(ours), Holder(theirs), "holder");
  CompareLink(Previous(ours), Previous(theirs), "previous sibling");
  CompareLink(ours.getNextSibling(), theirs.getNextSibling(), "next sibling");
  CompareLink(ours.getLastChild(), theirs.getLastChild(), "last child");
  Require((ours.getOwnerDocument() == m_pOurs) == (theirs.getOwnerDocument() == m_pTheirs),
          "owner document");
}

void CTwins::CompareLink(const DOMNode* pOurs, const DOMNode* pTheirs, const char* pLink) {
  Require((pOurs == nullptr) == (pTheirs == nullptr), pLink);
  if (pOurs != nullptr) Require(&TwinOf(*pOurs) == pTheirs, pLink);
}

void CTwins::CompareText(const XMLCh* pOurs, const XMLCh* pTheirs, const char* pWhat) {
  Require((pOurs == nullptr) == (pTheirs == nullptr) && XMLString::equals(pOurs, pTheirs), pWhat);
}

void CTwins::Require(bool isEqual, const char* pWhat) const {
  if (!isEqual) Fail(m_Edit + ": " + pWhat + " differs from the DOM's own");
}

}  // namespace fuzz
