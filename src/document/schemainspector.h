// What schemas say, seen before the parser takes them.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>
#include <xercesc/sax/InputSource.hpp>
#include <xercesc/util/regx/RegularExpression.hpp>

#include "document/externalresolver.h"
#include "document/modelsize.h"
#include "document/schemalimits.h"

// The patterns of a grammar have their limits once it is made. While it is made, the parser
// expands them and already matches the schema's own values: defaults, enumerations, bounds.
// So each schema is read twice, as the same bytes: here first, where what would cost too
// much ends the load. What it names outside is read once.
class CSchemaInspector {
 public:
  CSchemaInspector(CLoadStop& stop, CExpansionLimits& limits, CSchemaLimits& schemaLimits,
                   CExternalResolver& resolver)
      : m_Stop(stop), m_Limits(limits), m_SchemaLimits(schemaLimits), m_Resolver(resolver) {}
  CSchemaInspector(const CSchemaInspector&) = delete;
  CSchemaInspector& operator=(const CSchemaInspector&) = delete;

  // What was seen in a load is forgotten at its end.
  class CLoad {
   public:
    explicit CLoad(CSchemaInspector& inspector) : m_Inspector(inspector) {}
    ~CLoad() { m_Inspector.Forget(); }
    CLoad(const CLoad&) = delete;
    CLoad& operator=(const CLoad&) = delete;

   private:
    CSchemaInspector& m_Inspector;
  };

  // A schema as the parser may read it: inspected when it is opened. When the parser gives
  // up the source, which it does once a whole grammar is made, that is told.
  std::unique_ptr<xercesc::InputSource> Watch(std::unique_ptr<xercesc::InputSource> source,
                                              std::function<void()> onEnd = nullptr);

 private:
  class CReader;
  class CSource;

  void Forget();
  void Inspect(const xercesc::InputSource& schema);
  void CheckModel(const CModelSize& models);
  void AddPattern(const std::u16string& pattern);
  void AddValue(const std::u16string& value);
  void AddText(const std::u16string& text);
  void Match(const xercesc::RegularExpression& pattern, const std::u16string& value);

  CLoadStop& m_Stop;
  CExpansionLimits& m_Limits;
  CSchemaLimits& m_SchemaLimits;
  CExternalResolver& m_Resolver;
  std::vector<std::unique_ptr<xercesc::RegularExpression>> m_Patterns;  // that may take long
  std::unordered_set<std::u16string> m_Values;
};
