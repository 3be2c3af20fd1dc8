// The internal subset of a document as it stands in the source.
#pragma once

#include <memory>
#include <string>
#include <xercesc/internal/XMLReader.hpp>
#include <xercesc/sax/InputSource.hpp>
#include <xercesc/util/BinInputStream.hpp>

// The parser builds a text of the declarations that it has seen, which lacks what it
// does not tell: quotes, references, comments as they were. So the first bytes of the
// source are kept until its root element begins, and the subset is read from them once
// more, in the encoding that the parser found.
class CSubsetCapture {
 public:
  CSubsetCapture() = default;
  CSubsetCapture(const CSubsetCapture&) = delete;
  CSubsetCapture& operator=(const CSubsetCapture&) = delete;

  // A source that reads as `source` does and has its first bytes kept, while it lives.
  // Both must live as long.
  std::unique_ptr<xercesc::InputSource> Watch(const xercesc::InputSource& source);

  // Nothing is kept any more.
  void Stop();

  // The text between the brackets, its line ends as the parser gives them; without any
  // where nothing was kept. For the moment at which the parser has passed the subset:
  // `reader` is the document's.
  std::u16string Read(const xercesc::XMLReader& reader,
                      xercesc::XMLReader::XMLVersion version) const;

 private:
  class CStream;
  class CSource;

  bool m_IsKeeping = false;
  bool m_IsForced = false;  // the source says the encoding, whatever the text says
  std::string m_Bytes;
};
