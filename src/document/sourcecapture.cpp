#include "document/sourcecapture.h"

#include <utility>
#include <xercesc/util/BinMemInputStream.hpp>

#include "document/subsetlexer.h"

using xercesc::BinInputStream;
using xercesc::InputSource;
using xercesc::XMLReader;

// Hands bytes on and keeps a copy.
class CSourceCapture::CStream final : public BinInputStream {
 public:
  CStream(CSourceCapture& capture, BinInputStream* pInner) : m_Capture(capture), m_pInner(pInner) {}

  XMLFilePos curPos() const override { return m_pInner->curPos(); }
  XMLSize_t readBytes(XMLByte* pTo, XMLSize_t most) override {
    const XMLSize_t count = m_pInner->readBytes(pTo, most);
    if (m_Capture.m_IsKeeping) m_Capture.m_Bytes.append(reinterpret_cast<char*>(pTo), count);
    return count;
  }
  const XMLCh* getContentType() const override { return m_pInner->getContentType(); }
  const XMLCh* getEncoding() const override { return m_pInner->getEncoding(); }

 private:
  CSourceCapture& m_Capture;
  std::unique_ptr<BinInputStream> m_pInner;
};

class CSourceCapture::CSource final : public InputSource {
 public:
  CSource(CSourceCapture& capture, const InputSource& inner)
      : InputSource(inner.getSystemId(), inner.getPublicId()), m_Capture(capture), m_Inner(inner) {
    if (inner.getEncoding() != nullptr) setEncoding(inner.getEncoding());
    setIssueFatalErrorIfNotFound(inner.getIssueFatalErrorIfNotFound());
    m_Capture.m_IsKeeping = true;
  }
  ~CSource() override {
    m_Capture.PassSubset();
    m_Capture.m_IsKeeping = false;
  }

  BinInputStream* makeStream() const override {
    BinInputStream* pStream = m_Inner.makeStream();
    if (pStream == nullptr) return nullptr;
    m_Capture.m_Bytes.clear();
    m_Capture.m_IsForced = getEncoding() != nullptr || pStream->getEncoding() != nullptr;
    return new CStream(m_Capture, pStream);
  }

 private:
  CSourceCapture& m_Capture;
  const InputSource& m_Inner;
};

std::unique_ptr<InputSource> CSourceCapture::Watch(const InputSource& source) {
  return std::make_unique<CSource>(*this, source);
}

void CSourceCapture::PassSubset() {
  if (m_KeepsAll) return;
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

std::u16string CSourceCapture::Subset(const XMLReader& like, XMLReader::XMLVersion version) const {
  std::u16string subset;
  if (!m_IsKeeping) return subset;
  const auto reader = NewReader(m_Bytes, like, m_IsForced, version);
  CSubsetLexer lexer;
  XMLCh unit = 0;
  // The document type is the first declaration.
  while (reader->getNextChar(unit) && !(lexer.IsInDeclaration() && unit == u'[')) lexer.Take(unit);
  lexer = CSubsetLexer();
  while (reader->getNextChar(unit) && unit != 0 && !(lexer.IsOutside() && unit == u']')) {
    subset += unit;
    lexer.Take(unit);
  }
  return subset;
}
