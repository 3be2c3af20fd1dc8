#include "document/schemainspector.h"

#include <algorithm>
#include <initializer_list>
#include <xercesc/parsers/SAXParser.hpp>
#include <xercesc/validators/schema/SchemaSymbols.hpp>

#include "document/oneline.h"
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

bool IsOneOf(const XMLCh* pName, std::initializer_list<const XMLCh*> names) {
  return std::ranges::any_of(names,
                             [&](const XMLCh* pOne) { return XMLString::equals(pName, pOne); });
}

bool IsModel(const XMLCh* pElement) {
  return IsOneOf(pElement, {SchemaSymbols::fgELT_COMPLEXTYPE, SchemaSymbols::fgELT_GROUP});
}

bool IsPart(const XMLCh* pElement) {
  return IsOneOf(pElement, {SchemaSymbols::fgELT_ELEMENT, SchemaSymbols::fgELT_ANY,
                            SchemaSymbols::fgELT_GROUP, SchemaSymbols::fgELT_SEQUENCE,
                            SchemaSymbols::fgELT_CHOICE, SchemaSymbols::fgELT_ALL});
}

// As some types take a value: its blanks are one blank each, or one for all of a run.
std::u16string Normalized(const std::u16string& value,
                          void (*pChange)(XMLCh*, xercesc::MemoryManager*)) {
  std::u16string changed = value;
  pChange(changed.data(), xercesc::XMLPlatformUtils::fgMemoryManager);
  changed.resize(XMLString::stringLen(changed.c_str()));
  return changed;
}

}  // namespace

// Reads a schema as the parser does, and keeps nothing. What is wrong with it, the parser
// will say.
class CSchemaInspector::CReader final : private xercesc::SAXParser {
 public:
  explicit CReader(CSchemaInspector& inspector)
      : m_Inspector(inspector), m_Resolver(inspector.m_Stop, m_Limits) {
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
    if (isOfSchema) {
      CountPart(pName);
      Take(pName, attributes, count);
    }
    m_Open.push_back({{}, isOfSchema && IsModel(pName)});
    if (m_Open.back().m_IsModel) m_Parts.push_back(0);
    if (isEmpty) Leave();
  }

  void endElement(const xercesc::XMLElementDecl&, unsigned int, bool, const XMLCh*) override {
    Leave();
  }

  void CountPart(const XMLCh* pElement) {
    if (IsPart(pElement)) m_Inspector.RequireStack(++m_Parts.back() * kModelPart);
  }

  void Take(const XMLCh* pElement, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
            XMLSize_t count) {
    const bool isPattern = XMLString::equals(pElement, SchemaSymbols::fgELT_PATTERN);
    for (XMLSize_t i = 0; i < count; ++i) {
      const XMLCh* pName = attributes.elementAt(i)->getQName();
      const XMLCh* pValue = attributes.elementAt(i)->getValue();
      const bool isValue = XMLString::equals(pName, SchemaSymbols::fgATT_VALUE);
      if (isValue && isPattern) {
        m_Open.back().m_Patterns.push_back(pValue);
      } else if (isValue || XMLString::equals(pName, SchemaSymbols::fgATT_DEFAULT) ||
                 XMLString::equals(pName, SchemaSymbols::fgATT_FIXED)) {
        m_Inspector.AddValue(pValue);
      }
    }
  }

  // The patterns of a restriction are alternatives, which the parser puts into one.
  void Leave() {
    const COpen left = std::move(m_Open.back());
    m_Open.pop_back();
    if (left.m_IsModel) m_Parts.pop_back();
    std::u16string all;
    for (const std::u16string& pattern : left.m_Patterns) {
      all += (&pattern == left.m_Patterns.data() ? u"" : u"|") + pattern;
    }
    if (!left.m_Patterns.empty()) m_Inspector.AddPattern(all);
  }

  struct COpen {
    std::vector<std::u16string> m_Patterns;  // within it
    bool m_IsModel = false;
  };

  CSchemaInspector& m_Inspector;
  CExpansionLimits m_Limits{m_Inspector.m_Stop};
  CExternalResolver m_Resolver;
  std::vector<COpen> m_Open{{}};   // the document and its open elements
  std::vector<size_t> m_Parts{0};  // of each open content model; outside of any first
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

void CSchemaInspector::Begin() {
  m_Patterns.clear();
  m_Values.clear();
}

std::unique_ptr<InputSource> CSchemaInspector::Watch(std::unique_ptr<InputSource> source,
                                                     std::function<void()> onEnd) {
  if (source == nullptr) return nullptr;
  return std::make_unique<CSource>(*this, std::move(source), std::move(onEnd));
}

// What the reader throws, the parser will meet, too.
void CSchemaInspector::Inspect(const InputSource& schema) {
  static_cast<void>(Always<domErrUnexpected>::Run([&] { CReader(*this).Read(schema); }));
  m_Stop.RequireGoing();
}

void CSchemaInspector::RequireStack(size_t bytes) {
  if (bytes > StackRoom()) CSchemaLimits::StopForStack(m_Stop);
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
