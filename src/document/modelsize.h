// What the content models of a schema come to before they are made.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>
#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/util/RefVectorOf.hpp>

// Follows the elements of a schema. A type, and a named group, has a model of its own. The
// parser makes as many copies of a group in it as it may be repeated, or must be where
// there is no limit, so that numbers of groups within each other multiply. A reference to a
// named group counts as one element, however many that has; how often a single element may
// be repeated is not counted.
class CModelSize {
 public:
  using CAttributes = xercesc::RefVectorOf<xercesc::XMLAttr>;

  // An element of a schema; null for any other.
  void Enter(const XMLCh* pElement, const CAttributes& attributes, XMLSize_t count);
  void Leave();

  // Of the innermost model so far: its elements and groups, and the copies of its elements.
  size_t Parts() const { return m_Models.back().m_Parts; }
  uint64_t Copies() const { return m_Models.back().m_Copies; }

 private:
  struct COpen {
    bool m_IsModel = false;
    uint64_t m_Times = 1;  // that its content is copied
  };
  struct CModel {
    size_t m_Parts = 0;
    uint64_t m_Copies = 0;
  };

  std::vector<COpen> m_Open{{}};     // the document and its open elements
  std::vector<CModel> m_Models{{}};  // outside of any first
};
