// What the registries do beside keeping ids: documents by node.
#include "document/xercesdom.h"
#include "support/support.h"

namespace {

using support::CDoc;
using xercesc::DOMNode;

class NodeRegistry : public support::CLedgerTest {
 protected:
  static DOMNode* Node(TSXRefId id) { return g_NodeSessMap.GetPtrBySess(id); }
};

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
