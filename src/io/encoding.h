// The encoding of a document: its name, and the bytes of a text in it.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <xercesc/dom/DOMDocument.hpp>
#include <xercesc/util/TransService.hpp>

#include "io/bytebuffer.h"

// The encoding that a document declares; null for none.
const XMLCh* GetDocumentEncoding(const xercesc::DOMDocument& document);
void SetDocumentEncoding(xercesc::DOMDocument& document, const XMLCh* pEncoding);

// The encoding that a document is written in: what it declares, what it was read in, or
// UTF-8. Null stands for a node of no document.
std::u16string WrittenEncoding(const xercesc::DOMDocument* pDocument);

// An encoding to write in. Text is made in UTF-8 and leaves in the encoding; UTF-8 and
// ASCII are that already, all others are the transcoding service's.
class CEncoding {
 public:
  // Throws CUnwritable for a name that nobody knows.
  explicit CEncoding(const std::u16string& name);

  // Whether it has a character beyond ASCII; ASCII is taken for granted.
  bool Has(char32_t code) {
    return m_Reach == EReach::kAll || (m_Reach == EReach::kAsked ? Ask(code) : code < m_End);
  }
  bool HasAll() const { return m_Reach == EReach::kAll; }
  // Whether a parser knows it by a byte order mark alone: UTF-16 and UTF-32.
  bool IsWide() const { return HasAll() && m_pTranscoder != nullptr; }

  // Turns UTF-8 into the encoding.
  void Encode(CByteBuffer& text);

 private:
  enum class EReach { kAll, kUpTo, kAsked };

  bool Ask(char32_t code);
  bool Probe(char32_t code);

  std::unique_ptr<xercesc::XMLTranscoder> m_pTranscoder;  // null where nothing is to be done
  // Questions have one of their own: some encodings keep a state.
  std::unique_ptr<xercesc::XMLTranscoder> m_pProbe;
  std::unordered_map<char32_t, bool> m_Answers;
  EReach m_Reach = EReach::kAll;
  char32_t m_End = 0;
};
