#include "document/modelsize.h"

#include <algorithm>
#include <initializer_list>
#include <xercesc/util/XMLChar.hpp>
#include <xercesc/util/XMLString.hpp>
#include <xercesc/validators/schema/SchemaSymbols.hpp>

using xercesc::SchemaSymbols;
using xercesc::XMLString;

namespace {

constexpr uint64_t kLargest = uint64_t{1} << 31;  // numbers above it are taken for it

bool IsOneOf(const XMLCh* pName, std::initializer_list<const XMLCh*> names) {
  return std::ranges::any_of(names,
                             [&](const XMLCh* pOne) { return XMLString::equals(pName, pOne); });
}

bool IsPart(const XMLCh* pElement) {
  return IsOneOf(pElement, {SchemaSymbols::fgELT_ELEMENT, SchemaSymbols::fgELT_ANY});
}

bool IsGroup(const XMLCh* pElement) {
  return IsOneOf(pElement, {SchemaSymbols::fgELT_GROUP, SchemaSymbols::fgELT_SEQUENCE,
                            SchemaSymbols::fgELT_CHOICE, SchemaSymbols::fgELT_ALL});
}

bool IsModel(const XMLCh* pElement) {
  return IsOneOf(pElement, {SchemaSymbols::fgELT_COMPLEXTYPE, SchemaSymbols::fgELT_GROUP});
}

// The parser takes a number with blanks around it and a sign, and one far below 0 for a large one.
uint64_t Number(const XMLCh* pText) {
  while (xercesc::XMLChar1_0::isWhitespace(*pText)) ++pText;
  if (*pText == u'+' || *pText == u'-') ++pText;
  uint64_t number = 0;
  for (; *pText >= u'0' && *pText <= u'9'; ++pText) {
    number = std::min(number * 10 + (*pText - u'0'), kLargest);
  }
  return number;
}

uint64_t TimesOf(const CModelSize::CAttributes& attributes, XMLSize_t count) {
  uint64_t least = 1, most = 1;
  for (XMLSize_t i = 0; i < count; ++i) {
    const XMLCh* pName = attributes.elementAt(i)->getQName();
    const XMLCh* pValue = attributes.elementAt(i)->getValue();
    if (XMLString::equals(pName, SchemaSymbols::fgATT_MINOCCURS)) least = Number(pValue);
    // "unbounded" is no number.
    if (XMLString::equals(pName, SchemaSymbols::fgATT_MAXOCCURS)) most = Number(pValue);
  }
  return std::max({least, most, uint64_t{1}});
}

bool HasReference(const CModelSize::CAttributes& attributes, XMLSize_t count) {
  for (XMLSize_t i = 0; i < count; ++i) {
    if (XMLString::equals(attributes.elementAt(i)->getQName(), SchemaSymbols::fgATT_REF)) {
      return true;
    }
  }
  return false;
}

}  // namespace

void CModelSize::Enter(const XMLCh* pElement, const CAttributes& attributes, XMLSize_t count) {
  COpen open{false, m_Open.back().m_Times};
  const bool isReference = pElement != nullptr && HasReference(attributes, count);
  const bool isGroup = pElement != nullptr && IsGroup(pElement);
  if (isGroup) open.m_Times = std::min(open.m_Times * TimesOf(attributes, count), kLargest);
  if (isGroup || (pElement != nullptr && IsPart(pElement))) {
    CModel& model = m_Models.back();
    ++model.m_Parts;
    const uint64_t copies = isGroup && !isReference ? 0 : open.m_Times;
    model.m_Copies = std::min(model.m_Copies + copies, kLargest);
  }
  open.m_IsModel = pElement != nullptr && !isReference && IsModel(pElement);
  if (open.m_IsModel) {
    m_Models.emplace_back();
    open.m_Times = 1;
  }
  m_Open.push_back(open);
}

void CModelSize::Leave() {
  if (m_Open.back().m_IsModel) m_Models.pop_back();
  m_Open.pop_back();
}
