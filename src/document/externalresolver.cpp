#include "document/externalresolver.h"

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/internal/ReaderMgr.hpp>

#include "document/oneline.h"

using xercesc::InputSource;
using xercesc::XMLResourceIdentifier;

namespace {

// Longer names take the parser a time that grows with the square.
constexpr size_t kLongestName = 8192;

// The parser asks for a document type with the very base that its place in the text has,
// and for an entity with a base that the declaration keeps.
bool IsDocumentType(const XMLResourceIdentifier& resource) {
  return resource.getResourceIdentifierType() == XMLResourceIdentifier::ExternalEntity &&
         resource.getLocator() != nullptr &&
         resource.getBaseURI() == resource.getLocator()->getSystemId();
}

CPlaceOfName Empty(const XMLCh* pName) {
  static constexpr XMLByte s_Nothing = 0;
  CPlaceOfName place;
  place.m_pSource = std::make_unique<xercesc::MemBufInputSource>(&s_Nothing, 0, pName);
  return place;
}

}  // namespace

std::unique_ptr<CExternalSource> CExternalResolver::Document(const char* pName) {
  CPlaceOfName place = CPlaceOfName::OfDocument(pName);
  if (place.m_pSource == nullptr) return nullptr;
  m_Policy.SetDocument(place.m_Path);
  return std::make_unique<CExternalSource>(std::move(place), CAnswer{nullptr, true, {}}, CWatch());
}

std::unique_ptr<InputSource> CExternalResolver::Resolve(const XMLResourceIdentifier& resource,
                                                        bool needsDocumentType) {
  const XMLCh* pName = resource.getSystemId();
  if (pName == nullptr) return nullptr;
  const bool isDocumentType = IsDocumentType(resource);
  const CWatch watch = WatchOf(resource, isDocumentType);
  const bool isNeeded = !isDocumentType || needsDocumentType;
  const bool isEntity =
      resource.getResourceIdentifierType() == XMLResourceIdentifier::ExternalEntity;
  if (m_pReplays == nullptr || !isEntity) return Open(resource, isNeeded, watch);
  CPlaceOfName place;
  place.m_pSource = std::make_unique<CReplaySource>(ReplayOf(resource, isNeeded));
  return std::make_unique<CExternalSource>(std::move(place), CAnswer{nullptr, true, {}}, watch);
}

CReplay& CExternalResolver::ReplayOf(const XMLResourceIdentifier& resource, bool isNeeded) {
  const XMLCh* pBase = resource.getBaseURI();
  CReplays::key_type name{pBase != nullptr ? pBase : u"", resource.getSystemId()};
  const auto found = m_pReplays->find(name);
  if (found != m_pReplays->end()) return found->second;
  CReplay replay(Open(resource, isNeeded, CWatch()));
  return m_pReplays->emplace(std::move(name), std::move(replay)).first->second;
}

std::unique_ptr<InputSource> CExternalResolver::Open(const XMLResourceIdentifier& resource,
                                                     bool isNeeded, const CWatch& watch) {
  const XMLCh* pName = resource.getSystemId();
  CPlaceOfName place;
  CAnswer answer{u"its name is too long", false, {}};
  if (xercesc::XMLString::stringLen(pName) <= kLongestName) {
    place = CPlaceOfName::InDocument(resource.getBaseURI(), pName);
    if (m_pSeen != nullptr) place.NoteIn(*m_pSeen);
    answer = place.m_IsFile ? m_Policy.AskForFile(place.m_Path) : m_Policy.AskForNetwork();
  }
  if (answer.m_pRefusal != nullptr) {
    if (isNeeded) Refuse(pName, answer.m_pRefusal);
    place = Empty(pName);
    answer = CAnswer{nullptr, true, {}};
  }
  return std::make_unique<CExternalSource>(std::move(place), std::move(answer), watch);
}

CWatch CExternalResolver::WatchOf(const XMLResourceIdentifier& resource, bool isDocumentType) {
  if (isDocumentType) {
    // Only the scanner's own locator is its reader manager; a run-time cast tells.
    return {nullptr, dynamic_cast<const xercesc::ReaderMgr*>(resource.getLocator()), m_pLost};
  }
  if (resource.getResourceIdentifierType() != XMLResourceIdentifier::ExternalEntity) return {};
  m_Limits.CountExpansion();
  m_Limits.RequireFewExpansions();
  return {&m_Limits, nullptr, nullptr};
}

void CExternalResolver::Refuse(const XMLCh* pName, const char16_t* pReason) {
  const std::u16string text =
      u"access to '" + InOneLine(pName) + u"' was refused: " + std::u16string(pReason);
  m_Stop.Stop(text.c_str());
}
