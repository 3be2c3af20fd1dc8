#include "document/treeparser.h"

#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/validators/DTD/DTDElementDecl.hpp>

#include "document/contentmodel.h"
#include "document/plainfile.h"
#include "document/plaintext.h"
#include "document/positionfinder.h"
#include "document/scannertables.h"
#include "dom/look.h"
#include "host/guards.h"

CTreeParser::CTreeParser()
    : CBuilder(nullptr, &m_Memory, &m_Schemas.Grammars()),
      m_Stop(*getScanner()),
      m_Limits(m_Stop),
      m_SchemaLimits(m_Stop),
      m_Resolver(m_Stop, m_Limits),
      m_Inspector(m_Stop, m_Limits, m_SchemaLimits, m_Resolver) {
  getScanner()->setEntityHandler(this);
}

template <class Source>
void CTreeParser::Parse(const Source& source, const XMLCh* pName) {
  m_IsPlain = false;
  const CExpansionLimits::CLoad load(m_Limits);
  const CSchemaLimits::CLoad patterns(m_SchemaLimits);
  const CSchemaInspector::CLoad inspected(m_Inspector);
  m_Stop.Begin();
  m_Prefixes.Begin();
  m_Names.Begin();
  m_Encoding.clear();
  m_Level = 0;
  m_Listed.clear();
  m_IsListed.clear();
  m_Resolver.Lost().Free();
  const CNamedSchemas::CUse use(m_Schemas, *this, pName, Policy().Mode());
  parse(source);
  m_Resolver.Lost().Free();
}

void CTreeParser::ParseLimited(const xercesc::InputSource& text, std::string_view bytes) {
  if (MayBePlain() && ParsePlain(text.getSystemId(), bytes)) return;
  Policy().SetDocument("");
  Parse(*m_Capture.Watch(text), text.getSystemId());
}

// Whether the options ask for no more of a text than its tree.
bool CTreeParser::MayBePlain() const {
  return getValidationScheme() != Val_Always && !getDoSchema() && !m_KeepsPositions &&
         !xercesc::XMLPlatformUtils::isNELRecognized();
}

// An earlier tree that nobody took goes as the scanner would have it. Memory that is refused
// here may do for the parser, which needs less at a time.
bool CTreeParser::ParsePlain(const XMLCh* pName, std::string_view bytes) {
  CDOMOwner<xercesc::DOMDocument> document;
  static_cast<void>(Always<domErrUnexpected>::Run(
      [&] { document = BuildPlain(bytes, pName, getDoNamespaces()); }));
  if (document == nullptr) return false;
  resetDocument();
  fDocument = &dom::Impl(*document.release());
  m_IsPlain = true;
  return true;
}

// That there is no current folder is for the parser to say.
void CTreeParser::ParseLimited(const char* pName) {
  const auto pSource = m_Resolver.Document(pName);
  if (pSource == nullptr) return Parse(pName, xercesc::XMLUni::fgZeroLenString);
  const XMLCh* pAddress = pSource->getSystemId();
  if (MayBePlain()) {
    const std::optional<std::string> bytes = ReadPlainFile(*pSource);
    if (bytes && ParsePlain(pAddress, *bytes)) return;
  }
  Parse(*m_Capture.Watch(*pSource), pAddress);
}

void CTreeParser::error(unsigned int code, const XMLCh* pDomain, ErrTypes type, const XMLCh* pText,
                        const XMLCh* pSystemId, const XMLCh* pPublicId, XMLFileLoc line,
                        XMLFileLoc column) {
  m_Stop.OnError();
  CBuilder::error(code, pDomain, type, pText, pSystemId, pPublicId, line, column);
}

xercesc::InputSource* CTreeParser::resolveEntity(xercesc::XMLResourceIdentifier* pResource) {
  m_Stop.RequireGoing();
  using xercesc::XMLResourceIdentifier;
  const auto type = pResource->getResourceIdentifierType();
  if (type != XMLResourceIdentifier::ExternalEntity) {
    m_Schemas.OnSchemaOfDocument();
    auto source = m_Resolver.Resolve(*pResource, false);
    if (type != XMLResourceIdentifier::SchemaGrammar)
      return m_Inspector.Watch(std::move(source)).release();
    return m_Inspector.Watch(std::move(source), [this] { LimitPatterns(*getScanner()); }).release();
  }
  // The parser of a schema, which has a place of its own, never validates either.
  const bool needsDocumentType =
      pResource->getLocator() == getScanner()->getLocator() && getValidationScheme() != Val_Never;
  return m_Resolver.Resolve(*pResource, needsDocumentType).release();
}

void CTreeParser::startExtSubset() {
  m_Resolver.Lost().TakeFrom(*getScanner()->getReaderMgr());
  CBuilder::startExtSubset();
}

// -- Time ------------------------------------------------------------------------

void CTreeParser::NeedRoom(XMLSize_t names) {
  m_Names.Need(*getDocument(), names);
  dom::NeedIds(*getDocument(), names);
}

// The text that the base has built gives way to the one that was read.
void CTreeParser::endIntSubset() {
  const xercesc::XMLScanner& scanner = *getScanner();
  const std::u16string text =
      m_Capture.Subset(*scanner.getReaderMgr()->getCurrentReader(), scanner.getXMLVersion());
  m_Capture.PassSubset();
  fInternalSubset.set(text.c_str(), text.size());
  CBuilder::endIntSubset();
  MakeDefaults();
}

void CTreeParser::endExtSubset() {
  CBuilder::endExtSubset();
  MakeDefaults();
}

void CTreeParser::entityDecl(const xercesc::DTDEntityDecl& declaration, bool isParameter,
                             bool isIgnored) {
  NeedRoom(1);
  CBuilder::entityDecl(declaration, isParameter, isIgnored);
}

void CTreeParser::notationDecl(const xercesc::XMLNotationDecl& declaration, bool isIgnored) {
  NeedRoom(1);
  CBuilder::notationDecl(declaration, isIgnored);
}

// The base makes all defaults of the element anew, which once is enough.
void CTreeParser::endAttList(const xercesc::DTDElementDecl& declaration) {
  if (m_IsListed.insert(&declaration).second) m_Listed.push_back(&declaration);
}

void CTreeParser::MakeDefaults() {
  for (const xercesc::DTDElementDecl* pElement : m_Listed) {
    if (pElement->hasAttDefs()) NeedRoom(pElement->getAttDefList().getAttDefCount() + 1);
    CBuilder::endAttList(*pElement);
  }
  m_Listed.clear();
  m_IsListed.clear();
}

// -- Depth -----------------------------------------------------------------------

// An empty element is ended by the base.
void CTreeParser::startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                               const XMLCh* pPrefix,
                               const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                               XMLSize_t attributeCount, bool isEmpty, bool isRoot) {
  m_Stop.RequireGoing();
  m_Limits.RequireFewExpansions();
  if (isRoot) {
    // The scanner takes a subset that a null character breaks off for one that has ended.
    if (IsInInternalSubset()) endIntSubset();
    m_Capture.PassSubset();
  }
  m_Limits.CountDefaults(attributes, attributeCount);
  m_SchemaLimits.AllowValues(attributeCount + 1);
  NeedRoom(attributeCount + 1);
  FreeTables(*getScanner(), attributeCount);
  if (getDoNamespaces()) {
    m_Prefixes.Enter(*getScanner(), pPrefix, attributes, attributeCount);
  }
  if (m_Level != 0) GoDeeper();
  CBuilder::startElement(declaration, uri, pPrefix, attributes, attributeCount, isEmpty, isRoot);
}

void CTreeParser::endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                             bool isRoot, const XMLCh* pPrefix) {
  if (m_Level != 0) --m_Level;
  m_Prefixes.Leave();
  CBuilder::endElement(declaration, uri, isRoot, pPrefix);
}

void CTreeParser::startEntityReference(const xercesc::XMLEntityDecl& declaration) {
  GoDeeper();
  CBuilder::startEntityReference(declaration);
}

void CTreeParser::endEntityReference(const xercesc::XMLEntityDecl& declaration) {
  if (m_Level != 0) --m_Level;
  CBuilder::endEntityReference(declaration);
}

void CTreeParser::elementDecl(const xercesc::DTDElementDecl& declaration, bool isIgnored) {
  const bool isUsed = getValidationScheme() != Val_Never;
  if (isUsed && IsTooDeep(declaration.getContentSpec())) {
    m_Stop.Stop(u"the content model is too large for the stack of this thread");
  }
  CBuilder::elementDecl(declaration, isIgnored);
}

void CTreeParser::GoDeeper() {
  if (++m_Level > kMostInEntity) {
    m_Stop.Stop(u"the content of an entity is nested more than 250 levels deep");
  }
}

// -- Positions -------------------------------------------------------------------

CTreeParser::CLoading::~CLoading() {
  m_Parser.m_Capture.KeepAll(false);
  static_cast<void>(m_Parser.m_Capture.TakeAll());
}

// The declaration may leave out the order of bytes, which the reader knows.
void CTreeParser::XMLDecl(const XMLCh* pVersion, const XMLCh* pEncoding, const XMLCh* pStandalone,
                          const XMLCh* pActualEncoding) {
  m_Encoding = getScanner()->getReaderMgr()->getCurrentEncodingStr();
  CBuilder::XMLDecl(pVersion, pEncoding, pStandalone, pActualEncoding);
}

// What the parser saw no end of, without what is inside an entity: the innermost element or
// the reference to the entity in which it stopped; the document where it came through.
const xercesc::DOMNode* CTreeParser::Unfinished() const {
  const xercesc::DOMNode* pOutside = fCurrentParent;
  for (const auto* pUp = pOutside; pUp != nullptr; pUp = dom::Parent(*pUp)) {
    if (pUp->getNodeType() == xercesc::DOMNode::ENTITY_REFERENCE_NODE) pOutside = pUp;
  }
  return pOutside;
}

// Whatever goes wrong, the load has succeeded, and positions that were found are right.
CPositions CTreeParser::CLoading::FindPositions(xercesc::DOMDocument& document) const {
  CPositions positions;
  if (!m_Parser.m_KeepsPositions) return positions;
  static_cast<void>(Always<domErrUnexpected>::Run([&] {
    const std::string source = m_Parser.m_Capture.TakeAll();
    const bool isVersion11 = xercesc::XMLString::equals(document.getXmlVersion(), u"1.1");
    const XMLCh* pEncoding =
        m_Parser.m_Encoding.empty() ? document.getInputEncoding() : m_Parser.m_Encoding.c_str();
    CSourceText text(source, pEncoding, isVersion11);
    CPositionFinder(document, m_Parser.Unfinished(), text, positions).Find();
  }));
  positions.Seal();
  return positions;
}
