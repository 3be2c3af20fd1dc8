// Evaluates plain expressions on the DOM.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>
#include <xercesc/dom/DOM.hpp>

#include "dom/look.h"
#include "xpath/plainform.h"

namespace plain {

inline bool IsAttribute(const xercesc::DOMNode& node) {
  return node.getNodeType() == xercesc::DOMNode::ATTRIBUTE_NODE;
}

// Attributes have no children here.
inline xercesc::DOMNode* FirstBelow(const xercesc::DOMNode& node) {
  return IsAttribute(node) ? nullptr : dom::FirstChild(node);
}

// Borrows something that takes a node and says whether it wants more.
class CVisitor {
 public:
  template <class Visit>
  CVisitor(const Visit& visit)  // NOLINT(google-explicit-constructor): takes any such thing
      : m_pVisit(&visit), m_pCall([](const void* pVisit, xercesc::DOMNode& node) {
          return static_cast<bool>((*static_cast<const Visit*>(pVisit))(node));
        }) {}

  bool operator()(xercesc::DOMNode& node) const { return m_pCall(m_pVisit, node); }

 private:
  const void* m_pVisit;
  bool (*m_pCall)(const void*, xercesc::DOMNode&);
};

// Where the walk of a step to any depth is: how far below the step's start, and the
// least of that since somebody set it.
struct CDepth {
  long m_Now = 0;
  long m_Least = 0;
};

// What position() and last() refer to.
struct CFocus {
  xercesc::DOMNode& m_Node;
  std::size_t m_Position = 1;
  std::size_t m_Size = 1;
};

// Nodes in document order, each once.
struct CNodes {
  std::vector<xercesc::DOMNode*> m_Nodes;
  bool m_IsFlat = true;   // none is below another
  bool m_IsLevel = true;  // all are at one depth
};

// One evaluation. The tree does not change meanwhile. What Xalan-C answers in a way of
// its own, such as a text from a very deep tree or a number of many digits, ends the
// evaluation without a result.
class CPlainEvaluation {
 public:
  // Borrows all. The namespaces are those of the form's prefixes; the root is needed if
  // the form looks up, and is a document or a fragment.
  CPlainEvaluation(const CForm& form, const std::vector<std::u16string_view>& namespaces,
                   xercesc::DOMNode& context, xercesc::DOMNode* pRoot)
      : m_Form(form), m_Namespaces(namespaces), m_Context(context), m_pRoot(pRoot) {}

  // The first of the nodes that the form selects; nothing for another type.
  std::optional<std::vector<xercesc::DOMNode*>> Select(std::size_t most);
  // The value of the form as a text, a number or a truth value.
  std::optional<std::u16string> Text();
  std::optional<double> Number();
  std::optional<bool> Truth();

 private:
  using CSteps = std::vector<CStep>;

  // -- Axes (plainaxes.cpp) and steps (plainsteps.cpp). A visit that gives false ends them,
  // and they give false.
  bool Matches(const CTest& test, const xercesc::DOMNode& node, xercesc::DOMNode::NodeType type,
               xercesc::DOMNode::NodeType principal) const;
  bool Matches(const CStep& step, const xercesc::DOMNode& node,
               xercesc::DOMNode::NodeType type) const;
  bool Walk(const CStep& step, xercesc::DOMNode& from, CVisitor visit, CDepth* pDepth);
  bool WalkBelow(const CStep& step, xercesc::DOMNode& from, CVisitor visit, CDepth* pDepth);
  bool WalkFollowing(const CStep& step, xercesc::DOMNode& from, CVisitor visit);
  bool WalkPreceding(const CStep& step, xercesc::DOMNode& from, CVisitor visit);
  bool Apply(const CStep& step, xercesc::DOMNode& from, CVisitor visit, CDepth* pDepth);
  bool ApplyCounting(const CStep& step, xercesc::DOMNode& from, CVisitor visit, CDepth* pDepth);
  bool ApplyToList(const CStep& step, xercesc::DOMNode& from, CVisitor visit);
  bool ApplyToEach(const CStep& step, xercesc::DOMNode& from, CVisitor visit, CDepth* pDepth);
  bool Run(const CStep* pStep, const CStep* pEnd, xercesc::DOMNode& from, CVisitor visit,
           CDepth* pDepth);
  bool Visit(const CPath& path, const CFocus& focus, CVisitor visit);
  bool Holds(const CPredicate& predicate, const CFocus& focus);
  void Filter(const std::vector<CPredicate>& predicates, std::vector<xercesc::DOMNode*>& nodes);

  // -- Sets (plainsets.cpp)
  CNodes Select(const CExpression& expression, const CFocus& focus, std::size_t most);
  CNodes Select(const CPath& path, const CFocus& focus, std::size_t most);
  CNodes Start(const CPath& path, const CFocus& focus);
  void RunInOrder(const CStep* pStep, const CStep* pEnd, CNodes& set, std::size_t most);
  void TakeStep(const CStep& step, CNodes& set);
  void TakeFromOne(const CStep& step, CNodes& set);
  void TakeParents(CNodes& set);
  void TakeOnce(const CStep& step, CNodes& set);
  void TakeEach(const CStep& step, CNodes& set);

  // -- Values (plainvalues.cpp)
  bool Exists(const CExpression& expression, const CFocus& focus);
  xercesc::DOMNode* First(const CExpression& expression, const CFocus& focus);
  void ForAll(const CExpression& expression, const CFocus& focus, CVisitor visit);
  double Sum(const CExpression& expression, const CFocus& focus);
  bool Truth(const CExpression& expression, const CFocus& focus);
  double Number(const CExpression& expression, const CFocus& focus);
  double Calculate(const CExpression& expression, const CFocus& focus);
  std::u16string_view TextOf(const xercesc::DOMNode& node, std::u16string& buffer);
  double NumberIn(std::u16string_view text);
  double Limited(double number);

  // -- Texts (plaintexts.cpp). They are the DOM's or the form's own, or stand in the buffer.
  std::u16string_view Text(const CExpression& expression, const CFocus& focus,
                           std::u16string& buffer);
  std::u16string_view TextOfFunction(const CExpression& expression, const CFocus& focus,
                                     std::u16string& buffer);
  std::u16string_view Name(const CExpression& expression, const CFocus& focus);
  std::u16string_view Concatenated(const CExpression& expression, const CFocus& focus,
                                   std::u16string& buffer);
  std::u16string_view Part(const CExpression& expression, const CFocus& focus,
                           std::u16string& buffer);
  std::u16string_view Translated(const CExpression& expression, const CFocus& focus,
                                 std::u16string& buffer);

  // -- Comparisons (plaincomparisons.cpp)
  bool Compare(const CExpression& expression, const CFocus& focus);
  bool CompareNodes(EKind kind, const CExpression& nodes, const CExpression& other,
                    const CFocus& focus);
  bool CompareAll(EKind kind, const CExpression& nodes, const CExpression& others,
                  const CFocus& focus);

  void GiveUp() { m_GaveUp = true; }

  const CForm& m_Form;
  const std::vector<std::u16string_view>& m_Namespaces;
  xercesc::DOMNode& m_Context;
  xercesc::DOMNode* m_pRoot;
  bool m_GaveUp = false;
};

}  // namespace plain
