#include "document/wholefile.h"

#include <sys/stat.h>

#include <algorithm>
#include <utility>
#include <xercesc/util/BinMemInputStream.hpp>
#include <xercesc/util/XMLException.hpp>

using xercesc::BinMemInputStream;

namespace {

// What it says first may be less than there is in the end.
std::string ReadToEnd(xercesc::BinInputStream& stream, std::size_t size) {
  std::string bytes;
  std::size_t count = 0;
  while (true) {
    bytes.resize(std::max(size, 2 * count) + 1);
    const XMLSize_t more =
        stream.readBytes(reinterpret_cast<XMLByte*>(bytes.data()) + count, bytes.size() - count);
    count += more;
    if (more == 0) break;
  }
  bytes.resize(count);
  return bytes;
}

}  // namespace

std::unique_ptr<CWholeFile> CWholeFile::Read(const CExternalSource& source) try {
  struct stat status = {};
  const CPlaceOfName& place = source.Place();
  if (!place.m_IsFile || ::stat(place.m_Path.c_str(), &status) != 0) return nullptr;
  if (!S_ISREG(status.st_mode)) return nullptr;
  const std::unique_ptr<xercesc::BinInputStream> pStream(source.makeStream());
  if (pStream == nullptr) return nullptr;
  std::string bytes = ReadToEnd(*pStream, static_cast<std::size_t>(status.st_size));
  return std::unique_ptr<CWholeFile>(new CWholeFile(source.getSystemId(), std::move(bytes)));
} catch (const xercesc::XMLException&) {
  return nullptr;  // the parser will meet it, too, and has the words for it
}

xercesc::BinInputStream* CWholeFile::makeStream() const {
  return new BinMemInputStream(reinterpret_cast<const XMLByte*>(m_Bytes.data()), m_Bytes.size(),
                               BinMemInputStream::BufOpt_Reference);
}
