// The schemas that a host names for the loads of a document.
#pragma once

#include <memory>
#include <string>
#include <vector>
#include <xercesc/parsers/XercesDOMParser.hpp>

#include "document/lentgrammars.h"
#include "document/schemaset.h"

class CNamedSchemas {
 public:
  explicit CNamedSchemas(xercesc::MemoryManager& memory) : m_Grammars(memory) {}

  // As the host sets them.
  std::u16string m_Pairs;        // of namespace and place, by white space
  std::u16string m_NoNamespace;  // a place, blanks and all

  // The parser's, which is made with them.
  CLentGrammars& Grammars() { return m_Grammars; }

  // Has the schemas used by a load, if the parser validates by any, as long as it lives. Their
  // faults go to the parser's handler of errors.
  class CUse {
   public:
    // A relative place is one beside `pDocument`.
    CUse(CNamedSchemas& schemas, xercesc::XercesDOMParser& parser, const XMLCh* pDocument,
         int32_t accessMode);
    ~CUse();
    CUse(const CUse&) = delete;
    CUse& operator=(const CUse&) = delete;

   private:
    CUse(CNamedSchemas& schemas, xercesc::XercesDOMParser& parser)
        : m_Schemas(schemas), m_Parser(parser) {}

    CNamedSchemas& m_Schemas;
    xercesc::XercesDOMParser& m_Parser;
  };

  // A schema of the document itself may add to what others share, so that these cannot be
  // used again.
  void OnSchemaOfDocument() { m_IsSpoiled = true; }

  // Of the last load.
  std::size_t FaultCount() const { return m_FaultCount; }

 private:
  std::vector<CNamedSchema> List(const XMLCh* pDocument, xercesc::XercesDOMParser& parser);
  void Report(const CSchemaFault& fault, xercesc::XercesDOMParser& parser);
  void Announce(const std::vector<CNamedSchema>& schemas, xercesc::XercesDOMParser& parser) const;

  CLentGrammars m_Grammars;
  std::unique_ptr<CSchemaSet> m_pSet;  // of the load
  bool m_IsSpoiled = false;
  std::size_t m_FaultCount = 0;
};
