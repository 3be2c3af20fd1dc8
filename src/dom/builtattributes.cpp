#include <xercesc/dom/impl/DOMNodeIDMap.hpp>
#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/internal/XMLScanner.hpp>

#include "dom/builder.h"
#include "dom/builtnodes.h"
#include "dom/entering.h"

using xercesc::DOMAttrImpl;
using xercesc::DOMAttrNSImpl;
using xercesc::DOMElementImpl;
using xercesc::DOMMemoryManager;
using xercesc::XMLAttDef;
using xercesc::XMLAttr;
using xercesc::XMLString;

namespace dom {

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

DOMAttrImpl& CBuilder::MakeWithValue(const XMLAttr& source, std::size_t slot) {
  DOMAttrImpl& attribute = MakeAttribute(source, slot);
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
  return attribute;
}

void CBuilder::AddAttributes(DOMElementImpl& element, const xercesc::RefVectorOf<XMLAttr>& sources,
                             XMLSize_t count, std::size_t slot) {
  if (count == 0) return;
  const bool hasNamespaces = fScanner->getDoNamespaces();
  element.fAttributes->reserve(count);
  m_Attributes.clear();
  for (XMLSize_t i = 0; i < count; ++i) {
    m_Attributes.push_back(&MakeWithValue(*sources.elementAt(i), slot += kSlotsOfNode));
  }
  EnterAll(element, *element.fAttributes, m_Attributes, hasNamespaces);
}

}  // namespace dom
