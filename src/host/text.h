// Owners of the buffers that a string passes through on its way across the
// boundary. Each buffer lives exactly as long as its object.
#pragma once

#include <tessel/values.h>

#include <memory>
#include <xercesc/util/XMLString.hpp>

// A host string as a NUL-terminated byte string, cut at its first NUL byte.
class CHostText {
 public:
  explicit CHostText(HStr* pString) : m_pText(HStrToCStr(pString)) {}
  const char* Get() const { return m_pText.get(); }

 private:
  std::unique_ptr<char[]> m_pText;
};

struct CXercesRelease {
  void operator()(XMLCh* pText) const { xercesc::XMLString::release(&pText); }
  void operator()(char* pText) const { xercesc::XMLString::release(&pText); }
};

// UTF-16 text made from a host string in the local code page, cut at its first NUL
// byte. ASCII and well-formed UTF-8 are decoded in place; all else is the transcoder's.
class CWideText {
 public:
  explicit CWideText(HStr* pString);
  explicit CWideText(const char* pText) : m_pTranscoded(xercesc::XMLString::transcode(pText)) {
    m_pText = m_pTranscoded.get();
  }
  CWideText(const CWideText&) = delete;
  CWideText& operator=(const CWideText&) = delete;

  const XMLCh* Get() const { return m_pText; }

 private:
  static constexpr size_t kShort = 48;  // most names fit: no allocation

  // Takes a short text of ASCII in one pass; false for any other.
  bool TakeShort(const HStr* pString);
  // Room for `count` units and a NUL.
  XMLCh* Allocate(size_t count);
  // False where the bytes are not UTF-8.
  bool Decode(const unsigned char* pBytes, size_t count);

  XMLCh m_Short[kShort];
  std::unique_ptr<XMLCh[]> m_pLong;
  std::unique_ptr<XMLCh[], CXercesRelease> m_pTranscoded;
  const XMLCh* m_pText = nullptr;
};

// Local code page text made from UTF-16; null stays null.
class CLocalText {
 public:
  explicit CLocalText(const XMLCh* pText) : m_pText(xercesc::XMLString::transcode(pText)) {}
  const char* Get() const { return m_pText.get(); }

 private:
  std::unique_ptr<char[], CXercesRelease> m_pText;
};

// Hands UTF-16 text to the host; null clears the string. Returns the host code.
int32_t StoreText(const XMLCh* pText, HStr* pString);
