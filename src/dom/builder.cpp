#include "dom/builder.h"

#include <cstdint>
#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLBuffer.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/internal/XMLScanner.hpp>

#include "dom/builtnodes.h"
#include "dom/edit.h"
#include "dom/look.h"
#include "dom/pieces.h"

using xercesc::DOMDocumentImpl;
using xercesc::DOMElementImpl;
using xercesc::DOMElementNSImpl;
using xercesc::DOMMemoryManager;
using xercesc::DOMTextImpl;
using xercesc::XMLAttr;
using xercesc::XMLElementDecl;

namespace dom {

namespace {

std::size_t SlotOf(const XMLElementDecl& declaration) {
  return reinterpret_cast<std::uintptr_t>(&declaration) / 64 * 4 * kSlotsOfNode;
}

}  // namespace

// -- Elements ---------------------------------------------------------------------

// As the base, except that the document does not live in the memory of the parser, since it
// outlives it.
void CBuilder::startDocument() {
  auto* pImplementation = xercesc::DOMImplementation::getImplementation();
  fDocument = static_cast<DOMDocumentImpl*>(pImplementation->createDocument(&NodeMemory()));
  fCurrentParent = fCurrentNode = fDocument;
  fDocument->setErrorChecking(false);
  fDocument->setDocumentURI(fScanner->getLocator()->getSystemId());
  fDocument->setInputEncoding(fScanner->getReaderMgr()->getCurrentEncodingStr());
  m_Names.Start(*fDocument);
  m_pLastNamespace = nullptr;
  m_InType.clear();
  m_IsInInternalSubset = false;
}

void CBuilder::startIntSubset() {
  XercesDOMParser::startIntSubset();
  m_IsInInternalSubset = true;
}

void CBuilder::endIntSubset() {
  XercesDOMParser::endIntSubset();
  m_IsInInternalSubset = false;
}

// Null for none.
const XMLCh* CBuilder::NamespaceOf(unsigned int uri) {
  if (uri == fScanner->getEmptyNamespaceId()) return nullptr;
  if (m_pLastNamespace == nullptr || uri != m_LastURI) {
    m_LastURI = uri;
    m_pLastNamespace = fDocument->getPooledString(fScanner->getURIText(uri));
  }
  return *m_pLastNamespace != 0 ? m_pLastNamespace : nullptr;
}

// The constructors get no name: they would search the pool for it.
DOMElementImpl& CBuilder::MakeElement(const XMLElementDecl& declaration, unsigned int uri,
                                      const XMLCh* pPrefix) {
  if (!fScanner->getDoNamespaces()) {
    auto* pElement =
        new (fDocument, DOMMemoryManager::ELEMENT_OBJECT) DOMElementImpl(fDocument, nullptr);
    pElement->fName = m_Names.Of(declaration.getFullName(), SlotOf(declaration));
    return *pElement;
  }
  auto* pElement =
      new (fDocument, DOMMemoryManager::ELEMENT_NS_OBJECT) DOMElementNSImpl(fDocument, nullptr);
  const XMLCh* pNamespace = NamespaceOf(uri);
  const XMLCh* pLocal = declaration.getBaseName();
  if (IsEmpty(pPrefix) || uri == fScanner->getEmptyNamespaceId()) {
    SetNames<CElementNames>(*pElement, m_Names, SlotOf(declaration), pNamespace, nullptr, pLocal,
                            pLocal);
  } else {
    xercesc::XMLBufBid name(&fBufMgr);
    name.set(pPrefix);
    name.append(u':');
    name.append(pLocal);
    SetNames<CElementNames>(*pElement, m_Names, SlotOf(declaration), pNamespace, pPrefix, pLocal,
                            name.getRawBuffer());
  }
  return *pElement;
}

void CBuilder::startElement(const XMLElementDecl& declaration, unsigned int uri,
                            const XMLCh* pPrefix, const xercesc::RefVectorOf<XMLAttr>& attributes,
                            XMLSize_t attributeCount, bool isEmpty, bool isRoot) {
  // The declaration of a schema does not tell what defaults the document type has.
  const bool isSimple = fDocumentType == nullptr || !getDoSchema();
  if (!isSimple || getCreateSchemaInfo()) {
    XercesDOMParser::startElement(declaration, uri, pPrefix, attributes, attributeCount, isEmpty,
                                  isRoot);
    return;
  }
  const bool hasDefaults = HasDefaults(declaration);
  DOMElementImpl& element = hasDefaults ? MakeElementOfType(declaration, uri, pPrefix)
                                        : MakeElement(declaration, uri, pPrefix);
  AddAttributes(element, attributes, attributeCount, SlotOf(declaration));
  if (hasDefaults) AddDefaults(element, declaration);
  if (fCurrentParent == fDocument) {
    fDocument->appendChild(&element);  // which notes its element
  } else {
    Hang(*fCurrentParent, *ParentPart(*fCurrentParent), element);
  }
  fCurrentNode = fCurrentParent = &element;
  fWithinElement = true;
  if (isEmpty) endElement(declaration, uri, isRoot, pPrefix);
}

void CBuilder::endElement(const XMLElementDecl& declaration, unsigned int uri, bool isRoot,
                          const XMLCh* pPrefix) {
  DOMNode* pParent = Parent(*fCurrentParent);
  if (pParent == nullptr || getDoXInclude()) {
    XercesDOMParser::endElement(declaration, uri, isRoot, pPrefix);
    return;
  }
  fCurrentNode = fCurrentParent;
  fCurrentParent = pParent;
  if (fCurrentParent == fDocument) fWithinElement = false;
}

// -- Content ----------------------------------------------------------------------

// The constructor of a text with data leaves room for 15 characters more, one without data
// for 15 in all.
DOMTextImpl& MakeText(xercesc::DOMDocumentImpl& document, const XMLCh* pText, XMLSize_t length) {
  constexpr XMLSize_t kRoom = 15;
  const bool isShort = length < kRoom;
  auto* pNode = new (&document, DOMMemoryManager::TEXT_OBJECT)
      DOMTextImpl(&document, pText, isShort ? 0 : length);
  if (isShort) pNode->fCharacterData.fDataBuf->set(pText, length);
  return *pNode;
}

void CBuilder::Add(DOMNode& child) {
  Append(*fCurrentParent, child);
  fCurrentNode = &child;
}

void CBuilder::AddText(const XMLCh* pText, XMLSize_t length, bool isIgnorable) {
  if (fCurrentNode->getNodeType() == DOMNode::TEXT_NODE) {
    As<DOMTextImpl>(*fCurrentNode).appendDataFast(pText, length);
    return;
  }
  DOMTextImpl& node = MakeText(*fDocument, pText, length);
  if (isIgnorable) node.fNode.ignorableWhitespace(true);
  Hang(*fCurrentParent, *ParentPart(*fCurrentParent), node);
  fCurrentNode = &node;
}

void CBuilder::docCharacters(const XMLCh* pText, XMLSize_t length, bool isCData) {
  if (!fWithinElement) return;
  if (isCData) {
    Add(*new (fDocument, DOMMemoryManager::CDATA_SECTION_OBJECT)
            xercesc::DOMCDATASectionImpl(fDocument, pText, length));
  } else {
    AddText(pText, length, false);
  }
}

void CBuilder::ignorableWhitespace(const XMLCh* pText, XMLSize_t length, bool) {
  if (fWithinElement && getIncludeIgnorableWhitespace()) AddText(pText, length, true);
}

void CBuilder::docComment(const XMLCh* pText) {
  if (getCreateCommentNodes()) Add(*fDocument->createComment(pText));
}

void CBuilder::docPI(const XMLCh* pTarget, const XMLCh* pData) {
  Add(*fDocument->createProcessingInstruction(pTarget, pData));
}

}  // namespace dom
