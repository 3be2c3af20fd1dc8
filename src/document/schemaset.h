// Schemas that a host names, read together and ready for one load after another.
#pragma once

#include <memory>
#include <string>
#include <vector>
#include <xercesc/util/XercesDefs.hpp>

#include "document/lentgrammars.h"
#include "document/parsermemory.h"
#include "document/seenfiles.h"

// A schema as the host names it.
struct CNamedSchema {
  std::u16string m_Namespace;  // empty for none
  std::u16string m_Name;       // of its place
  std::u16string m_WholeName;  // the same, wherever it is asked

  bool operator==(const CNamedSchema&) const = default;
};

// What decides what comes of reading schemas, beside their files.
struct CSchemaOrder {
  std::vector<CNamedSchema> m_Schemas;
  bool m_IsFullyChecked = false;
  int32_t m_Mode = 0;  // of access, for what the schemas name

  bool operator==(const CSchemaOrder&) const = default;
};

// A line for the host, of a schema.
struct CSchemaFault {
  std::u16string m_Text;
  XMLFileLoc m_Line = 0;
  XMLFileLoc m_Column = 0;
};

// One load works with a set at a time: a grammar changes as it is used.
class CSchemaSet {
 public:
  // Reads them. A schema is passed over whose namespace an earlier one has brought.
  explicit CSchemaSet(CSchemaOrder order);
  CSchemaSet(const CSchemaSet&) = delete;
  CSchemaSet& operator=(const CSchemaSet&) = delete;

  const CSchemaOrder& Order() const { return m_Order; }
  xercesc::XMLGrammarPool& Grammars() { return m_Grammars; }
  const std::vector<CSchemaFault>& Faults() const { return m_Faults; }
  bool Has(const std::u16string& nameSpace);

  // Whether another load may get it, and whether it would be read the same once more.
  bool MayBeKept();
  bool IsUnchanged() const { return m_Seen.AreUnchanged(); }

 private:
  const CSchemaOrder m_Order;
  CSeenFiles m_Seen;
  CParserMemory m_Memory;
  CLentGrammars m_Grammars{m_Memory};
  std::vector<CSchemaFault> m_Faults;
};

// The last few sets that no load uses, of all threads. The mutex is held for a few
// instructions.
namespace schemastore {

// The set for an order: a kept one whose files are unchanged, or a new one.
std::unique_ptr<CSchemaSet> Take(const CSchemaOrder& order);
void Give(std::unique_ptr<CSchemaSet> pSet);  // does not throw

}  // namespace schemastore
