// The id machinery by itself: numbers, counts, owners, and what happens to ids
// when their objects go.
#include <thread>

#include "document/xercesdom.h"
#include "support/support.h"

namespace {

using support::CDoc;
using xercesc::DOMNode;
using xercesc::DOMNodeList;

// Lists serve as plain pointers: the registry never looks inside.
DOMNodeList* Pointer(uintptr_t value) { return reinterpret_cast<DOMNodeList*>(value); }

TEST(PtrSessMap, IdsGrowFromOneAndAreCounted) {
  CPtrSessMap<DOMNodeList> map("Test Mutex");
  EXPECT_EQ(map.Insert(nullptr), 0u);
  EXPECT_FALSE(map.DeleteBySess(0));
  EXPECT_EQ(map.Insert(Pointer(16)), 1u);
  EXPECT_TRUE(map.DeleteBySess(1));
  EXPECT_EQ(map.Insert(Pointer(32)), 2u) << "an id is never issued again";
  EXPECT_EQ(map.Insert(Pointer(32)), 2u);
  EXPECT_EQ(map.Insert(Pointer(32)), 2u);
  EXPECT_FALSE(map.DeleteBySess(2));
  EXPECT_FALSE(map.DeleteBySess(7)) << "unknown";
  EXPECT_FALSE(map.DeleteBySess(2));
  EXPECT_EQ(map.GetPtrBySess(2), Pointer(32));
  EXPECT_TRUE(map.DeleteBySess(2));
  EXPECT_EQ(map.GetPtrBySess(2), nullptr);
  EXPECT_EQ(map.LiveCount(), 0u);
}

TEST(PtrSessMap, ThreadsShareOneCounter) {
  CPtrSessMap<DOMNodeList> map("Test Mutex");
  constexpr uintptr_t kEach = 2000;
  std::vector<std::thread> threads;
  for (uintptr_t t = 0; t < 4; ++t) {
    threads.emplace_back([&, t] {
      for (uintptr_t i = 1; i <= kEach; ++i) {
        const auto id = map.Insert(Pointer((t * kEach + i) * 16));
        EXPECT_EQ(map.GetPtrBySess(id), Pointer((t * kEach + i) * 16));
        map.Insert(Pointer(16 * 4 * kEach + 16));  // one that all share
        EXPECT_EQ(i % 2 == 0 && map.DeleteBySess(id), i % 2 == 0);
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(map.LiveCount(), 4 * kEach / 2 + 1);
}

class NodeRegistry : public support::CLedgerTest {
 protected:
  static DOMNode* Node(TSXRefId id) { return g_NodeSessMap.GetPtrBySess(id); }
};

TEST_F(NodeRegistry, ClosingTheDocumentTakesEveryIdOfItsNodes) {
  CDoc other("<o><p/></o>");
  const TSXRefId kept = support::FirstChild(other.Root());
  CDoc doc("<r><a/></r>");
  const TSXRefId root = doc.Root();
  for (int i = 0; i < 3; ++i) EXPECT_EQ(support::Parent(support::FirstChild(root)), root);
  EXPECT_EQ(support::IdOf(TSXGetOwnerDocument, root, uint64_t{0}), doc.Id());
  TSXDocumentClose(doc.Id());
  EXPECT_TRUE(support::Resolves(root)) << "one hand-out of the document is left";
  doc.Close();
  EXPECT_FALSE(support::Resolves(root));
  EXPECT_TRUE(support::Resolves(kept));
}

// The bare document node is registered apart from the document object, and its
// close sweeps what the object's would.
TEST_F(NodeRegistry, ClosingTheBareDocumentSweepsTheNodesAndLeavesTheTree) {
  CDoc doc("<r><a/></r>");
  const TSXRefId root = doc.Root();
  const TSXRefId bare = support::Parent(root);
  EXPECT_NE(bare, doc.Id());
  TSXNodeClose(bare);
  EXPECT_FALSE(support::Resolves(root));
  EXPECT_FALSE(support::Resolves(bare));
  EXPECT_EQ(support::Name(doc.Root()), "r");
}

TEST_F(NodeRegistry, BareDocumentIdNamesNothingOnceItsTreeIsGone) {
  CDoc doc("<r/>");
  const TSXRefId bare = support::Parent(doc.Root());
  ASSERT_EQ(support::Load(doc.Id(), "<s/>"), 0);
  EXPECT_FALSE(support::Resolves(bare));
  const TSXRefId next = support::Parent(doc.Root());
  EXPECT_NE(next, bare);
  doc.Close();
  EXPECT_FALSE(support::Resolves(next));
}

TEST_F(NodeRegistry, ResetPtrMovesIdCountAndOwner) {
  CDoc doc("<r><a/><b/></r>");
  const TSXRefId a = support::FirstChild(doc.Root());
  EXPECT_EQ(support::FirstChild(doc.Root()), a);  // two hand-outs
  DOMNode* pB = Node(a)->getNextSibling();
  g_NodeSessMap.ResetPtr(pB, 424242);
  g_NodeSessMap.ResetPtr(pB, a);
  EXPECT_EQ(support::Name(a), "b");
  EXPECT_EQ(g_NodeSessMap.Insert(pB), a);
  EXPECT_FALSE(g_NodeSessMap.DeleteBySess(a));
  EXPECT_FALSE(g_NodeSessMap.DeleteBySess(a));
  EXPECT_TRUE(support::Resolves(a));
  doc.Close();
  EXPECT_FALSE(support::Resolves(a)) << "the owner moved along";
}

TEST_F(NodeRegistry, ArraysCountOneHandOutEach) {
  CDoc doc("<r><a/><b/><c/></r>");
  const TSXRefId root = doc.Root();
  support::CIds first, second;
  DOMNodeList* pList = Node(root)->getChildNodes();
  TSUNodeListToArray(&first, pList);
  TSUNodeListToArray(&second, pList);
  EXPECT_EQ(first.Get().size(), 3u);
  EXPECT_EQ(HostGetHandleSize(*(&first)), 32u);
  EXPECT_EQ(first.Get(), second.Get());
  const TSXRefId a = first.Get()[0];
  EXPECT_FALSE(g_NodeSessMap.DeleteBySess(a));
  EXPECT_TRUE(g_NodeSessMap.DeleteBySess(a));
  TSUNodeListToArray(&first, Node(first.Get()[1])->getChildNodes());
  EXPECT_EQ(HostGetHandleSize(*(&first)), 8u);
  TSUNodeListToArray(&second, nullptr);
  EXPECT_EQ(second.Get().size(), 3u) << "a null list leaves the array alone";
}

TEST_F(NodeRegistry, NodeDomMapKeepsTheFirstEntry) {
  CDoc one("<a/>"), two("<b/>");
  auto* pOne = static_cast<CXercesDOM*>(Node(one.Id()));
  auto* pTwo = static_cast<CXercesDOM*>(Node(two.Id()));
  DOMNode* pLoose = pOne->m_pDoc->createElement(u"loose");
  g_NodeDomMap.Insert(pLoose, pOne);
  g_NodeDomMap.Insert(pLoose, pTwo);
  g_NodeDomMap.Insert(pLoose, nullptr);
  EXPECT_EQ(g_NodeDomMap.GetDomByNode(pLoose), pOne);
  EXPECT_EQ(g_NodeDomMap.GetDomByNode(nullptr), nullptr);
  EXPECT_FALSE(g_NodeDomMap.DeleteByNode(nullptr));
  EXPECT_FALSE(g_NodeDomMap.DeleteByDom(nullptr));
  EXPECT_TRUE(g_NodeDomMap.DeleteByNode(pLoose));
  EXPECT_FALSE(g_NodeDomMap.DeleteByNode(pLoose));
  g_NodeDomMap.Insert(pLoose, pOne);
  EXPECT_TRUE(g_NodeDomMap.DeleteByDom(pOne));
  EXPECT_FALSE(g_NodeDomMap.DeleteByDom(pOne));
  EXPECT_EQ(g_NodeDomMap.GetDomByNode(pTwo->DocumentNode()), pTwo);
  g_NodeDomMap.Insert(pOne->DocumentNode(), pOne);
}

}  // namespace
