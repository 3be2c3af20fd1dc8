#include "document/treeparser.h"

#include <atomic>
#include <memory>
#include <utility>
#include <vector>
#include <xercesc/framework/MemoryManager.hpp>
#include <xercesc/internal/XMLReader.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/util/BinMemInputStream.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/validators/DTD/DTDElementDecl.hpp>
#include <xercesc/validators/common/ContentSpecNode.hpp>

#include "host/stackroom.h"

using xercesc::ContentSpecNode;

namespace {

// What a level of a content model takes, measured, with a margin; bytes of stack.
constexpr std::size_t kModelLevel = 208;

// "(a, b, c)" is a pair of a and the pair of b and c, so a list is deep, too.
bool IsDeeper(const ContentSpecNode* pModel, std::size_t most) {
  struct CPending {
    const ContentSpecNode* m_pNode;
    std::size_t m_Level;
  };
  std::vector<CPending> pending{{pModel, 0}};
  while (!pending.empty()) {
    const CPending next = pending.back();
    pending.pop_back();
    if (next.m_pNode == nullptr) continue;
    if (next.m_Level > most) return true;
    pending.push_back({next.m_pNode->getFirst(), next.m_Level + 1});
    pending.push_back({next.m_pNode->getSecond(), next.m_Level + 1});
  }
  return false;
}

}  // namespace

// -- Expansions ------------------------------------------------------------------

// The memory of all parsers and of what they make. Every expansion begins with a
// reader, which nothing else equals in size, and it is the only step that all of them
// have in common.
class CTreeParser::CReaderMeter final : public xercesc::MemoryManager {
 public:
  // Documents keep it: it belongs to no parser.
  static CReaderMeter& Instance() {
    static CReaderMeter s_Meter;
    return s_Meter;
  }
  // Makes a parser the one of this thread, and gives the one before.
  static CTreeParser* Enter(CTreeParser& parser) {
    ++s_Parses;
    return std::exchange(State().m_pParsing, &parser);
  }
  static void Leave(CTreeParser* pOuter) {
    State().m_pParsing = pOuter;
    --s_Parses;
  }

  void* allocate(XMLSize_t size) override {
    if (s_Parses.load(std::memory_order_relaxed) == 0) return Allocate(size);
    CState& state = State();
    if (state.m_pParsing == nullptr) return Allocate(size);
    if (IsBlockOf<xercesc::XMLReader>(size) && !state.m_pParsing->CountReader()) {
      // Nobody owns the stream that the reader would have taken over.
      const auto release = [this](void* pStream) { deallocate(pStream); };
      const bool isStream = IsBlockOf<xercesc::BinMemInputStream>(state.m_LastSize);
      std::unique_ptr<void, decltype(release)> stream(isStream ? state.m_pLast : nullptr, release);
      state.m_pParsing->StopExpanding();
      // Where the scanner goes on, the reader has it.
      static_cast<void>(stream.release());
    }
    state.m_pLast = Allocate(size);
    state.m_LastSize = size;
    return state.m_pLast;
  }
  void deallocate(void* pMemory) override {
    xercesc::XMLPlatformUtils::fgMemoryManager->deallocate(pMemory);
  }
  MemoryManager* getExceptionMemoryManager() override {
    return xercesc::XMLPlatformUtils::fgMemoryManager->getExceptionMemoryManager();
  }

 private:
  // Of a thread.
  struct CState {
    CTreeParser* m_pParsing = nullptr;
    void* m_pLast = nullptr;  // the last block, while parsing
    XMLSize_t m_LastSize = 0;
  };
  static CState& State() {
    constinit thread_local CState s_State;
    return s_State;
  }
  // Of all threads: without any, nobody's variables are looked at.
  static constinit inline std::atomic<size_t> s_Parses = 0;

  static void* Allocate(XMLSize_t size) {
    return xercesc::XMLPlatformUtils::fgMemoryManager->allocate(size);
  }
  // A block begins with the address of its memory manager.
  template <class Object>
  static bool IsBlockOf(XMLSize_t size) {
    static const XMLSize_t s_Size =
        sizeof(Object) + xercesc::XMLPlatformUtils::alignPointerForNewBlockAllocation(
                             sizeof(xercesc::MemoryManager*));
    return size == s_Size;
  }
};

CTreeParser::CTreeParser() : XercesDOMParser(nullptr, &CReaderMeter::Instance()) {
  getScanner()->setEntityHandler(this);
}

CTreeParser::CParsing::CParsing(CTreeParser& parser) : m_pOuter(CReaderMeter::Enter(parser)) {
  parser.m_Readers = 0;
  parser.m_Level = 0;
}

CTreeParser::CParsing::~CParsing() { CReaderMeter::Leave(m_pOuter); }

// The first reader is the document's own.
bool CTreeParser::CountReader() { return ++m_Readers <= kMostExpansions + 1; }

void CTreeParser::StopExpanding() {
  getScanner()->emitError(xercesc::XMLErrs::EntityExpansionLimitExceeded, u"50000");
}

// Before a file is opened, which would stay open without its reader.
xercesc::InputSource* CTreeParser::resolveEntity(xercesc::XMLResourceIdentifier* pResource) {
  if (m_Readers > kMostExpansions) StopExpanding();
  return XercesDOMParser::resolveEntity(pResource);
}

// -- Depth -----------------------------------------------------------------------

// An empty element is ended by the base.
void CTreeParser::startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                               const XMLCh* pPrefix,
                               const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                               XMLSize_t attributeCount, bool isEmpty, bool isRoot) {
  if (m_Level != 0) GoDeeper();
  XercesDOMParser::startElement(declaration, uri, pPrefix, attributes, attributeCount, isEmpty,
                                isRoot);
}

void CTreeParser::endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                             bool isRoot, const XMLCh* pPrefix) {
  if (m_Level != 0) --m_Level;
  XercesDOMParser::endElement(declaration, uri, isRoot, pPrefix);
}

void CTreeParser::startEntityReference(const xercesc::XMLEntityDecl& declaration) {
  GoDeeper();
  XercesDOMParser::startEntityReference(declaration);
}

void CTreeParser::endEntityReference(const xercesc::XMLEntityDecl& declaration) {
  if (m_Level != 0) --m_Level;
  XercesDOMParser::endEntityReference(declaration);
}

void CTreeParser::elementDecl(const xercesc::DTDElementDecl& declaration, bool isIgnored) {
  const bool isUsed = getValidationScheme() != Val_Never;
  if (isUsed && IsDeeper(declaration.getContentSpec(), StackRoom() / kModelLevel)) {
    Stop(u"the content model is too large for the stack of this thread");
  }
  XercesDOMParser::elementDecl(declaration, isIgnored);
}

void CTreeParser::GoDeeper() {
  if (++m_Level > kMostInEntity) {
    Stop(u"the content of an entity is nested more than 250 levels deep");
  }
}

// Leaves by the scanner's own exception, which it catches.
void CTreeParser::Stop(const char16_t* pMessage) {
  getScanner()->emitError(xercesc::XMLErrs::XMLException_Fatal, pMessage);
}
