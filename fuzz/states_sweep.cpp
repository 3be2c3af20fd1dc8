// Every exported function that takes ids, against every kind of node in every state,
// with the model looking at each call. Functions of two ids see each state beside
// the states that stand for the others.
//   states_sweep [<part> <parts>]
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string_view>

#include "model.h"
#include "world.h"

namespace fuzz {

namespace {

constexpr size_t kArgumentBytes = 8;

// A directory in a file's place makes the parser lose some bytes, which only whole
// stacks of allocations would tell from other leaks: too slow here.
bool IsLeftOut(const CRow& row, uint8_t argument) {
  return std::string_view(row.m_pName) == "TSXLoadFile" && argument % 8 == 3;
}

// How many ids a function reads. Many take a number more, which looks like an id.
size_t IdsOf(const CRow& row) {
  const std::string_view name = row.m_pName;
  if (name == "TSXInsertBefore" || name == "TSXReplaceChild") return 3;
  constexpr std::array kPairs{
      "TSXAppendChild",         "TSXRemoveChild",    "TSXImportNode",
      "TSXSetAttributeNode",    "TSXSetNamedItem",   "TSXSetAttributeNodeNS",
      "TSXRemoveAttributeNode", "TSXSetNamedItemNS", "TSXCreateDocument"};
  return std::ranges::find(kPairs, name) != kPairs.end() ? 2 : 1;
}

// A world and its model; gone without a trace when it ends.
class CScene {
 public:
  explicit CScene(bool documentsFirst) : m_DocumentsFirst(documentsFirst) {
    for (size_t i = 0; i < kRegistries; ++i) {
      const auto registry = static_cast<Registry>(i);
      for (const auto& [id, handedOut] : m_World.HandedOut(registry)) {
        m_Model.Adopt(registry, id, handedOut.m_Kind, handedOut.m_Count);
      }
    }
    m_Ended = m_Model.EndedCount();
  }
  ~CScene() { m_Model.Abandon(m_DocumentsFirst); }
  CScene(const CScene&) = delete;
  CScene& operator=(const CScene&) = delete;

  const CSubject& At(Registry registry, size_t index) const { return m_World.Of(registry)[index]; }
  size_t Count(Registry registry) const { return m_World.Of(registry).size(); }

  // Of a node of the world; its hand-out goes back at once.
  TSXRefId FirstChild(TSXRefId node) const {
    TSXRefId child = 0;
    if (TSXGetFirstChild(node, 0, &child) == 0) TSXNodeClose(child);
    return child;
  }

  CModel::CResult Call(const CRow& row, std::span<const TSXRefId> ids, CBytes& bytes) {
    const CModel::CResult result = m_Model.Step(row, bytes, ids);
    if (OnlyReads(row)) return result;
    // What changes one node alone leaves the states of the others.
    if (result.m_WasMade && result.m_Status == 0) m_Changes += IdsOf(row) > 1 ? kMostChanges : 1;
    m_HasEnded = m_Model.EndedCount() != m_Ended;
    if (m_HasEnded && row.m_Ends != Ends::kTextOfAttribute) m_Changes = kMostChanges;
    return result;
  }

  // Whether the world is too far from what it was made as.
  bool IsWorn() const { return m_Changes >= kMostChanges; }
  // Whether ids that it had are stale by now.
  bool HasEnded() const { return m_HasEnded; }

 private:
  CLedger m_Ledger;
  CWorld m_World;
  CModel m_Model{false};
  const bool m_DocumentsFirst;
  static constexpr int kMostChanges = 32;
  size_t m_Ended = 0;
  int m_Changes = 0;
  bool m_HasEnded = false;
};

class CSweep {
 public:
  void Run(const CRow& row);
  void Report() const { std::printf("%zu calls in %zu worlds\n", m_Calls, m_Worlds); }

 private:
  CScene& Scene();
  void SweepArguments(const CRow& row, size_t first);
  void SweepPairs(const CRow& row, size_t first);
  bool CallPair(const CRow& row, size_t first, size_t second);
  // False where the first id was refused: other arguments would say no more.
  bool Call(const CRow& row, std::initializer_list<TSXRefId> ids, uint8_t one, uint8_t others);

  std::optional<CScene> m_Scene;
  bool m_TakesIds = false;  // the function at hand
  size_t m_Arguments = 0;   // its bytes for all that is no id
  size_t m_Choices = 0;     // the most values that one of them has
  size_t m_Calls = 0;
  size_t m_Worlds = 0;
};

CScene& CSweep::Scene() {
  if (m_Scene && m_Scene->IsWorn()) m_Scene.reset();
  if (!m_Scene) m_Scene.emplace(++m_Worlds % 2 != 0);
  return *m_Scene;
}

bool CSweep::Call(const CRow& row, std::initializer_list<TSXRefId> ids, uint8_t one,
                  uint8_t others) {
  std::array<uint8_t, kArgumentBytes> arguments;
  arguments.fill(others);
  arguments[0] = one;
  CBytes bytes(arguments.data(), arguments.size());
  const CModel::CResult result = m_Scene->Call(row, {ids.begin(), ids.size()}, bytes);
  m_TakesIds = result.m_Ids != 0;
  m_Choices = result.m_Choices;
  m_Arguments = kArgumentBytes - bytes.Size();
  m_Calls += result.m_WasMade;
  return row.m_Code == 0 || result.m_Status != row.m_Code;
}

// Every text first, and the texts and numbers that matter in pairs. A node that
// another of its kind stands for sees only these texts, and no pairs.
void CSweep::SweepArguments(const CRow& row, size_t first) {
  static constexpr std::array<uint8_t, 10> kTelling{0, 1, 4, 8, 10, 11, 14, 18, 35, 254};
  const auto call = [&](uint8_t one, uint8_t others) {
    if (IsLeftOut(row, one)) return true;
    const TSXRefId id = Scene().At(row.m_Of, first).m_Id;
    return Call(row, {id}, one, others);
  };
  if (!call(0, 0) || m_Arguments == 0) return;
  if (row.m_Of == Registry::kNode && Scene().At(row.m_Of, first).m_Rank == Rank::kAlone) {
    for (const uint8_t both : kTelling) call(both, both);
    return;
  }
  for (uint8_t both = 1; both < m_Choices; ++both) call(both, both);
  if (m_Arguments == 1) return;
  for (const uint8_t one : kTelling) {
    for (const uint8_t others : kTelling) call(one, others);
  }
}

// A third id is the first child of the first, or none.
bool CSweep::CallPair(const CRow& row, size_t first, size_t second) {
  bool goesOn = true;
  for (const uint8_t variant : {uint8_t{0}, uint8_t{1}}) {
    const CScene& scene = Scene();
    const TSXRefId id = scene.At(row.m_Of, first).m_Id;
    const TSXRefId other = scene.At(Registry::kNode, second).m_Id;
    const TSXRefId child = variant == 0 ? scene.FirstChild(id) : 0;
    const bool isBeforeChild = row.m_Code == domErrRefImportNode && IdsOf(row) == 3;
    goesOn = isBeforeChild ? Call(row, {id, child, other}, variant, variant)
                           : Call(row, {id, other, child}, variant, variant);
    if (!goesOn || (m_Arguments == 0 && IdsOf(row) == 2)) break;
  }
  return goesOn;
}

void CSweep::SweepPairs(const CRow& row, size_t first) {
  const size_t count = Scene().Count(Registry::kNode);
  for (size_t second = 0; second < count; ++second) {
    if (Scene().At(Registry::kNode, second).m_Rank == Rank::kAlone) continue;
    if (!CallPair(row, first, second)) return;
  }
}

void CSweep::Run(const CRow& row) {
  Scene();
  Call(row, {0, 0, 0}, 0, 0);  // tells what the function takes
  const bool takesIds = m_TakesIds;
  for (size_t first = 0; takesIds && first < Scene().Count(row.m_Of); ++first) {
    if (Scene().HasEnded()) m_Scene.reset();
    if (IdsOf(row) == 1) {
      SweepArguments(row, first);
    } else {
      SweepPairs(row, first);
    }
  }
  m_Scene.reset();
}

// An export that no row calls is a hole in the sweep.
void RequireEveryExport() {
  std::ifstream list(TESSEL_EXPORT_LIST);
  if (!list.is_open()) Fail("no list of exports");
  for (std::string name; std::getline(list, name);) {
    const auto isCalled = [&](const CRow& row) { return row.m_pName == name; };
    if (name.starts_with("TS") && std::ranges::none_of(Rows(), isCalled)) Fail("no row: " + name);
  }
}

}  // namespace

}  // namespace fuzz

int main(int argc, char** argv) {
  const size_t part = argc == 3 ? std::strtoul(argv[1], nullptr, 10) : 0;
  const size_t parts = argc == 3 ? std::strtoul(argv[2], nullptr, 10) : 1;
  fuzz::RequireEveryExport();
  fuzz::CSweep sweep;
  const auto& rows = fuzz::Rows();
  for (size_t i = part; i < rows.size(); i += parts) sweep.Run(rows[i]);
  sweep.Report();
  return 0;
}
