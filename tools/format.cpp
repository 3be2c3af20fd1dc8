#include <CLI/CLI.hpp>
#include <memory>

#include "client.h"
#include "document.h"
#include "layout.h"
#include "message.h"
#include "output.h"
#include "recode.h"

namespace {

struct CFormatOptions {
  std::string m_File;
  std::string m_Encoding;
  std::string m_Output;
  bool m_Pretty = false;
  bool m_NoDeclaration = false;
  int m_Indent = -1;  // blanks a level; the library's own way where negative

  bool IsLaidOut() const { return m_Indent >= 0 || m_NoDeclaration; }
};

// The encoding of written text, also where the document names none.
std::string EncodingOfText(const CDocument& document, std::string_view xml) {
  const std::string named = NamedEncoding(document);
  if (!named.empty()) return named;
  if (xml.starts_with(std::string_view("<\0", 2))) return "UTF-16LE";
  return xml.starts_with('\0') ? "UTF-16BE" : "UTF-8";
}

std::string LayOut(std::string_view xml, const CFormatOptions& options) {
  if (options.m_NoDeclaration) xml = WithoutDeclaration(xml);
  if (options.m_Indent < 0) return std::string(xml);
  return Indented(xml, static_cast<size_t>(options.m_Indent));
}

bool HasMark(std::string_view xml) {
  return xml.starts_with("\xff\xfe") || xml.starts_with("\xfe\xff");
}

// The layout is the client's own, in UTF-8, and the rest the library's.
std::string LaidOut(std::string_view xml, const CDocument& document,
                    const CFormatOptions& options) {
  const std::string encoding = EncodingOfText(document, xml);
  if (IsUTF8(encoding)) return LayOut(xml, options);
  const auto wide = Recode(xml, encoding, "UTF-8");
  const std::string text = wide ? LayOut(*wide, options) : "";
  const auto result = Recode(text, "UTF-8", encoding);
  if (!wide || !result) {
    throw CFailure(Line(options.m_File, "it cannot be laid out in " + encoding));
  }
  // A reader takes what declares nothing for UTF-8, or for UTF-16 where there is a mark.
  if (options.m_NoDeclaration && *result != text && !HasMark(*result)) {
    throw CFailure(Line(options.m_File, encoding + " must be declared"));
  }
  return *result;
}

int RunFormat(const CFormatOptions& options, const CClient& client) {
  const CDocument document = ReadDocument(options.m_File, client);
  if (!options.m_Encoding.empty()) SetEncoding(document, options.m_Encoding);
  const CWritten xml = WriteDocument(document, options.m_File, options.m_Pretty);
  if (options.IsLaidOut()) {
    WriteResult(options.m_Output, LaidOut(xml.Bytes(), document, options));
  } else {
    WriteResult(options.m_Output, xml.Bytes());
  }
  return kDone;
}

}  // namespace

void AddFormat(CLI::App& app, CClient& client) {
  auto options = std::make_shared<CFormatOptions>();
  CLI::App* pFormat = app.add_subcommand("format", "Write a document back as XML text");
  pFormat->add_option("FILE", options->m_File, "XML file; - is standard input")->required();
  CLI::Option* pPretty =
      pFormat->add_flag("--pretty", options->m_Pretty, "Break lines and indent between elements");
  pFormat
      ->add_option("--indent", options->m_Indent,
                   "Begin a line with each element, indented by so many blanks a level; an "
                   "element that holds text stays on one line")
      ->type_name("N")
      ->check(CLI::Range(0, 100))
      ->excludes(pPretty);
  pFormat->add_flag("--no-declaration", options->m_NoDeclaration,
                    "Write no XML declaration; for UTF-8 and UTF-16");
  pFormat->add_option("--encoding", options->m_Encoding,
                      "Encoding to write in; the document's own by default");
  pFormat->add_option("-o,--output", options->m_Output,
                      "File to write, replaced in one step; standard output by default");
  pFormat->footer(
      "Examples:\n"
      "  tessel format --indent 2 catalogue.xml\n"
      "  tessel format --encoding UTF-16 -o wide.xml catalogue.xml");
  pFormat->callback(
      [options, &client] { client.m_Run = [=, &client] { return RunFormat(*options, client); }; });
}
