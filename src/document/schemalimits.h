// How much schemas may cost.
#pragma once

#include <cstddef>
#include <cstdint>
#include <xercesc/framework/XMLGrammarPool.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/util/regx/RegularExpression.hpp>

#include "document/loadstop.h"

// The XML library makes a grammar by recursion, one deeper with each type within a type and
// each reference, and asks its pool of names on every level: there the stack is looked at.
//
// It matches a value by recursion, for patterns such as "(a|b)*c" one deeper
// with each character, for "(a*)*b" without end; and it tries every way there is, of which
// "(a|aa)*b" has twice as many with each character. So steps are put into its patterns,
// one before each place where they branch or begin again. A step asks for the load of its
// thread, and ends that where the stack runs out or too many steps were made.
class CSchemaLimits {
 public:
  explicit CSchemaLimits(CLoadStop& stop) : m_Stop(stop) {}
  CSchemaLimits(const CSchemaLimits&) = delete;
  CSchemaLimits& operator=(const CSchemaLimits&) = delete;

  // Counts for this thread and from 0, as long as it lives.
  class CLoad {
   public:
    explicit CLoad(CSchemaLimits& limits);
    ~CLoad();
    CLoad(const CLoad&) = delete;
    CLoad& operator=(const CLoad&) = delete;

   private:
    CSchemaLimits* m_pOuter;
  };

  // Each value of a document may add a thousand.
  void AllowValues(size_t count) { m_Most += count * kStepsOfValue; }
  // For the time that a match takes in any case.
  void CountMatch() { m_Steps += kStepsOfMatch; }
  // The load reads a schema: from now on the making of its grammar needs stack.
  void OnSchema() { m_HasSchema = true; }
  // Ends the load of this thread, if it has read a schema, where the stack runs out.
  static void RequireStack();
  static void StopForStack(CLoadStop& stop);
  // Of a pattern, which is named if it has to stop.
  void Step(const XMLCh* pPattern);

 private:
  static constexpr uint64_t kSteps = 10'000'000;
  static constexpr uint64_t kStepsOfValue = 1000;
  static constexpr uint64_t kStepsOfMatch = 10;

  CLoadStop& m_Stop;
  bool m_HasSchema = false;
  uint64_t m_Steps = 0;
  uint64_t m_Most = kSteps;
};

// Puts steps into a pattern, if it has none yet. True if it repeats something or branches
// often, so that a match may take much longer than the value is long; false where the steps
// were there already.
bool LimitPattern(xercesc::RegularExpression& pattern);

// Puts them into the patterns of all schemas that the scanner has read itself, or of a pool.
void LimitPatterns(xercesc::XMLScanner& scanner);
void LimitPatterns(const xercesc::XMLGrammarPool& grammars);
