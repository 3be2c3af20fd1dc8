// Documents in threads of their own, what they share, and the order of the mutexes as
// the host saw it.
#include <array>
#include <atomic>
#include <barrier>
#include <functional>
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

// Runs with the number of each thread, in all of them at once.
void InThreads(int count, const std::function<void(int)>& work) {
  std::barrier start(count);
  std::vector<std::thread> threads;
  for (int t = 0; t < count; ++t) {
    threads.emplace_back([&, t] {
      start.arrive_and_wait();
      work(t);
    });
  }
  for (auto& thread : threads) thread.join();
}

TEST_F(Threads, EightDocumentsAtOnce) {
  InThreads(8, [](int) { WorkOnADocument(50); });
}

// Of all that the library and those below it set up at the first use of it: each
// case has a process of its own, so here nothing has been used before.
TEST_F(Threads, FirstUseOfEverythingAtOnce) {
  InThreads(8, [](int) {
    const uint8_t on = 1;
    CDoc doc;
    EXPECT_EQ(TSXSetDoNamespaces(doc.Id(), 0, &on), 0);
    EXPECT_EQ(TSXSetDoSchema(doc.Id(), 0, &on), 0);
    EXPECT_EQ(support::Load(doc.Id(),
                            "<!DOCTYPE r [<!ENTITY e '\xc3\xa9'><!ATTLIST a id ID #IMPLIED>]>"
                            "<r xmlns:p='u'><p:a/><a id='x'>&e;</a><![CDATA[c]]></r>"),
              0);
    CText latin("ISO-8859-1"), path("id('x') | //p:a"), name("a"), x("x"), uri("u"),
        xml("<b>new</b>"), errors, exception, written;
    const TSXRefId root = doc.Root();
    support::CIds found;
    EXPECT_EQ(XPathEvaluateContextToNodeArray(root, &path, &found, &errors), 0);
    EXPECT_EQ(found.Get().size(), 2u);
    EXPECT_NE(support::IdOf(TSXGetElementById, doc.Id(), &x), 0u);
    const TSXRefId list = support::IdOf(TSXGetElementsByTagNameNS, doc.Id(), &uri, &name);
    const TSXRefId map = support::IdOf(TSXGetAttributes, root, uint64_t{0});
    const TSXRefId impl = support::IdOf(TSXGetImplementation, doc.Id(), uint64_t{0});
    TSXNodeListClose(list);
    TSXNamedNodeMapClose(map);
    TSXImplementationClose(impl);
    EXPECT_EQ(TSXElementSetXML(support::FirstChild(root), &xml, &errors, &exception), 0);
    EXPECT_EQ(TSXSetEncoding(doc.Id(), 0, &latin), 0);
    EXPECT_TRUE(doc.Xml().find("<b>new</b>") != std::string::npos) << doc.Xml();
    EXPECT_EQ(support::Load(doc.Id(), "<r><unclosed></r>"), domErrParse);
  });
}

// Document types are entered without the registry's lock.
TEST_F(Threads, EightDocumentTypesAtOnce) {
  InThreads(8, [](int) {
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

// Four threads open and close documents and say which ids they have closed; four
// look these up beside their own. A closed id may name nothing, whatever is in its
// node's place by now.
TEST_F(Threads, ClosedIdsNameNothingWhileOthersCloseAndOpen) {
  constexpr int kTurns = 200;
  std::array<std::atomic<TSXRefId>, 4> closed{};
  InThreads(8, [&](int t) {
    std::atomic<TSXRefId>& slot = closed[static_cast<size_t>(t % 4)];
    if (t < 4) {
      for (int turn = 0; turn < kTurns; ++turn) {
        CDoc doc("<r><a/><b/></r>");
        const TSXRefId root = doc.Root();
        const TSXRefId child = support::FirstChild(root);
        if (turn % 2 == 0) TSXNodeClose(child);
        const bool isDocument = turn % 3 == 0;
        const TSXRefId document = doc.Id();
        doc.Close();
        slot.store(isDocument ? document : turn % 2 == 0 ? child : root);
      }
      return;
    }
    CDoc own("<r a='1'/>");
    const TSXRefId root = own.Root();
    for (int turn = 0; turn < kTurns * 10; ++turn) {
      const TSXRefId stale = slot.load();
      EXPECT_FALSE(support::Resolves(stale));
      TSXNodeClose(stale);
      TSXDocumentClose(stale);
      EXPECT_TRUE(support::Resolves(root));
      EXPECT_EQ(support::Name(root), "r");
    }
  });
}

// Each id has two hand-outs and goes with the second close, whosever it is; a third
// finds nothing.
TEST_F(Threads, TwoThreadsCloseTheSameIds) {
  constexpr size_t kDocuments = 200;
  struct CIdsOfOne {
    TSXRefId m_Document, m_Root, m_Created, m_List, m_Map, m_Implementation;
  };
  std::vector<CIdsOfOne> all(kDocuments);
  for (CIdsOfOne& ids : all) {
    ids.m_Document = support::IdOf(TSXDocumentOpen, uint64_t{0});
    EXPECT_EQ(support::Load(ids.m_Document, "<r><a/></r>"), 0);
    const auto get = [&] {
      ids.m_Root = support::IdOf(TSXGetDocumentElement, ids.m_Document, uint64_t{0});
      ids.m_List = support::IdOf(TSXGetChildNodeList, ids.m_Root, uint64_t{0});
      ids.m_Map = support::IdOf(TSXGetAttributes, ids.m_Root, uint64_t{0});
      ids.m_Implementation = support::IdOf(TSXGetImplementation, ids.m_Document, uint64_t{0});
    };
    get();
    get();
    ids.m_Created = support::Create(ids.m_Document, "c");
    EXPECT_EQ(support::IdOf(TSXGetOwnerDocument, ids.m_Root, uint64_t{0}), ids.m_Document);
  }
  std::barrier turn(2);
  InThreads(2, [&](int) {
    for (const CIdsOfOne& ids : all) {
      turn.arrive_and_wait();
      TSXNodeListClose(ids.m_List);
      TSXNamedNodeMapClose(ids.m_Map);
      TSXImplementationClose(ids.m_Implementation);
      TSXNodeClose(ids.m_Root);
      turn.arrive_and_wait();
      EXPECT_FALSE(support::Resolves(ids.m_Root));
      TSXNodeClose(ids.m_Created);  // which has one hand-out only
      turn.arrive_and_wait();
      EXPECT_FALSE(support::Resolves(ids.m_Created));
      TSXDocumentClose(ids.m_Document);
      TSXDocumentClose(ids.m_Document);
      EXPECT_FALSE(support::Resolves(ids.m_Document));
    }
  });
}

TEST_F(Threads, OnlyTheFileLockIsHeldWhileAnotherIsTaken) {
  StandinForgetHistory();
  const std::string name = ::testing::TempDir() + "tessel_locks_" + std::to_string(getpid());
  HostPath path = StandinPathFromText(name.c_str());
  InThreads(8, [path](int t) {
    CDoc doc("<r/>");
    const TSXRefId root = doc.Root();
    EXPECT_EQ(support::SetAttribute(root, "n", std::string(static_cast<size_t>(t) * 9999, 'n')), 0);
    CText errors, exception;
    for (int turn = 0; turn < 20; ++turn) {
      EXPECT_EQ((turn % 2 == 0 ? TSXSaveFile : TSXSaveFilePP)(doc.Id(), path, &errors), 0);
      EXPECT_EQ(TSXLoadFile(doc.Id(), path, &errors, &exception), 0);
    }
    EXPECT_FALSE(support::Resolves(root));
  });
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
