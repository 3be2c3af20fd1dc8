#include <memory>

#include "client.h"
#include "document.h"
#include "output.h"

namespace {

struct CFormatOptions {
  std::string m_File;
  std::string m_Encoding;
  std::string m_Output;
  bool m_Pretty = false;
};

int RunFormat(const CFormatOptions& options, const CClient& client) {
  const CDocument document = ReadDocument(options.m_File, client);
  if (!options.m_Encoding.empty()) SetEncoding(document, options.m_Encoding);
  WriteResult(options.m_Output, WriteDocument(document, options.m_File, options.m_Pretty));
  return kDone;
}

}  // namespace

void AddFormat(CLI::App& app, CClient& client) {
  auto options = std::make_shared<CFormatOptions>();
  CLI::App* pFormat = app.add_subcommand("format", "Write a document back as XML text");
  pFormat->add_option("FILE", options->m_File, "XML file; - is standard input")->required();
  pFormat->add_flag("--pretty", options->m_Pretty, "Break lines and indent between elements");
  pFormat->add_option("--encoding", options->m_Encoding,
                      "Encoding to write in; the document's own by default");
  pFormat->add_option("-o,--output", options->m_Output,
                      "File to write, replaced in one step; standard output by default");
  pFormat->footer(
      "Examples:\n"
      "  tessel format --pretty catalogue.xml\n"
      "  tessel format --encoding UTF-16 -o wide.xml catalogue.xml");
  pFormat->callback(
      [options, &client] { client.m_Run = [=, &client] { return RunFormat(*options, client); }; });
}
