#include "document/expansionlimits.h"

#include <memory>
#include <string>
#include <utility>
#include <xercesc/util/TransENameMap.hpp>
#include <xercesc/util/TransService.hpp>
#include <xercesc/util/XMLChTranscoder.hpp>
#include <xercesc/util/XMLUniDefs.hpp>

using xercesc::ENameMap;
using xercesc::MemoryManager;
using xercesc::XMLChTranscoder;
using xercesc::XMLRecognizer;
using xercesc::XMLTranscoder;

namespace {

constinit thread_local CExpansionLimits* t_pLimits = nullptr;

// UTF-16 units that a default attribute counts besides its name and value, for its nodes.
constexpr size_t kUnitsOfDefault = 16;

// Hands on the text of one expansion.
class CEntityText final : public XMLChTranscoder {
 public:
  using XMLChTranscoder::XMLChTranscoder;

  XMLSize_t transcodeFrom(const XMLByte* pBytes, XMLSize_t size, XMLCh* pUnits, XMLSize_t most,
                          XMLSize_t& eaten, unsigned char* pSizes) override {
    const XMLSize_t units =
        XMLChTranscoder::transcodeFrom(pBytes, size, pUnits, most, eaten, pSizes);
    if (t_pLimits != nullptr) {
      t_pLimits->RequireFewExpansions();
      t_pLimits->CountText(units);
    }
    return units;
  }
};

// The entry of the table of encodings.
class CEntityEncoding final : public ENameMap {
 public:
  explicit CEntityEncoding(const ENameMap& before) : ENameMap(before.getKey()), m_Before(before) {}

  XMLTranscoder* makeNew(XMLSize_t blockSize, MemoryManager* pManager) const override {
    if (t_pLimits == nullptr) return m_Before.makeNew(blockSize, pManager);
    t_pLimits->CountExpansion();
    return new (pManager) CEntityText(getKey(), blockSize, pManager);
  }

 private:
  const ENameMap& m_Before;
};

// The table owns its entries and frees one that it is given another for, which a parser
// of someone else may be using on another thread: so the pointer alone is swapped. The
// table and its array are protected, hence the classes.
class CInstalled : private xercesc::XMLTransService, private xercesc::BaseRefVectorOf<ENameMap> {
 public:
  static ENameMap*& Slot() {
    return (gMappingsRecognizer->*(&CInstalled::fElemList))[XMLRecognizer::XERCES_XMLCH];
  }
};

// In place from the first parser on until the library is unloaded.
class CInstallation {
 public:
  CInstallation() : m_pBefore(CInstalled::Slot()), m_Ours(*m_pBefore) {
    CInstalled::Slot() = &m_Ours;
  }
  ~CInstallation() { CInstalled::Slot() = m_pBefore; }
  CInstallation(const CInstallation&) = delete;
  CInstallation& operator=(const CInstallation&) = delete;

 private:
  ENameMap* m_pBefore;
  CEntityEncoding m_Ours;
};

}  // namespace

CExpansionLimits::CExpansionLimits(CLoadStop& stop) : m_Stop(stop) {
  static const CInstallation s_Installation;
}

CExpansionLimits::CLoad::CLoad(CExpansionLimits& limits)
    : m_pOuter(std::exchange(t_pLimits, &limits)) {
  limits.m_Text = 0;
  limits.m_Expansions = 0;
}

CExpansionLimits::CLoad::~CLoad() { t_pLimits = m_pOuter; }

void CExpansionLimits::RequireFewExpansions() {
  if (m_Expansions <= kMostExpansions) return;
  m_Stop.Stop(u"50000", xercesc::XMLErrs::EntityExpansionLimitExceeded);
}

void CExpansionLimits::CountText(size_t units) {
  m_Text += static_cast<int64_t>(units);
  if (units == 0 || m_TextLimit == 0 || m_Text <= m_TextLimit) return;
  const std::string number = std::to_string(m_TextLimit);
  const std::u16string text = u"expansions add more than " +
                              std::u16string(number.begin(), number.end()) +
                              u" characters to the document";
  m_Stop.Stop(text.c_str());
}

void CExpansionLimits::CountDefaults(const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                                     XMLSize_t count) {
  size_t units = 0;
  for (XMLSize_t i = 0; i < count; ++i) {
    const xercesc::XMLAttr& attribute = *attributes.elementAt(i);
    if (attribute.getSpecified()) continue;
    units += kUnitsOfDefault + xercesc::XMLString::stringLen(attribute.getQName()) +
             xercesc::XMLString::stringLen(attribute.getValue());
  }
  CountText(units);
}
