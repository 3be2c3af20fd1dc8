// Keeps prefixes within reach of the parser.
#pragma once

#include <string>
#include <unordered_set>
#include <vector>
#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/internal/XMLScanner.hpp>

// The XML library looks for a prefix level by level, from the element up to where it is
// declared, and for one that is not declared, as for none at all in most documents, to
// the root: the time of a deep document grows with the square. Entered anew every so many
// levels, the prefixes in use are found at once.
class CPrefixScope {
 public:
  void Begin();  // of a load
  // An element has been entered, and so have its own declarations.
  void Enter(xercesc::XMLScanner& scanner, const XMLCh* pPrefix,
             const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t count);
  void Leave();

 private:
  // Levels from one to the next at least; with many prefixes as many as these.
  static constexpr size_t kStep = 16;
  static constexpr size_t kMostPrefixes = 1024;

  void Use(const XMLCh* pPrefix);

  std::unordered_set<std::u16string> m_Used;
  std::u16string m_Last;         // used last
  size_t m_Level = 0;            // of the element, 1 for the root
  std::vector<size_t> m_Levels;  // where prefixes were entered, on the way to it; 0 at first
};
