// Paths that are followed on the DOM itself.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>
#include <xercesc/dom/DOM.hpp>

#include "xpath/namespacescope.h"

// A path like "/list/item[1]", "../@id" or "//name", without Xalan-C and its wrapping
// nodes. A path is plain when
//
// - its axes are self, parent, child, attribute and descendant, written out or in
//   short, and its node tests names, "*", node() and text();
// - its only predicates are positions, written as numbers, one in a step at most;
// - a descendant step is followed by none but child steps that belong to it, and self
//   and attribute steps.
//
// No step has to sort its results: up to a descendant step all nodes of a set are at
// one depth, and "descendant::a/child::b" is taken as the b below with a parent a.
//
// A union of such paths is one too if they differ in the last node test alone.
class CPlainPath {
 public:
  // Nothing if the expression is not plain. It must be one that Xalan-C accepts. The
  // path borrows the text, and from the scope.
  static std::optional<CPlainPath> Read(std::u16string_view expression,
                                        const CNamespaceScope& scope);

  // What Xalan-C would select, cut after `most` nodes. The root is a document or a
  // fragment, and the context hangs in its tree.
  std::vector<xercesc::DOMNode*> Select(xercesc::DOMNode& context, xercesc::DOMNode& root,
                                        std::size_t most) const;

 private:
  enum class EAxis { kSelf, kParent, kChild, kAttribute, kDescendant, kDescendantOrSelf };
  enum class ETest { kNode, kText, kName };

  struct CTest {
    ETest m_Kind = ETest::kNode;
    std::optional<std::u16string_view> m_URI = {};    // nothing is any, empty is none
    std::optional<std::u16string_view> m_Local = {};  // nothing is any

    bool operator==(const CTest&) const = default;
    bool Matches(const xercesc::DOMNode& node, xercesc::DOMNode::NodeType principal) const;
  };

  struct CStep {
    EAxis m_Axis = EAxis::kChild;
    std::vector<CTest> m_Tests = {};  // of which a node passes any
    std::size_t m_Position = 0;       // among those that pass, from 1; 0 is any
    // What its parents below the step's start must pass, the nearest last: of
    // "descendant::a/child::b" the a.
    std::vector<CTest> m_Above = {};

    bool operator==(const CStep&) const = default;
    bool Matches(const xercesc::DOMNode& node, const xercesc::DOMNode& from) const;
    bool HasAbove(const xercesc::DOMNode& node, const xercesc::DOMNode& from) const;
    // Adds nodes until there are `most`.
    void Take(xercesc::DOMNode& from, std::size_t most,
              std::vector<xercesc::DOMNode*>& nodes) const;
  };

  class CReader;

  // False if the union is not plain; then neither path is of use.
  bool Unite(CPlainPath&& other);
  // Each takes the step that follows; false as Unite.
  bool Append(CStep&& step);
  bool AppendAfterTwoSlashes(CStep&& step);
  bool AppendBelow(CStep&& step);

  bool m_IsAbsolute = false;
  bool m_IsDeep = false;  // nodes may hang below one another
  std::vector<CStep> m_Steps;
};
