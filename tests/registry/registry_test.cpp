// What the registries do beside keeping ids: arrays of them, and documents by node.
#include "document/xercesdom.h"
#include "support/support.h"

namespace {

using support::CDoc;
using xercesc::DOMNode;
using xercesc::DOMNodeList;

class NodeRegistry : public support::CLedgerTest {
 protected:
  static DOMNode* Node(TSXRefId id) { return g_NodeSessMap.GetPtrBySess(id); }
};

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
