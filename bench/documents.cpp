#include "documents.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string_view>

namespace bench {
namespace {

constexpr std::array<std::string_view, 8> kWords = {"amber", "brook", "cedar", "delta",
                                                    "ember", "fjord", "grove", "heath"};

constexpr std::string_view kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

// The same words for the same number in every run.
void AppendWords(std::string& text, size_t number, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    if (i != 0) text += ' ';
    text += kWords[(number * 7 + i * 3) % kWords.size()];
  }
}

}  // namespace

std::string ItemId(size_t item) {
  std::array<char, 24> text;
  std::snprintf(text.data(), text.size(), "i%06zu", item);
  return text.data();
}

std::string ItemsXml(size_t items) {
  std::string xml = std::string(kDeclaration) + "<list>";
  for (size_t i = 0; i < items; ++i) {
    xml += "<item id=\"" + ItemId(i) + "\"><name>";
    AppendWords(xml, i, 2);
    xml += "</name><note>";
    AppendWords(xml, i + 1, 6);
    xml += "</note></item>";
  }
  return xml + "</list>";
}

std::string PrefixedXml(size_t items) {
  std::string xml = std::string(kDeclaration) + "<l:list xmlns:l=\"urn:example:list\">";
  for (size_t i = 0; i < items; ++i) {
    xml += "<l:item l:id=\"" + ItemId(i) + "\"><l:name>";
    AppendWords(xml, i, 2);
    xml += "</l:name><l:note>";
    AppendWords(xml, i + 1, 6);
    xml += "</l:note></l:item>";
  }
  return xml + "</l:list>";
}

std::string QueryXml(size_t items) {
  std::string xml = std::string(kDeclaration) + "<list>";
  for (size_t i = 0; i < items; ++i) {
    const std::string number = std::to_string(i);
    xml += "<item id=\"" + number + "\"><name>Name " + number + "</name></item>";
  }
  return xml + "</list>";
}

std::string SiblingsXml(size_t elements) {
  std::string xml = "<root>";
  for (size_t i = 0; i < elements; ++i) {
    xml += "<a x=\"" + std::to_string(i % 2) + (i % 3 == 0 ? "\"/>" : "\"><b/></a>");
  }
  return xml + "</root>";
}

std::string TenNodesXml() {
  std::string xml = "<list>";
  for (int i = 0; i < 9; ++i) xml += "<leaf/>";
  return xml + "</list>";
}

std::string LongNamesXml(size_t elements) {
  std::string xml = "<list>";
  for (size_t i = 0; i < elements; ++i) {
    xml += '<' + std::string("abcdefghijklmnopqrst", 8 + i % 13) + "/>";
  }
  return xml + "</list>";
}

std::string AsciiText(size_t bytes) {
  std::string text;
  while (text.size() < bytes) AppendWords(text, text.size(), 4);
  return text;
}

std::string MixedText(size_t bytes) {
  std::string text;
  while (text.size() < bytes) text += "abc\u00e9def\u8a9e";
  return text;
}

CTemporaryFile::CTemporaryFile(const std::string& content)
    : m_Path(std::filesystem::temp_directory_path() / "tessel-bench-XXXXXX") {
  const int file = mkstemp(m_Path.data());
  if (file < 0) throw std::runtime_error("cannot make a temporary file");
  close(file);
  std::ofstream(m_Path, std::ios::binary) << content;
}

CTemporaryFile::~CTemporaryFile() { std::remove(m_Path.c_str()); }

}  // namespace bench
