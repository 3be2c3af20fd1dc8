// Opens, loads, edits, queries and closes small documents on four threads, as many as
// asked for. What must not change with their number is looked at ten times: the
// memory of the process and the time of a document.
//   soak <documents> [<KiB by which memory may grow after the first tenth>]
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "owners.h"

namespace {

using CList = CId<TSXNodeListClose>;

constexpr uint64_t kThreads = 4;
constexpr uint64_t kTenths = 10;

[[noreturn]] void Fail(const char* pWhat) {
  std::fprintf(stderr, "soak: %s\n", pWhat);
  std::_Exit(1);
}

void Require(bool holds, const char* pWhat) {
  if (!holds) Fail(pWhat);
}

// In KiB.
long ResidentMemory() {
  long pages = 0;
  std::ifstream("/proc/self/statm").ignore(64, ' ') >> pages;
  return pages * (sysconf(_SC_PAGESIZE) / 1024);
}

std::string Xml(uint64_t turn) {
  const std::string number = std::to_string(turn);
  std::string xml = "<!DOCTYPE r [<!ENTITY e 'v" + number +
                    "'><!ATTLIST a id ID #IMPLIED>]><r n='" + number + "'>";
  for (uint64_t i = 0; i <= turn % 8; ++i) xml += "<a id='i" + std::to_string(i) + "'>&e;</a>";
  return xml + "<b>tail</b></r>";
}

void Edit(const CDocument& document, const CNode& root) {
  CText name("c"), value("w"), markup("<b><d/>new</b>"), errors, exception;
  CNode created, last;
  Require(TSXCreateElement(document.Get(), name.Get(), created.Out()) == 0, "create");
  Require(TSXSetAttribute(created.Get(), name.Get(), value.Get()) == 0, "attribute");
  Require(TSXGetLastChild(root.Get(), 0, last.Out()) == 0, "last child");
  Require(TSXElementSetXML(last.Get(), markup.Get(), errors.Get(), exception.Get()) == 0,
          "element's text");
  Require(TSXInsertBefore(root.Get(), last.Get(), created.Get()) == 0, "insert");
  CNode first;
  Require(TSXGetFirstChild(root.Get(), 0, first.Out()) == 0, "first child");
  Require(TSXRemoveChild(root.Get(), first.Get()) == 0, "remove");
  Require(TSXSetText(created.Get(), value.Get()) == 0, "text");
}

void Query(const CDocument& document, const CNode& root, uint64_t turn) {
  CText path("//a[@id='i1'] | //d | //c/@c"), name("a"), number("n"), value, errors;
  CNodeArray found;
  Require(XPathEvaluateContextToNodeArray(root.Get(), path.Get(), found.Get(), errors.Get()) == 0,
          "path");
  Require(found.Size() == (turn % 8 == 0 ? 2 : 3), "found");
  CList list;
  int32_t length = 0;
  Require(TSXGetElementsByTagNameList(document.Get(), name.Get(), list.Out()) == 0, "list");
  Require(TSXGetListLength(list.Get(), 0, &length) == 0, "length");
  Require(length == static_cast<int32_t>(turn % 8), "members");
  CNode item;
  Require(TSXGetItem(list.Get(), 0, item.Out()) == 0, "item");
  CNodeMap map;
  CNode attribute;
  Require(TSXGetAttributes(root.Get(), 0, map.Out()) == 0, "map");
  Require(TSXGetNamedItem(map.Get(), number.Get(), attribute.Out()) == 0, "named item");
  Require(TSXGetNodeValue(attribute.Get(), 0, value.Get()) == 0, "value");
  Require(value.View() == std::to_string(turn), "the document's own value");
}

// Returns the document's id, for comparison with the next.
TSXRefId WorkOnADocument(uint64_t turn) {
  TSXRefId closed = 0;
  TSXRefId id = 0;
  {
    CDocument document;
    Require(TSXDocumentOpen(0, document.Out()) == 0, "open");
    CText xml(Xml(turn)), errors, exception, written;
    Require(TSXLoadString(document.Get(), xml.Get(), errors.Get(), exception.Get()) == 0, "load");
    CNode root;
    Require(TSXGetDocumentElement(document.Get(), 0, root.Out()) == 0, "root");
    Edit(document, root);
    Query(document, root, turn);
    Require(TSXGetXML(document.Get(), written.Get()) == 0, "write");
    Require(written.View().ends_with("<c c=\"w\">w</c><b><d/>new</b></r>"), "what was written");
    id = document.Get();
    closed = root.Get();
    // Every second root's id is left to its document.
    if (turn % 2 == 0) root.Forget();
  }
  int32_t type = 0;
  Require(TSXGetNodeType(closed, 0, &type) == domErrRefGetNodeType, "stale id");
  return id;
}

class CSoak {
 public:
  explicit CSoak(uint64_t documents) : m_Documents(documents) {}

  void Run() {
    m_Last = Clock::now();
    std::printf("documents  resident KiB  us a document\n");
    std::vector<std::thread> threads;
    for (uint64_t t = 0; t < kThreads; ++t) threads.emplace_back([this] { Work(); });
    for (auto& thread : threads) thread.join();
  }

  // Resident memory at the end beyond that at the first tenth, in KiB.
  long Growth() const { return m_LastMemory - m_FirstMemory; }

 private:
  using Clock = std::chrono::steady_clock;

  void Work() {
    const uint64_t tenth = std::max<uint64_t>(m_Documents / kTenths, 1);
    TSXRefId last = 0;
    for (uint64_t turn = m_Next++; turn < m_Documents; turn = m_Next++) {
      const TSXRefId id = WorkOnADocument(turn);
      Require(id > last, "ids do not grow");
      last = id;
      if ((turn + 1) % tenth == 0) Report(turn + 1, tenth);
    }
  }

  void Report(uint64_t done, uint64_t tenth) {
    const std::lock_guard lock(m_Mutex);
    const auto now = Clock::now();
    const std::chrono::duration<double, std::micro> spent = now - m_Last;
    m_Last = now;
    m_LastMemory = ResidentMemory();
    if (m_FirstMemory == 0) m_FirstMemory = m_LastMemory;
    std::printf("%9llu  %12ld  %13.1f\n", static_cast<unsigned long long>(done), m_LastMemory,
                spent.count() / static_cast<double>(tenth));
    std::fflush(stdout);
  }

  const uint64_t m_Documents;
  std::atomic<uint64_t> m_Next{0};
  std::mutex m_Mutex;
  Clock::time_point m_Last;
  long m_FirstMemory = 0;
  long m_LastMemory = 0;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) Fail("soak <documents> [<KiB of growth allowed>]");
  StandinLedger before, after;
  StandinReadLedger(&before);
  CSoak soak(std::strtoull(argv[1], nullptr, 10));
  soak.Run();
  StandinReadLedger(&after);
  Require(after.handles == before.handles, "handles are left");
  Require(after.paths == before.paths, "paths are left");
  Require(after.mutexes == before.mutexes, "mutexes are left");
  Require(after.violations == before.violations, "a rule of the host was broken");
  std::printf("grew by %ld KiB after the first tenth\n", soak.Growth());
  if (argc > 2) Require(soak.Growth() <= std::strtol(argv[2], nullptr, 10), "memory grows");
  return 0;
}
