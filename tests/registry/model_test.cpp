// The node registry against a plain model of maps, by random operations.
#include <array>
#include <map>
#include <memory>
#include <random>

#include "document/xercesdom.h"
#include "support/support.h"

namespace {

using xercesc::DOMDocument;
using xercesc::DOMNode;

// The registry's rules as plainly as they can be said.
class CModel {
 public:
  unsigned long Insert(DOMNode* pNode) {
    if (m_PtrToSess.contains(pNode)) {
      ++m_Count[m_PtrToSess[pNode]];
      return m_PtrToSess[pNode];
    }
    const unsigned long id = ++m_Last;
    m_PtrToSess[pNode] = id;
    m_SessToPtr[id] = pNode;
    m_Count[id] = 1;
    m_Tree[id] = TreeOf(pNode);
    if (DOMDocument* pDoc = pNode->getOwnerDocument()) m_NodeToDoc[pNode] = pDoc;
    return id;
  }

  bool DeleteBySess(unsigned long id) {
    if (!m_SessToPtr.contains(id) || m_SessToPtr[id] == nullptr || --m_Count[id] != 0) return false;
    DOMNode* pNode = m_SessToPtr[id];
    if (m_Tree[id] != nullptr) {
      Sweep(m_Tree[id]);
    } else {
      m_NodeToDoc.erase(pNode);
    }
    m_PtrToSess.erase(pNode);
    m_SessToPtr.erase(id);
    return true;
  }

  void ResetPtr(DOMNode* pNew, unsigned long id) {
    if (!m_SessToPtr.contains(id) || m_SessToPtr[id] == nullptr) return;
    DOMNode* pOld = m_SessToPtr[id];
    m_PtrToSess.erase(pOld);
    m_PtrToSess.emplace(pNew, id);
    m_SessToPtr[id] = pNew;
    DOMDocument* pDoc = m_NodeToDoc[pOld];
    m_NodeToDoc.erase(pOld);
    m_NodeToDoc.emplace(pNew, pDoc);
    m_Tree[id] = nullptr;
  }

  void Withdraw(DOMNode* pNode) {
    if (m_PtrToSess.contains(pNode)) m_SessToPtr.erase(m_PtrToSess[pNode]);
    m_PtrToSess.erase(pNode);
    m_NodeToDoc.erase(pNode);
  }

  DOMNode* Get(unsigned long id) const {
    const auto found = m_SessToPtr.find(id);
    return found != m_SessToPtr.end() ? found->second : nullptr;
  }
  unsigned long Last() const { return m_Last; }
  bool IsKnown(DOMNode* pNode) const { return m_PtrToSess.contains(pNode); }

 private:
  static DOMDocument* TreeOf(DOMNode* pNode) {
    if (auto* pDom = dynamic_cast<CXercesDOM*>(pNode)) return pDom->m_pDoc;
    return dynamic_cast<DOMDocument*>(pNode);
  }

  void Sweep(const DOMDocument* pDoc) {
    std::erase_if(m_NodeToDoc, [&](const auto& entry) {
      if (entry.second != pDoc) return false;
      if (m_PtrToSess.contains(entry.first)) m_SessToPtr.erase(m_PtrToSess[entry.first]);
      m_PtrToSess.erase(entry.first);
      return true;
    });
  }

  std::map<DOMNode*, unsigned long> m_PtrToSess;
  std::map<unsigned long, DOMNode*> m_SessToPtr;
  std::map<unsigned long, int> m_Count;
  std::map<unsigned long, DOMDocument*> m_Tree;
  std::map<DOMNode*, DOMDocument*> m_NodeToDoc;
  unsigned long m_Last = 0;
};

TEST(NodeRegistryModel, RandomOperationsAgree) {
  std::mt19937 random(7);
  std::vector<std::unique_ptr<CXercesDOM>> doms;
  std::vector<DOMNode*> nodes;
  std::vector<DOMNode*> elements;
  for (int d = 0; d < 3; ++d) {
    auto& dom = *doms.emplace_back(std::make_unique<CXercesDOM>());
    for (int e = 0; e < 12; ++e) elements.push_back(dom.m_pDoc->createElement(u"e"));
    nodes.push_back(&dom);
    nodes.push_back(dom.DocumentNode());
  }
  nodes.insert(nodes.end(), elements.begin(), elements.end());
  const auto pick = [&](const auto& from) { return from[random() % from.size()]; };
  CDOMNodeSessMap registry("Model Mutex");
  CModel model;
  EXPECT_EQ(registry.Insert(nullptr), 0u);
  for (int step = 0; step < 40000; ++step) {
    SCOPED_TRACE(step);
    // Recent ids, now and then one that is long gone or was never issued.
    const unsigned long id = model.Last() + 2 - std::min(model.Last() + 2, random() % 60ul);
    DOMNode* pNode = pick(nodes);
    switch ("IIIIIDDDDRWM"[random() % 12]) {
      case 'I':
        ASSERT_EQ(registry.Insert(pNode), model.Insert(pNode));
        break;
      case 'M': {
        std::vector<DOMNode*> many(random() % 100 == 0 ? 600 : random() % 4);
        for (DOMNode*& pOne : many) pOne = pick(nodes);
        std::vector<uint64_t> ids(many.size());
        registry.Insert(many, ids.data());
        for (size_t i = 0; i < many.size(); ++i) ASSERT_EQ(ids[i], model.Insert(many[i]));
        break;
      }
      case 'D':
        ASSERT_EQ(registry.DeleteBySess(id), model.DeleteBySess(id));
        break;
      case 'R': {
        // Only ever to a node that has no id yet, as replacing an element does.
        DOMNode* pNew = pick(elements);
        if (model.IsKnown(pNew)) break;
        registry.ResetPtr(pNew, id);
        model.ResetPtr(pNew, id);
        break;
      }
      case 'W':
        if (random() % 2 == 0) {
          registry.Withdraw(pNode);
        } else {
          registry.Withdraw(std::array{pNode, pNode});
        }
        model.Withdraw(pNode);
        break;
    }
    for (unsigned long seen = model.Last() - std::min(model.Last(), 60ul); seen <= model.Last();
         ++seen) {
      ASSERT_EQ(registry.GetPtrBySess(seen), model.Get(seen)) << seen;
    }
  }
}

}  // namespace
