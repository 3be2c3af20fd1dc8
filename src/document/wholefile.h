// A file that is read at once.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <xercesc/sax/InputSource.hpp>

#include "document/externalsource.h"

// Reads as the source of the file does, from memory.
class CWholeFile final : public xercesc::InputSource {
 public:
  // Null for what is no regular file, which might not be there a second time or have no end,
  // and for one that cannot be read to its end.
  static std::unique_ptr<CWholeFile> Read(const CExternalSource& source);

  // A NUL stands behind them.
  std::string_view Bytes() const { return m_Bytes; }
  xercesc::BinInputStream* makeStream() const override;

 private:
  CWholeFile(const XMLCh* pSystemId, std::string bytes)
      : InputSource(pSystemId), m_Bytes(std::move(bytes)) {}

  std::string m_Bytes;
};
