#include "checkparser.h"

#include <string>
#include <utility>
#include <xercesc/framework/StdInInputSource.hpp>
#include <xercesc/framework/XMLValidityCodes.hpp>
#include <xercesc/util/BinInputStream.hpp>
#include <xercesc/validators/DTD/DTDElementDecl.hpp>

#include "document/contentmodel.h"
#include "document/scannertables.h"

using xercesc::InputSource;

namespace {

// A stream that is open already.
class COpenSource final : public InputSource {
 public:
  COpenSource(const XMLCh* pName, xercesc::BinInputStream* pStream)
      : InputSource(pName), m_pStream(pStream) {}
  bool IsOpen() const { return m_pStream != nullptr; }
  xercesc::BinInputStream* makeStream() const override { return m_pStream.release(); }

 private:
  mutable std::unique_ptr<xercesc::BinInputStream> m_pStream;
};

// Where a grammar says nothing of a name.
bool IsUndeclared(unsigned int code, const XMLCh* pDomain) {
  return xercesc::XMLString::equals(pDomain, xercesc::XMLUni::fgValidityDomain) &&
         (code == xercesc::XMLValid::ElementNotDefined ||
          code == xercesc::XMLValid::AttNotDefinedForElement);
}

}  // namespace

// The base asks to be told of what handlers of its own were set for: here there are none.
CCheckParser::CCheckParser(CLentGrammars& grammars, bool hasSchemas)
    : SAXParser(nullptr, xercesc::XMLPlatformUtils::fgMemoryManager, &grammars),
      m_Grammars(grammars),
      m_HasSchemas(hasSchemas),
      m_Stop(Scanner()) {
  Scanner().setDocHandler(this);
  Scanner().setDocTypeHandler(this);
  Scanner().setEntityHandler(this);
  useCachedGrammarInParse(m_HasSchemas);
}

// -- Reading -------------------------------------------------------------------------

std::unique_ptr<InputSource> CCheckParser::SourceOf(const CInput& input, int32_t access) {
  m_Resolver.Policy().SetMode(access);
  if (!input.Path().empty()) return m_Resolver.Document(input.Path().c_str());
  m_Resolver.Policy().SetDocument("");
  return std::make_unique<xercesc::StdInInputSource>();
}

void CCheckParser::Begin() {
  m_Stop.Begin();
  m_Prefixes.Begin();
  m_Schemas.clear();
  m_Grammar = m_HasSchemas ? EGrammar::kNamed : EGrammar::kNone;
}

void CCheckParser::Read(const InputSource& source) {
  const CExpansionLimits::CLoad load(m_Limits);
  const CSchemaLimits::CLoad patterns(m_SchemaLimits);
  const CSchemaInspector::CLoad inspected(m_Inspector);
  Begin();
  parse(source);
  m_Resolver.Lost().Free();
}

// Several schemas may be of one namespace.
void CCheckParser::ReadSchema(const InputSource& source) {
  const CExpansionLimits::CLoad load(m_Limits);
  const CSchemaLimits::CLoad patterns(m_SchemaLimits);
  const CSchemaInspector::CLoad inspected(m_Inspector);
  Begin();
  setHandleMultipleImports(true);
  const auto schema =
      m_Inspector.Watch(std::make_unique<COpenSource>(source.getSystemId(), source.makeStream()));
  loadGrammar(*schema, xercesc::Grammar::SchemaGrammarType, true);
  LimitPatterns(m_Grammars);
}

InputSource* CCheckParser::resolveEntity(xercesc::XMLResourceIdentifier* pResource) {
  m_Stop.RequireGoing();
  const bool needsDocumentType =
      pResource->getLocator() == getScanner().getLocator() && getValidationScheme() != Val_Never;
  std::unique_ptr<InputSource> source = m_Resolver.Resolve(*pResource, needsDocumentType);
  if (source == nullptr ||
      pResource->getResourceIdentifierType() == xercesc::XMLResourceIdentifier::ExternalEntity) {
    return source.release();
  }
  source = OpenedSchema(std::move(source), pResource->getSystemId());
  using xercesc::XMLResourceIdentifier;
  if (pResource->getResourceIdentifierType() != XMLResourceIdentifier::SchemaGrammar) {
    return m_Inspector.Watch(std::move(source)).release();
  }
  return m_Inspector.Watch(std::move(source), [this] { LimitPatterns(Scanner()); }).release();
}

// The parser goes on without a schema that is not there, and finds fault with every element.
std::unique_ptr<InputSource> CCheckParser::OpenedSchema(std::unique_ptr<InputSource> source,
                                                        const XMLCh* pName) {
  m_Grammar = EGrammar::kNamed;
  m_Schemas.emplace(source->getSystemId());
  auto opened = std::make_unique<COpenSource>(source->getSystemId(), source->makeStream());
  if (!opened->IsOpen()) {
    const std::u16string text = u"unable to open the schema '" + std::u16string(pName) + u"'";
    m_Stop.Stop(text.c_str());
  }
  return opened;
}

// -- Events --------------------------------------------------------------------------

void CCheckParser::doctypeDecl(const xercesc::DTDElementDecl& root, const XMLCh* pPublicId,
                               const XMLCh* pSystemId, bool hasInternalSubset,
                               bool hasExternalSubset) {
  if (!getDoSchema()) m_Grammar = EGrammar::kNamed;
  SAXParser::doctypeDecl(root, pPublicId, pSystemId, hasInternalSubset, hasExternalSubset);
}

void CCheckParser::startExtSubset() {
  m_Resolver.Lost().TakeFrom(*getScanner().getReaderMgr());
  SAXParser::startExtSubset();
}

void CCheckParser::elementDecl(const xercesc::DTDElementDecl& declaration, bool isIgnored) {
  if (getValidationScheme() != Val_Never && IsTooDeep(declaration.getContentSpec())) {
    m_Stop.Stop(u"the content model is too large for the stack of this thread");
  }
  SAXParser::elementDecl(declaration, isIgnored);
}

void CCheckParser::startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                                const XMLCh* pPrefix,
                                const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                                XMLSize_t count, bool isEmpty, bool isRoot) {
  m_Stop.RequireGoing();
  m_Limits.RequireFewExpansions();
  m_Limits.CountDefaults(attributes, count);
  m_SchemaLimits.AllowValues(count + 1);
  FreeTables(Scanner(), count);
  if (getDoNamespaces()) {
    m_Prefixes.Enter(Scanner(), pPrefix, attributes, count);
  }
  SAXParser::startElement(declaration, uri, pPrefix, attributes, count, isEmpty, isRoot);
}

void CCheckParser::endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                              bool isRoot, const XMLCh* pPrefix) {
  m_Prefixes.Leave();
  SAXParser::endElement(declaration, uri, isRoot, pPrefix);
}

// The parser goes on after a fault in the text, and not after one that the rules made.
// Without a grammar, or with a defective one, it finds no declaration for any name: the
// reason is said once instead.
void CCheckParser::error(unsigned int code, const XMLCh* pDomain, ErrTypes type, const XMLCh* pText,
                         const XMLCh* pSystemId, const XMLCh* pPublicId, XMLFileLoc line,
                         XMLFileLoc column) {
  m_Stop.OnError();
  if (code == xercesc::XMLErrs::XMLException_Fatal ||
      code == xercesc::XMLErrs::EntityExpansionLimitExceeded) {
    setExitOnFirstFatalError(true);
  }
  if (IsUndeclared(code, pDomain) && m_Grammar != EGrammar::kNamed) {
    if (std::exchange(m_Grammar, EGrammar::kSaid) != EGrammar::kNone) return;
    pText = getDoSchema() ? u"the document names no schema" : u"the document has no DTD";
  } else if (pSystemId != nullptr && m_Schemas.contains(pSystemId)) {
    m_Grammar = EGrammar::kDefective;
  }
  SAXParser::error(code, pDomain, type, pText, pSystemId, pPublicId, line, column);
}
