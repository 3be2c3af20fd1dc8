#include "io/encoding.h"

#include <algorithm>
#include <vector>
#include <xercesc/util/XML88591Transcoder.hpp>
#include <xercesc/util/XMLASCIITranscoder.hpp>
#include <xercesc/util/XMLUCS4Transcoder.hpp>
#include <xercesc/util/XMLUTF16Transcoder.hpp>
#include <xercesc/util/XMLUTF8Transcoder.hpp>

#include "dom/parts.h"
#include "host/guards.h"
#include "host/utf8.h"
#include "io/unwritable.h"

using xercesc::XMLTranscoder;

namespace {

constexpr XMLSize_t kBlock = XMLSize_t{16} * 1024;

std::unique_ptr<XMLTranscoder> NewTranscoder(const std::u16string& name) {
  xercesc::XMLTransService::Codes code{};
  std::unique_ptr<XMLTranscoder> pTranscoder(
      xercesc::XMLPlatformUtils::fgTransService->makeNewTranscoderFor(
          name.c_str(), code, kBlock, xercesc::XMLPlatformUtils::fgMemoryManager));
  if (pTranscoder == nullptr) throw NotInEncoding(u"nobody knows the encoding");
  return pTranscoder;
}

template <class Transcoder>
bool IsA(const XMLTranscoder& transcoder) {
  // The transcoding service tells no kind, so a run-time cast does, once a document.
  return dynamic_cast<const Transcoder*>(&transcoder) != nullptr;
}

// Where the service raises, the text is not for this encoding.
XMLSize_t Transcode(XMLTranscoder& transcoder, const XMLCh* pText, XMLSize_t count, char* pTo,
                    XMLSize_t most, XMLSize_t& eaten) {
  XMLSize_t written = 0;
  eaten = 0;
  const auto status = Always<domErrInvalidCharacter>::Run([&] {
    written = transcoder.transcodeTo(pText, count, reinterpret_cast<XMLByte*>(pTo), most, eaten,
                                     XMLTranscoder::UnRep_Throw);
  });
  return status == 0 ? written : 0;
}

}  // namespace

const XMLCh* GetDocumentEncoding(const xercesc::DOMDocument& document) {
  return document.getXmlEncoding();
}

void SetDocumentEncoding(xercesc::DOMDocument& document, const XMLCh* pEncoding) {
  dom::Impl(document).setXmlEncoding(pEncoding);
}

std::u16string WrittenEncoding(const xercesc::DOMDocument* pDocument) {
  if (pDocument != nullptr) {
    for (const XMLCh* pName : {pDocument->getXmlEncoding(), pDocument->getInputEncoding()}) {
      if (pName == nullptr || *pName == 0) continue;
      const std::u16string name(pName);
      return name.substr(0, name.find(u' '));  // the parser says "UTF-16 (LE)"
    }
  }
  return u"UTF-8";
}

CEncoding::CEncoding(const std::u16string& name) : m_pTranscoder(NewTranscoder(name)) {
  const XMLTranscoder& transcoder = *m_pTranscoder;
  if (IsA<xercesc::XMLASCIITranscoder>(transcoder) ||
      IsA<xercesc::XML88591Transcoder>(transcoder)) {
    m_Reach = EReach::kUpTo;
    m_End = IsA<xercesc::XMLASCIITranscoder>(transcoder) ? 0x80 : 0x100;
  } else if (!IsA<xercesc::XMLUTF8Transcoder>(transcoder) &&
             !IsA<xercesc::XMLUTF16Transcoder>(transcoder) &&
             !IsA<xercesc::XMLUCS4Transcoder>(transcoder)) {
    m_Reach = EReach::kAsked;
    m_pProbe = NewTranscoder(name);
  }
  const bool isUtf8 =
      IsA<xercesc::XMLUTF8Transcoder>(transcoder) || IsA<xercesc::XMLASCIITranscoder>(transcoder);
  if (isUtf8) m_pTranscoder.reset();
}

bool CEncoding::Ask(char32_t code) {
  const auto [answer, isNew] = m_Answers.try_emplace(code, false);
  if (isNew) answer->second = Probe(code);
  return answer->second;
}

bool CEncoding::Probe(char32_t code) {
  XMLCh units[2];
  const std::size_t count = utf8::ToUnits(code, units);
  char bytes[64];
  XMLSize_t eaten = 0;
  // Asked for a pair, the service looks at another character. It says yes to characters
  // that nobody sees, such as a joiner, and leaves them out.
  if (count == 1 && !m_pProbe->canTranscodeTo(units[0])) return false;
  return Transcode(*m_pProbe, units, count, bytes, sizeof bytes, eaten) != 0 && eaten == count;
}

void CEncoding::Encode(CByteBuffer& text) {
  if (m_pTranscoder == nullptr) return;
  const std::string_view from = text.View();
  const auto units = std::make_unique_for_overwrite<XMLCh[]>(from.size());
  const auto count =
      utf8::Decode(reinterpret_cast<const unsigned char*>(from.data()), from.size(), units.get());
  CByteBuffer encoded;
  const XMLCh* pText = units.get();
  for (std::size_t left = count.value(); left != 0;) {
    XMLSize_t eaten = 0;
    char* pTo = encoded.Room(kBlock);
    const XMLSize_t written = Transcode(*m_pTranscoder, pText, left, pTo, kBlock, eaten);
    if (eaten == 0) throw NotInEncoding(u"the encoding lacks a character");
    encoded.SetEnd(pTo + written);
    pText += eaten;
    left -= eaten;
  }
  text = std::move(encoded);
}
