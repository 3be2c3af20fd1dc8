// The documents that the rows work on, all generated.
#pragma once

#include <cstddef>
#include <string>

namespace bench {

constexpr size_t kNodesPerItem = 5;

// Items below one root element, about 98 bytes each:
//   <item id="i000042"><name>TEXT</name><note>TEXT</note></item>
// An item is five nodes: three elements and two texts.
std::string ItemsXml(size_t items);

// The same where every name has a prefix.
std::string PrefixedXml(size_t items);

// Smaller items below a root element, for questions:
//   <item id="42"><name>Name 42</name></item>
std::string QueryXml(size_t items);

// Elements with an attribute each and, but for every third, a child, below one root:
//   <a x="1"><b/></a>
std::string SiblingsXml(size_t elements);

// The id attribute of an item.
std::string ItemId(size_t item);

// A root element with nine empty elements.
std::string TenNodesXml();

// Empty elements with names of 8 to 20 characters below one root element.
std::string LongNamesXml(size_t elements);

// Text of about so many bytes in UTF-8: ASCII, or with every fourth character
// outside of it.
std::string AsciiText(size_t bytes);
std::string MixedText(size_t bytes);

// A temporary file, gone with its object.
class CTemporaryFile {
 public:
  explicit CTemporaryFile(const std::string& content);
  ~CTemporaryFile();
  CTemporaryFile(const CTemporaryFile&) = delete;
  CTemporaryFile& operator=(const CTemporaryFile&) = delete;

  const std::string& Path() const { return m_Path; }

 private:
  std::string m_Path;
};

}  // namespace bench
