// Expressions that are evaluated on the DOM itself, as they were read.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "xpath/expressionlexer.h"

// Xalan-C evaluates on nodes that wrap those of the DOM, and compiles an expression
// whenever it meets it. What people write every day goes another way: it is read once
// into the form below, and evaluated by CPlainEvaluation. Such an expression is plain:
//
// - its axes are all but "namespace";
// - its functions are all but id() and lang(), its operators and their operands those
//   where Xalan-C agrees with the standard;
// - it is short, and written without the liberties in which Xalan-C's grammar is its own.
//
// What is not plain, or no expression, goes to Xalan-C, so messages are always its own.
// The form depends on nothing but the text: prefixes are resolved at evaluation.
namespace plain {

enum class EAxis : std::uint8_t {
  kSelf,
  kParent,
  kAncestor,
  kAncestorOrSelf,
  kChild,
  kAttribute,
  kFollowingSibling,
  kPrecedingSibling,
  kFollowing,
  kPreceding,
  kDescendant,
  kDescendantOrSelf,
  kChildOfEach,  // "//x[1]": the children of a node and of all below it, each of its parent
};

enum class ETest : std::uint8_t { kNode, kText, kComment, kInstruction, kName };

constexpr int kAnyNamespace = -2;
constexpr int kNoNamespace = -1;

struct CTest {
  ETest m_Kind = ETest::kNode;
  int m_Namespace = kAnyNamespace;                  // or the number of a prefix
  std::optional<std::u16string_view> m_Local = {};  // or an instruction's target; nothing is any

  bool operator==(const CTest&) const = default;
};

enum class EType : std::uint8_t { kNodes, kText, kNumber, kTruth };

enum class EKind : std::uint8_t {
  kNodes,  // a union of paths
  kLiteral,
  kNumber,
  kOr,
  kAnd,
  kEqual,
  kUnequal,
  kLess,
  kLessOrEqual,
  kGreater,
  kGreaterOrEqual,
  kPlus,
  kMinus,
  kTimes,
  kDivide,
  kModulo,
  kNegate,
  kPosition,
  kLast,
  kCount,
  kSum,
  kFloor,
  kCeiling,
  kRound,
  kNot,
  kTrue,
  kFalse,
  kToTruth,
  kToText,
  kToNumber,
  kContains,
  kStartsWith,
  kLength,
  kNormalized,
  kConcat,
  kBefore,
  kAfter,
  kPart,
  kTranslated,
  kName,
  kLocalName,
  kNamespace,
  kForeign,  // a function that Xalan-C evaluates
};

struct CPath;

struct CExpression {
  EKind m_Kind = EKind::kNodes;
  EType m_Type = EType::kNodes;
  bool m_Counts = false;  // asks for position() or last(), outside inner predicates
  bool m_AsksForLast = false;
  double m_Number = 0;
  std::u16string_view m_Text = {};
  std::vector<CExpression> m_Arguments = {};
  std::vector<CPath> m_Paths;

  bool operator==(const CExpression&) const;
};

struct CPredicate {
  CExpression m_Expression;
  std::size_t m_Most = 0;  // the last position that can pass; 0 for any
  bool m_IsExact = false;  // only the position m_Most passes

  bool operator==(const CPredicate&) const = default;
};

struct CStep {
  static constexpr std::size_t kMostPredicates = 4;

  EAxis m_Axis = EAxis::kChild;
  std::vector<CTest> m_Tests = {};  // of which a node passes any
  std::vector<CPredicate> m_Predicates = {};
  bool m_Counts = false;  // a predicate depends on the position
  bool m_AsksForLast = false;

  bool operator==(const CStep&) const = default;
};

enum class EStart : std::uint8_t { kContext, kRoot, kNodes };

struct CPath {
  EStart m_Start = EStart::kContext;
  std::vector<CExpression> m_From = {};       // of kNodes: the one expression in brackets
  std::vector<CPredicate> m_Predicates = {};  // and what counts its nodes
  std::vector<CStep> m_Steps = {};
  // One step after the other from one node, without looking back, comes to every node
  // once and in document order.
  bool m_IsInOrder = false;

  bool operator==(const CPath&) const = default;
};

inline bool CExpression::operator==(const CExpression& other) const {
  return m_Kind == other.m_Kind && m_Number == other.m_Number && m_Text == other.m_Text &&
         m_Arguments == other.m_Arguments && m_Paths == other.m_Paths;
}

// A plain expression. Its texts stand in the one that it was read from.
class CForm {
 public:
  // Null for what is not plain; what is, Xalan-C accepts. The form goes before the
  // expression.
  static std::unique_ptr<const CForm> Read(const CLexedExpression& expression);
  CForm(const CForm&) = delete;
  CForm& operator=(const CForm&) = delete;

  const CExpression& Expression() const { return m_Expression; }
  const std::vector<std::u16string>& Prefixes() const { return m_Prefixes; }
  // Whether it matters what the context hangs in.
  bool LooksUp() const { return m_LooksUp; }

 private:
  friend class CReader;
  CForm() = default;

  CExpression m_Expression;
  std::vector<std::u16string> m_Prefixes;
  bool m_LooksUp = false;
};

}  // namespace plain
