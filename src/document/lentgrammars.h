// The grammars of a parser, among them those that it has been lent for a load.
#pragma once

#include <xercesc/framework/XMLGrammarPoolImpl.hpp>
#include <xercesc/util/StringPool.hpp>

#include "document/schemalimits.h"

// The scanner keeps the numbers of five names from parse to parse, so every pool of names
// gives these the same.
void AddConstantNames(xercesc::XMLStringPool& names);

// A grammar names its parts by numbers of its own pool of names, so that one is lent along
// with it: both are asked in the place of the parser's own.
class CLentGrammars final : public xercesc::XMLGrammarPoolImpl {
 public:
  explicit CLentGrammars(xercesc::MemoryManager& memory);

  // Null for none. Outlives the loan.
  void Lend(xercesc::XMLGrammarPool* pGrammars);

  xercesc::Grammar* retrieveGrammar(xercesc::XMLGrammarDescription* pDescription) override;
  xercesc::RefHashTableOfEnumerator<xercesc::Grammar> getGrammarEnumerator() const override;
  xercesc::XMLStringPool* getURIStringPool() override { return &m_Names; }

 private:
  // Passes each question on. The parser asks one at every level of the recursion by which it
  // makes a grammar, so the stack is looked at here.
  class CNames final : public xercesc::XMLStringPool {
   public:
    explicit CNames(xercesc::MemoryManager* pManager) : XMLStringPool(1, pManager) {}

    void Use(xercesc::XMLStringPool& names) { m_pNames = &names; }

    unsigned int addOrFind(const XMLCh* pName) override {
      CSchemaLimits::RequireStack();
      return m_pNames->addOrFind(pName);
    }
    bool exists(const XMLCh* pName) const override { return m_pNames->exists(pName); }
    bool exists(unsigned int id) const override { return m_pNames->exists(id); }
    unsigned int getId(const XMLCh* pName) const override { return m_pNames->getId(pName); }
    const XMLCh* getValueForId(unsigned int id) const override {
      return m_pNames->getValueForId(id);
    }
    unsigned int getStringCount() const override { return m_pNames->getStringCount(); }

   private:
    xercesc::XMLStringPool* m_pNames = nullptr;
  };

  CNames m_Names;
  xercesc::XMLGrammarPool* m_pLent = nullptr;
};
