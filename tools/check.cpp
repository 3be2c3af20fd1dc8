#include <CLI/CLI.hpp>
#include <memory>
#include <vector>

#include "checker.h"
#include "client.h"
#include "document.h"
#include "message.h"
#include "output.h"
#include "progress.h"

namespace {

struct CCheckOptions {
  std::vector<std::string> m_Files;
  std::vector<std::string> m_Schemas;  // files
  bool m_DTD = false;
  bool m_Schema = false;
  bool m_Full = false;
  bool m_NoExternalDTD = false;
};

CReadOptions ReadOptions(const CCheckOptions& options, const CClient& client) {
  // The parser's own numbers: no validation, always.
  constexpr int32_t kNever = 0;
  constexpr int32_t kAlways = 1;
  CReadOptions read;
  const bool schema = options.m_Schema || options.m_Full || !options.m_Schemas.empty();
  // A DTD declares names as they are written, prefix and all.
  read.m_Namespaces = options.m_DTD && !schema ? 0 : 1;
  read.m_Validation = options.m_DTD || schema ? kAlways : kNever;
  read.m_Schema = schema ? 1 : 0;
  read.m_FullChecking = options.m_Full ? 1 : 0;
  read.m_ExternalDTD = options.m_NoExternalDTD || client.m_NoExternal ? 0 : 1;
  // Documents name grammars wherever they are; the network is asked for by an option.
  constexpr int32_t kAll = 0;
  constexpr int32_t kFiles = 1;
  constexpr int32_t kNothing = 3;
  read.m_Access = client.m_NoExternal ? kNothing : client.m_Network ? kAll : kFiles;
  return read;
}

int RunCheck(const CCheckOptions& options, const CClient& client) {
  std::vector<CInput> schemas;
  for (const std::string& file : options.m_Schemas) {
    schemas.emplace_back(file, EStandardInput::kStream);
  }
  const std::vector<CInput> inputs =
      PrepareInputs(options.m_Files, client, EStandardInput::kStream, schemas);
  const CReadOptions read = ReadOptions(options, client);
  int result = kDone;
  const auto report = [&](CFault fault, CSourceLines& source) {
    AddAdvice(fault, read);
    PrintError(FaultText(fault, source));
    result = kFailed;
  };
  CChecker checker(read, report);
  const auto run = [&](const CInput& input, void (CChecker::*pWork)(const CInput&)) {
    if (input.Problem().empty()) return (checker.*pWork)(input);
    PrintError(Line(input.Name(), input.Problem()));
    result = kFailed;
  };
  for (const CInput& schema : schemas) run(schema, &CChecker::AddSchema);
  // By a schema at fault, a document would be, too.
  if (result == kFailed) return result;
  for (const CInput& input : inputs) {
    NextFile();
    run(input, &CChecker::Check);
  }
  return result;
}

}  // namespace

void AddCheck(CLI::App& app, CClient& client) {
  auto options = std::make_shared<CCheckOptions>();
  CLI::App* pCheck =
      app.add_subcommand("check", "Tell whether documents are well-formed, or valid");
  pCheck->add_option("FILE", options->m_Files, "XML files; - is standard input")->required();
  CLI::Option* pDTD =
      pCheck->add_flag("--dtd", options->m_DTD, "They must be valid by the DTD that they name");
  CLI::Option* pSchema = pCheck->add_flag("--schema", options->m_Schema,
                                          "They must be valid by the schemas that they name");
  CLI::Option* pOwn =
      pCheck
          ->add_option("--xsd", options->m_Schemas,
                       "They must be valid by this schema, which comes before what they name;\n"
                       "may be given again and again")
          ->type_name("FILE")
          ->allow_extra_args(false);
  CLI::Option* pFull =
      pCheck->add_flag("--full", options->m_Full,
                       "As --schema, and the schemas are checked by the costly rules too");
  pCheck
      ->add_flag("--no-external-dtd", options->m_NoExternalDTD,
                 "Do not read external DTDs; only without validation, which always reads them")
      ->excludes(pDTD)
      ->excludes(pSchema)
      ->excludes(pFull)
      ->excludes(pOwn);
  pCheck->footer(
      "Faults are printed as FILE:LINE:COLUMN: message on standard error, with the line and a\n"
      "caret below. Exit status 0: no fault; 1: faults.\n\n"
      "Examples:\n"
      "  tessel check *.xml\n"
      "  tessel check --dtd catalogue.xml\n"
      "  tessel check --schema --no-external order.xml\n"
      "  tessel check --xsd order.xsd orders/*.xml");
  pCheck->callback(
      [options, &client] { client.m_Run = [=, &client] { return RunCheck(*options, client); }; });
}
