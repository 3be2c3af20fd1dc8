#include "document/plainfile.h"

#include <sys/stat.h>

#include <algorithm>
#include <memory>

#include "document/plaintext.h"
#include "host/guards.h"

namespace {

constexpr off_t kLargest = off_t{1} << 30;

// What the system makes up as it is read says that it has no size.
std::size_t SizeOf(const CPlaceOfName& place) {
  struct stat status = {};
  if (!place.m_IsFile || ::stat(place.m_Path.c_str(), &status) != 0) return 0;
  if (!S_ISREG(status.st_mode) || status.st_size > kLargest) return 0;
  return static_cast<std::size_t>(status.st_size);
}

// Beyond the size that was told where there is more in the end.
std::optional<std::string> ReadToEnd(xercesc::BinInputStream& stream, std::size_t size) {
  constexpr std::size_t kHead = 4096;
  std::string bytes(std::min(size, kHead), 0);
  std::size_t count = 0;
  while (true) {
    const XMLSize_t more =
        stream.readBytes(reinterpret_cast<XMLByte*>(bytes.data()) + count, bytes.size() - count);
    if (count == 0 && !MayBeginPlain({bytes.data(), more})) return std::nullopt;
    count += more;
    if (more == 0) break;
    if (count == bytes.size()) bytes.resize(std::max(size, count) + kHead);
  }
  bytes.resize(count);
  return bytes;
}

}  // namespace

std::optional<std::string> ReadPlainFile(const CExternalSource& source) {
  std::optional<std::string> bytes;
  const std::size_t size = SizeOf(source.Place());
  if (size == 0) return bytes;
  static_cast<void>(Always<domErrUnexpected>::Run([&] {
    const std::unique_ptr<xercesc::BinInputStream> pStream(source.makeStream());
    if (pStream != nullptr) bytes = ReadToEnd(*pStream, size);
  }));
  return bytes;
}
