#include "dom/pooledname.h"

namespace dom {

namespace {

bool IsSame(const XMLCh* pLeft, const XMLCh* pRight) {
  for (; *pLeft == *pRight; ++pLeft, ++pRight) {
    if (*pLeft == 0) return true;
  }
  return false;
}

}  // namespace

void CPooledNames::Start(xercesc::DOMDocumentImpl& document) {
  m_pDocument = &document;
  m_Slots.fill(nullptr);
}

const XMLCh* CPooledNames::Of(const XMLCh* pName, std::size_t slot) {
  const XMLCh*& pPooled = m_Slots[slot % m_Slots.size()];
  if (pPooled == nullptr || !IsSame(pName, pPooled)) pPooled = m_pDocument->getPooledString(pName);
  return pPooled;
}

}  // namespace dom
