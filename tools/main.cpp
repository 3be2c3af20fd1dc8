// tessel: tries the library on files, and is the first program that hosts it.
#include <CLI/CLI.hpp>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <new>

#include "client.h"
#include "message.h"
#include "output.h"
#include "owners.h"
#include "progress.h"
#include "sandbox.h"

namespace {

void AddAll(CLI::App& app, CClient& client) {
  app.require_subcommand(1);
  app.fallthrough();
  app.set_version_flag("--version", VersionText, "Print the versions of the library and others");
  app.add_flag("--no-external", client.m_NoExternal,
               "Read no file but those named here: no external DTD, entity or schema");
  app.add_flag("--network", client.m_Network,
               "Let documents name any file and the network (http, https, ftp), and not only\n"
               "regular files in their own folder and below");
  app.add_flag("--dtd", client.m_DTD,
               "Read the DTD that a document names, which is passed over otherwise");
  AddTree(app, client);
  AddFormat(app, client);
  AddCheck(app, client);
  AddQuery(app, client);
  AddSet(app, client);
  AddDelete(app, client);
  AddInsert(app, client);
  AddRename(app, client);
  AddEdit(app, client);
  AddExplain(app, client);
  app.footer(
      "Exit status 0: done; 1: an error, nothing found, or not valid; 2: wrong usage.\n"
      "`tessel COMMAND --help` has examples.");
}

int ReportUsage(const CLI::App& app, const CLI::ParseError& error) {
  // Help and version come this way too, as success.
  if (app.exit(error) != 0) return kUsage;
  return std::cout.flush() ? kDone : kFailed;
}

// Whichever way the work ends.
struct CProgressEnd {
  ~CProgressEnd() { EndProgress(); }
};

int Run(int argc, char** argv) {
  CClient client;
  const CProgressEnd end;
  CLI::App app("Read, print, check, query and change XML documents.", "tessel");
  try {
    AddAll(app, client);
    app.parse(argc, argv);
    if (!client.m_Network) RefuseNetwork();
    const int result = client.m_Run();
    FlushOutput();
    return result;
  } catch (const CLI::ParseError& error) {
    return ReportUsage(app, error);
  } catch (const CFailure& failure) {
    PrintError(failure.what());
  } catch (const std::bad_alloc&) {
    PrintError("tessel: out of memory\n");
  }
  return kFailed;
}

// With TESSEL_LEDGER set, a string, array or path that was left open makes the
// client fail, whatever else it did.
int CheckLedger(int result) {
  if (std::getenv("TESSEL_LEDGER") == nullptr) return result;
  StandinLedger ledger;
  StandinReadLedger(&ledger);
  if (ledger.handles == 0 && ledger.paths == 0 && ledger.violations == 0) return result;
  PrintError("tessel: left open: handles " + std::to_string(ledger.handles) + ", paths " +
             std::to_string(ledger.paths) + ", violations " + std::to_string(ledger.violations) +
             "\n");
  return kLeftOpen;
}

}  // namespace

int main(int argc, char** argv) {
  // The characters only: a decimal comma would change the numbers of XPath.
  std::setlocale(LC_CTYPE, "");
  // A reader that has gone ends the client quietly, also where the parent ignores
  // the signal; a file that may not grow is an error like any other.
  std::signal(SIGPIPE, SIG_DFL);
  std::signal(SIGXFSZ, SIG_IGN);
  return CheckLedger(Run(argc, argv));
}
