#include "dom/builder.h"

#include <cstdint>
#include <xercesc/dom/impl/DOMAttrNSImpl.hpp>
#include <xercesc/dom/impl/DOMElementNSImpl.hpp>
#include <xercesc/dom/impl/DOMNodeIDMap.hpp>
#include <xercesc/framework/XMLAttDefList.hpp>
#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLBuffer.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/internal/XMLScanner.hpp>

#include "dom/edit.h"
#include "dom/look.h"

using xercesc::DOMAttrImpl;
using xercesc::DOMAttrNSImpl;
using xercesc::DOMElementImpl;
using xercesc::DOMElementNSImpl;
using xercesc::DOMMemoryManager;
using xercesc::DOMNodeImpl;
using xercesc::DOMTextImpl;
using xercesc::XMLAttDef;
using xercesc::XMLAttr;
using xercesc::XMLElementDecl;
using xercesc::XMLString;

namespace dom {

namespace {

struct CElementNames : DOMElementNSImpl {
  static constexpr auto kURI = &CElementNames::fNamespaceURI;
  static constexpr auto kLocal = &CElementNames::fLocalName;
  static constexpr auto kPrefix = &CElementNames::fPrefix;
};
struct CAttributeNames : DOMAttrNSImpl {
  static constexpr auto kURI = &CAttributeNames::fNamespaceURI;
  static constexpr auto kLocal = &CAttributeNames::fLocalName;
  static constexpr auto kPrefix = &CAttributeNames::fPrefix;
};

// An element's names and those of its attributes have slots one behind the other.
constexpr std::size_t kSlotsOfNode = 3;
std::size_t SlotOf(const XMLElementDecl& declaration) {
  return reinterpret_cast<std::uintptr_t>(&declaration) / 64 * 4 * kSlotsOfNode;
}

bool IsSame(const XMLCh* pLeft, const XMLCh* pRight) {
  for (; *pLeft == *pRight; ++pLeft, ++pRight) {
    if (*pLeft == 0) return true;
  }
  return false;
}

bool IsEmpty(const XMLCh* pText) { return pText == nullptr || *pText == 0; }

// Names a node of a namespace, which was made without a name.
template <class Names, class Node>
void SetNames(Node& node, CPooledNames& pool, std::size_t slot, const XMLCh* pURI,
              const XMLCh* pPrefix, const XMLCh* pLocal, const XMLCh* pName) {
  node.fName = pool.Of(pName, slot);
  node.*Names::kLocal = node.fName;
  if (!IsEmpty(pPrefix)) {
    node.*Names::kLocal = pool.Of(pLocal, slot + 1);
    node.*Names::kPrefix = pool.Of(pPrefix, slot + 2);
    // Gives what it gets, where it does not throw.
    static_cast<void>(DOMNodeImpl::mapPrefix(pPrefix, pURI, node.getNodeType()));
  }
  node.*Names::kURI = pURI;
}

// Whether the grammar gives the element an attribute that it does not have itself.
bool HasDefaults(const XMLElementDecl& declaration) {
  if (!declaration.hasAttDefs()) return false;
  xercesc::XMLAttDefList& attributes = declaration.getAttDefList();
  for (XMLSize_t i = 0; i < attributes.getAttDefCount(); ++i) {
    const auto type = attributes.getAttDef(i).getDefaultType();
    if (type == XMLAttDef::Default || type == XMLAttDef::Fixed) return true;
  }
  return false;
}

// As Append, for a node whose parts are at hand and that is no document's.
template <class Node>
void Hang(DOMNode& owner, xercesc::DOMParentNode& parent, Node& child) {
  child.fNode.fOwnerNode = &owner;
  child.fNode.isOwned(true);
  if (parent.fFirstChild == nullptr) {
    parent.fFirstChild = child.fChild.previousSibling = &child;
    child.fNode.isFirstChild(true);
    return;
  }
  DOMNode*& pLast = ChildPart(*parent.fFirstChild)->previousSibling;
  ChildPart(*pLast)->nextSibling = &child;
  child.fChild.previousSibling = pLast;
  pLast = &child;
}

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

// -- Names ------------------------------------------------------------------------

void CPooledNames::Start(xercesc::DOMDocumentImpl& document) {
  m_pDocument = &document;
  m_Slots.fill(nullptr);
}

const XMLCh* CPooledNames::Of(const XMLCh* pName, std::size_t slot) {
  const XMLCh*& pPooled = m_Slots[slot % m_Slots.size()];
  if (pPooled == nullptr || !IsSame(pName, pPooled)) pPooled = m_pDocument->getPooledString(pName);
  return pPooled;
}

// -- Elements ---------------------------------------------------------------------

void CBuilder::startDocument() {
  XercesDOMParser::startDocument();
  m_Names.Start(*fDocument);
  m_pLastNamespace = nullptr;
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
  if (!isSimple || HasDefaults(declaration) || getCreateSchemaInfo()) {
    XercesDOMParser::startElement(declaration, uri, pPrefix, attributes, attributeCount, isEmpty,
                                  isRoot);
    return;
  }
  DOMElementImpl& element = MakeElement(declaration, uri, pPrefix);
  if (attributeCount != 0) element.fAttributes->reserve(attributeCount);
  std::size_t slot = SlotOf(declaration);
  for (XMLSize_t i = 0; i < attributeCount; ++i) {
    AddAttribute(element, *attributes.elementAt(i), slot += kSlotsOfNode);
  }
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

// -- Attributes -------------------------------------------------------------------

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

// -- Content ----------------------------------------------------------------------

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
