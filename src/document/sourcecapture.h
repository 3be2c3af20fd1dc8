// The bytes of a source, kept while the parser reads them.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <xercesc/internal/XMLReader.hpp>
#include <xercesc/sax/InputSource.hpp>
#include <xercesc/util/BinInputStream.hpp>

// The parser builds a text of the internal subset's declarations that it has seen, which
// lacks what it does not tell: quotes, references, comments as they were. So the first
// bytes of the source are kept until its root element begins, and the subset is read from
// them once more, in the encoding that the parser found. Where positions are wanted, all
// bytes are kept: what is looked at afterwards is what the parser read, whatever happens
// to the file meanwhile.
class CSourceCapture {
 public:
  CSourceCapture() = default;
  CSourceCapture(const CSourceCapture&) = delete;
  CSourceCapture& operator=(const CSourceCapture&) = delete;

  // Whether the sources that are watched from now on are kept to their end.
  void KeepAll(bool keepsAll) { m_KeepsAll = keepsAll; }

  // A source that reads as `source` does and has its bytes kept, while it lives.
  // Both must live as long.
  std::unique_ptr<xercesc::InputSource> Watch(const xercesc::InputSource& source);

  // The subset has been passed: nothing more is kept for it.
  void PassSubset();

  // The text between the brackets, its line ends as the parser gives them; without any
  // where nothing was kept. For the moment at which the parser has passed the subset:
  // `reader` is the document's.
  std::u16string Subset(const xercesc::XMLReader& reader,
                        xercesc::XMLReader::XMLVersion version) const;

  // All that was read of the last source, once it is gone; empty unless all was kept.
  std::string TakeAll() { return std::exchange(m_Bytes, {}); }

 private:
  class CStream;
  class CSource;

  bool m_KeepsAll = false;
  bool m_IsKeeping = false;
  bool m_IsForced = false;  // the source says the encoding, whatever the text says
  std::string m_Bytes;
};
