#include "document/prefixscope.h"

#include <algorithm>

namespace {

// The stack of elements is protected.
class CElementsOfScanner : private xercesc::XMLScanner {
 public:
  static xercesc::ElemStack& Elements(xercesc::XMLScanner& scanner) {
    return scanner.*(&CElementsOfScanner::fElemStack);
  }
};

}  // namespace

void CPrefixScope::Begin() {
  m_Used.clear();
  m_Last.clear();
  m_Used.insert(m_Last);
  m_Levels.assign(1, 0);
  m_Level = 0;
}

void CPrefixScope::Enter(xercesc::XMLScanner& scanner, const XMLCh* pPrefix,
                         const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                         XMLSize_t count) {
  ++m_Level;
  Use(pPrefix);
  for (XMLSize_t i = 0; i < count; ++i) Use(attributes.elementAt(i)->getPrefix());
  if (m_Level - m_Levels.back() < std::max(kStep, m_Used.size())) return;
  m_Levels.push_back(m_Level);
  xercesc::ElemStack& elements = CElementsOfScanner::Elements(scanner);
  for (const std::u16string& prefix : m_Used) {
    bool isUnknown = false;
    const unsigned uri = elements.mapPrefixToURI(prefix.c_str(), isUnknown);
    if (!isUnknown) elements.addPrefix(prefix.c_str(), uri);
  }
}

void CPrefixScope::Leave() {
  if (m_Level == 0) return;
  if (m_Levels.back() == m_Level) m_Levels.pop_back();
  --m_Level;
}

void CPrefixScope::Use(const XMLCh* pPrefix) {
  if (pPrefix == nullptr || *pPrefix == 0 || m_Last == pPrefix) return;
  m_Last = pPrefix;
  if (m_Used.size() == kMostPrefixes) {
    m_Used.clear();
    m_Used.emplace();
  }
  m_Used.insert(m_Last);
}
