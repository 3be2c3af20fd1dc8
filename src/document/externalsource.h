// The bytes of what is read beside a document, on their way to the parser.
#pragma once

#include <memory>
#include <string>
#include <vector>
#include <xercesc/framework/URLInputSource.hpp>
#include <xercesc/internal/ReaderMgr.hpp>
#include <xercesc/validators/DTD/DTDEntityDecl.hpp>

#include "document/accesspolicy.h"
#include "document/expansionlimits.h"
#include "document/seenfiles.h"

// Where a name leads, found as the XML library finds it. Nothing is opened.
struct CPlaceOfName {
  std::unique_ptr<xercesc::InputSource> m_pSource;  // opens it; its name is the whole one
  bool m_IsFile = false;
  std::string m_Path;  // of a file

  // A name in a document; the base is the address of what names it.
  static CPlaceOfName InDocument(const XMLCh* pBase, const XMLCh* pName);
  void NoteIn(CSeenFiles& seen) const { m_IsFile ? seen.See(m_Path) : seen.SeeOther(); }

  // The document itself; without a source where the name needs a current folder and
  // there is none.
  static CPlaceOfName OfDocument(const char* pName);
};

// The entities that the XML library makes for the readers of external document types and
// never frees.
class CLostEntities {
 public:
  // There may be one more to take, for which there is room then.
  void Expect() { m_Lost.reserve(++m_Expected); }
  // Takes the one of the current reader, if that reads a document type.
  void TakeFrom(const xercesc::ReaderMgr& readers) noexcept;
  // When no scanner is at work any more.
  void Free() {
    m_Lost.clear();
    m_Expected = 0;
  }

 private:
  std::size_t m_Expected = 0;
  std::vector<std::unique_ptr<const xercesc::XMLEntityDecl>> m_Lost;
};

// What watches a stream while it is read; each is optional.
struct CWatch {
  CExpansionLimits* m_pLimits = nullptr;  // its text counts
  const xercesc::ReaderMgr* m_pReaders = nullptr;
  // It is of a document type, among those readers; it may outlive whoever loads.
  std::shared_ptr<CLostEntities> m_pLost;
};

// What is at a place, as far as the answer allows.
class CExternalSource final : public xercesc::InputSource {
 public:
  CExternalSource(CPlaceOfName place, CAnswer answer, const CWatch& watch);
  const CPlaceOfName& Place() const { return m_Place; }
  // Null where there is nothing: the parser says so by name.
  xercesc::BinInputStream* makeStream() const override;

 private:
  CPlaceOfName m_Place;
  mutable CAnswer m_Answer;  // its file goes to the stream
  CWatch m_Watch;
};
