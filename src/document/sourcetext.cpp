#include "document/sourcetext.h"

#include <algorithm>
#include <numeric>
#include <xercesc/util/PlatformUtils.hpp>

using namespace std::string_view_literals;

namespace {

// Bytes between two characters that change what the next ones mean.
constexpr size_t kMostShifting = 16;

constexpr XMLCh kNEL = 0x85, kLineSeparator = 0x2028;

// UTF-32 comes first: in one order of bytes its mark begins as that of UTF-16.
size_t SizeOfMark(std::string_view bytes) {
  for (const std::string_view mark :
       {"\0\0\xFE\xFF"sv, "\xFF\xFE\0\0"sv, "\xEF\xBB\xBF"sv, "\xFE\xFF"sv, "\xFF\xFE"sv}) {
    if (bytes.starts_with(mark)) return mark.size();
  }
  return 0;
}

}  // namespace

CSourceText::CSourceText(std::string_view bytes, const XMLCh* pEncoding, bool isVersion11)
    : m_Left(bytes), m_IsVersion11(isVersion11) {
  xercesc::XMLTransService::Codes code{};
  m_pTranscoder.reset(xercesc::XMLPlatformUtils::fgTransService->makeNewTranscoderFor(
      pEncoding, code, kBlock, xercesc::XMLPlatformUtils::fgMemoryManager));
  m_Here.m_Offset = static_cast<int64_t>(SizeOfMark(bytes));
  m_Left.remove_prefix(SizeOfMark(bytes));
}

// A unit may need more bytes than are left.
bool CSourceText::Refill() {
  if (m_pTranscoder == nullptr || m_Left.empty()) return false;
  XMLSize_t eaten = 0;
  m_At = 0;
  m_Count =
      m_pTranscoder->transcodeFrom(reinterpret_cast<const XMLByte*>(m_Left.data()), m_Left.size(),
                                   m_Units.data(), kBlock, eaten, m_Sizes.data());
  m_Left.remove_prefix(eaten);
  if (!FitSizes(eaten)) m_Count = 0;
  return m_Count != 0;
}

// The sizes of a block that begins with bytes that only shift leave these out. Where one
// begins with the second unit of a pair, whose bytes the block before it had, the first size
// that is not 0 is one too large. What else does not add up cannot be trusted.
bool CSourceText::FitSizes(size_t eaten) {
  const auto end = m_Sizes.begin() + static_cast<std::ptrdiff_t>(m_Count);
  const auto sum = std::accumulate(m_Sizes.begin(), end, size_t{0});
  const bool isShort = sum <= eaten && eaten - sum <= kMostShifting;
  const bool isLong = sum == eaten + 1;
  if (isShort) m_Here.m_Offset += static_cast<int64_t>(eaten - sum);
  if (isLong) --*std::find_if(m_Sizes.begin(), end, [](unsigned char size) { return size != 0; });
  return isShort || isLong;
}

void CSourceText::TakeRare(XMLCh unit) {
  const bool isSecond = m_IsAfterCR && (unit == u'\n' || (unit == kNEL && m_IsVersion11));
  const bool isBreak =
      unit == u'\n' || unit == u'\r' || (m_IsVersion11 && (unit == kNEL || unit == kLineSeparator));
  if (isBreak) {
    if (!isSecond) ++m_Here.m_Line;
    m_Here.m_Column = 1;
  } else {
    ++m_Here.m_Column;
  }
  m_IsAfterCR = unit == u'\r';
}
