// The characters of a source with the place of each.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>
#include <xercesc/util/TransService.hpp>

// Lines and columns from 1, columns in UTF-16 units. A line ends with LF, CR or both; in
// XML 1.1 also with NEL, CR and NEL, or the line separator.
struct CPlace {
  int64_t m_Offset = 0;  // bytes
  int64_t m_Line = 1;
  int64_t m_Column = 1;
};

// Reads a source unit by unit, as the parser read it: behind a byte order mark, in the
// encoding that the parser found. Malformed bytes leave as the transcoder's exception.
class CSourceText {
 public:
  // The bytes must live as long. Nobody's encoding makes an empty text.
  CSourceText(std::string_view bytes, const XMLCh* pEncoding, bool isVersion11);

  // The unit that comes next; 0 at the end.
  XMLCh Next() { return m_At < m_Count || Refill() ? m_Units[m_At] : XMLCh{0}; }
  // Takes it; there must be one.
  void Take() {
    const XMLCh unit = m_Units[m_At];
    m_Here.m_Offset += m_Sizes[m_At++];
    if (unit > 0x0D && (unit < 0x85 || !m_IsVersion11)) {
      ++m_Here.m_Column;
      m_IsAfterCR = false;
    } else {
      TakeRare(unit);
    }
  }

  const CPlace& Here() const { return m_Here; }
  bool IsAtEnd() { return Next() == 0 && m_Left.empty(); }

 private:
  static constexpr size_t kBlock = 4096;

  bool Refill();
  bool FitSizes(size_t eaten);
  void TakeRare(XMLCh unit);

  std::string_view m_Left;
  std::unique_ptr<xercesc::XMLTranscoder> m_pTranscoder;
  bool m_IsVersion11;
  bool m_IsAfterCR = false;
  CPlace m_Here;
  size_t m_At = 0;
  size_t m_Count = 0;
  std::array<XMLCh, kBlock> m_Units;
  std::array<unsigned char, kBlock> m_Sizes;  // bytes of each unit; 0 for the second of a pair
};
