// The parser of a document object.
#pragma once

#include <cstddef>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "document/expansionlimits.h"
#include "document/externalresolver.h"
#include "document/loadstop.h"
#include "document/namedschemas.h"
#include "document/parsermemory.h"
#include "document/positions.h"
#include "document/prefixscope.h"
#include "document/schemainspector.h"
#include "document/schemalimits.h"
#include "document/sourcecapture.h"
#include "dom/builder.h"
#include "dom/hashroom.h"

// What a parser is made with, and what hence outlives it.
class CPartsOfParser {
 protected:
  CParserMemory m_Memory;
  CNamedSchemas m_Schemas{m_Memory};
};

// Ends in a fatal error, before it happens, what would fill the memory or the stack, and
// what reads beside the document without leave.
//
// An entity's content is marked read-only by recursion when its reference ends, and
// copied by recursion when the entity node is first looked into, by whichever thread:
// so its depth has a fixed limit. A content model becomes an automaton by recursion
// during the load, so its depth is bounded by the stack of the loading thread.
class CTreeParser final : private CPartsOfParser, public dom::CBuilder {
 public:
  // Elements and references, from the outermost reference on.
  static constexpr std::size_t kMostInEntity = 250;

  CTreeParser();

  // As parse, which must not be called. The source reads `bytes`, behind which a NUL stands.
  void ParseLimited(const xercesc::InputSource& text, std::string_view bytes);
  void ParseLimited(const char* pName);  // a file or an address

  // What the document may read beside itself, and what its expansions may come to.
  CAccessPolicy& Policy() { return m_Resolver.Policy(); }
  CExpansionLimits& Limits() { return m_Limits; }
  CNamedSchemas& Schemas() { return m_Schemas; }

  // Of the last parse, with those of the schemas that the host names.
  XMLSize_t ErrorCount() const { return m_IsPlain ? 0 : getErrorCount() + m_Schemas.FaultCount(); }

  // Whether a load notes where its nodes stand. Other parses never do.
  void SetKeepPositions(bool keeps) { m_KeepsPositions = keeps; }
  bool GetKeepPositions() const { return m_KeepsPositions; }

  // A parse within its life is a load.
  class CLoading {
   public:
    explicit CLoading(CTreeParser& parser) : m_Parser(parser) {
      parser.m_Capture.KeepAll(parser.m_KeepsPositions);
    }
    ~CLoading();
    CLoading(const CLoading&) = delete;
    CLoading& operator=(const CLoading&) = delete;

    // Of the nodes of the document that was just parsed, if they are to be kept.
    CPositions FindPositions(xercesc::DOMDocument& document) const;

   private:
    CTreeParser& m_Parser;
  };

  void XMLDecl(const XMLCh* pVersion, const XMLCh* pEncoding, const XMLCh* pStandalone,
               const XMLCh* pActualEncoding) override;
  void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                    const XMLCh* pPrefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                    XMLSize_t attributeCount, bool isEmpty, bool isRoot) override;
  void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri, bool isRoot,
                  const XMLCh* pPrefix) override;
  void startEntityReference(const xercesc::XMLEntityDecl& declaration) override;
  void endEntityReference(const xercesc::XMLEntityDecl& declaration) override;
  xercesc::InputSource* resolveEntity(xercesc::XMLResourceIdentifier* pResource) override;
  void startExtSubset() override;
  void endExtSubset() override;
  void endIntSubset() override;
  void endAttList(const xercesc::DTDElementDecl& declaration) override;
  void entityDecl(const xercesc::DTDEntityDecl& declaration, bool isParameter,
                  bool isIgnored) override;
  void notationDecl(const xercesc::XMLNotationDecl& declaration, bool isIgnored) override;
  void elementDecl(const xercesc::DTDElementDecl& declaration, bool isIgnored) override;
  void error(unsigned int code, const XMLCh* pDomain, ErrTypes type, const XMLCh* pText,
             const XMLCh* pSystemId, const XMLCh* pPublicId, XMLFileLoc line,
             XMLFileLoc column) override;

 private:
  // The name of the document is asked for where relative names begin.
  template <class Source>
  void Parse(const Source& source, const XMLCh* pName);
  bool MayBePlain() const;
  bool ParsePlain(const XMLCh* pName, std::string_view bytes);
  void NeedRoom(XMLSize_t names);
  void MakeDefaults();
  void GoDeeper();
  const xercesc::DOMNode* Unfinished() const;

  CLoadStop m_Stop;
  CExpansionLimits m_Limits;
  CSchemaLimits m_SchemaLimits;
  CExternalResolver m_Resolver;
  CSchemaInspector m_Inspector;
  CPrefixScope m_Prefixes;
  dom::CNameRoom m_Names;
  CSourceCapture m_Capture;
  bool m_KeepsPositions = false;
  bool m_IsPlain = false;     // the last text, which needed no scanner
  std::u16string m_Encoding;  // what the declaration led to; empty for no declaration
  std::size_t m_Level = 0;    // inside the outermost reference, 0 for outside
  // Elements whose defaults wait for the end of the subset.
  std::vector<const xercesc::DTDElementDecl*> m_Listed;
  std::unordered_set<const xercesc::DTDElementDecl*> m_IsListed;
};
