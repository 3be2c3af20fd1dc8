#include <xercesc/dom/impl/DOMNodeIDMap.hpp>
#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/internal/XMLScanner.hpp>

#include "dom/builder.h"
#include "dom/builtnodes.h"

using xercesc::DOMAttrImpl;
using xercesc::DOMAttrNSImpl;
using xercesc::DOMElementImpl;
using xercesc::DOMMemoryManager;
using xercesc::XMLAttDef;
using xercesc::XMLAttr;
using xercesc::XMLString;

namespace dom {

namespace {

// The names of a document are pooled, so equal ones are one.
bool IsSameName(const DOMAttrImpl& left, const DOMAttrImpl& right, bool hasNamespaces) {
  if (!hasNamespaces) return left.fName == right.fName;
  const auto& leftNS = static_cast<const DOMAttrNSImpl&>(left);
  const auto& rightNS = static_cast<const DOMAttrNSImpl&>(right);
  return leftNS.*CAttributeNames::kLocal == rightNS.*CAttributeNames::kLocal &&
         leftNS.*CAttributeNames::kURI == rightNS.*CAttributeNames::kURI;
}

// Enters an attribute in the order of the names; one of the same name gives way.
void Enter(DOMElementImpl& element, DOMAttrImpl& attribute, bool hasNamespaces) {
  attribute.fNode.fOwnerNode = &element;
  attribute.fNode.isOwned(true);
  xercesc::DOMNodeVector& items = *AttributesOf(element);
  const XMLSize_t count = items.size();
  for (XMLSize_t i = 0; i < count; ++i) {
    if (!IsSameName(As<DOMAttrImpl>(*items.elementAt(i)), attribute, hasNamespaces)) continue;
    items.setElementAt(&attribute, i);
    return;
  }
  if (count == 0) {
    items.addElement(&attribute);
  } else {
    const int place = element.fAttributes->findNamePoint(attribute.fName);
    items.insertElementAt(&attribute, static_cast<XMLSize_t>(place < 0 ? -1 - place : place));
  }
}

}  // namespace

DOMAttrImpl& CBuilder::MakeAttribute(const XMLAttr& source, std::size_t slot) {
  if (!fScanner->getDoNamespaces()) {
    auto* pAttribute =
        new (fDocument, DOMMemoryManager::ATTR_OBJECT) DOMAttrImpl(fDocument, nullptr);
    pAttribute->fName = m_Names.Of(source.getName(), slot);
    return *pAttribute;
  }
  auto* pAttribute =
      new (fDocument, DOMMemoryManager::ATTR_NS_OBJECT) DOMAttrNSImpl(fDocument, nullptr);
  const bool isDeclaration = IsEmpty(source.getPrefix()) &&
                             XMLString::equals(source.getName(), xercesc::XMLUni::fgXMLNSString);
  const unsigned int uri = isDeclaration ? fScanner->getXMLNSNamespaceId() : source.getURIId();
  SetNames<CAttributeNames>(*pAttribute, m_Names, slot, NamespaceOf(uri), source.getPrefix(),
                            source.getName(), source.getQName());
  return *pAttribute;
}

void CBuilder::AddAttribute(DOMElementImpl& element, const XMLAttr& source, std::size_t slot) {
  DOMAttrImpl& attribute = MakeAttribute(source, slot);
  Enter(element, attribute, fScanner->getDoNamespaces());
  const XMLCh* pValue = source.getValue();
  Hang(attribute, attribute.fParent, MakeText(*fDocument, pValue, XMLString::stringLen(pValue)));
  if (source.getType() == XMLAttDef::ID) {
    if (fDocument->fNodeIDMap == nullptr) {
      fDocument->fNodeIDMap = new (fDocument) xercesc::DOMNodeIDMap(500, fDocument);
    }
    fDocument->fNodeIDMap->add(&attribute);
    attribute.fNode.isIdAttr(true);
  }
  attribute.fNode.isSpecified(source.getSpecified());
}

}  // namespace dom
