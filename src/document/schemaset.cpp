#include "document/schemaset.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <mutex>
#include <xercesc/framework/XMLSchemaDescription.hpp>

#include "document/schemareader.h"

namespace {

// Names of namespaces that the documents have added.
constexpr unsigned int kMostNames = 10000;

}  // namespace

CSchemaSet::CSchemaSet(CSchemaOrder order) : m_Order(std::move(order)) {
  AddConstantNames(*m_Grammars.getURIStringPool());
  CSchemaReader reader(m_Memory, m_Grammars, m_Order, m_Seen, m_Faults);
  for (const CNamedSchema& schema : m_Order.m_Schemas) {
    if (!Has(schema.m_Namespace)) reader.Read(schema);
  }
}

bool CSchemaSet::Has(const std::u16string& nameSpace) {
  const std::unique_ptr<xercesc::XMLSchemaDescription> pDescription(
      m_Grammars.createSchemaDescription(nameSpace.c_str()));
  return m_Grammars.retrieveGrammar(pDescription.get()) != nullptr;
}

bool CSchemaSet::MayBeKept() {
  return m_Faults.empty() && m_Seen.AreSettled() &&
         m_Grammars.getURIStringPool()->getStringCount() <= kMostNames;
}

namespace schemastore {

namespace {

std::mutex s_Mutex;

// Guarded by s_Mutex; the one given last comes first, and room at the end.
using CKept = std::array<std::unique_ptr<CSchemaSet>, 4>;
CKept& Kept() {
  static CKept s_Kept;
  return s_Kept;
}

std::unique_ptr<CSchemaSet> TakeKept(const CSchemaOrder& order) {
  const std::lock_guard<std::mutex> lock(s_Mutex);
  const auto isIt = [&](const auto& pSet) { return pSet != nullptr && pSet->Order() == order; };
  const auto found = std::ranges::find_if(Kept(), isIt);
  if (found == Kept().end()) return nullptr;
  std::rotate(found, std::next(found), Kept().end());
  return std::move(Kept().back());
}

}  // namespace

std::unique_ptr<CSchemaSet> Take(const CSchemaOrder& order) {
  std::unique_ptr<CSchemaSet> pSet = TakeKept(order);
  if (pSet != nullptr && pSet->IsUnchanged()) return pSet;
  return std::make_unique<CSchemaSet>(order);
}

// What has to make room goes when the mutex is free again.
void Give(std::unique_ptr<CSchemaSet> pSet) {
  if (!pSet->MayBeKept()) return;
  const std::lock_guard<std::mutex> lock(s_Mutex);
  std::rotate(Kept().begin(), std::prev(Kept().end()), Kept().end());
  std::swap(Kept().front(), pSet);
}

}  // namespace schemastore
