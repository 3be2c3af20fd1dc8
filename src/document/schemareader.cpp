#include "document/schemareader.h"

#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/util/XMLUni.hpp>
#include <xercesc/validators/common/Grammar.hpp>

using xercesc::Grammar;
using xercesc::XMLErrs;
using xercesc::XMLString;
using xercesc::XMLUni;

CSchemaReader::CSchemaReader(xercesc::MemoryManager& memory, xercesc::XMLGrammarPool& grammars,
                             const CSchemaOrder& order, CSeenFiles& seen,
                             std::vector<CSchemaFault>& faults)
    : XercesDOMParser(nullptr, &memory, &grammars),
      m_Grammars(grammars),
      m_Stop(*getScanner()),
      m_Limits(m_Stop),
      m_SchemaLimits(m_Stop),
      m_Resolver(m_Stop, m_Limits, &seen),
      m_Inspector(m_Stop, m_Limits, m_SchemaLimits, m_Resolver),
      m_Seen(seen),
      m_Faults(faults) {
  getScanner()->setEntityHandler(this);
  getScanner()->setErrorReporter(this);
  setDoNamespaces(true);
  setDoSchema(true);
  setValidationScheme(Val_Always);  // else the costly rules are not looked at
  setValidationSchemaFullChecking(order.m_IsFullyChecked);
  const bool isAnywhere =
      order.m_Mode == CAccessPolicy::kAll || order.m_Mode == CAccessPolicy::kFiles;
  m_Resolver.Policy().SetMode(isAnywhere ? order.m_Mode : CAccessPolicy::kFolder);
}

void CSchemaReader::Read(const CNamedSchema& schema) {
  const CExpansionLimits::CLoad load(m_Limits);
  const CSchemaLimits::CLoad patterns(m_SchemaLimits);
  const CSchemaInspector::CLoad inspected(m_Inspector);
  m_pSchema = &schema;
  m_Stop.Begin();
  CPlaceOfName place =
      CPlaceOfName::InDocument(XMLUni::fgZeroLenString, schema.m_WholeName.c_str());
  place.NoteIn(m_Seen);
  m_Resolver.Policy().SetDocument(place.m_Path);
  const auto source = m_Inspector.Watch(
      std::make_unique<CExternalSource>(std::move(place), CAnswer{nullptr, true, {}}, CWatch()));
  const std::size_t faults = m_Faults.size();
  const Grammar* pGrammar = loadGrammar(*source, Grammar::SchemaGrammarType, true);
  LimitPatterns(m_Grammars);
  if (m_Faults.size() != faults) return;
  if (pGrammar == nullptr) {
    AddFault(schema.m_Name, u"it cannot be read");
  } else if (pGrammar->getTargetNamespace() != schema.m_Namespace) {
    AddFault(schema.m_Name, u"it is a schema of the namespace '" +
                                std::u16string(pGrammar->getTargetNamespace()) + u"', not of '" +
                                schema.m_Namespace + u"'");
  }
}

xercesc::InputSource* CSchemaReader::resolveEntity(xercesc::XMLResourceIdentifier* pResource) {
  m_Stop.RequireGoing();
  auto source = m_Resolver.Resolve(*pResource, false);
  const bool isEntity =
      pResource->getResourceIdentifierType() == xercesc::XMLResourceIdentifier::ExternalEntity;
  return (isEntity ? std::move(source) : m_Inspector.Watch(std::move(source))).release();
}

// Warnings are passed over, as in a document.
void CSchemaReader::error(unsigned int code, const XMLCh* pDomain, ErrTypes type,
                          const XMLCh* pText, const XMLCh* pSystemId, const XMLCh*, XMLFileLoc line,
                          XMLFileLoc column) {
  m_Stop.OnError();
  const bool isEcho =
      code == XMLErrs::SchemaScanFatalError && XMLString::equals(pDomain, XMLUni::fgXMLErrDomain);
  if (type == ErrType_Warning || isEcho) return;
  const bool isOther =
      pSystemId != nullptr && *pSystemId != 0 && pSystemId != m_pSchema->m_WholeName;
  AddFault(isOther ? pSystemId : m_pSchema->m_Name, pText, line, column);
}

void CSchemaReader::AddFault(const std::u16string& name, const std::u16string& text,
                             XMLFileLoc line, XMLFileLoc column) {
  m_Faults.push_back({u"schema '" + name + u"': " + text, line, column});
}
