// The parser behind `check`: it tells faults, by the library's own rules.
#ifndef TESSEL_TOOLS_CHECKPARSER_H
#define TESSEL_TOOLS_CHECKPARSER_H

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <xercesc/parsers/SAXParser.hpp>

#include "document/externalresolver.h"
#include "document/lentgrammars.h"
#include "document/prefixscope.h"
#include "document/schemainspector.h"
#include "document/schemalimits.h"
#include "input.h"

// Reads beside the document, and lets it expand, as the library's own parser does: its
// rules are compiled into the client.
class CCheckParser final : public xercesc::SAXParser {
 public:
  // With an empty pool, or with schemas that count beside those that documents name.
  CCheckParser(CLentGrammars& grammars, bool hasSchemas);

  // The stream of an input, and what is read from it.
  std::unique_ptr<xercesc::InputSource> SourceOf(const CInput& input, int32_t access);
  void Read(const xercesc::InputSource& source);
  // Adds a schema to those that count.
  void ReadSchema(const xercesc::InputSource& source);

  xercesc::InputSource* resolveEntity(xercesc::XMLResourceIdentifier* pResource) override;
  void doctypeDecl(const xercesc::DTDElementDecl& root, const XMLCh* pPublicId,
                   const XMLCh* pSystemId, bool hasInternalSubset, bool hasExternalSubset) override;
  void startExtSubset() override;
  void elementDecl(const xercesc::DTDElementDecl& declaration, bool isIgnored) override;
  void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                    const XMLCh* pPrefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                    XMLSize_t count, bool isEmpty, bool isRoot) override;
  void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri, bool isRoot,
                  const XMLCh* pPrefix) override;
  void error(unsigned int code, const XMLCh* pDomain, ErrTypes type, const XMLCh* pText,
             const XMLCh* pSystemId, const XMLCh* pPublicId, XMLFileLoc line,
             XMLFileLoc column) override;

 private:
  // What is known of the grammar that a document is to be valid by.
  enum class EGrammar {
    kNone,       // not named
    kSaid,       // not named, and that has been said
    kNamed,      // there
    kDefective,  // there, with faults
  };

  // It is ours, and the base gives it for reading alone.
  xercesc::XMLScanner& Scanner() { return const_cast<xercesc::XMLScanner&>(getScanner()); }
  void Begin();
  std::unique_ptr<xercesc::InputSource> OpenedSchema(std::unique_ptr<xercesc::InputSource> source,
                                                     const XMLCh* pName);

  CLentGrammars& m_Grammars;
  bool m_HasSchemas;
  EGrammar m_Grammar = EGrammar::kNone;
  std::set<std::u16string> m_Schemas;  // that were opened, by their names
  CLoadStop m_Stop;
  CExpansionLimits m_Limits{m_Stop};
  CSchemaLimits m_SchemaLimits{m_Stop};
  CExternalResolver m_Resolver{m_Stop, m_Limits};
  CSchemaInspector m_Inspector{m_Stop, m_Limits, m_SchemaLimits, m_Resolver};
  CPrefixScope m_Prefixes;
};

#endif
