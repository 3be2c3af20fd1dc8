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

// UTF-16 text made from the local code page.
class CWideText {
 public:
  explicit CWideText(const char* pText) : m_pText(xercesc::XMLString::transcode(pText)) {}
  explicit CWideText(HStr* pString) : CWideText(CHostText(pString).Get()) {}
  const XMLCh* Get() const { return m_pText.get(); }

 private:
  std::unique_ptr<XMLCh[], CXercesRelease> m_pText;
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
inline int32_t StoreText(const XMLCh* pText, HStr* pString) {
  return CStrToHStr(CLocalText(pText).Get(), pString);
}
