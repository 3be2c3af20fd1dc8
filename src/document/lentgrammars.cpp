#include "document/lentgrammars.h"

#include <initializer_list>
#include <xercesc/util/XMLUni.hpp>
#include <xercesc/validators/schema/SchemaSymbols.hpp>

using xercesc::SchemaSymbols;
using xercesc::XMLUni;

void AddConstantNames(xercesc::XMLStringPool& names) {
  for (const XMLCh* pName :
       {XMLUni::fgZeroLenString, XMLUni::fgUnknownURIName, XMLUni::fgXMLURIName,
        XMLUni::fgXMLNSURIName, SchemaSymbols::fgURI_XSI}) {
    names.addOrFind(pName);
  }
}

CLentGrammars::CLentGrammars(xercesc::MemoryManager& memory)
    : XMLGrammarPoolImpl(&memory), m_Names(&memory) {
  Lend(nullptr);
}

// The scanner has given the parser's own names their numbers when it was made and at its
// first parse, which may be one with lent ones.
void CLentGrammars::Lend(xercesc::XMLGrammarPool* pGrammars) {
  xercesc::XMLStringPool& own = *XMLGrammarPoolImpl::getURIStringPool();
  if (pGrammars != nullptr) AddConstantNames(own);
  m_pLent = pGrammars;
  m_Names.Use(pGrammars != nullptr ? *pGrammars->getURIStringPool() : own);
}

xercesc::Grammar* CLentGrammars::retrieveGrammar(xercesc::XMLGrammarDescription* pDescription) {
  return m_pLent != nullptr ? m_pLent->retrieveGrammar(pDescription)
                            : XMLGrammarPoolImpl::retrieveGrammar(pDescription);
}

xercesc::RefHashTableOfEnumerator<xercesc::Grammar> CLentGrammars::getGrammarEnumerator() const {
  return m_pLent != nullptr ? m_pLent->getGrammarEnumerator()
                            : XMLGrammarPoolImpl::getGrammarEnumerator();
}
