#include "recode.h"

#include <iconv.h>
#include <strings.h>

#include <array>
#include <cerrno>

namespace {

class CConverter {
 public:
  CConverter(const std::string& from, const std::string& to)
      : m_Converter(iconv_open(to.c_str(), from.c_str())) {}
  CConverter(const CConverter&) = delete;
  CConverter& operator=(const CConverter&) = delete;
  ~CConverter() {
    if (IsOpen()) iconv_close(m_Converter);
  }

  bool IsOpen() const { return m_Converter != reinterpret_cast<iconv_t>(-1); }

  std::optional<std::string> Convert(std::string_view text) {
    std::string result;
    std::array<char, 65536> buffer;
    char* pFrom = const_cast<char*>(text.data());
    size_t left = text.size();
    while (left > 0) {
      char* pTo = buffer.data();
      size_t room = buffer.size();
      const size_t converted = iconv(m_Converter, &pFrom, &left, &pTo, &room);
      result.append(buffer.data(), buffer.size() - room);
      if (converted == static_cast<size_t>(-1) && errno != E2BIG) return std::nullopt;
    }
    return result;
  }

 private:
  iconv_t m_Converter;
};

}  // namespace

bool IsUTF8(const std::string& encoding) { return strcasecmp(encoding.c_str(), "UTF-8") == 0; }

std::optional<std::string> Recode(std::string_view text, const std::string& from,
                                  const std::string& to) {
  CConverter converter(from, to);
  if (!converter.IsOpen()) return std::nullopt;
  return converter.Convert(text);
}
