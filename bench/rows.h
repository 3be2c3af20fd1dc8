// What the benchmark measures. A row is one piece of work; its contestants do
// that work, each with a library of its own, and must agree on the result.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace bench {

// How much work the rows do. An item is five nodes: see documents.h.
struct CSizes {
  size_t m_LargeItems;   // of the large document, a million nodes in a full run
  size_t m_MediumItems;  // of the medium one, 100,000 nodes
  size_t m_Elements;     // made by the editing rows
  size_t m_TextBytes;    // of a long text
  size_t m_Calls;        // of a row that repeats one small call
  size_t m_QueryItems;   // of the document that expressions are evaluated on
  size_t m_OpenMaps;     // of another document, beside an edit
  size_t m_Growth;       // items of a row's smaller document; the larger has twice as many
};

struct CContestant {
  std::string m_Name;
  // Timed. Gives what all contestants must agree on, unless m_Check is there.
  std::function<uint64_t()> m_Work;
  // Untimed, around every m_Work.
  std::function<void()> m_Before = {};
  std::function<void()> m_After = {};
  // Untimed, between m_Work and m_After, the first time only.
  std::function<uint64_t()> m_Check = {};
};

// The first contestant is Tessel. What it is compared with besides libxml2 and pugixml
// is the bare library, or the same work in other surroundings, whose name says so. What
// they share lives as long as their functions.
struct CRow {
  const char* m_pUnit;  // what a figure is per
  size_t m_Units;       // done by one m_Work
  std::vector<CContestant> m_Contestants;
  bool m_IsOnce = false;  // one m_Work a repetition, as its surroundings are dear
  // The contestants give bytes of heap, not work that takes time.
  bool m_IsMemory = false;
  // The work is done by threads of its own: its time is the clock's on the wall, where
  // that of others is the processor's.
  bool m_IsOnThreads = false;
};

inline constexpr const char* kLibxml2 = "libxml2";
inline constexpr const char* kPugixml = "pugixml";
inline constexpr const char* kXerces = "Xerces-C";

// What Tessel's figure is to reach: at most so many times that of another contestant, or
// so much more (nanoseconds or bytes), or so much by itself.
struct CAim {
  enum class EKind { kNone, kRatio, kMore, kAmount };
  EKind m_Kind = EKind::kNone;
  double m_Most = 0;
  const char* m_pTo = "";
};
inline constexpr CAim kNoAim{};
constexpr CAim Times(double most, const char* pTo) { return {CAim::EKind::kRatio, most, pTo}; }
constexpr CAim More(double most, const char* pTo) { return {CAim::EKind::kMore, most, pTo}; }
constexpr CAim Amount(double most) { return {CAim::EKind::kAmount, most, ""}; }

struct CRowEntry {
  const char* m_pId;
  const char* m_pTitle;
  CAim m_Aim;
  std::function<CRow(const CSizes&)> m_Make;
  const char* m_pNeededFile = nullptr;  // the row is left out where this is missing
};

using CRowTable = std::vector<CRowEntry>;
CRowTable IoRows();
CRowTable WalkRows();
CRowTable NavigationRows();
CRowTable EditRows();
CRowTable CollectionRows();
CRowTable StringRows();
CRowTable RegistryRows();
CRowTable MemoryRows();
CRowTable XPathRows();
CRowTable GrowthRows();

}  // namespace bench
