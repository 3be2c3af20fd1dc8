#include "document/schemalimits.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <utility>
#include <xercesc/util/regx/Op.hpp>
#include <xercesc/util/regx/RegxUtil.hpp>
#include <xercesc/validators/common/GrammarResolver.hpp>
#include <xercesc/validators/datatype/DatatypeValidatorFactory.hpp>
#include <xercesc/validators/schema/SchemaGrammar.hpp>

#include "document/oneline.h"
#include "host/stackroom.h"

using xercesc::ChildOp;
using xercesc::DatatypeValidator;
using xercesc::Grammar;
using xercesc::Op;
using xercesc::RefVectorOf;
using xercesc::RegularExpression;
using xercesc::RegxUtil;

namespace {

constinit thread_local CSchemaLimits* t_pSchemaLimits = nullptr;

// -- Steps -----------------------------------------------------------------------

// An anchor of a kind that the matcher does not know, so that it goes on as if the anchor
// held. To learn the kind it calls getData, and this call counts as a step.
class CStep final : public Op {
 public:
  CStep(const Op* pNext, const XMLCh* pPattern, xercesc::MemoryManager* pManager)
      : Op(O_ANCHOR, pManager), m_pPattern(pPattern) {
    setNextOp(pNext);
  }
  XMLInt32 getData() const override {
    if (t_pSchemaLimits != nullptr) t_pSchemaLimits->Step(m_pPattern);
    return 0;
  }

 private:
  const XMLCh* m_pPattern;  // the expression's own
};

bool Branches(const Op& operation) {
  const Op::opType type = operation.getOpType();
  return type == Op::O_UNION || type == Op::O_CLOSURE || type == Op::O_QUESTION;
}

// -- Parts of the XML library ----------------------------------------------------

// Private members that an explicit instantiation may name.
template <class Tag, typename Tag::Type kMember>
struct CRevealOfMatcher {
  friend typename Tag::Type Of(Tag) { return kMember; }
};
struct CAllOps {
  using Type = RefVectorOf<Op>* xercesc::OpFactory::*;
  friend Type Of(CAllOps);
};
template struct CRevealOfMatcher<CAllOps, &xercesc::OpFactory::fOpVector>;
struct CBranches {
  using Type = RefVectorOf<Op>* xercesc::UnionOp::*;
  friend Type Of(CBranches);
};
template struct CRevealOfMatcher<CBranches, &xercesc::UnionOp::fBranches>;

// What is protected.
class CExpressionParts : private RegularExpression {
 public:
  static constexpr auto kFirst = &CExpressionParts::fOperations;
  static constexpr auto kFactory = &CExpressionParts::fOpFactory;
  static constexpr auto kPattern = &CExpressionParts::fPattern;
  static constexpr auto kMemory = &CExpressionParts::fMemoryManager;
};
class CValidatorParts : private DatatypeValidator {
 public:
  static RegularExpression* Pattern(const DatatypeValidator& validator) {
    return (validator.*(&CValidatorParts::getRegex))();
  }
};
class CScannerParts : private xercesc::XMLScanner {
 public:
  static constexpr auto kGrammars = &CScannerParts::fGrammarResolver;
};

// -- Putting steps in ------------------------------------------------------------

// Goes through the operations of one expression, which then owns what is put between them.
class CStepper {
 public:
  explicit CStepper(RegularExpression& pattern)
      : m_Pattern(pattern), m_All(*(pattern.*CExpressionParts::kFactory.*Of(CAllOps{}))) {}

  void Run() {
    const XMLSize_t size = m_All.size();
    if (size == 0 || dynamic_cast<CStep*>(m_All.elementAt(size - 1)) != nullptr) return;
    for (XMLSize_t i = 0; i < size; ++i) Spell(*m_All.elementAt(i));
    const XMLSize_t spelled = m_All.size();
    for (XMLSize_t i = 0; i < spelled; ++i) Link(*m_All.elementAt(i));
    const Op*& pFirst = m_Pattern.*CExpressionParts::kFirst;
    pFirst = Before(pFirst);
    Add(nullptr);  // leads nowhere, and shows that this was done
  }

  bool MayTakeLong() const {
    constexpr size_t kFew = 16;  // branches give no more than some ten thousand ways
    const auto begins = [](const auto& step) { return step.first->getOpType() == Op::O_CLOSURE; };
    return m_Steps.size() > kFew || std::ranges::any_of(m_Steps, begins);
  }

 private:
  // The matcher measures the whole value each time that it comes to a string, so there are
  // characters in its place.
  void Spell(const Op& operation) {
    if (operation.getOpType() != Op::O_STRING) return;
    xercesc::OpFactory& factory = m_Pattern.*CExpressionParts::kFactory;
    Op* pLast = nullptr;
    for (const XMLCh* pUnit = operation.getLiteral(); *pUnit != 0; ++pUnit) {
      XMLInt32 character = *pUnit;
      if (RegxUtil::isHighSurrogate(*pUnit) && RegxUtil::isLowSurrogate(pUnit[1])) {
        character = RegxUtil::composeFromSurrogate(*pUnit, pUnit[1]);
        ++pUnit;
      }
      Op* pNew = factory.createCharOp(character);
      if (pLast == nullptr) {
        m_Spelled[&operation] = pNew;
      } else {
        pLast->setNextOp(pNew);
      }
      pLast = pNew;
    }
    if (pLast != nullptr) pLast->setNextOp(operation.getNextOp());
  }

  void Link(Op& operation) {
    operation.setNextOp(Before(operation.getNextOp()));
    if (auto* pRepeated = dynamic_cast<ChildOp*>(&operation)) {
      pRepeated->setChild(Before(pRepeated->getChild()));
    } else if (auto* pUnion = dynamic_cast<xercesc::UnionOp*>(&operation)) {
      RefVectorOf<Op>& branches = *(pUnion->*Of(CBranches{}));
      for (XMLSize_t i = 0; i < branches.size(); ++i) {
        branches.setElementAt(const_cast<Op*>(Before(branches.elementAt(i))), i);
      }
    }
  }

  // What leads to an operation.
  const Op* Before(const Op* pOp) {
    if (pOp == nullptr) return nullptr;
    const auto spelled = m_Spelled.find(pOp);
    if (spelled != m_Spelled.end()) return spelled->second;
    return Branches(*pOp) ? StepBefore(pOp) : pOp;
  }

  const Op* StepBefore(const Op* pOp) {
    const Op*& pStep = m_Steps[pOp];
    if (pStep == nullptr) pStep = Add(pOp);
    return pStep;
  }

  const Op* Add(const Op* pNext) {
    xercesc::MemoryManager* pMemory = m_Pattern.*CExpressionParts::kMemory;
    auto* pStep = new (pMemory) CStep(pNext, m_Pattern.*CExpressionParts::kPattern, pMemory);
    m_All.addElement(pStep);
    return pStep;
  }

  RegularExpression& m_Pattern;
  RefVectorOf<Op>& m_All;
  std::unordered_map<const Op*, const Op*> m_Spelled;  // by the string
  std::unordered_map<const Op*, const Op*> m_Steps;    // by what comes after
};

void LimitAll(xercesc::RefHashTableOfEnumerator<Grammar> grammars) {
  while (grammars.hasMoreElements()) {
    Grammar& grammar = grammars.nextElement();
    if (grammar.getGrammarType() != Grammar::SchemaGrammarType) continue;
    auto* pTypes = static_cast<xercesc::SchemaGrammar&>(grammar)
                       .getDatatypeRegistry()
                       ->getUserDefinedRegistry();
    if (pTypes == nullptr) continue;
    xercesc::RefHashTableOfEnumerator<DatatypeValidator> types(pTypes);
    while (types.hasMoreElements()) {
      RegularExpression* pPattern = CValidatorParts::Pattern(types.nextElement());
      if (pPattern != nullptr) LimitPattern(*pPattern);
    }
  }
}

}  // namespace

CSchemaLimits::CLoad::CLoad(CSchemaLimits& limits)
    : m_pOuter(std::exchange(t_pSchemaLimits, &limits)) {
  limits.m_HasSchema = false;
  limits.m_Steps = 0;
  limits.m_Most = kSteps;
}

CSchemaLimits::CLoad::~CLoad() { t_pSchemaLimits = m_pOuter; }

void CSchemaLimits::RequireStack() {
  const bool isAtRisk = t_pSchemaLimits != nullptr && t_pSchemaLimits->m_HasSchema;
  if (!isAtRisk || StackRoom() != 0) return;
  StopForStack(t_pSchemaLimits->m_Stop);
}

void CSchemaLimits::StopForStack(CLoadStop& stop) {
  stop.Stop(u"a schema is nested too deep for the stack of this thread");
}

void CSchemaLimits::Step(const XMLCh* pPattern) {
  const char16_t* pWhy = nullptr;
  if (StackRoom() == 0) {
    pWhy = u"' takes more stack for a value than this thread has";
  } else if (++m_Steps > m_Most) {
    pWhy = u"' takes too many steps";
  }
  if (pWhy == nullptr) return;
  const std::u16string text = u"the pattern '" + InOneLine(pPattern) + pWhy;
  m_Stop.Stop(text.c_str());
}

bool LimitPattern(RegularExpression& pattern) {
  CStepper stepper(pattern);
  stepper.Run();
  return stepper.MayTakeLong();
}

void LimitPatterns(xercesc::XMLScanner& scanner) {
  LimitAll((scanner.*CScannerParts::kGrammars)->getGrammarEnumerator());
}

void LimitPatterns(const xercesc::XMLGrammarPool& grammars) {
  LimitAll(grammars.getGrammarEnumerator());
}
