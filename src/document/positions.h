// Where the nodes of a document stood in the text that it was loaded from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>
#include <xercesc/dom/DOMNode.hpp>

struct CPosition {
  int32_t m_Line = 0;
  int32_t m_Column = 0;
  int64_t m_Begin = -1;  // bytes
  int64_t m_End = -1;
};

// A table by the addresses of nodes, which is made once and never edited: what is freed
// stays in it. A node has an entry only if it also has the mark of one, which is set when
// the entry is made and which no new node and no copy has, whatever stood at its address.
//
// Entries stand in the order in which they were made. A parser makes nodes one behind the
// other in a few large blocks, so that these are a few runs of ascending addresses, and
// sorting the runs by their first addresses takes no time. Where runs overlap, as when a
// default attribute gave way and its memory was used again, all entries are sorted.
class CPositions {
 public:
  // The index of the entry.
  size_t Add(xercesc::DOMNode& node, const CPosition& position);
  // Of an entry without an end, which counts for none until then.
  void SetEnd(size_t index, int64_t end) { m_Entries[index].m_Position.m_End = end; }
  // After the last entry, before the first question.
  void Seal();

  // The position of a node; without any, that of what stood nowhere.
  CPosition Of(const xercesc::DOMNode& node) const;

 private:
  struct CEntry {
    const xercesc::DOMNode* m_pNode;
    CPosition m_Position;
  };
  struct CRun {
    const xercesc::DOMNode* m_pFirst;
    const xercesc::DOMNode* m_pLast;
    size_t m_Begin, m_End;  // indexes of entries
  };

  void FindRuns();

  std::deque<CEntry> m_Entries;
  std::vector<CRun> m_Runs;  // sealed: in the order of the addresses
};
