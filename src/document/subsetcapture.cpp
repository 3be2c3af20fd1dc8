#include "document/subsetcapture.h"

#include <utility>
#include <xercesc/util/BinMemInputStream.hpp>

#include "document/subsetlexer.h"

using xercesc::BinInputStream;
using xercesc::InputSource;
using xercesc::XMLReader;

// Hands bytes on and keeps a copy.
class CSubsetCapture::CStream final : public BinInputStream {
 public:
  CStream(CSubsetCapture& capture, BinInputStream* pInner) : m_Capture(capture), m_pInner(pInner) {}

  XMLFilePos curPos() const override { return m_pInner->curPos(); }
  XMLSize_t readBytes(XMLByte* pTo, XMLSize_t most) override {
    const XMLSize_t count = m_pInner->readBytes(pTo, most);
    if (m_Capture.m_IsKeeping) m_Capture.m_Bytes.append(reinterpret_cast<char*>(pTo), count);
    return count;
  }
  const XMLCh* getContentType() const override { return m_pInner->getContentType(); }
  const XMLCh* getEncoding() const override { return m_pInner->getEncoding(); }

 private:
  CSubsetCapture& m_Capture;
  std::unique_ptr<BinInputStream> m_pInner;
};

class CSubsetCapture::CSource final : public InputSource {
 public:
  CSource(CSubsetCapture& capture, const InputSource& inner)
      : InputSource(inner.getSystemId(), inner.getPublicId()), m_Capture(capture), m_Inner(inner) {
    if (inner.getEncoding() != nullptr) setEncoding(inner.getEncoding());
    setIssueFatalErrorIfNotFound(inner.getIssueFatalErrorIfNotFound());
    m_Capture.m_IsKeeping = true;
  }
  ~CSource() override { m_Capture.Stop(); }

  BinInputStream* makeStream() const override {
    BinInputStream* pStream = m_Inner.makeStream();
    if (pStream == nullptr) return nullptr;
    m_Capture.m_IsForced = getEncoding() != nullptr || pStream->getEncoding() != nullptr;
    return new CStream(m_Capture, pStream);
  }

 private:
  CSubsetCapture& m_Capture;
  const InputSource& m_Inner;
};

std::unique_ptr<InputSource> CSubsetCapture::Watch(const InputSource& source) {
  return std::make_unique<CSource>(*this, source);
}

void CSubsetCapture::Stop() {
  m_IsKeeping = false;
  m_Bytes = {};
}

namespace {

std::unique_ptr<XMLReader> NewReader(const std::string& bytes, const XMLReader& like, bool isForced,
                                     XMLReader::XMLVersion version) {
  auto stream = std::make_unique<xercesc::BinMemInputStream>(
      reinterpret_cast<const XMLByte*>(bytes.data()), bytes.size(),
      xercesc::BinMemInputStream::BufOpt_Reference);
  const auto make = [&](auto... encoding) {
    return std::make_unique<XMLReader>(
        nullptr, like.getSystemId(), stream.get(), encoding..., XMLReader::RefFrom_NonLiteral,
        XMLReader::Type_General, XMLReader::Source_External, false, false, XMLSize_t{100}, version);
  };
  auto reader = isForced ? make(like.getEncodingStr()) : make();
  static_cast<void>(stream.release());  // the reader has taken it
  reader->setEncoding(like.getEncodingStr());
  return reader;
}  // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the reader owns the stream

}  // namespace

std::u16string CSubsetCapture::Read(const XMLReader& like, XMLReader::XMLVersion version) const {
  std::u16string subset;
  if (!m_IsKeeping) return subset;
  const auto reader = NewReader(m_Bytes, like, m_IsForced, version);
  CSubsetLexer lexer;
  XMLCh unit = 0;
  // The document type is the first declaration.
  while (reader->getNextChar(unit) && !(lexer.IsInDeclaration() && unit == u'[')) lexer.Take(unit);
  lexer = CSubsetLexer();
  while (reader->getNextChar(unit) && !(lexer.IsOutside() && unit == u']')) {
    subset += unit;
    lexer.Take(unit);
  }
  return subset;
}
