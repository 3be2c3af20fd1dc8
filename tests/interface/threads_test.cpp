// Documents in threads of their own, and the order of the mutexes as the host saw it.
#include <set>
#include <thread>

#include "support/support.h"

namespace {

using support::CDoc;
using support::CText;

class Threads : public support::CLedgerTest {};

void WorkOnADocument(int turns) {
  for (int turn = 0; turn < turns; ++turn) {
    CDoc doc("<r><a k='v'>one</a><b/></r>");
    const TSXRefId root = doc.Root();
    for (TSXRefId id = support::FirstChild(root); id != 0;) {
      EXPECT_EQ(support::SetAttribute(id, "n", std::to_string(turn)), 0);
      const TSXRefId next = support::NextSibling(id);
      TSXNodeClose(id);
      id = next;
    }
    EXPECT_EQ(TSXAppendChild(root, support::Create(doc.Id(), "c")), 0);
    EXPECT_EQ(support::TextOf(TSXGetText, root), "one");
    const std::string end = "<b n=\"" + std::to_string(turn) + "\"/><c/></r>";
    EXPECT_TRUE(doc.Xml().ends_with(end)) << doc.Xml();
  }
}

TEST_F(Threads, EightDocumentsAtOnce) {
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) threads.emplace_back(WorkOnADocument, 50);
  for (auto& thread : threads) thread.join();
}

// Document types are entered without the registry's lock.
TEST_F(Threads, EightDocumentTypesAtOnce) {
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([] {
      for (int turn = 0; turn < 50; ++turn) {
        CDoc doc;
        const TSXRefId impl = support::IdOf(TSXGetImplementation, doc.Id(), uint64_t{0});
        CText name("r"), none;
        const TSXRefId type = support::IdOf(TSXCreateDocumentType, impl, &name, &none, &none);
        const TSXRefId made = support::IdOf(TSXCreateDocument, impl, &none, &name, type);
        TSXDocumentClose(made);
        EXPECT_FALSE(support::Resolves(type));
        TSXImplementationClose(impl);
      }
    });
  }
  for (auto& thread : threads) thread.join();
}

TEST_F(Threads, OnlyTheFileLockIsHeldWhileAnotherIsTaken) {
  StandinForgetHistory();
  const std::string name = ::testing::TempDir() + "tessel_locks_" + std::to_string(getpid());
  HostPath path = StandinPathFromText(name.c_str());
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([path] {
      CDoc doc("<r/>");
      const TSXRefId root = doc.Root();
      CText errors, exception;
      for (int turn = 0; turn < 20; ++turn) {
        EXPECT_EQ(TSXSaveFile(doc.Id(), path, &errors), 0);
        EXPECT_EQ(TSXLoadFile(doc.Id(), path, &errors, &exception), 0);
      }
      EXPECT_FALSE(support::Resolves(root));
    });
  }
  for (auto& thread : threads) thread.join();
  StandinPathDispose(path);
  std::remove(name.c_str());
  StandinMutexPair pairs[16];
  const size_t count = StandinReadMutexPairs(pairs, 16);
  EXPECT_GT(count, 0u);
  for (size_t i = 0; i < count && i < 16; ++i) {
    EXPECT_STREQ(pairs[i].held, "DOM Mutex") << pairs[i].taken;
    EXPECT_STRNE(pairs[i].taken, "DOM Mutex");
  }
  StandinLedger ledger;
  StandinReadLedger(&ledger);
  EXPECT_EQ(ledger.deepest, 2);
}

// Created when the library starts, in this order, and still there.
TEST_F(Threads, MutexesInTheOrderOfTheGlobals) {
  const char* const names[] = {"DOM Mutex",
                               "NodeDomMap Mutex",
                               "NodeSessMap Mutex",
                               "NodeListSessMap Mutex",
                               "NamedNodeMapSessMap Mutex",
                               "DOMImplementationSessMap Mutex"};
  StandinMutex mutexes[16];
  ASSERT_EQ(StandinReadMutexes(mutexes, 16), std::size(names));
  for (size_t i = 0; i < std::size(names); ++i) EXPECT_STREQ(mutexes[i].name, names[i]);
}

}  // namespace
