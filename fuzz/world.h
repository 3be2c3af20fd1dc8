// A few small documents with an id for every kind of node in every state that a
// host can bring it to.
#pragma once

#include <array>
#include <map>
#include <string>
#include <vector>

#include "decoder.h"

namespace fuzz {

// How much is tried with an id: some stand for others where ids are paired.
enum class Rank : uint8_t { kAlone, kPaired };

struct CSubject {
  std::string m_State;
  TSXRefId m_Id;
  Rank m_Rank;
};

class CWorld {
 public:
  struct CHandedOut {
    unsigned m_Kind = 0;
    int m_Count = 0;
  };

  CWorld();

  const std::vector<CSubject>& Of(Registry registry) const {
    return m_Subjects[static_cast<size_t>(registry)];
  }

  // What the host owes, by id. An id that names nothing is stale.
  const std::map<TSXRefId, CHandedOut>& HandedOut(Registry registry) const {
    return m_HandedOut[static_cast<size_t>(registry)];
  }

 private:
  template <auto kFunction, class... Args>
  TSXRefId Get(Args... args) {
    return From<kFunction>(Registry::kNode, args...);
  }
  template <auto kFunction, class... Args>
  TSXRefId From(Registry registry, Args... args);
  TSXRefId Count(Registry registry, TSXRefId id, unsigned kind = 0);
  TSXRefId Document(TSXRefId id) { return Count(Registry::kNode, id, kDocument); }
  TSXRefId Load(const char* pXml);
  TSXRefId Child(TSXRefId node, int index);
  TSXRefId Item(TSXRefId map, const char* pName);
  TSXRefId Clone(TSXRefId node);

  void Add(const std::string& state, TSXRefId id, Rank rank = Rank::kPaired);
  void AddCollection(const std::string& state, Registry registry, TSXRefId id);
  void AddSubtree(const std::string& place, TSXRefId root, Rank rank = Rank::kAlone);
  void AddInTree();
  void AddEntities();
  void AddCreated();
  void AddTakenOut();
  void AddTypes();
  void AddDocuments();
  void AddForeign();
  void AddStale();

  TSXRefId m_Document = 0;
  TSXRefId m_Bare = 0;
  TSXRefId m_Root = 0;
  TSXRefId m_Type = 0;
  TSXRefId m_Implementation = 0;
  std::array<std::vector<CSubject>, kRegistries> m_Subjects;
  std::array<std::map<TSXRefId, CHandedOut>, kRegistries> m_HandedOut;
};

}  // namespace fuzz
