// What main and the subcommands share. Each subcommand adds itself to the
// argument parser and, once it is chosen, leaves its work in the client; the
// result of that is the exit status.
#ifndef TESSEL_TOOLS_CLIENT_H
#define TESSEL_TOOLS_CLIENT_H

#include <functional>
#include <string>

// The argument parser: its headers take long to compile, and few sources need them.
namespace CLI {
class App;
}

// Exit statuses.
inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;  // also: nothing found, not valid
inline constexpr int kUsage = 2;
inline constexpr int kLeftOpen = 3;  // see TESSEL_LEDGER in main.cpp

struct CClient {
  bool m_NoExternal = false;  // no file but the named ones is read
  bool m_Network = false;     // documents may name anything, also by network
  bool m_DTD = false;         // external document types are read
  std::function<int()> m_Run;
};

void AddTree(CLI::App& app, CClient& client);
void AddFormat(CLI::App& app, CClient& client);
void AddCheck(CLI::App& app, CClient& client);
void AddQuery(CLI::App& app, CClient& client);
void AddSet(CLI::App& app, CClient& client);
void AddDelete(CLI::App& app, CClient& client);
void AddRename(CLI::App& app, CClient& client);
void AddInsert(CLI::App& app, CClient& client);
void AddEdit(CLI::App& app, CClient& client);
void AddExplain(CLI::App& app, CClient& client);

// The versions of the library and of those below it, a line each.
std::string VersionText();

#endif
