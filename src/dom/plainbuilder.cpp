#include "dom/plainbuilder.h"

#include <cstdint>
#include <utility>
#include <xercesc/dom/impl/DOMElementNSImpl.hpp>
#include <xercesc/util/XMLChar.hpp>

#include "dom/builtnodes.h"
#include "dom/edit.h"
#include "dom/entering.h"
#include "dom/pieces.h"
#include "host/utf8.h"

using xercesc::DOMAttrImpl;
using xercesc::DOMAttrNSImpl;
using xercesc::DOMDocumentImpl;
using xercesc::DOMElementImpl;
using xercesc::DOMElementNSImpl;
using xercesc::DOMMemoryManager;
using xercesc::XMLChar1_0;
using xercesc::XMLUni;

namespace dom {

namespace {

std::size_t SlotOf(std::string_view text) {
  const auto at = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const std::size_t last = text.size() - 1;
  return (at(0) * 7u + at(last / 2) * 31u + at(last) * 101u + text.size() * 13u);
}

bool IsSame(const XMLCh* pText, std::u16string_view other) {
  return std::u16string_view(pText) == other;
}

}  // namespace

CPlainBuilder::CPlainBuilder(const XMLCh* pURI, bool hasNamespaces)
    : m_pOwned(static_cast<DOMDocumentImpl*>(
          xercesc::DOMImplementation::getImplementation()->createDocument(&NodeMemory()))),
      m_pDocument(m_pOwned.get()),
      m_HasNamespaces(hasNamespaces) {
  m_pDocument->setErrorChecking(false);
  m_pDocument->setDocumentURI(pURI);
  m_pDocument->setInputEncoding(XMLUni::fgUTF8EncodingString);
  if (!hasNamespaces) return;
  m_pXmlns = &PrefixOf(Pooled(XMLUni::fgXMLNSString));
  m_pXmlns->m_pURI = Pooled(XMLUni::fgXMLNSURIName);
  m_pXml = &PrefixOf(Pooled(XMLUni::fgXMLString));
  m_pXml->m_pURI = Pooled(XMLUni::fgXMLURIName);
}

void CPlainBuilder::Declare(const XMLCh* pEncoding, bool isStandalone) {
  m_pDocument->setXmlStandalone(isStandalone);
  m_pDocument->setXmlVersion(XMLUni::fgVersion1_0);
  m_pDocument->setXmlEncoding(pEncoding);
  if (*pEncoding != 0) m_pDocument->setInputEncoding(pEncoding);
}

CDOMOwner<DOMDocumentImpl> CPlainBuilder::TakeDocument() {
  m_pDocument->setErrorChecking(true);
  return std::move(m_pOwned);
}

// -- Names ------------------------------------------------------------------------

const XMLCh* CPlainBuilder::Pooled(const XMLCh* pText) {
  m_Room.Need(*m_pDocument, 1);
  return m_pDocument->getPooledString(pText);
}

CPlainBuilder::CPrefix& CPlainBuilder::PrefixOf(const XMLCh* pPooled) {
  CPrefix& prefix = m_Prefixes[pPooled];
  prefix.m_pName = pPooled;
  return prefix;
}

// Null for what is no name, or for none that is known for certain.
const CPlainBuilder::CName* CPlainBuilder::NameOf(std::string_view text) {
  if (text.empty()) return nullptr;
  CName& name = m_Names[SlotOf(text) % kSlots];
  if (name.m_Text != text) {
    name = CName();
    if (!Read(name, text)) return nullptr;
    name.m_Text = text;
  }
  return &name;
}

bool CPlainBuilder::Widen(std::string_view text) {
  m_Wide.resize(text.size());
  const auto count =
      utf8::Decode(reinterpret_cast<const unsigned char*>(text.data()), text.size(), m_Wide.data());
  m_Wide.resize(count.value_or(0));
  // Names beyond the first plane, which no table of characters has, are the parser's.
  return m_HasNamespaces ? XMLChar1_0::isValidQName(m_Wide.data(), m_Wide.size())
                         : XMLChar1_0::isValidName(m_Wide.data(), m_Wide.size());
}

bool CPlainBuilder::Read(CName& name, std::string_view text) {
  if (!Widen(text)) return false;
  name.m_pName = name.m_pLocal = Pooled(m_Wide.c_str());
  if (!m_HasNamespaces) return true;
  name.m_IsDeclaration = IsSame(XMLUni::fgXMLNSString, m_Wide);
  const std::size_t colon = m_Wide.find(u':');
  if (colon == m_Wide.npos) return true;
  name.m_pLocal = Pooled(m_Wide.c_str() + colon + 1);
  m_Wide.resize(colon);
  name.m_pPrefix = &PrefixOf(Pooled(m_Wide.c_str()));
  name.m_IsDeclaration = name.m_pPrefix == m_pXmlns;
  return true;
}

// -- Namespaces -------------------------------------------------------------------

// Those that have rules of their own are left to the parser.
bool CPlainBuilder::Bind(const CName& name, std::u16string_view uri) {
  if (IsSame(XMLUni::fgXMLURIName, uri) || IsSame(XMLUni::fgXMLNSURIName, uri)) return false;
  CPrefix* pPrefix = &m_Default;
  if (name.m_pPrefix != nullptr) {
    pPrefix = &PrefixOf(name.m_pLocal);
    if (uri.empty() || pPrefix == m_pXml || pPrefix == m_pXmlns) return false;
  }
  m_Hidden.push_back({pPrefix, pPrefix->m_pURI});
  m_Wide = uri;
  pPrefix->m_pURI = uri.empty() ? nullptr : Pooled(m_Wide.c_str());
  return true;
}

void CPlainBuilder::Unbind(std::size_t hidden) {
  for (; m_Hidden.size() > hidden; m_Hidden.pop_back()) {
    m_Hidden.back().m_pPrefix->m_pURI = m_Hidden.back().m_pURI;
  }
}

// -- Elements ---------------------------------------------------------------------

// False for a prefix that stands for nothing here.
template <class Names, class Node>
bool CPlainBuilder::SetName(Node& node, const CName& name, const XMLCh* pDefault) {
  const bool hasPrefix = name.m_pPrefix != nullptr;
  node.fName = name.m_pName;
  node.*Names::kLocal = name.m_pLocal;
  node.*Names::kURI = hasPrefix ? name.m_pPrefix->m_pURI : pDefault;
  if (hasPrefix) node.*Names::kPrefix = name.m_pPrefix->m_pName;
  return !hasPrefix || name.m_pPrefix->m_pURI != nullptr;
}

DOMElementImpl* CPlainBuilder::MakeElement(const CName& name) {
  if (!m_HasNamespaces) {
    auto* pElement =
        new (m_pDocument, DOMMemoryManager::ELEMENT_OBJECT) DOMElementImpl(m_pDocument, nullptr);
    pElement->fName = name.m_pName;
    return pElement;
  }
  auto* pElement =
      new (m_pDocument, DOMMemoryManager::ELEMENT_NS_OBJECT) DOMElementNSImpl(m_pDocument, nullptr);
  if (name.m_pPrefix == m_pXmlns) return nullptr;
  return SetName<CElementNames>(*pElement, name, m_Default.m_pURI) ? pElement : nullptr;
}

DOMAttrImpl* CPlainBuilder::MakeAttribute(const CName& name, std::u16string_view value) {
  DOMAttrImpl* pAttribute = nullptr;
  if (m_HasNamespaces) {
    auto* pNamed =
        new (m_pDocument, DOMMemoryManager::ATTR_NS_OBJECT) DOMAttrNSImpl(m_pDocument, nullptr);
    const XMLCh* pURI = name.m_IsDeclaration ? m_pXmlns->m_pURI : nullptr;
    if (!SetName<CAttributeNames>(*pNamed, name, pURI)) return nullptr;
    pAttribute = pNamed;
  } else {
    pAttribute = new (m_pDocument, DOMMemoryManager::ATTR_OBJECT) DOMAttrImpl(m_pDocument, nullptr);
    pAttribute->fName = name.m_pName;
  }
  Hang(*pAttribute, pAttribute->fParent, MakeText(*m_pDocument, value.data(), value.size()));
  pAttribute->fNode.isSpecified(true);
  return pAttribute;
}

bool CPlainBuilder::AddAttributes(DOMElementImpl& element, std::span<const CAttribute> attributes,
                                  const XMLCh* pValues) {
  if (attributes.empty()) return true;
  element.fAttributes->reserve(attributes.size());
  m_Attributes.clear();
  for (std::size_t i = 0; i < attributes.size(); ++i) {
    const CAttribute& attribute = attributes[i];
    DOMAttrImpl* pMade =
        MakeAttribute(m_AttributeNames[i], {pValues + attribute.m_Offset, attribute.m_Length});
    if (pMade == nullptr) return false;
    m_Attributes.push_back(pMade);
  }
  // One that gives way was given twice.
  return EnterAll(element, *element.fAttributes, m_Attributes, m_HasNamespaces, true).empty();
}

bool CPlainBuilder::Start(std::string_view name, std::span<const CAttribute> attributes,
                          const XMLCh* pValues) {
  const std::size_t hidden = m_Hidden.size();
  m_AttributeNames.clear();
  for (const CAttribute& attribute : attributes) {
    const CName* pName = NameOf(attribute.m_Name);
    if (pName == nullptr) return false;
    m_AttributeNames.push_back(*pName);
    if (pName->m_IsDeclaration &&
        !Bind(*pName, {pValues + attribute.m_Offset, attribute.m_Length})) {
      return false;
    }
  }
  const CName* pName = NameOf(name);
  DOMElementImpl* pElement = pName != nullptr ? MakeElement(*pName) : nullptr;
  if (pElement == nullptr || !AddAttributes(*pElement, attributes, pValues)) return false;
  if (m_Open.empty()) {
    m_pDocument->appendChild(pElement);  // which notes its element
  } else {
    Hang(*m_Open.back().m_pElement, m_Open.back().m_pElement->fParent, *pElement);
  }
  m_Open.push_back({name, pElement, hidden});
  return true;
}

void CPlainBuilder::End() {
  Unbind(m_Open.back().m_Hidden);
  m_Open.pop_back();
}

// -- Content ----------------------------------------------------------------------

void CPlainBuilder::AddText(std::u16string_view text) {
  DOMElementImpl& parent = *m_Open.back().m_pElement;
  Hang(parent, parent.fParent, MakeText(*m_pDocument, text.data(), text.size()));
}

void CPlainBuilder::Add(DOMNode& child) {
  Append(m_Open.empty() ? static_cast<DOMNode&>(*m_pDocument) : *m_Open.back().m_pElement, child);
}

void CPlainBuilder::AddCData(std::u16string_view text) {
  Add(*new (m_pDocument, DOMMemoryManager::CDATA_SECTION_OBJECT)
          xercesc::DOMCDATASectionImpl(m_pDocument, text.data(), text.size()));
}

void CPlainBuilder::AddComment(const XMLCh* pText) { Add(*m_pDocument->createComment(pText)); }

bool CPlainBuilder::AddInstruction(std::string_view target, const XMLCh* pData) {
  if (!Widen(target) || (m_HasNamespaces && m_Wide.find(u':') != m_Wide.npos)) return false;
  Add(*m_pDocument->createProcessingInstruction(m_Wide.c_str(), pData));
  return true;
}

}  // namespace dom
