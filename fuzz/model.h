// What must be true of every id after every call, said without the registries.
#pragma once

#include <array>
#include <map>
#include <set>
#include <xercesc/dom/DOM.hpp>

#include "decoder.h"

namespace fuzz {

// Knows for each id of each registry how often it was handed out, what it names and
// whether it still names it. Which ids a call may end, and which it must, follows
// from the tree as it stands before the call, by climbing from each node; all others
// must live on and name the same node. Where a rule leaves it open (whether a loose
// node is the library's to free) either is accepted, and what happened is noted.
class CModel : public CObserver {
 public:
  explicit CModel(bool hostRefuses) : m_HostRefuses(hostRefuses) {}

  struct CResult {
    bool m_WasMade;
    TSXStatus m_Status;
    size_t m_Ids;      // how many the function takes
    size_t m_Choices;  // as CCall's
  };

  // Makes one call of the bytes; the first ids may be given.
  CResult Step(const CRow& row, CBytes& bytes, std::span<const TSXRefId> ids = {});

  // Takes in an id that was handed out so often without the model; where it names
  // nothing any more, it must stay so. A kind of 0 is asked for.
  void Adopt(Registry registry, TSXRefId id, unsigned kind, int count);

  // How many ids name nothing any more.
  size_t EndedCount() const;

  // Gives every hand-out back, documents first or last.
  void CloseAll(CBytes& bytes);

  // The same without a look at each close.
  void Abandon(bool documentsFirst);

  TSXRefId ChooseId(CBytes& bytes, const CCall& call) override;
  bool Before(const CCall& call) override;

 private:
  struct CEntry {
    unsigned m_Kind = 0;
    int m_Count = 0;
    bool m_IsLive = true;
    const xercesc::DOMNode* m_pNode = nullptr;  // of the node registry
  };
  using CEntries = std::map<TSXRefId, CEntry>;
  using CIdSet = std::set<TSXRefId>;

  CEntries& Of(Registry registry) { return m_Ids[static_cast<size_t>(registry)]; }
  CEntry* Live(Registry registry, TSXRefId id);
  CEntry* LiveNode(TSXRefId id) { return Live(Registry::kNode, id); }
  TSXRefId Pick(Registry registry, bool isLive, unsigned kinds, uint8_t index);
  const char* Name(const CCall& call) const { return call.m_Row.m_pName; }
  [[noreturn]] void Differs(const std::string& what, TSXRefId id) const;

  // -- Before a call
  bool IsAccepted(const CCall& call);
  TSXStatus CodeOfArgument(const CCall& call);
  bool IsTooLarge(const CCall& call);
  CIdSet Below(TSXRefId root, bool attributesOnly);
  CIdSet Subtree(TSXRefId root);
  CIdSet InDocument(TSXRefId id, bool withDocument);
  bool IsAttached(TSXRefId id);
  void PlanEnds(const CCall& call);
  void PlanClose(TSXRefId id, bool asDocument);
  void OrderFaults();

  // -- After it
  void CheckOuts(const CCall& call) const;
  void CheckStatus(const CCall& call);
  void EndIds(const CCall& call);
  void CountBack(const CCall& call);
  void TakeIds(const CCall& call);
  void HandOut(Registry registry, TSXRefId id, unsigned kind, bool isFresh);
  void CheckNodes(const CCall& call);
  void CheckOthers(const CCall& call);
  bool MayEnd(TSXRefId id) const { return m_MayEnd.contains(id); }

  const bool m_HostRefuses;
  std::array<CEntries, kRegistries> m_Ids;
  std::array<TSXRefId, kRegistries> m_Last{};  // the highest of each registry
  uint8_t m_Fault = 0;
  const char* m_pCall = "";

  // The plan of one call.
  bool m_IsAccepted = false;
  TSXStatus m_CodeOfArgument = 0;
  CIdSet m_MayEnd;   // whatever the call answers
  CIdSet m_MustEnd;  // where it answers 0
};

}  // namespace fuzz
