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

// The first contestant is Tessel, the second what its ratio is to, the others are
// peers. What they share lives as long as their functions.
struct CRow {
  const char* m_pUnit;  // what a figure is per
  size_t m_Units;       // done by one m_Work
  std::vector<CContestant> m_Contestants;
  bool m_IsOnce = false;  // one m_Work a repetition, as its surroundings are dear
  // The contestants give bytes of heap, not work that takes time.
  bool m_IsMemory = false;
};

struct CRowEntry {
  const char* m_pId;
  const char* m_pTitle;
  const char* m_pAim;  // empty for none
  std::function<CRow(const CSizes&)> m_Make;
  const char* m_pNeededFile = nullptr;  // the row is left out where this is missing
};

using CRowTable = std::vector<CRowEntry>;
CRowTable IoRows();
CRowTable WalkRows();
CRowTable EditRows();
CRowTable CollectionRows();
CRowTable StringRows();
CRowTable RegistryRows();
CRowTable MemoryRows();
CRowTable XPathRows();

}  // namespace bench
