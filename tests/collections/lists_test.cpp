// Child lists read by index, against the array of the same children.
#include <optional>
#include <random>

#include "support/support.h"

namespace {

using support::CDoc;
using support::CIds;
using support::Create;
using support::CreateText;
using support::IdOf;

class ChildLists : public support::CLedgerTest {
 protected:
  void SetUp() override {
    CLedgerTest::SetUp();
    m_Doc.emplace("<r><p>one<!--two--><three/>four</p><p/></r>");
    m_Root = m_Doc->Root();
    m_Parent = support::FirstChild(m_Root);
    m_List = IdOf(TSXGetChildNodeList, m_Parent, uint64_t{0});
  }
  void TearDown() override {
    TSXNodeListClose(m_List);
    TSXNodeClose(m_Parent);
    TSXNodeClose(m_Root);
    m_Doc.reset();
    CLedgerTest::TearDown();
  }

  size_t Random(size_t below) { return m_Random() % below; }

  // A child, or 0; the id is to be closed.
  TSXRefId SomeChild() { return IdOf(TSXGetItem, m_List, static_cast<int32_t>(Random(10))); }

  void Edit() {
    TSXRefId child = SomeChild();
    const TSXRefId added = Random(2) != 0 ? Create(m_Doc->Id(), "n") : CreateText(m_Doc->Id(), "t");
    switch (Random(child != 0 ? 6 : 2)) {
      case 0:
        EXPECT_EQ(TSXAppendChild(m_Parent, added), 0);
        break;
      case 1:
        EXPECT_EQ(TSXInsertBefore(m_Parent, child, added), 0);
        break;
      case 2:
        EXPECT_EQ(TSXReplaceChild(m_Parent, added, child), 0);
        break;
      case 3:  // to the end, or out of the list
        EXPECT_EQ(TSXAppendChild(Random(2) != 0 ? m_Parent : m_Root, child), 0);
        break;
      case 4:
        EXPECT_EQ(TSXRemoveChild(m_Parent, child), 0);
        child = 0;  // freed
        break;
      default:
        EXPECT_EQ(TSXNormalize(m_Parent), 0);
    }
    for (const TSXRefId id : {child, added}) TSXNodeClose(id);
  }

  // Reads at random places, and asks for the length now and then.
  void Compare() {
    CIds ids;
    EXPECT_EQ(TSXGetChildNodes(m_Parent, 0, &ids), 0);
    const std::vector<TSXRefId> children = ids.Get();
    for (int reads = 0; reads < 4; ++reads) {
      const size_t index = Random(children.size() + 2);
      const TSXRefId item = IdOf(TSXGetItem, m_List, static_cast<int32_t>(index));
      EXPECT_EQ(item, index < children.size() ? children[index] : 0);
      TSXNodeClose(item);
      int32_t length = 0;
      if (Random(4) == 0) {
        EXPECT_EQ(TSXGetListLength(m_List, 0, &length), 0);
        EXPECT_EQ(static_cast<size_t>(length), children.size());
      }
    }
    for (const TSXRefId id : children) TSXNodeClose(id);
  }

 private:
  std::optional<CDoc> m_Doc;
  TSXRefId m_Root = 0, m_Parent = 0, m_List = 0;
  std::mt19937 m_Random{15};
};

TEST_F(ChildLists, AnswerAsTheArrayWhateverWasEditedBetween) {
  for (int step = 0; step < 2000; ++step) {
    Edit();
    Compare();
  }
}

}  // namespace
