// What a document names outside itself: entities, document types, schemas.
#pragma once

#include <memory>
#include <string>
#include <xercesc/util/XMLEntityResolver.hpp>

#include "document/accesspolicy.h"
#include "document/externalsource.h"
#include "document/loadstop.h"
#include "document/replaysource.h"
#include "document/seenfiles.h"

// Everything that a parser reads beside its document is asked for here by name, also by
// the parsers of schemas that it makes.
class CExternalResolver {
 public:
  // What is asked for is noted in `pSeen`, if any.
  CExternalResolver(CLoadStop& stop, CExpansionLimits& limits, CSeenFiles* pSeen = nullptr)
      : m_Stop(stop), m_Limits(limits), m_pSeen(pSeen) {}
  CExternalResolver(const CExternalResolver&) = delete;
  CExternalResolver& operator=(const CExternalResolver&) = delete;

  CAccessPolicy& Policy() { return m_Policy; }
  const CAccessPolicy& Policy() const { return m_Policy; }

  // The document itself, which may always be read. Null where there is no current folder
  // and the name needs one.
  std::unique_ptr<CExternalSource> Document(const char* pName);

  // What the name leads to, opened; stops the load where that is refused. Null leaves a
  // thing without name to the parser. A document type that is not needed is read as
  // empty where it is refused.
  std::unique_ptr<xercesc::InputSource> Resolve(const xercesc::XMLResourceIdentifier& resource,
                                                bool needsDocumentType);

  CLostEntities& Lost() { return *m_pLost; }

  // Entities are opened once for as long as `pReplays` is set, and read as they were then.
  void SetReplays(CReplays* pReplays) { m_pReplays = pReplays; }
  CReplays* Replays() const { return m_pReplays; }
  CSeenFiles* Seen() const { return m_pSeen; }

 private:
  std::unique_ptr<xercesc::InputSource> Open(const xercesc::XMLResourceIdentifier& resource,
                                             bool isNeeded, const CWatch& watch);
  CReplay& ReplayOf(const xercesc::XMLResourceIdentifier& resource, bool isNeeded);
  CWatch WatchOf(const xercesc::XMLResourceIdentifier& resource, bool isDocumentType);
  void Refuse(const XMLCh* pName, const char16_t* pReason);

  CLoadStop& m_Stop;
  CExpansionLimits& m_Limits;
  CSeenFiles* m_pSeen;
  CReplays* m_pReplays = nullptr;
  CAccessPolicy m_Policy;
  std::shared_ptr<CLostEntities> m_pLost = std::make_shared<CLostEntities>();
};
