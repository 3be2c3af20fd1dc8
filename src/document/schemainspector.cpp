#include "document/schemainspector.h"

#include <xercesc/parsers/SAXParser.hpp>
#include <xercesc/validators/schema/SchemaSymbols.hpp>

#include "document/oneline.h"
#include "document/parsermemory.h"
#include "document/patternsize.h"
#include "document/replaysource.h"
#include "host/guards.h"
#include "host/stackroom.h"

using xercesc::InputSource;
using xercesc::RegularExpression;
using xercesc::SchemaSymbols;
using xercesc::XMLString;

namespace {

constexpr uint64_t kMostOperations = 1'000'000;  // of a pattern; 64 bytes each
constexpr size_t kDeepest = 100;                 // groups and classes in a pattern
// What a part of a content model takes, measured with a margin; bytes of stack. On its way
// through parts within parts the parser asks its pool for nothing.
constexpr size_t kModelPart = 208;
// To make a model of so many takes twenty seconds, and of twice as many seven times that.
constexpr uint64_t kMostCopies = 20'000;

// As some types take a value: its blanks are one blank each, or one for all of a run.
std::u16string Normalized(const std::u16string& value,
                          void (*pChange)(XMLCh*, xercesc::MemoryManager*)) {
  std::u16string changed = value;
  pChange(changed.data(), xercesc::XMLPlatformUtils::fgMemoryManager);
  changed.resize(XMLString::stringLen(changed.c_str()));
  return changed;
}

}  // namespace

// What the reader is made with, and what hence outlives it.
class CMemoryOfReader {
 protected:
  CParserMemory m_Memory;
};

// Reads a schema as the parser does, and keeps nothing. What is wrong with it, the parser
// will say. It opens what the schema names before the parser does, so it notes the files.
class CSchemaInspector::CReader final : private CMemoryOfReader, private xercesc::SAXParser {
 public:
  explicit CReader(CSchemaInspector& inspector)
      : SAXParser(nullptr, &m_Memory),
        m_Inspector(inspector),
        m_Resolver(inspector.m_Stop, m_Limits, inspector.m_Resolver.Seen()) {
    m_Limits.SetTextLimit(inspector.m_Limits.TextLimit());
    m_Resolver.Policy() = inspector.m_Resolver.Policy();
    m_Resolver.SetReplays(inspector.m_Resolver.Replays());
    setDoNamespaces(true);
    setValidationScheme(Val_Never);
    Scanner().setDocHandler(this);
    Scanner().setDocTypeHandler(this);
    Scanner().setEntityHandler(this);
  }

  void Read(const InputSource& schema) {
    const CExpansionLimits::CLoad load(m_Limits);
    parse(schema);
  }

 private:
  // It is ours, and the base gives it for reading alone.
  xercesc::XMLScanner& Scanner() { return const_cast<xercesc::XMLScanner&>(getScanner()); }

  InputSource* resolveEntity(xercesc::XMLResourceIdentifier* pResource) override {
    m_Inspector.m_Stop.RequireGoing();
    return m_Resolver.Resolve(*pResource, false).release();
  }

  void startExtSubset() override {
    m_Resolver.Lost().TakeFrom(*getScanner().getReaderMgr());
    SAXParser::startExtSubset();
  }

  void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri, const XMLCh*,
                    const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t count,
                    bool isEmpty, bool) override {
    m_Inspector.m_Stop.RequireGoing();
    m_Limits.RequireFewExpansions();
    m_Limits.CountDefaults(attributes, count);
    const XMLCh* pName = declaration.getBaseName();
    const bool isOfSchema =
        XMLString::equals(getScanner().getURIText(uri), SchemaSymbols::fgURI_SCHEMAFORSCHEMA);
    if (isOfSchema) Take(pName, attributes, count);
    m_Models.Enter(isOfSchema ? pName : nullptr, attributes, count);
    m_Inspector.CheckModel(m_Models);
    m_Patterns.emplace_back();
    if (isEmpty) Leave();
  }

  void endElement(const xercesc::XMLElementDecl&, unsigned int, bool, const XMLCh*) override {
    Leave();
  }

  void Take(const XMLCh* pElement, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
            XMLSize_t count) {
    const bool isPattern = XMLString::equals(pElement, SchemaSymbols::fgELT_PATTERN);
    for (XMLSize_t i = 0; i < count; ++i) {
      const XMLCh* pName = attributes.elementAt(i)->getQName();
      const XMLCh* pValue = attributes.elementAt(i)->getValue();
      const bool isValue = XMLString::equals(pName, SchemaSymbols::fgATT_VALUE);
      if (isValue && isPattern) {
        m_Patterns.back().push_back(pValue);
      } else if (isValue || XMLString::equals(pName, SchemaSymbols::fgATT_DEFAULT) ||
                 XMLString::equals(pName, SchemaSymbols::fgATT_FIXED)) {
        m_Inspector.AddValue(pValue);
      }
    }
  }

  // The patterns of a restriction are alternatives, which the parser puts into one.
  void Leave() {
    const std::vector<std::u16string> patterns = std::move(m_Patterns.back());
    m_Patterns.pop_back();
    m_Models.Leave();
    std::u16string all;
    for (const std::u16string& pattern : patterns) {
      all += (&pattern == patterns.data() ? u"" : u"|") + pattern;
    }
    if (!patterns.empty()) m_Inspector.AddPattern(all);
  }

  CSchemaInspector& m_Inspector;
  CExpansionLimits m_Limits{m_Inspector.m_Stop};
  CExternalResolver m_Resolver;
  CModelSize m_Models;
  // Of each open element those within it, and of the document first.
  std::vector<std::vector<std::u16string>> m_Patterns{{}};
};

// Inspects when it is opened, and then hands on the bytes that were inspected.
class CSchemaInspector::CSource final : public InputSource {
 public:
  CSource(CSchemaInspector& inspector, std::unique_ptr<InputSource> pInner,
          std::function<void()> onEnd)
      : InputSource(pInner->getSystemId()),
        m_Inspector(inspector),
        m_Schema(std::move(pInner)),
        m_OnEnd(std::move(onEnd)) {}
  // What is thrown on the way is that memory has run out.
  ~CSource() override {
    m_Inspector.m_Resolver.SetReplays(nullptr);
    if (m_OnEnd != nullptr) static_cast<void>(Always<domErrUnexpected>::Run(m_OnEnd));
  }

  // The parser reads one schema to its end before it opens the next.
  xercesc::BinInputStream* makeStream() const override {
    const CReplaySource source(m_Schema);
    if (!m_Schema.Open()) return nullptr;
    m_Inspector.m_Resolver.SetReplays(&m_Entities);
    m_Inspector.Inspect(source);
    return source.makeStream();
  }

 private:
  CSchemaInspector& m_Inspector;
  mutable CReplay m_Schema;
  mutable CReplays m_Entities;
  std::function<void()> m_OnEnd;
};

void CSchemaInspector::Forget() {
  m_Patterns.clear();
  m_Values.clear();
}

std::unique_ptr<InputSource> CSchemaInspector::Watch(std::unique_ptr<InputSource> source,
                                                     std::function<void()> onEnd) {
  if (source == nullptr) return nullptr;
  m_SchemaLimits.OnSchema();
  return std::make_unique<CSource>(*this, std::move(source), std::move(onEnd));
}

// What the reader throws, the parser will meet, too.
void CSchemaInspector::Inspect(const InputSource& schema) {
  static_cast<void>(Always<domErrUnexpected>::Run([&] { CReader(*this).Read(schema); }));
  m_Stop.RequireGoing();
}

void CSchemaInspector::CheckModel(const CModelSize& models) {
  if (models.Parts() * kModelPart > StackRoom()) CSchemaLimits::StopForStack(m_Stop);
  if (models.Copies() <= kMostCopies) return;
  m_Stop.Stop(u"a content model of a schema repeats groups of more than 20000 elements in all");
}

void CSchemaInspector::AddPattern(const std::u16string& pattern) {
  const CPatternSize size = SizeOfPattern(pattern);
  if (size.m_Operations > kMostOperations || size.m_Depth > kDeepest) {
    const std::u16string text = u"the pattern '" + InOneLine(pattern.c_str()) + u"' is too large";
    m_Stop.Stop(text.c_str());
  }
  std::unique_ptr<RegularExpression> pMade;
  // One that is no pattern is a fault that the parser finds.
  static_cast<void>(Always<domErrUnexpected>::Run([&] {
    pMade = std::make_unique<RegularExpression>(pattern.c_str(), SchemaSymbols::fgRegEx_XOption);
  }));
  if (pMade == nullptr || !LimitPattern(*pMade)) return;
  for (const std::u16string& value : m_Values) Match(*pMade, value);
  m_Patterns.push_back(std::move(pMade));
}

// As it stands, as types take it that change its blanks, and as the items of a list.
void CSchemaInspector::AddValue(const std::u16string& value) {
  m_SchemaLimits.AllowValues(1);
  AddText(value);
  AddText(Normalized(value, XMLString::replaceWS));
  const std::u16string collapsed = Normalized(value, XMLString::collapseWS);
  AddText(collapsed);
  for (size_t at = 0, end = 0; end != collapsed.npos; at = end + 1) {
    end = collapsed.find(u' ', at);
    AddText(collapsed.substr(at, end - at));
  }
}

void CSchemaInspector::AddText(const std::u16string& text) {
  const auto [place, isNew] = m_Values.insert(text);
  if (!isNew) return;
  for (const auto& pPattern : m_Patterns) Match(*pPattern, *place);
}

void CSchemaInspector::Match(const RegularExpression& pattern, const std::u16string& value) {
  m_SchemaLimits.CountMatch();
  static_cast<void>(pattern.matches(value.c_str()));
}
