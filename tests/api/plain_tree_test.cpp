// Random edits beside a plain tree that shares no code with the library or the DOM: what
// an edit must leave of texts, neighbours, children and live lists.
#include <algorithm>
#include <memory>
#include <random>

#include "support/support.h"

namespace {

using support::CDoc;
using support::CText;
using support::IdOf;
using support::TextOf;

struct CPlain {
  int32_t m_Kind;      // 1 element, 3 text, 8 comment
  std::string m_Text;  // the name of an element
  TSXRefId m_Id;
  CPlain* m_pParent = nullptr;
  std::vector<CPlain*> m_Children = {};

  size_t Place() const {
    const auto& siblings = m_pParent->m_Children;
    return static_cast<size_t>(std::ranges::find(siblings, this) - siblings.begin());
  }
  CPlain* Beside(size_t offset) const {
    if (m_pParent == nullptr) return nullptr;
    const size_t place = Place() + offset;  // an offset of -1 wraps to beyond the end
    return place < m_pParent->m_Children.size() ? m_pParent->m_Children[place] : nullptr;
  }
  bool Holds(const CPlain* pBelow) const {
    while (pBelow != nullptr && pBelow != this) pBelow = pBelow->m_pParent;
    return pBelow != nullptr;
  }
  std::string Content() const {
    if (m_Kind != 1) return m_Text;
    std::string content;
    for (const CPlain* pChild : m_Children) content += pChild->m_Kind == 8 ? "" : pChild->Content();
    return content;
  }
  int32_t Elements(std::string_view name) const {
    int32_t count = 0;
    for (const CPlain* p : m_Children) {
      count += (p->m_Kind == 1 && p->m_Text == name ? 1 : 0) + p->Elements(name);
    }
    return count;
  }
  void Leave() {
    if (m_pParent != nullptr) std::erase(m_pParent->m_Children, this);
    m_pParent = nullptr;
  }
  void Enter(CPlain& parent, size_t place) {
    m_pParent = &parent;
    parent.m_Children.insert(parent.m_Children.begin() + static_cast<ptrdiff_t>(place), this);
  }
};

class CEdits {
 public:
  explicit CEdits(unsigned seed) : m_Random(seed), m_Doc("<r/>") {
    m_pRoot = Add({1, "r", m_Doc.Root()});
    CText name("a");
    m_List = IdOf(TSXElementGetElementsByTagName, m_pRoot->m_Id, &name);
    m_Children = IdOf(TSXGetChildNodeList, m_pRoot->m_Id, uint64_t{0});
  }

  void Step() {
    CPlain &node = Pick(), &other = Pick();
    const size_t at = m_Random() % 4;
    switch (m_Random() % 9) {
      case 0:
        Create();
        break;
      case 1:
        Move(node, other, nullptr);
        break;
      case 2:
        if (!other.m_Children.empty()) Move(node, other, other.m_Children[at % Count(other)]);
        break;
      case 3:
        if (!other.m_Children.empty()) Replace(node, other, *other.m_Children[at % Count(other)]);
        break;
      case 4:
        Remove(node);
        break;
      case 5:
        Write(node, at);
        break;
      case 6:
        Split(node, at);
        break;
      case 7:
        EXPECT_EQ(TSXNormalize(node.m_Id), 0);
        Normalize(node);
        break;
      default:
        Clone(node, at % 2 == 0);
    }
    for (const auto& pNode : m_Nodes) Compare(*pNode);
    EXPECT_EQ(Length(m_List), m_pRoot->Elements("a"));
    EXPECT_EQ(Length(m_Children), static_cast<int32_t>(Count(*m_pRoot)));
    for (size_t i = 0; i <= Count(*m_pRoot); ++i) {
      const CPlain* pChild = i < Count(*m_pRoot) ? m_pRoot->m_Children[i] : nullptr;
      EXPECT_EQ(IdOf(TSXGetItem, m_Children, static_cast<int32_t>(i)), IdOrNone(pChild));
    }
  }

 private:
  static size_t Count(const CPlain& node) { return node.m_Children.size(); }
  static TSXRefId IdOrNone(const CPlain* pNode) { return pNode != nullptr ? pNode->m_Id : 0; }
  static int32_t Length(TSXRefId list) {
    int32_t length = -1;
    EXPECT_EQ(TSXGetListLength(list, 0, &length), 0);
    return length;
  }

  CPlain& Pick() { return *m_Nodes[m_Random() % m_Nodes.size()]; }
  CPlain* Add(CPlain node) {
    return m_Nodes.emplace_back(std::make_unique<CPlain>(std::move(node))).get();
  }

  void Create() {
    if (m_Nodes.size() > 40) return;
    const bool isElement = m_Random() % 2 == 0, isComment = m_Random() % 4 == 0;
    CText text(isElement ? "a" : "text");
    if (isElement) {
      Add({1, "a", IdOf(TSXCreateElement, m_Doc.Id(), &text)});
    } else if (isComment) {
      Add({8, "text", IdOf(TSXCreateComment, m_Doc.Id(), &text)});
    } else {
      Add({3, "text", IdOf(TSXCreateTextNode, m_Doc.Id(), &text)});
    }
  }

  bool MayEnter(const CPlain& node, const CPlain& parent) const {
    return parent.m_Kind == 1 && &node != m_pRoot && !node.Holds(&parent);
  }

  void Move(CPlain& node, CPlain& parent, CPlain* pBefore) {
    if (!MayEnter(node, parent)) return;
    EXPECT_EQ(TSXInsertBefore(parent.m_Id, IdOrNone(pBefore), node.m_Id), 0);
    if (pBefore == &node) return;
    node.Leave();
    node.Enter(parent, pBefore != nullptr ? pBefore->Place() : Count(parent));
  }

  void Replace(CPlain& node, CPlain& parent, CPlain& old) {
    if (!MayEnter(node, parent)) return;
    EXPECT_EQ(TSXReplaceChild(parent.m_Id, node.m_Id, old.m_Id), 0);
    if (&node != &old) {
      node.Leave();
      node.Enter(parent, old.Place());
    }
    old.Leave();
  }

  // Compare has asked for its id, so it has other hand-outs and lives on.
  void Remove(CPlain& node) {
    if (node.m_pParent == nullptr || node.m_pParent->m_Children.size() < 2) return;
    EXPECT_EQ(TSXRemoveChild(node.m_pParent->m_Id, node.m_Id), 0);
    node.Leave();
  }

  void Write(CPlain& node, size_t at) {
    if (node.m_Kind == 1) return;
    CText text("new");
    const auto offset = std::min(at, node.m_Text.size());
    const auto offset32 = static_cast<int32_t>(offset);
    switch (m_Random() % 4) {
      case 0:
        EXPECT_EQ(TSXInsertData(node.m_Id, offset32, &text), 0);
        node.m_Text.insert(offset, "new");
        break;
      case 1:
        EXPECT_EQ(TSXDeleteData(node.m_Id, offset32, 2), 0);
        node.m_Text.erase(offset, 2);
        break;
      case 2:
        EXPECT_EQ(TSXReplaceData(node.m_Id, offset32, 1, &text), 0);
        node.m_Text.replace(offset, 1, "new");
        break;
      default:
        EXPECT_EQ(TSXAppendData(node.m_Id, &text), 0);
        node.m_Text += "new";
    }
    if (node.m_Text.size() > 60) {
      EXPECT_EQ(TSXSetNodeValue(node.m_Id, 0, &text), 0);
      node.m_Text = "new";
    }
  }

  void Split(CPlain& node, size_t at) {
    if (node.m_Kind != 3 || at > node.m_Text.size()) return;
    CPlain* pRest =
        Add({3, node.m_Text.substr(at), IdOf(TSXSplitText, node.m_Id, static_cast<int32_t>(at))});
    node.m_Text.resize(at);
    if (node.m_pParent != nullptr) pRest->Enter(*node.m_pParent, node.Place() + 1);
  }

  static void Normalize(CPlain& node) {
    for (size_t i = 0; i < Count(node); ++i) {
      CPlain& child = *node.m_Children[i];
      while (child.m_Kind == 3 && child.Beside(1) != nullptr && child.Beside(1)->m_Kind == 3) {
        child.m_Text += child.Beside(1)->m_Text;
        child.Beside(1)->Leave();
      }
      Normalize(child);
    }
  }

  void Clone(const CPlain& node, bool deep) {
    if (m_Nodes.size() > 40) return;
    const uint8_t flag = deep ? 1 : 0;
    CPlain* pCopy = Add({node.m_Kind, node.m_Text, IdOf(TSXCloneNode, node.m_Id, &flag)});
    if (deep) CopyBelow(node, *pCopy);
  }
  void CopyBelow(const CPlain& from, CPlain& into) {
    TSXRefId id = IdOf(TSXGetFirstChild, into.m_Id, uint64_t{0});
    for (const CPlain* pChild : from.m_Children) {
      CPlain* pCopy = Add({pChild->m_Kind, pChild->m_Text, id});
      pCopy->Enter(into, Count(into));
      CopyBelow(*pChild, *pCopy);
      id = IdOf(TSXGetNextSibling, id, uint64_t{0});
    }
  }

  void Compare(const CPlain& node) {
    const auto get = [&](auto function) { return IdOf(function, node.m_Id, uint64_t{0}); };
    EXPECT_EQ(TextOf(TSXGetText, node.m_Id), node.Content());
    EXPECT_EQ(get(TSXGetFirstChild), node.m_Children.empty() ? 0 : node.m_Children.front()->m_Id);
    EXPECT_EQ(get(TSXGetLastChild), node.m_Children.empty() ? 0 : node.m_Children.back()->m_Id);
    EXPECT_EQ(get(TSXGetNextSibling), IdOrNone(node.Beside(1)));
    EXPECT_EQ(get(TSXGetPreviousSibling), IdOrNone(node.Beside(static_cast<size_t>(-1))));
    if (&node == m_pRoot) return;
    EXPECT_EQ(get(TSXGetParentNode), IdOrNone(node.m_pParent));
  }

  std::mt19937 m_Random;
  CDoc m_Doc;
  std::vector<std::unique_ptr<CPlain>> m_Nodes;
  CPlain* m_pRoot;
  TSXRefId m_List = 0;
  TSXRefId m_Children = 0;
};

class PlainTree : public support::CLedgerTest {};

TEST_F(PlainTree, RandomEditsLeaveWhatItSays) {
  for (unsigned seed = 0; seed < 40 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    CEdits edits(seed);
    for (int step = 0; step < 120 && !HasFailure(); ++step) {
      SCOPED_TRACE(step);
      edits.Step();
    }
  }
}

}  // namespace
