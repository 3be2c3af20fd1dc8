#include "decoder.h"

#include <unistd.h>

#include <array>
#include <filesystem>

namespace fuzz {

namespace {

using std::string_view_literals::operator""sv;

constexpr std::array kNames{
    "a"sv,
    "b"sv,
    "r"sv,
    "id"sv,
    "p:a"sv,
    "u"sv,
    ""sv,
    "x"sv,
    "*"sv,
    "text"sv,
    "e"sv,
    "n"sv,
    "d"sv,
    "xmlns"sv,
    "xmlns:p"sv,
    "xml:lang"sv,
    "xml:space"sv,
    "preserve"sv,
    "http://www.w3.org/2000/xmlns/"sv,
    "http://www.w3.org/XML/1998/namespace"sv,
    "1"sv,
    "1a"sv,
    "a:b:c"sv,
    ":a"sv,
    "a:"sv,
    " "sv,
    "p"sv,
    "--"sv,
    "]]>"sv,
    "?>"sv,
    "<"sv,
    "&e;"sv,
    "a b"sv,
    "\xc3\xa9"sv,
    "\xf0\x9f\x98\x80"sv,
    "\xff\xfe"sv,
    "\xe2\x82"sv,
    "a\0b"sv,
    "\r\n"sv,
    "UTF-8"sv,
    "UTF-16"sv,
    "ISO-8859-1"sv,
    "US-ASCII"sv,
    "no-such"sv,
    "Core"sv,
    "XML"sv,
    "LS"sv,
    "2.0"sv,
    "#text"sv,
    "xml"sv,
};

constexpr std::array kDocuments{
    "<r/>"sv,
    "<r a='1' b='2'><a>t</a><b/>tail</r>"sv,
    "<r><a id='x'><a id='y'/></a>one<!--c--><?p d?><![CDATA[s]]></r>"sv,
    "<!DOCTYPE r [<!ENTITY e 'x<b>y</b>'><!NOTATION n SYSTEM 's'><!ENTITY u SYSTEM 'f' NDATA n>]><r a='&e;'>&e;<a/></r>"sv,
    "<!DOCTYPE r [<!ATTLIST a id ID #IMPLIED d CDATA 'def'><!ENTITY e 'v'>]><r><a id='x'/><a id='y' d='&e;'/></r>"sv,
    "<r xmlns='u' xmlns:p='v' p:a='1'><p:a/><a xmlns=''/></r>"sv,
    "<!DOCTYPE r [<!ELEMENT r (a*)><!ELEMENT a EMPTY>]><r> <a/> <a/> </r>"sv,
    "<!DOCTYPE r [<!ENTITY e 'x'><!ENTITY f '&e;<a>&e;</a>'>]><r>&f;&f;</r>"sv,
    "<?xml version='1.0' encoding='ISO-8859-1'?><r>\xe9</r>"sv,
    "<?xml version='1.1'?><r>&#1;</r>"sv,
    "<!DOCTYPE r SYSTEM 'missing.dtd'><r/>"sv,
    "<r><a>"sv,
    "<r><a></b></r>"sv,
    ""sv,
    "text"sv,
    "<r/><r/>"sv,
    "<r>&undefined;</r>"sv,
    "<r>\xff</r>"sv,
    "<!--a--><?b c?><r/><!--d-->"sv,
    "\xff\xfe<\0r\0>\0\xe9\0<\0/\0r\0>\0"sv,
    "<a><a><a><a><a><a><a><a>deep</a></a></a></a></a></a></a></a>"sv,
};

constexpr std::array kPaths{
    "//*"sv,
    "/"sv,
    "a"sv,
    "@*"sv,
    "//@id"sv,
    "."sv,
    ".."sv,
    "//text()"sv,
    "//node()"sv,
    "id('x')"sv,
    "//a[last()]"sv,
    "//a | //b"sv,
    "count(//a)"sv,
    "true()"sv,
    "'s'"sv,
    "]["sv,
    "p:a"sv,
    "namespace::*"sv,
    "ancestor-or-self::node()"sv,
    "following::*"sv,
    "preceding-sibling::node()"sv,
    "//comment()"sv,
    "//processing-instruction('p')"sv,
    "//*[@a='1']"sv,
    "f()"sv,
    "$v"sv,
    "//a[1][position()=1]/.."sv,
    ""sv,
};

std::span<const std::string_view> Texts(Strings strings) {
  switch (strings) {
    case Strings::kDocuments:
      return kDocuments;
    case Strings::kPaths:
      return kPaths;
    case Strings::kNames:
      break;
  }
  return kNames;
}

// The file that saves write and loads read. Each process has its own.
const std::string& ScratchFile() {
  static const std::string s_File = (std::filesystem::temp_directory_path() /
                                     ("tessel-fuzz-" + std::to_string(getpid()) + ".xml"))
                                        .string();
  return s_File;
}

}  // namespace

TSXRefId CCall::Id() {
  const size_t index = m_Ids.size();
  m_Ids.push_back(index < m_Given.size() ? m_Given[index] : m_Observer.ChooseId(m_Bytes, *this));
  return m_Ids.back();
}

// 255 a text from the input, 254 a null handle, 253 a name in any place.
HStr* CCall::String() {
  const bool isFirst = m_Strings.empty();
  CText& text = *m_Strings.emplace_back(std::make_unique<CText>());
  const std::span<const std::string_view> texts =
      Texts(isFirst ? m_Row.m_Strings : Strings::kNames);
  const uint8_t byte = m_Bytes.Byte();
  if (byte == 255) {
    text.Set(m_Bytes.Run(m_Bytes.Byte()));
  } else if (byte == 253) {
    text.Set(kNames[m_Bytes.Byte() % kNames.size()]);
  } else if (byte != 254) {
    text.Set(texts[Among(texts.size(), byte)]);
  }
  return text.Out();
}

HostPath CCall::Path() {
  const std::string& scratch = ScratchFile();
  switch (Choice(8)) {
    case 0:
      return nullptr;
    case 1:
      m_Path = StandinPathFromText("");
      break;
    case 2:
      m_Path = StandinPathFromText("/nonexistent/a.xml");
      break;
    case 3:
      m_Path = StandinPathFromText(std::filesystem::temp_directory_path().c_str());
      break;
    case 4:
      unlink(scratch.c_str());
      [[fallthrough]];
    default:
      m_Path = StandinPathFromText(scratch.c_str());
  }
  return m_Path;
}

int32_t CCall::Number() {
  constexpr std::array<int32_t, 12> kNumbers{0,
                                             1,
                                             2,
                                             3,
                                             5,
                                             8,
                                             13,
                                             100,
                                             -1,
                                             -100,
                                             std::numeric_limits<int32_t>::max(),
                                             std::numeric_limits<int32_t>::min()};
  return kNumbers[Choice(kNumbers.size())];
}

}  // namespace fuzz
