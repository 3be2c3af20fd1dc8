// Documents in threads of their own, what they share, and the order of the mutexes as
// the host saw it.
#include <array>
#include <atomic>
#include <barrier>
#include <functional>
#include <set>
#include <thread>

#include "support/path.h"

namespace {

using support::CDoc;
using support::CText;
using support::IdOf;

class Threads : public support::CLedgerTest {};

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

// A grammar is with one load at a time.
TEST_F(Threads, SchemasOfTheHostGoFromLoadToLoad) {
  const support::CPath schema("shared.xsd");
  schema.Write(
      "<s:schema xmlns:s='http://www.w3.org/2001/XMLSchema'><s:element name='r'><s:complexType>"
      "<s:sequence><s:element name='n' maxOccurs='2'><s:simpleType><s:restriction base='s:string'>"
      "<s:pattern value='[a-c]+'/></s:restriction></s:simpleType></s:element></s:sequence>"
      "</s:complexType></s:element></s:schema>");
  InThreads(4, [&](int thread) {
    for (int i = 0; i < 200; ++i) {
      CDoc doc;
      CText place(schema.Name());
      EXPECT_EQ(TSXSetDoNamespaces(doc.Id(), 0, &support::kOn), 0);
      EXPECT_EQ(TSXSetDoSchema(doc.Id(), 0, &support::kOn), 0);
      EXPECT_EQ(TSXSetValidateOnLoad(doc.Id(), 0, &support::kAlways), 0);
      EXPECT_EQ(TSXSetNoNamespaceSchemaLocation(doc.Id(), 0, &place), 0);
      const std::string good = "<r xmlns:x='urn:" + std::to_string(thread * i) + "'><n>abc</n></r>";
      EXPECT_EQ(support::Load(doc.Id(), good), 0);
      EXPECT_EQ(support::Load(doc.Id(), "<r><n>abc</n><n>d</n></r>"), domErrParse);
    }
  });
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
    CText latin("ISO-8859-1"), path("id('x') | //p:a"), open("a["), name("a"), x("x"), uri("u"),
        xml("<b>new</b>"), errors, exception, written;
    const TSXRefId root = doc.Root();
    support::CIds found;
    EXPECT_EQ(XPathEvaluateContextToNodeArray(root, &path, &found, &errors), 0);
    EXPECT_EQ(found.Get().size(), 2u);
    EXPECT_EQ(XPathEvaluateContextToNodeArray(root, &open, &found, &errors), domErrXPathParse);
    EXPECT_NE(IdOf(TSXGetElementById, doc.Id(), &x), 0u);
    TSXNodeListClose(IdOf(TSXGetElementsByTagNameNS, doc.Id(), &uri, &name));
    TSXNamedNodeMapClose(IdOf(TSXGetAttributes, root, uint64_t{0}));
    TSXImplementationClose(IdOf(TSXGetImplementation, doc.Id(), uint64_t{0}));
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
      const TSXRefId impl = IdOf(TSXGetImplementation, doc.Id(), uint64_t{0});
      CText name("r"), none;
      const TSXRefId type = IdOf(TSXCreateDocumentType, impl, &name, &none, &none);
      const TSXRefId made = IdOf(TSXCreateDocument, impl, &none, &name, type);
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
        const TSXRefId ids[] = {doc.Id(), child, root};
        doc.Close();
        slot.store(ids[turn % 3]);
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
    ids.m_Document = IdOf(TSXDocumentOpen, uint64_t{0});
    EXPECT_EQ(support::Load(ids.m_Document, "<r><a/></r>"), 0);
    for (int handOut = 0; handOut < 2; ++handOut) {
      ids.m_Root = IdOf(TSXGetDocumentElement, ids.m_Document, uint64_t{0});
      ids.m_List = IdOf(TSXGetChildNodeList, ids.m_Root, uint64_t{0});
      ids.m_Map = IdOf(TSXGetAttributes, ids.m_Root, uint64_t{0});
      ids.m_Implementation = IdOf(TSXGetImplementation, ids.m_Document, uint64_t{0});
    }
    ids.m_Created = support::Create(ids.m_Document, "c");
    EXPECT_EQ(IdOf(TSXGetOwnerDocument, ids.m_Root, uint64_t{0}), ids.m_Document);
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
  const support::CPath path("locks");
  InThreads(8, [&path](int t) {
    CDoc doc("<r/>");
    EXPECT_EQ(support::SetAttribute(doc.Root(), "n", support::Repeated("n", t * 9999)), 0);
    CText errors, exception;
    for (int turn = 0; turn < 20; ++turn) {
      EXPECT_EQ((turn % 2 == 0 ? TSXSaveFile : TSXSaveFilePP)(doc.Id(), path.Get(), &errors), 0);
      EXPECT_EQ(TSXLoadFile(doc.Id(), path.Get(), &errors, &exception), 0);
    }
  });
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
