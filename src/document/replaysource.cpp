#include "document/replaysource.h"

#include <algorithm>

using xercesc::BinInputStream;

namespace {

class CView final : public BinInputStream {
 public:
  explicit CView(CReplay& replay) : m_Replay(replay) {}

  XMLFilePos curPos() const override { return m_At; }
  const XMLCh* getContentType() const override { return m_Replay.Stream().getContentType(); }
  const XMLCh* getEncoding() const override { return m_Replay.Stream().getEncoding(); }

  XMLSize_t readBytes(XMLByte* pBytes, XMLSize_t most) override {
    const XMLSize_t count = m_Replay.Read(m_At, pBytes, most);
    m_At += count;
    return count;
  }

 private:
  CReplay& m_Replay;
  XMLSize_t m_At = 0;
};

}  // namespace

bool CReplay::Open() {
  if (!std::exchange(m_IsOpen, true)) m_pStream.reset(m_pSource->makeStream());
  return m_pStream != nullptr;
}

XMLSize_t CReplay::Read(XMLSize_t at, XMLByte* pBytes, XMLSize_t most) {
  if (at < m_Bytes.size()) {
    const XMLSize_t count = std::min<XMLSize_t>(most, m_Bytes.size() - at);
    std::copy_n(m_Bytes.data() + at, count, pBytes);
    return count;
  }
  const XMLSize_t count = m_pStream->readBytes(pBytes, most);
  m_Bytes.append(reinterpret_cast<const char*>(pBytes), count);
  return count;
}

BinInputStream* CReplaySource::makeStream() const {
  return m_Replay.Open() ? new CView(m_Replay) : nullptr;
}
