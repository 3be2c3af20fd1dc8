#include <cstring>
#include <xercesc/util/XMLString.hpp>

#include "documents.h"
#include "libraries.h"
#include "rows.h"

namespace bench {
namespace {

using CShared = std::shared_ptr<CDocuments>;

CShared Large(const CSizes& sizes) {
  return std::make_shared<CDocuments>(ItemsXml(sizes.m_LargeItems));
}

size_t LargeNodes(const CSizes& sizes) { return 1 + kNodesPerItem * sizes.m_LargeItems; }

std::vector<CContestant> WithBareWalks(const CShared& documents, CContestant tessel) {
  return {std::move(tessel),
          {kXerces, [=] { return Walk(CXercesTree(), documents->m_Xerces.Root()); }},
          {kLibxml2, [=] { return Walk(CLibxml2Tree(), documents->Libxml2Root()); }},
          {kPugixml, [=] { return Walk(CPugixmlTree(), documents->PugixmlRoot()); }}};
}

CRow WalkClosing(const CSizes& sizes) {
  const auto documents = Large(sizes);
  return {
      "node", LargeNodes(sizes),
      WithBareWalks(documents, {"Tessel", [=] { return Walk(CTesselTree(), documents->Root()); }})};
}

// Both keeping walks fill a list that is ready, so that only the calls are timed.
std::shared_ptr<CIds> RoomForIds(const CSizes& sizes) {
  auto ids = std::make_shared<CIds>();
  ids->Get().reserve(LargeNodes(sizes));
  return ids;
}

CRow WalkKeepingFirst(const CSizes& sizes) {
  const auto documents = Large(sizes);
  const auto ids = RoomForIds(sizes);
  CContestant tessel{"Tessel",
                     [=] { return Walk(CTesselKeepingTree(ids->Get()), documents->Root()); }};
  tessel.m_After = [=] { ids->Close(); };
  return {"node", LargeNodes(sizes), WithBareWalks(documents, std::move(tessel)), true};
}

CRow WalkKeepingAgain(const CSizes& sizes) {
  const auto documents = Large(sizes);
  const auto known = RoomForIds(sizes);
  Walk(CTesselKeepingTree(known->Get()), documents->Root());
  const auto ids = RoomForIds(sizes);
  CContestant tessel{"Tessel", [=, held = known] {
                       return Walk(CTesselKeepingTree(ids->Get()), documents->Root());
                     }};
  tessel.m_After = [=] { ids->Close(); };
  return {"node", LargeNodes(sizes), WithBareWalks(documents, std::move(tessel)), true};
}

// -- Names: their lengths added up, a text's being that of "#text" ------------

constexpr uint64_t kTextName = 5;

struct CTesselNames : CTesselTree {
  uint64_t Visit(Node node) {
    Require(TSXGetNodeName(node, 0, m_Name.Get()), "TSXGetNodeName");
    return m_Name.View().size();
  }
  CText m_Name;
};

struct CXercesNames : CXercesTree {
  static uint64_t Visit(Node node) { return TranscodeOut(node->getNodeName()); }
};

struct CLibxml2Names : CLibxml2Tree {
  static uint64_t Visit(Node node) {
    if (node->type == XML_TEXT_NODE) return kTextName;
    return std::strlen(reinterpret_cast<const char*>(node->name));
  }
};

struct CPugixmlNames : CPugixmlTree {
  static uint64_t Visit(Node node) {
    return node.type() == pugi::node_pcdata ? kTextName : std::strlen(node.name());
  }
};

CRow Names(const CSizes& sizes) {
  const auto documents = Large(sizes);
  return {"node",
          LargeNodes(sizes),
          {{"Tessel", [=] { return Walk(CTesselNames(), documents->Root()); }},
           {kXerces, [=] { return Walk(CXercesNames(), documents->m_Xerces.Root()); }},
           {kLibxml2, [=] { return Walk(CLibxml2Names(), documents->Libxml2Root()); }},
           {kPugixml, [=] { return Walk(CPugixmlNames(), documents->PugixmlRoot()); }}}};
}

}  // namespace

CRowTable WalkRows() {
  return {
      {"walk.close", "Walk a million nodes, each id closed behind", Times(4, kXerces), WalkClosing},
      {"walk.keep", "Walk a million nodes, all ids kept, first visit", Times(3.5, kXerces),
       WalkKeepingFirst},
      {"walk.again", "Walk a million nodes, all ids kept, ids known", Times(1.8, kXerces),
       WalkKeepingAgain},
      {"walk.names", "Walk a million nodes and read every name, ids closed", kNoAim, Names},
  };
}

}  // namespace bench
