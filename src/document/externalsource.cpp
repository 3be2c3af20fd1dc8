#include "document/externalsource.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <xercesc/framework/LocalFileInputSource.hpp>
#include <xercesc/util/BinInputStream.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLUniDefs.hpp>
#include <xercesc/util/XMLUri.hpp>

#include "host/text.h"

using xercesc::BinInputStream;
using xercesc::XMLString;
using xercesc::XMLURL;

namespace {

// -- Names -----------------------------------------------------------------------

int HexDigit(XMLCh unit) {
  if (unit >= u'0' && unit <= u'9') return unit - u'0';
  const XMLCh lower = unit | 0x20;
  return lower >= u'a' && lower <= u'f' ? lower - u'a' + 10 : -1;
}

// As the XML library resolves escapes: one unit each, whatever the bytes would be.
std::u16string Unescaped(const XMLCh* pText) {
  std::u16string text;
  for (; *pText != 0; ++pText) {
    const int high = *pText == u'%' ? HexDigit(pText[1]) : -1;
    const int low = high >= 0 ? HexDigit(pText[2]) : -1;
    text += low >= 0 ? static_cast<XMLCh>(high * 16 + low) : *pText;
    if (low >= 0) pText += 2;
  }
  return text;
}

// A name of a file ends at a NUL for the system, so what has one names none.
std::string NativePath(const std::u16string& path) {
  if (path.find(u'\0') != std::u16string::npos) return {};
  const CLocalText native(path.c_str());
  return native.Get() != nullptr ? native.Get() : "";
}

CPlaceOfName OfURL(const XMLURL& url) {
  CPlaceOfName place;
  place.m_pSource = std::make_unique<xercesc::URLInputSource>(url);
  const bool isLocal =
      url.getHost() == nullptr || XMLString::compareIStringASCII(url.getHost(), u"localhost") == 0;
  place.m_IsFile = url.getProtocol() == XMLURL::File && isLocal;
  if (place.m_IsFile) place.m_Path = NativePath(Unescaped(url.getPath()));
  return place;
}

CPlaceOfName OfFile(std::unique_ptr<xercesc::InputSource> pSource) {
  CPlaceOfName place;
  place.m_IsFile = true;
  place.m_Path = NativePath(pSource->getSystemId());
  place.m_pSource = std::move(pSource);
  return place;
}

// -- Streams ---------------------------------------------------------------------

class CFileStream final : public BinInputStream {
 public:
  explicit CFileStream(CFile file) : m_File(std::move(file)) {}

  XMLFilePos curPos() const override { return m_Position; }
  const XMLCh* getContentType() const override { return nullptr; }

  XMLSize_t readBytes(XMLByte* pBytes, XMLSize_t most) override {
    ssize_t count = 0;
    do {
      count = read(m_File.Get(), pBytes, most);
    } while (count < 0 && errno == EINTR);
    if (count < 0) {
      throw xercesc::XMLPlatformUtilsException(__FILE__, __LINE__,
                                               xercesc::XMLExcepts::File_CouldNotReadFromFile);
    }
    m_Position += static_cast<XMLFilePos>(count);
    return static_cast<XMLSize_t>(count);
  }

 private:
  CFile m_File;
  XMLFilePos m_Position = 0;
};

// Counts the UTF-16 units that bytes come to. UTF-8 and UTF-16 are counted exactly; in
// other encodings a byte or two count as one unit, and what looks like UTF-8 counts as a
// third at worst.
class CUnitCounter {
 public:
  size_t Count(const XMLByte* pBytes, size_t size) {
    if (m_IsFirst && size >= 2) {
      m_IsFirst = false;
      const unsigned mark = pBytes[0] * 256u + pBytes[1];
      m_IsWide = mark == 0xfeff || mark == 0xfffe || pBytes[0] == 0 || pBytes[1] == 0;
    }
    if (m_IsWide) return (size + 1) / 2;
    size_t units = 0;
    for (size_t i = 0; i < size; ++i) units += UnitsOf(pBytes[i]);
    return units;
  }

 private:
  size_t UnitsOf(XMLByte byte) {
    if ((byte & 0xc0) == 0x80 && m_Pending > 0) {
      --m_Pending;
      return 0;
    }
    m_Pending = byte >= 0xf0 ? 3 : byte >= 0xe0 ? 2 : byte >= 0xc0 ? 1 : 0;
    return byte >= 0xf0 ? 2 : 1;
  }

  bool m_IsFirst = true;
  bool m_IsWide = false;
  int m_Pending = 0;  // bytes that may follow in a character of UTF-8
};

// Reads its first bytes at once: the parser's reader, which would ask for them while it
// is made, loses memory where they cannot be read, as those of a folder.
class CWatchedStream final : public BinInputStream {
 public:
  CWatchedStream(std::unique_ptr<BinInputStream> pStream, const CWatch& watch)
      : m_pStream(std::move(pStream)),
        m_Watch(watch),
        m_pHead(std::make_unique_for_overwrite<XMLByte[]>(kHead)),
        m_HeadSize(m_pStream->readBytes(m_pHead.get(), kHead)) {
    if (m_Watch.m_pLost != nullptr) m_Watch.m_pLost->Expect();
  }
  // A reader that is left within its first bytes goes before its place is left.
  ~CWatchedStream() override { TakeLost(); }

  XMLFilePos curPos() const override { return m_Position; }
  const XMLCh* getContentType() const override { return m_pStream->getContentType(); }
  const XMLCh* getEncoding() const override { return m_pStream->getEncoding(); }

  // What the reader asks for first counts when it asks again, and is in place.
  XMLSize_t readBytes(XMLByte* pBytes, XMLSize_t most) override {
    if (m_HasReader) {
      TakeLost();
      if (m_Watch.m_pLimits != nullptr) m_Watch.m_pLimits->CountText(std::exchange(m_Units, 0));
    }
    m_HasReader = true;
    const XMLSize_t size = Next(pBytes, most);
    m_Position += size;
    if (m_Watch.m_pLimits != nullptr) m_Units += m_Counter.Count(pBytes, size);
    return size;
  }

 private:
  static constexpr XMLSize_t kHead = XMLSize_t{48} * 1024;  // as much as a reader asks for

  void TakeLost() {
    if (m_Watch.m_pLost != nullptr) m_Watch.m_pLost->TakeFrom(*m_Watch.m_pReaders);
    m_Watch.m_pLost.reset();
  }

  XMLSize_t Next(XMLByte* pBytes, XMLSize_t most) {
    if (m_pHead == nullptr) return m_pStream->readBytes(pBytes, most);
    const XMLSize_t size = std::min(most, m_HeadSize - m_HeadUsed);
    std::copy_n(m_pHead.get() + m_HeadUsed, size, pBytes);
    m_HeadUsed += size;
    if (m_HeadUsed == m_HeadSize) m_pHead.reset();
    return size;
  }

  std::unique_ptr<BinInputStream> m_pStream;
  CWatch m_Watch;
  CUnitCounter m_Counter;
  XMLFilePos m_Position = 0;
  size_t m_Units = 0;  // read and not yet counted
  bool m_HasReader = false;
  std::unique_ptr<XMLByte[]> m_pHead;  // until it has been handed on
  XMLSize_t m_HeadSize = 0;
  XMLSize_t m_HeadUsed = 0;
};

}  // namespace

// Declared entities, which the grammar owns, have a base where they are external.
void CLostEntities::TakeFrom(const xercesc::ReaderMgr& readers) noexcept {
  const xercesc::XMLEntityDecl* pEntity = readers.getCurrentEntity();
  if (pEntity == nullptr || !pEntity->isExternal() || pEntity->getBaseURI() != nullptr) return;
  const auto isIt = [&](const auto& lost) { return lost.get() == pEntity; };
  if (std::ranges::none_of(m_Lost, isIt)) m_Lost.emplace_back(pEntity);
}

CPlaceOfName CPlaceOfName::InDocument(const XMLCh* pBase, const XMLCh* pName) {
  XMLURL url;
  if (url.setURL(pBase, pName, url) && !url.isRelative()) return OfURL(url);
  xercesc::XMLBuffer name;
  xercesc::XMLUri::normalizeURI(pName, name);
  return OfFile(std::make_unique<xercesc::LocalFileInputSource>(pBase, name.getRawBuffer()));
}

CPlaceOfName CPlaceOfName::OfDocument(const char* pName) {
  const CWideText name(pName);
  XMLURL url;
  if (XMLURL::parse(name.Get(), url) && !url.isRelative()) return OfURL(url);
  std::error_code error;
  if (*pName != '/' && std::filesystem::current_path(error).empty()) return {};
  return OfFile(std::make_unique<xercesc::LocalFileInputSource>(name.Get()));
}

CExternalSource::CExternalSource(CPlaceOfName place, CAnswer answer, const CWatch& watch)
    : InputSource(place.m_pSource->getSystemId()),
      m_Place(std::move(place)),
      m_Answer(std::move(answer)),
      m_Watch(watch) {}

BinInputStream* CExternalSource::makeStream() const {
  std::unique_ptr<BinInputStream> pStream;
  if (m_Answer.m_File.IsOpen()) {
    pStream = std::make_unique<CFileStream>(std::move(m_Answer.m_File));
  } else if (m_Answer.m_IsByName) {
    pStream.reset(m_Place.m_pSource->makeStream());
  }
  if (pStream == nullptr) return nullptr;
  return new CWatchedStream(std::move(pStream), m_Watch);
}
