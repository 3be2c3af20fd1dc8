// What the registries do beside keeping ids: arrays of them, and documents by node.
#include "document/xercesdom.h"
#include "support/support.h"

namespace {

using support::CDoc;
using xercesc::DOMNode;

class NodeRegistry : public support::CLedgerTest {
 protected:
  static DOMNode* Node(TSXRefId id) { return g_NodeSessMap.GetPtrBySess(id); }
};

TEST_F(NodeRegistry, ArraysFitTheirList) {
  CDoc doc("<r><a/><b/><c/></r>");
  const TSXRefId root = doc.Root();
  support::CIds ids;
  TSUNodeListToArray(&ids, Node(root)->getChildNodes());
  EXPECT_EQ(ids.Get().size(), 3u);
  TSUNodeListToArray(&ids, nullptr);
  EXPECT_EQ(HostGetHandleSize(*(&ids)), 32u) << "a null list leaves the array alone";
  TSUNodeListToArray(&ids, Node(ids.Get()[1])->getChildNodes());
  EXPECT_EQ(HostGetHandleSize(*(&ids)), 8u);
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
  EXPECT_TRUE(g_NodeDomMap.DeleteByNode(pLoose));
  EXPECT_FALSE(g_NodeDomMap.DeleteByNode(pLoose));
  g_NodeDomMap.Insert(pLoose, pOne);
  EXPECT_TRUE(g_NodeDomMap.DeleteByDom(pOne));
  EXPECT_FALSE(g_NodeDomMap.DeleteByDom(pOne));
  EXPECT_EQ(g_NodeDomMap.GetDomByNode(pTwo->DocumentNode()), pTwo);
  g_NodeDomMap.Insert(pOne->DocumentNode(), pOne);
}

}  // namespace
