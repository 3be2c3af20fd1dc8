#include <cstring>
#include <optional>

#include "documents.h"
#include "libraries.h"
#include "rows.h"

namespace bench {
namespace {

using CShared = std::shared_ptr<CDocuments>;

CShared Large(const CSizes& sizes) {
  return std::make_shared<CDocuments>(ItemsXml(sizes.m_LargeItems));
}

// The peers have no such function: a program of theirs collects on a walk.
struct CLibxml2Collect : CLibxml2Tree {
  uint64_t Visit(Node node) {
    if (std::strcmp(reinterpret_cast<const char*>(node->name), "name") == 0)
      m_Found.push_back(node);
    return 0;
  }
  std::vector<Node> m_Found;
};

struct CPugixmlCollect : CPugixmlTree {
  uint64_t Visit(Node node) {
    if (std::strcmp(node.name(), "name") == 0) m_Found.push_back(node);
    return 0;
  }
  std::vector<Node> m_Found;
};

template <class Collect>
uint64_t Collected(typename Collect::Node root) {
  Collect collect;
  Walk(collect, root);
  return collect.m_Found.size();
}

CRow RowWithPeers(const CSizes& sizes, const CShared& documents, CContestant tessel,
                  CContestant xerces) {
  return {"element",
          sizes.m_LargeItems,
          {std::move(tessel),
           std::move(xerces),
           {kLibxml2, [=] { return Collected<CLibxml2Collect>(documents->Libxml2Root()); }},
           {kPugixml, [=] { return Collected<CPugixmlCollect>(documents->PugixmlRoot()); }}}};
}

CRow ByNameArray(const CSizes& sizes) {
  const auto documents = Large(sizes);
  const auto name = std::make_shared<CText>("name");
  const auto array = std::make_shared<std::optional<CNodeArray>>();
  CContestant tessel{.m_Name = "Tessel",
                     .m_Work =
                         [=] {
                           Require(TSXGetElementsByTagName(documents->m_Tessel.Get(), name->Get(),
                                                           (*array)->Get()),
                                   "TSXGetElementsByTagName");
                           return (*array)->Size();
                         },
                     .m_Before = [=] { array->emplace(); },
                     .m_After = [=] { array->reset(); }};
  CContestant xerces{kXerces, [=] {
                       std::vector<xercesc::DOMNode*> nodes;
                       const auto* pList = documents->m_Xerces.Get()->getElementsByTagName(u"name");
                       for (XMLSize_t i = 0; xercesc::DOMNode* pNode = pList->item(i); ++i) {
                         nodes.push_back(pNode);
                       }
                       return nodes.size();
                     }};
  return RowWithPeers(sizes, documents, std::move(tessel), std::move(xerces));
}

uint64_t TesselByList(TSXRefId document, CText& name) {
  CId<TSXNodeListClose> list;
  Require(TSXGetElementsByTagNameList(document, name.Get(), list.Out()),
          "TSXGetElementsByTagNameList");
  int32_t length = 0;
  Require(TSXGetListLength(list.Get(), 0, &length), "TSXGetListLength");
  uint64_t found = 0;
  for (int32_t i = 0; i < length; ++i) {
    CNode node;
    Require(TSXGetItem(list.Get(), i, node.Out()), "TSXGetItem");
    found += node.Get() != 0;
  }
  return found;
}

uint64_t XercesByList(xercesc::DOMDocument& document) {
  const xercesc::DOMNodeList* pList = document.getElementsByTagName(u"name");
  const XMLSize_t length = pList->getLength();
  uint64_t found = 0;
  for (XMLSize_t i = 0; i < length; ++i) found += pList->item(i) != nullptr;
  return found;
}

CRow ByNameList(const CSizes& sizes) {
  const auto documents = Large(sizes);
  const auto name = std::make_shared<CText>("name");
  return RowWithPeers(sizes, documents,
                      {"Tessel", [=] { return TesselByList(documents->m_Tessel.Get(), *name); }},
                      {kXerces, [=] { return XercesByList(*documents->m_Xerces.Get()); }});
}

}  // namespace

CRowTable CollectionRows() {
  return {
      {"byname.array", "All elements by name of a million nodes, as array", Times(1.3, kXerces),
       ByNameArray},
      {"byname.list", "All elements by name of a million nodes, by list and item", kNoAim,
       ByNameList},
  };
}

}  // namespace bench
