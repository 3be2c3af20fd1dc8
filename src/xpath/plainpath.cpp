#include "xpath/plainpath.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

#include "xpath/domparent.h"
#include "xpath/expressionlexer.h"

using xercesc::DOMNode;

namespace {

// Xalan-C ends a path that is too long for the thread's stack: leave long ones to it.
constexpr std::size_t kMostSteps = 32;
constexpr std::size_t kMostPlaces = 9;

bool AreEqual(const XMLCh* pText, std::u16string_view other) {
  if (pText == nullptr) return other.empty();
  for (const char16_t unit : other) {
    if (*pText++ != unit) return false;
  }
  return *pText == 0;
}

const XMLCh* LocalName(const DOMNode& node) {
  const XMLCh* pName = node.getLocalName();
  return pName == nullptr ? node.getNodeName() : pName;
}

// By its name, whatever its namespace.
bool IsDeclaration(const DOMNode& attribute) {
  const std::u16string_view name = attribute.getNodeName();
  return name == u"xmlns" || name.starts_with(u"xmlns:");
}

bool HasNodesBelow(const DOMNode& node) { return node.getNodeType() != DOMNode::ATTRIBUTE_NODE; }

// The walks end where `visit` gives false.

template <class Visit>
void WalkChildren(const DOMNode& from, Visit visit) {
  if (!HasNodesBelow(from)) return;
  for (DOMNode* p = from.getFirstChild(); p != nullptr && visit(*p);) p = p->getNextSibling();
}

// The way down is kept, as asking a node for its parent costs Xerces-C a dynamic cast.
template <class Visit>
void WalkDescendants(const DOMNode& from, Visit visit) {
  if (!HasNodesBelow(from)) return;
  std::vector<const DOMNode*> open;
  for (DOMNode* p = from.getFirstChild(); p != nullptr && visit(*p);) {
    DOMNode* pNext = p->getFirstChild();
    if (pNext != nullptr) {
      open.push_back(p);
    } else {
      pNext = p->getNextSibling();
    }
    for (; pNext == nullptr && !open.empty(); open.pop_back()) {
      pNext = open.back()->getNextSibling();
    }
    p = pNext;
  }
}

template <class Visit>
void WalkAttributes(const DOMNode& from, Visit visit) {
  const xercesc::DOMNamedNodeMap* pMap = from.getAttributes();
  const XMLSize_t count = pMap == nullptr ? 0 : pMap->getLength();
  for (XMLSize_t i = 0; i < count; ++i) {
    DOMNode& attribute = *pMap->item(i);
    if (!IsDeclaration(attribute) && !visit(attribute)) return;
  }
}

}  // namespace

// -- Reading -----------------------------------------------------------------------

class CPlainPath::CReader {
 public:
  CReader(std::u16string_view text, const CNamespaceScope& scope) : m_Scope(scope) {
    for (CExpressionLexer lexer(text); !lexer.AtEnd();) m_Tokens.push_back(lexer.Next());
  }

  bool AtEnd() const { return m_At == m_Tokens.size(); }

  bool Take(std::u16string_view text) {
    const bool isNext = !AtEnd() && m_Tokens[m_At].Is(text);
    if (isNext) ++m_At;
    return isNext;
  }

  bool ReadPath(CPlainPath& path) {
    path.m_IsAbsolute = Take(u"/");
    if (path.m_IsAbsolute && AtEnd()) return true;
    std::size_t steps = 0;
    do {
      if (++steps > kMostSteps) return false;
      const bool isAfterTwoSlashes = Take(u"/");
      CStep step;
      if (!ReadStep(step)) return false;
      const bool isPlain = isAfterTwoSlashes ? path.AppendAfterTwoSlashes(std::move(step))
                                             : path.Append(std::move(step));
      if (!isPlain) return false;
    } while (Take(u"/"));
    return true;
  }

 private:
  std::optional<std::u16string_view> TakeKind(EToken kind) {
    if (AtEnd() || m_Tokens[m_At].m_Kind != kind) return std::nullopt;
    return m_Tokens[m_At++].m_Text;
  }

  bool ReadStep(CStep& step) {
    CTest& test = step.m_Tests.emplace_back();
    if (Take(u".")) {
      step.m_Axis = EAxis::kSelf;
      return true;
    }
    if (Take(u"..")) {
      step.m_Axis = EAxis::kParent;
      return true;
    }
    if (Take(u"@")) step.m_Axis = EAxis::kAttribute;
    return ReadTest(step.m_Axis, test) && ReadPosition(step.m_Position);
  }

  // A name token may begin with the axis.
  bool ReadTest(EAxis& axis, CTest& test) {
    std::u16string_view name = TakeKind(EToken::kName).value_or(u"");
    const std::size_t axisEnd = name.find(u"::");
    if (axisEnd != name.npos) {
      if (!ReadAxis(name.substr(0, axisEnd), axis)) return false;
      name.remove_prefix(axisEnd + 2);
    }
    if (Take(u"(")) return axis != EAxis::kAttribute && ReadKind(name, test) && Take(u")");
    test.m_Kind = ETest::kName;
    return name.empty() ? Take(u"*") : ReadName(name, test);
  }

  static bool ReadAxis(std::u16string_view name, EAxis& axis) {
    constexpr std::pair<std::u16string_view, EAxis> kAxes[] = {
        {u"self", EAxis::kSelf},
        {u"parent", EAxis::kParent},
        {u"child", EAxis::kChild},
        {u"attribute", EAxis::kAttribute},
        {u"descendant", EAxis::kDescendant},
        {u"descendant-or-self", EAxis::kDescendantOrSelf}};
    const auto* pFound =
        std::ranges::find(kAxes, name, &std::pair<std::u16string_view, EAxis>::first);
    if (pFound == std::end(kAxes)) return false;
    axis = pFound->second;
    return true;
  }

  static bool ReadKind(std::u16string_view name, CTest& test) {
    if (name == u"text") test.m_Kind = ETest::kText;
    return name == u"text" || name == u"node";
  }

  bool ReadName(std::u16string_view name, CTest& test) {
    const std::size_t colon = name.find(u':');
    if (colon == name.npos) {
      test.m_URI = u"";
      test.m_Local = name;
      return true;
    }
    const std::u16string prefix(name.substr(0, colon));
    const auto* pURI = m_Scope.getNamespaceForPrefix(xalanc::XalanDOMString(prefix.c_str()));
    if (pURI == nullptr) return false;
    test.m_URI = pURI->c_str();
    name.remove_prefix(colon + 1);
    if (name.empty()) return Take(u"*");
    test.m_Local = name;
    return true;
  }

  bool ReadPosition(std::size_t& position) {
    if (!Take(u"[")) return true;
    const std::u16string_view digits = TakeKind(EToken::kNumber).value_or(u"");
    if (digits.size() > kMostPlaces) return false;
    for (const char16_t digit : digits) {
      if (digit == u'.') return false;
      position = position * 10 + (digit - u'0');
    }
    return position != 0 && Take(u"]");
  }

  const CNamespaceScope& m_Scope;
  std::vector<CToken> m_Tokens;
  std::size_t m_At = 0;
};

std::optional<CPlainPath> CPlainPath::Read(std::u16string_view expression,
                                           const CNamespaceScope& scope) {
  CReader reader(expression, scope);
  CPlainPath path;
  if (!reader.ReadPath(path)) return std::nullopt;
  while (reader.Take(u"|")) {
    CPlainPath other;
    if (!reader.ReadPath(other) || !path.Unite(std::move(other))) return std::nullopt;
  }
  if (!reader.AtEnd()) return std::nullopt;
  return path;
}

bool CPlainPath::Append(CStep&& step) {
  if (m_IsDeep && step.m_Axis == EAxis::kChild) return AppendBelow(std::move(step));
  const bool stays = step.m_Axis == EAxis::kSelf || step.m_Axis == EAxis::kAttribute;
  if (m_IsDeep && !stays) return false;
  m_IsDeep =
      m_IsDeep || step.m_Axis == EAxis::kDescendant || step.m_Axis == EAxis::kDescendantOrSelf;
  m_Steps.push_back(std::move(step));
  return true;
}

bool CPlainPath::AppendBelow(CStep&& step) {
  CStep& above = m_Steps.back();
  if (above.m_Axis != EAxis::kDescendant || above.m_Position != 0 || step.m_Position != 0) {
    return false;
  }
  above.m_Above.push_back(above.m_Tests.front());
  above.m_Tests = std::move(step.m_Tests);
  return true;
}

// The two slashes are short for a step to every node. With the one after it, if that
// is to children and counts none, it is the same as one step to the descendants.
bool CPlainPath::AppendAfterTwoSlashes(CStep&& step) {
  if (step.m_Axis == EAxis::kChild && step.m_Position == 0) {
    step.m_Axis = EAxis::kDescendant;
    return Append(std::move(step));
  }
  return Append({.m_Axis = EAxis::kDescendantOrSelf, .m_Tests = {CTest{}}}) &&
         Append(std::move(step));
}

bool CPlainPath::Unite(CPlainPath&& other) {
  if (m_Steps.empty() || other.m_Steps.empty() || m_Steps.back().m_Position != 0) return false;
  std::vector<CTest>& tests = m_Steps.back().m_Tests;
  const std::vector<CTest> added = std::exchange(other.m_Steps.back().m_Tests, tests);
  if (m_IsAbsolute != other.m_IsAbsolute || m_Steps != other.m_Steps) return false;
  tests.insert(tests.end(), added.begin(), added.end());
  return true;
}

// -- Selecting ---------------------------------------------------------------------

bool CPlainPath::CTest::Matches(const DOMNode& node, DOMNode::NodeType principal) const {
  if (m_Kind == ETest::kNode) return true;
  if (m_Kind == ETest::kText) return node.getNodeType() == DOMNode::TEXT_NODE;
  return node.getNodeType() == principal && (!m_Local || AreEqual(LocalName(node), *m_Local)) &&
         (!m_URI || AreEqual(node.getNamespaceURI(), *m_URI));
}

bool CPlainPath::CStep::Matches(const DOMNode& node, const DOMNode& from) const {
  const DOMNode::NodeType principal =
      m_Axis == EAxis::kAttribute ? DOMNode::ATTRIBUTE_NODE : DOMNode::ELEMENT_NODE;
  return std::ranges::any_of(m_Tests,
                             [&](const CTest& test) { return test.Matches(node, principal); }) &&
         HasAbove(node, from);
}

bool CPlainPath::CStep::HasAbove(const DOMNode& node, const DOMNode& from) const {
  const DOMNode* pUp = &node;
  return std::all_of(m_Above.rbegin(), m_Above.rend(), [&](const CTest& test) {
    pUp = pUp->getParentNode();
    return pUp != &from && test.Matches(*pUp, DOMNode::ELEMENT_NODE);
  });
}

void CPlainPath::CStep::Take(DOMNode& from, std::size_t most, std::vector<DOMNode*>& nodes) const {
  std::size_t passed = 0;
  const auto visit = [&](DOMNode& node) {
    if (!Matches(node, from) || ++passed < m_Position) return true;
    // Siblings lead to the same parent one after the other.
    if (nodes.empty() || nodes.back() != &node) nodes.push_back(&node);
    return m_Position == 0 && nodes.size() < most;
  };
  switch (m_Axis) {
    case EAxis::kSelf:
      visit(from);
      break;
    case EAxis::kParent:
      if (DOMNode* pParent = DomParent(from)) visit(*pParent);
      break;
    case EAxis::kChild:
      WalkChildren(from, visit);
      break;
    case EAxis::kAttribute:
      WalkAttributes(from, visit);
      break;
    case EAxis::kDescendantOrSelf:
      if (visit(from)) WalkDescendants(from, visit);
      break;
    case EAxis::kDescendant:
      WalkDescendants(from, visit);
      break;
  }
}

std::vector<DOMNode*> CPlainPath::Select(DOMNode& context, DOMNode& root, std::size_t most) const {
  std::vector<DOMNode*> nodes = {m_IsAbsolute ? &root : &context};
  for (const CStep& step : m_Steps) {
    const bool isLast = &step == &m_Steps.back();
    const std::size_t limit = isLast ? most : std::numeric_limits<std::size_t>::max();
    std::vector<DOMNode*> next;
    for (auto p = nodes.begin(); p != nodes.end() && next.size() < limit; ++p) {
      step.Take(**p, limit, next);
    }
    nodes.swap(next);
  }
  return nodes;
}
