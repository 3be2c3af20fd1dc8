#include "io/starttag.h"

#include <xercesc/util/XMLString.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "io/unwritable.h"

using xercesc::DOMAttr;
using xercesc::DOMElement;
using xercesc::DOMNode;

namespace {

constexpr std::u16string_view kXmlns = u"xmlns";

// These two are bound for ever.
bool IsReserved(std::u16string_view prefix) { return prefix == u"xml" || prefix == kXmlns; }

// What a name declares: "xmlns" the default namespace, "xmlns:p" the prefix p.
bool IsDeclaration(const XMLCh* pName) {
  if (*pName != u'x') return false;
  const std::u16string_view name(pName);
  return name.starts_with(kXmlns) && (name.size() == kXmlns.size() || name[kXmlns.size()] == u':');
}
std::u16string_view DeclaredPrefix(const XMLCh* pName) {
  const std::u16string_view name(pName);
  return name.size() == kXmlns.size() ? std::u16string_view() : name.substr(kXmlns.size() + 1);
}

void WriteValue(CTextWriter& out, const DOMAttr& attribute) {
  out.Markup("\"");
  for (const DOMNode* pPart = attribute.getFirstChild(); pPart != nullptr;
       pPart = pPart->getNextSibling()) {
    if (pPart->getNodeType() == DOMNode::ENTITY_REFERENCE_NODE) {
      out.EntityReference(pPart->getNodeName());
    } else {
      out.Value(pPart->getNodeValue());
    }
  }
  out.Markup("\"");
}

// The map is in order of the names. Two names with a prefix may be bound to two namespaces.
void RequireTwoNames(const DOMAttr& one, const DOMAttr& other) {
  if (!xercesc::XMLString::equals(one.getNodeName(), other.getNodeName())) return;
  if (!View(one.getNamespaceURI()).empty() && !View(other.getNamespaceURI()).empty()) return;
  throw NotWellFormed(u"an element has two attributes of one name");
}

}  // namespace

void WriteAttributeAlone(CTextWriter& out, const DOMAttr& attribute) {
  if (attribute.getLocalName() == nullptr) {
    out.Name(attribute.getNodeName());
  } else {
    out.Markup("{");
    out.Verbatim(View(attribute.getNamespaceURI()));
    out.Markup("}");
    out.Name(attribute.getLocalName());
  }
  out.Markup("=");
  WriteValue(out, attribute);
}

CTextWriter::CPlace CStartTags::Write(const DOMElement& element) {
  m_Out.Markup("<");
  const CTextWriter::CPlace name = m_Out.Name(element.getNodeName());
  const bool knowsNamespaces = element.getLocalName() != nullptr;
  const CElement context{element.getAttributes(), m_Prefixes.Mark(), knowsNamespaces,
                         knowsNamespaces ? View(element.getPrefix()) : std::u16string_view(),
                         knowsNamespaces ? View(element.getNamespaceURI()) : std::u16string_view()};
  if (knowsNamespaces || !m_Prefixes.IsEmpty()) BindElement(context);
  const DOMAttr* pLast = nullptr;
  const XMLSize_t count = context.m_pAttributes->getLength();
  for (XMLSize_t i = 0; i < count; ++i) {
    const auto* pAttribute = static_cast<const DOMAttr*>(context.m_pAttributes->item(i));
    if (pLast != nullptr) RequireTwoNames(*pLast, *pAttribute);
    WriteAttribute(context, *pAttribute);
    pLast = pAttribute;
  }
  return name;
}

// An element that knows of no namespaces is in none, unless it says so itself.
void CStartTags::BindElement(const CElement& element) {
  if (!element.m_KnowsNamespaces) {
    const CPrefixes::CBinding* pDefault = m_Prefixes.Find({});
    if (pDefault == nullptr || pDefault->m_IsLevel1 || pDefault->m_Uri.empty()) return;
    if (element.m_pAttributes->getNamedItem(kXmlns.data()) == nullptr) Declare({}, {});
    return;
  }
  if (IsReserved(element.m_Prefix) || m_Prefixes.IsBound(element.m_Prefix, element.m_Uri)) return;
  if (element.m_Uri.empty() && !element.m_Prefix.empty()) return;
  if (!DefaultDeclares(element, element.m_Prefix, element.m_Uri)) {
    Declare(element.m_Prefix, element.m_Uri);
  }
}

void CStartTags::WriteAttribute(const CElement& element, const DOMAttr& attribute) {
  const XMLCh* pName = attribute.getNodeName();
  const XMLCh* pUri = attribute.getNamespaceURI();
  if (IsDeclaration(pName)) {
    if (!Declares(element, DeclaredPrefix(pName), attribute, pUri == nullptr)) return;
  } else if (!attribute.getSpecified()) {
    return;
  } else if (pUri != nullptr && *pUri != 0) {
    WritePrefixed(element, attribute, pUri);
    return;
  }
  m_Out.Markup(" ");
  m_Out.Name(pName);
  m_Out.Markup("=");
  WriteValue(m_Out, attribute);
}

bool CStartTags::Declares(const CElement& element, std::u16string_view prefix,
                          const DOMAttr& attribute, bool isLevel1) {
  const bool isSpecified = attribute.getSpecified();
  if (!isSpecified && !m_HasDefaults) return false;
  const std::u16string_view uri = View(attribute.getNodeValue());
  const bool isOwn = element.m_KnowsNamespaces && prefix == element.m_Prefix;
  if (isOwn && uri != element.m_Uri) return false;
  if (const CPrefixes::CBinding* pBinding = m_Prefixes.Find(prefix, element.m_Mark)) {
    if (pBinding->m_IsWritten || pBinding->m_Uri != uri) return false;
  }
  if (!IsReserved(prefix)) m_Prefixes.Add({prefix, uri, isLevel1, true});
  return isSpecified;
}

// A prefix that means something else already, for the element or an attribute of it,
// cannot be bound once more. Without a prefix an attribute is in no namespace.
void CStartTags::WritePrefixed(const CElement& element, const DOMAttr& attribute,
                               std::u16string_view uri) {
  std::u16string_view prefix = View(attribute.getPrefix());
  if (!IsReserved(prefix)) {
    const CPrefixes::CBinding* pBinding = m_Prefixes.Find(prefix, element.m_Mark);
    const bool isTaken =
        (pBinding != nullptr && pBinding->m_Uri != uri) ||
        (element.m_KnowsNamespaces && prefix == element.m_Prefix && uri != element.m_Uri);
    if (prefix.empty() || isTaken) {
      prefix = m_Prefixes.PrefixOf(uri);
      if (prefix.empty()) prefix = m_Prefixes.NewPrefix();
    }
    if (!m_Prefixes.IsBound(prefix, uri) && !DefaultDeclares(element, prefix, uri)) {
      Declare(prefix, uri);
    } else {
      m_Prefixes.Add({prefix, uri, false, m_Prefixes.Find(prefix, element.m_Mark) != nullptr});
    }
  }
  m_Out.Markup(" ");
  if (prefix == View(attribute.getPrefix())) {
    m_Out.Name(attribute.getNodeName());
  } else {
    m_Out.Verbatim(prefix);
    m_Out.Markup(":");
    m_Out.Name(attribute.getLocalName());
  }
  m_Out.Markup("=");
  WriteValue(m_Out, attribute);
}

// Whether the document type declares the prefix for this element.
bool CStartTags::DefaultDeclares(const CElement& element, std::u16string_view prefix,
                                 std::u16string_view uri) const {
  if (!m_HasDefaults) return false;
  std::u16string name(kXmlns);
  if (!prefix.empty()) name.append(u":").append(prefix);
  const auto* pNode =
      static_cast<const DOMAttr*>(element.m_pAttributes->getNamedItem(name.c_str()));
  return pNode != nullptr && !pNode->getSpecified() && View(pNode->getNodeValue()) == uri;
}

void CStartTags::Declare(std::u16string_view prefix, std::u16string_view uri) {
  m_Out.Markup(" xmlns");
  if (!prefix.empty()) {
    m_Out.Markup(":");
    m_Out.Verbatim(prefix);
  }
  m_Out.Markup("=\"");
  m_Out.Value(uri);
  m_Out.Markup("\"");
  m_Prefixes.Add({prefix, uri, false, true});
}
