// The parser of a document object.
#pragma once

#include <cstddef>
#include <xercesc/parsers/XercesDOMParser.hpp>

// Ends in a fatal error, before it happens, what would fill the memory or the stack.
//
// The XML library counts the entities that a document's content expands, not those
// of default attributes and of the document type itself; here all of them count.
//
// An entity's content is marked read-only by recursion when its reference ends, and
// copied by recursion when the entity node is first looked into, by whichever thread:
// so its depth has a fixed limit. A content model becomes an automaton by recursion
// during the load, so its depth is bounded by the stack of the loading thread.
class CTreeParser final : public xercesc::XercesDOMParser {
 public:
  static constexpr std::size_t kMostExpansions = 50000;
  // Elements and references, from the outermost reference on.
  static constexpr std::size_t kMostInEntity = 250;

  CTreeParser();

  // As parse, which must not be called.
  template <class Source>
  void ParseLimited(const Source& source) {
    const CParsing parsing(*this);
    parse(source);
  }

  void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                    const XMLCh* pPrefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                    XMLSize_t attributeCount, bool isEmpty, bool isRoot) override;
  void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri, bool isRoot,
                  const XMLCh* pPrefix) override;
  void startEntityReference(const xercesc::XMLEntityDecl& declaration) override;
  void endEntityReference(const xercesc::XMLEntityDecl& declaration) override;
  xercesc::InputSource* resolveEntity(xercesc::XMLResourceIdentifier* pResource) override;
  void elementDecl(const xercesc::DTDElementDecl& declaration, bool isIgnored) override;

 private:
  class CReaderMeter;
  // The parse of this thread, for as long as it lives.
  class CParsing {
   public:
    explicit CParsing(CTreeParser& parser);
    ~CParsing();
    CParsing(const CParsing&) = delete;
    CParsing& operator=(const CParsing&) = delete;

   private:
    CTreeParser* m_pOuter;
  };

  bool CountReader();  // false beyond the limit
  void StopExpanding();
  void GoDeeper();
  void Stop(const char16_t* pMessage);

  std::size_t m_Readers = 0;  // of the parse so far
  std::size_t m_Level = 0;    // inside the outermost reference, 0 for outside
};
