// Reads the schemas that a host names.
#pragma once

#include <xercesc/parsers/XercesDOMParser.hpp>

#include "document/expansionlimits.h"
#include "document/externalresolver.h"
#include "document/loadstop.h"
#include "document/schemainspector.h"
#include "document/schemalimits.h"
#include "document/schemaset.h"

// A parser of its own, so that errors have a name and what schemas name obeys rules of its
// own: the schema that the host names is read in any case, and where a document is kept to
// its folder, or to itself, the schema is kept to the schema's folder.
class CSchemaReader final : public xercesc::XercesDOMParser {
 public:
  CSchemaReader(xercesc::MemoryManager& memory, xercesc::XMLGrammarPool& grammars,
                const CSchemaOrder& order, CSeenFiles& seen, std::vector<CSchemaFault>& faults);

  void Read(const CNamedSchema& schema);

  xercesc::InputSource* resolveEntity(xercesc::XMLResourceIdentifier* pResource) override;
  void error(unsigned int code, const XMLCh* pDomain, ErrTypes type, const XMLCh* pText,
             const XMLCh* pSystemId, const XMLCh* pPublicId, XMLFileLoc line,
             XMLFileLoc column) override;

 private:
  void AddFault(const std::u16string& name, const std::u16string& text, XMLFileLoc line = 0,
                XMLFileLoc column = 0);

  xercesc::XMLGrammarPool& m_Grammars;
  CLoadStop m_Stop;
  CExpansionLimits m_Limits;
  CSchemaLimits m_SchemaLimits;
  CExternalResolver m_Resolver;
  CSchemaInspector m_Inspector;
  CSeenFiles& m_Seen;
  std::vector<CSchemaFault>& m_Faults;
  const CNamedSchema* m_pSchema = nullptr;  // that is read
};
