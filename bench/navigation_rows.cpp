#include "documents.h"
#include "libraries.h"
#include "rows.h"

namespace bench {
namespace {

// The items of the medium document, from each of which one step is taken. Their ids are
// open.
struct CItems {
  explicit CItems(const CSizes& sizes)
      : m_Documents(ItemsXml(sizes.m_MediumItems)),
        m_Tessel(Children<CTesselTree>(m_Documents.Root())),
        m_Xerces(Children<CXercesTree>(m_Documents.m_Xerces.Root())),
        m_Libxml2(Children<CLibxml2Tree>(m_Documents.Libxml2Root())),
        m_Pugixml(Children<CPugixmlTree>(m_Documents.PugixmlRoot())) {
    m_Found.Get().reserve(m_Tessel.Get().size());
  }

  CDocuments m_Documents;
  CIds m_Tessel;
  CIds m_Found;  // hand-outs that wait for their close
  std::vector<xercesc::DOMNode*> m_Xerces;
  std::vector<xmlNode*> m_Libxml2;
  std::vector<pugi::xml_node> m_Pugixml;
};

// Each contestant counts the items from which its step leads somewhere; `take` gets the
// ids that were found.
template <class Take, class Xerces, class Libxml2, class Pugixml>
CRow StepRow(const CSizes& sizes, TSXStatus (*step)(TSXRefId, uint64_t, TSXRefId*), Take take,
             Xerces xerces, Libxml2 libxml2, Pugixml pugixml) {
  const auto items = std::make_shared<CItems>(sizes);
  const auto each = [](const auto& nodes, auto leads) {
    uint64_t sum = 0;
    for (const auto& node : nodes) sum += static_cast<uint64_t>(leads(node));
    return sum;
  };
  CContestant tessel{.m_Name = "Tessel",
                     .m_Work =
                         [=] {
                           return each(items->m_Tessel.Get(), [&](TSXRefId id) {
                             TSXRefId found = 0;
                             Require(step(id, 0, &found), "a step");
                             take(*items, found);
                             return found != 0;
                           });
                         },
                     .m_After = [=] { items->m_Found.Close(); }};
  return {"call",
          items->m_Xerces.size(),
          {std::move(tessel),
           {kXerces, [=] { return each(items->m_Xerces, xerces); }},
           {kLibxml2, [=] { return each(items->m_Libxml2, libxml2); }},
           {kPugixml, [=] { return each(items->m_Pugixml, pugixml); }}}};
}

void Keep(CItems& items, TSXRefId id) { items.m_Found.Get().push_back(id); }

CRow GetParent(const CSizes& sizes) {
  return StepRow(
      sizes, TSXGetParentNode, Keep,
      [](const xercesc::DOMNode* pNode) { return pNode->getParentNode() != nullptr; },
      [](const xmlNode* pNode) { return pNode->parent != nullptr; },
      [](const pugi::xml_node& node) { return !node.parent().empty(); });
}

CRow GetPreviousSibling(const CSizes& sizes) {
  return StepRow(
      sizes, TSXGetPreviousSibling, Keep,
      [](const xercesc::DOMNode* pNode) { return pNode->getPreviousSibling() != nullptr; },
      [](const xmlNode* pNode) { return pNode->prev != nullptr; },
      [](const pugi::xml_node& node) { return !node.previous_sibling().empty(); });
}

CRow GetLastChild(const CSizes& sizes) {
  return StepRow(
      sizes, TSXGetLastChild, [](CItems&, TSXRefId id) { TSXNodeClose(id); },
      [](const xercesc::DOMNode* pNode) { return pNode->getLastChild() != nullptr; },
      [](const xmlNode* pNode) { return pNode->last != nullptr; },
      [](const pugi::xml_node& node) { return !node.last_child().empty(); });
}

}  // namespace

CRowTable NavigationRows() {
  return {
      {"step.parent", "Get the parent, its id known", Times(0.8, kXerces), GetParent},
      {"step.previous", "Get the previous sibling, its id known", Times(0.8, kXerces),
       GetPreviousSibling},
      {"step.last", "Get the last child and close its id", Times(1.5, kXerces), GetLastChild},
  };
}

}  // namespace bench
