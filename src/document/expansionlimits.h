// How much the expansions of one load may come to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/util/RefVectorOf.hpp>

#include "document/loadstop.h"

// The XML library counts the entities that a document's content and its attributes
// expand, not those of default attributes, of the document type and of schemas; here all
// of them count. And it has no limit for their text.
//
// Every internal entity is read through a transcoder that the XML library asks its table
// of encodings for, by an encoding that has no other use. Its entry is ours: it knows the
// load of its thread, counts an expansion when it is asked, and text as it hands that on.
// Whoever else parses in the process gets what the entry gave before. An external entity
// is counted where it is opened and read.
class CExpansionLimits {
 public:
  static constexpr size_t kMostExpansions = 50000;
  static constexpr int64_t kMostText = 50'000'000;

  explicit CExpansionLimits(CLoadStop& stop);
  CExpansionLimits(const CExpansionLimits&) = delete;
  CExpansionLimits& operator=(const CExpansionLimits&) = delete;

  // Counts for this thread and from 0, as long as it lives.
  class CLoad {
   public:
    explicit CLoad(CExpansionLimits& limits);
    ~CLoad();
    CLoad(const CLoad&) = delete;
    CLoad& operator=(const CLoad&) = delete;

   private:
    CExpansionLimits* m_pOuter;
  };

  // UTF-16 units; 0 for no limit. Below 0 nothing at all may be added.
  void SetTextLimit(int64_t limit) { m_TextLimit = limit; }
  int64_t TextLimit() const { return m_TextLimit; }

  // Only counts: a parser that is left while it makes a reader loses memory.
  void CountExpansion() { ++m_Expansions; }
  // These stop the load beyond a limit.
  void RequireFewExpansions();
  void CountText(size_t units);
  // What an element has by default: a short text makes many attributes, and long ones.
  void CountDefaults(const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t count);

 private:
  CLoadStop& m_Stop;
  int64_t m_TextLimit = kMostText;
  int64_t m_Text = 0;
  size_t m_Expansions = 0;
};
