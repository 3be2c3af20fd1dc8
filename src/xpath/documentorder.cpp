#include "xpath/documentorder.h"

#include "dom/look.h"
#include "xpath/nodetable.h"

using xercesc::DOMNode;

namespace {

// What is known of a node that is in the set or above one that is.
struct CMark {
  bool m_IsMember = false;
  bool m_HasAttributes = false;  // in the set
  std::size_t m_Children = 0;    // with a mark
  DOMNode* m_pFirst = nullptr;   // of these children, as they were met
  DOMNode* m_pSecond = nullptr;
};

// Whether the first of two siblings is the other one. Both look for the other, so the
// cost is the distance between them.
bool IsBefore(const DOMNode& node, const DOMNode& sibling) {
  const DOMNode* pNode = &node;
  const DOMNode* pSibling = &sibling;
  while (true) {
    pNode = dom::NextSibling(*pNode);
    if (pNode == &sibling) return true;
    pSibling = dom::NextSibling(*pSibling);
    if (pSibling == &node || pNode == nullptr) return false;
    if (pSibling == nullptr) return true;
  }
}

// Marks the nodes and their ways up, then goes down the ways.
class COrder {
 public:
  explicit COrder(std::vector<DOMNode*>& nodes) : m_Nodes(nodes) {}

  bool Sort() {
    for (DOMNode* pNode : m_Nodes) Mark(*pNode);
    m_Nodes.clear();
    GoDown();
    return m_IsFlat;
  }

 private:
  struct CLevel {
    DOMNode* m_pNext;
    DOMNode* m_pSecond;  // what comes after it if there are two
    std::size_t m_Left;  // children with a mark
    bool m_HasOthers;    // children without
    bool m_IsInMember;   // the node itself or one above is in the set
  };

  void Mark(DOMNode& node) {
    CMark* pMark = &m_Marks[&node];
    if (pMark->m_IsMember) return;
    pMark->m_IsMember = true;
    bool isNew = !pMark->m_HasAttributes && pMark->m_Children == 0;
    DOMNode* pNode = &node;
    while (isNew) {
      DOMNode* pParent = dom::ParentOrElement(*pNode);
      if (pParent == nullptr) {
        m_pTop = pNode;
        return;
      }
      CMark& parent = m_Marks[pParent];
      isNew = !parent.m_IsMember && !parent.m_HasAttributes && parent.m_Children == 0;
      if (pNode->getNodeType() == DOMNode::ATTRIBUTE_NODE) {
        parent.m_HasAttributes = true;
      } else {
        (parent.m_Children == 0 ? parent.m_pFirst : parent.m_pSecond) = pNode;
        ++parent.m_Children;
      }
      pNode = pParent;
    }
  }

  void GoDown() {
    if (m_pTop == nullptr) return;
    Enter(*m_pTop, false);
    while (!m_Levels.empty()) {
      CLevel& level = m_Levels.back();
      if (level.m_Left == 0) {
        m_Levels.pop_back();
        continue;
      }
      DOMNode* pNode = level.m_pNext;
      const bool isInMember = level.m_IsInMember;
      level.m_pNext = level.m_HasOthers ? dom::NextSibling(*pNode) : level.m_pSecond;
      if (level.m_HasOthers && m_Marks.Find(pNode) == nullptr) continue;
      --level.m_Left;
      Enter(*pNode, isInMember);
    }
  }

  void Enter(DOMNode& node, bool isInMember) {
    const CMark mark = *m_Marks.Find(&node);
    if (mark.m_IsMember) {
      m_Nodes.push_back(&node);
      m_IsFlat = m_IsFlat && !isInMember;
    }
    isInMember = isInMember || mark.m_IsMember;
    if (mark.m_HasAttributes) TakeAttributes(node, isInMember);
    if (mark.m_Children == 0) return;
    CLevel level{mark.m_pFirst, nullptr, mark.m_Children, mark.m_Children > 2, isInMember};
    if (mark.m_Children == 2) {
      const bool isInOrder = IsBefore(*mark.m_pFirst, *mark.m_pSecond);
      level.m_pNext = isInOrder ? mark.m_pFirst : mark.m_pSecond;
      level.m_pSecond = isInOrder ? mark.m_pSecond : mark.m_pFirst;
    } else if (level.m_HasOthers) {
      level.m_pNext = dom::FirstChild(node);
    }
    m_Levels.push_back(level);
  }

  void TakeAttributes(const DOMNode& element, bool isInMember) {
    const xercesc::DOMNamedNodeMap* pMap = element.getAttributes();
    const XMLSize_t count = pMap->getLength();
    for (XMLSize_t i = 0; i < count; ++i) {
      DOMNode* pAttribute = pMap->item(i);
      if (m_Marks.Find(pAttribute) != nullptr) m_Nodes.push_back(pAttribute);
    }
    m_IsFlat = m_IsFlat && !isInMember;
  }

  std::vector<DOMNode*>& m_Nodes;
  CNodeTable<CMark> m_Marks;
  std::vector<CLevel> m_Levels;
  DOMNode* m_pTop = nullptr;
  bool m_IsFlat = true;
};

}  // namespace

bool SortInDocumentOrder(std::vector<DOMNode*>& nodes) {
  if (nodes.size() < 2) return true;
  return COrder(nodes).Sort();
}
