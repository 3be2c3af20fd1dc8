// Sources whose bytes can be read more than once, from places that give them once.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <xercesc/sax/InputSource.hpp>
#include <xercesc/util/BinInputStream.hpp>

// Opens a source once, and reads no further ahead than it is asked to: there may be no end.
class CReplay {
 public:
  explicit CReplay(std::unique_ptr<xercesc::InputSource> pSource) : m_pSource(std::move(pSource)) {}

  const XMLCh* Name() const { return m_pSource->getSystemId(); }
  // Whether there is something; from then on it may be read.
  bool Open();
  // Bytes from a place that has been reached.
  XMLSize_t Read(XMLSize_t at, XMLByte* pBytes, XMLSize_t most);
  const xercesc::BinInputStream& Stream() const { return *m_pStream; }

 private:
  std::unique_ptr<xercesc::InputSource> m_pSource;
  bool m_IsOpen = false;
  std::unique_ptr<xercesc::BinInputStream> m_pStream;
  std::string m_Bytes;
};

// Reads the same bytes from the beginning, as often as it is opened. The replay must live
// as long.
class CReplaySource final : public xercesc::InputSource {
 public:
  explicit CReplaySource(CReplay& replay) : InputSource(replay.Name()), m_Replay(replay) {}
  xercesc::BinInputStream* makeStream() const override;

 private:
  CReplay& m_Replay;
};

// The entities of one text: the key is the base address of a reference and the name in it.
using CReplays = std::map<std::pair<std::u16string, std::u16string>, CReplay>;
