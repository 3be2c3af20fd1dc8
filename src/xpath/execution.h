// Xalan-C's evaluation, with positions that are right.
#pragma once

#include <xalanc/XPath/NodeRefListBase.hpp>
#include <xalanc/XPath/XPathExecutionContextDefault.hpp>

// Xalan-C keeps the last position that it looked up by node alone. The next predicate
// asks for the same node in a shorter list, and gets the old position: of two b,
// "b[position() > 1][position() = 1]" selected none.
class CExecution final : public xalanc::XPathExecutionContextDefault {
 public:
  using XPathExecutionContextDefault::XPathExecutionContextDefault;

  size_type getContextNodeListPosition(const xalanc::XalanNode& node) const override {
    const xalanc::NodeRefListBase& list = getContextNodeList();
    const size_type count = list.getLength();
    // Positions are asked for in turn, so the next one is looked at before all.
    for (const size_type at : {m_Last + 1, m_Last}) {
      if (at < count && list.item(at) == &node) return (m_Last = at) + 1;
    }
    m_Last = list.indexOf(&node);
    return m_Last + 1;  // where it is not, 0
  }

 private:
  mutable size_type m_Last = 0;
};
