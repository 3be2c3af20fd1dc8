#include <utility>
#include <xercesc/dom/impl/DOMNamedNodeMapImpl.hpp>
#include <xercesc/framework/XMLAttDefList.hpp>
#include <xercesc/framework/XMLBuffer.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/util/XMLUniDefs.hpp>
#include <xercesc/validators/DTD/DTDElementDecl.hpp>

#include "dom/builder.h"
#include "dom/builtnodes.h"
#include "dom/entering.h"

using xercesc::DOMAttrImpl;
using xercesc::DOMElementImpl;
using xercesc::DOMMemoryManager;
using xercesc::XMLAttDef;
using xercesc::XMLElementDecl;
using xercesc::XMLString;

namespace dom {

namespace {

// The document type of a document is out of sight: an element that is made asks it for
// the defaults of its name, one by one.
class CHiddenType {
 public:
  explicit CHiddenType(xercesc::DOMDocumentImpl& document)
      : m_Document(document), m_pType(std::exchange(Type(), nullptr)) {}
  ~CHiddenType() { Type() = m_pType; }
  CHiddenType(const CHiddenType&) = delete;
  CHiddenType& operator=(const CHiddenType&) = delete;

 private:
  xercesc::DOMDocumentType*& Type() { return m_Document.*reveal::CDocument::kType; }

  xercesc::DOMDocumentImpl& m_Document;
  xercesc::DOMDocumentType* m_pType;
};

struct CElementsOfType : xercesc::DOMNamedNodeMapImpl {
  static constexpr auto kBuckets = &CElementsOfType::fBuckets;
};

// As the map does it, for an element whose name it does not have.
void AddNew(xercesc::DOMDocumentTypeImpl& type, DOMElementImpl& element) {
  auto& map = static_cast<xercesc::DOMNamedNodeMapImpl&>(*type.getElements());
  auto*& pBucket = (map.*CElementsOfType::kBuckets)[XMLString::hash(element.fName, MAP_SIZE)];
  auto& document = static_cast<xercesc::DOMDocumentImpl&>(*element.fParent.fOwnerDocument);
  if (pBucket == nullptr) pBucket = new (&document) xercesc::DOMNodeVector(&document, 3);
  element.fNode.fOwnerNode = &type;
  element.fNode.isOwned(true);
  pBucket->addElement(&element);
}

void Free(const std::vector<DOMAttrImpl*>& attributes, xercesc::DOMDocumentImpl& document) {
  for (DOMAttrImpl* pAttribute : attributes) {
    pAttribute->fNode.fOwnerNode = &document;
    pAttribute->fNode.isOwned(false);
    pAttribute->release();
  }
}

bool IsDefault(const XMLAttDef& attribute) {
  const auto type = attribute.getDefaultType();
  return type == XMLAttDef::Default || type == XMLAttDef::Fixed;
}

bool IsDeclaration(const XMLCh* pName) {
  return XMLString::equals(pName, xercesc::XMLUni::fgXMLNSString);
}

// What the document type says of an element knows no declarations in scope.
const XMLCh* NamespaceInType(const XMLCh* pName) {
  const int colon = xercesc::DOMDocumentImpl::indexofQualifiedName(pName);
  const bool isOfXMLNS = colon > 0
                             ? XMLString::startsWith(pName, xercesc::XMLUni::fgXMLNSColonString)
                             : IsDeclaration(pName);
  if (isOfXMLNS) return xercesc::XMLUni::fgXMLNSURIName;
  return colon > 0 ? xercesc::XMLUni::fgXMLURIName : xercesc::XMLUni::fgZeroLenString;
}

}  // namespace

// Whether the grammar gives the element an attribute that it does not have itself.
bool CBuilder::HasDefaults(const XMLElementDecl& declaration) {
  if (!declaration.hasAttDefs()) return false;
  xercesc::XMLAttDefList& attributes = declaration.getAttDefList();
  for (XMLSize_t i = 0; i < attributes.getAttDefCount(); ++i) {
    if (IsDefault(attributes.getAttDef(i))) return true;
  }
  return false;
}

// By a constructor that asks the document type for the defaults.
DOMElementImpl& CBuilder::MakeElementOfType(const XMLElementDecl& declaration, unsigned int uri,
                                            const XMLCh* pPrefix) {
  if (!fScanner->getDoNamespaces()) return Impl(*createElement(declaration.getFullName()));
  const XMLCh* pLocal = declaration.getBaseName();
  const bool isOfNone = uri == fScanner->getEmptyNamespaceId();
  const XMLCh* pNamespace = isOfNone ? nullptr : fScanner->getURIText(uri);
  if (isOfNone || IsEmpty(pPrefix)) {
    return Impl(*createElementNS(pNamespace, nullptr, pLocal, pLocal));
  }
  xercesc::XMLBufBid name(&fBufMgr);
  name.set(pPrefix);
  name.append(u':');
  name.append(pLocal);
  return Impl(*createElementNS(pNamespace, pPrefix, pLocal, name.getRawBuffer()));
}

// A default attribute without its value.
DOMAttrImpl& CBuilder::MakeDefault(const XMLCh* pName, const XMLCh* pNamespace) {
  if (!fScanner->getDoNamespaces()) return Impl(*fDocument->createAttribute(pName));
  return Impl(*fDocument->createAttributeNS(pNamespace, pName));
}

const XMLCh* CBuilder::NamespaceInScope(const XMLCh* pName) {
  xercesc::XMLBufBid prefix(&fBufMgr);
  int colon = -1;
  unsigned int uri =
      fScanner->resolveQName(pName, prefix.getBuffer(), xercesc::ElemStack::Mode_Attribute, colon);
  if (IsDeclaration(pName)) uri = fScanner->getXMLNSNamespaceId();
  return uri != fScanner->getEmptyNamespaceId() ? fScanner->getURIText(uri) : nullptr;
}

void CBuilder::GiveValue(DOMAttrImpl& attribute, const XMLCh* pValue) {
  if (pValue == nullptr) return;
  Hang(attribute, attribute.fParent, MakeText(*fDocument, pValue, XMLString::stringLen(pValue)));
  attribute.fNode.isSpecified(false);
}

// What an element has by default stands beside its attributes once more.
void CBuilder::AddDefaults(DOMElementImpl& element, const XMLElementDecl& declaration) {
  const bool hasNamespaces = fScanner->getDoNamespaces();
  xercesc::XMLAttDefList& attributes = declaration.getAttDefList();
  m_Attributes.clear();
  for (XMLSize_t i = 0; i < attributes.getAttDefCount(); ++i) {
    XMLAttDef& source = attributes.getAttDef(i);
    source.reset();
    if (!IsDefault(source)) continue;
    const XMLCh* pName = source.getFullName();
    const XMLCh* pNamespace = hasNamespaces ? NamespaceInScope(pName) : nullptr;
    m_Attributes.push_back(&MakeDefault(pName, pNamespace));
    GiveValue(*m_Attributes.back(), source.getValue());
  }
  Free(EnterAll(element, *element.fDefaultAttributes, m_Attributes, hasNamespaces), *fDocument);
  element.fAttributes->hasDefaults(true);
}

// The element that the document type keeps for the defaults of its name.
DOMElementImpl& CBuilder::MakeForType(const XMLCh* pName, bool isFirst) {
  if (!isFirst) return Impl(*fDocument->createElement(pName));
  const CHiddenType hidden(*fDocument);
  auto* pElement =
      new (fDocument, DOMMemoryManager::ELEMENT_OBJECT) DOMElementImpl(fDocument, nullptr);
  pElement->fName = fDocument->getPooledString(pName);
  return *pElement;
}

void CBuilder::endAttList(const xercesc::DTDElementDecl& declaration) {
  if (m_IsInInternalSubset) fInternalSubset.append(xercesc::chCloseAngle);
  if (!declaration.hasAttDefs()) return;
  const bool isFirst = m_InType.insert(&declaration).second;
  DOMElementImpl& element = MakeForType(declaration.getFullName(), isFirst);
  xercesc::XMLAttDefList& attributes = declaration.getAttDefList();
  m_Attributes.clear();
  for (XMLSize_t i = 0; i < attributes.getAttDefCount(); ++i) {
    const XMLAttDef& source = attributes.getAttDef(i);
    if (source.getValue() == nullptr) continue;
    const XMLCh* pName = source.getFullName();
    m_Attributes.push_back(&MakeDefault(pName, NamespaceInType(pName)));
    GiveValue(*m_Attributes.back(), source.getValue());
  }
  Free(EnterAll(element, *element.fAttributes, m_Attributes, fScanner->getDoNamespaces()),
       *fDocument);
  if (isFirst) return AddNew(*fDocumentType, element);
  DOMNode* pReplaced = fDocumentType->getElements()->setNamedItem(&element);
  if (pReplaced != nullptr) pReplaced->release();
}

}  // namespace dom
