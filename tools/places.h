// Where the nodes of a document stand in the text that it was read from.
#ifndef TESSEL_TOOLS_PLACES_H
#define TESSEL_TOOLS_PLACES_H

#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "nodes.h"
#include "tokens.h"

// Tree and text are followed side by side, and only through the elements above the nodes
// that are looked for.
class CPlaces {
 public:
  // UTF-8 without a mark; must live as long.
  explicit CPlaces(std::string_view text);

  // Looks for nodes, no attributes, whose ids are open. False where tree and text do not
  // go together, as at a node inside an entity. Walks up to the bare document node.
  bool Find(const std::vector<TSXRefId>& nodes);

  // The token of a node that was found: of an element the start tag, of a document the
  // first that is no declaration.
  const CToken& TokenOf(TSXRefId node) const { return m_Tokens[m_Found.at(node)]; }
  // The end tag of an element that has one.
  const CToken& EndOf(TSXRefId node) const { return m_Tokens[m_Ends[m_Found.at(node)]]; }

 private:
  static constexpr size_t kNowhere = static_cast<size_t>(-1);

  void Want(TSXRefId node);
  bool Follow(TSXRefId container);
  size_t FirstOfDocument() const;

  std::vector<CToken> m_Tokens;
  std::vector<size_t> m_Ends;                    // of a start tag: the index of its end tag
  std::unordered_map<TSXRefId, size_t> m_Found;  // by id; kNowhere until it is found
  std::unordered_set<TSXRefId> m_Above;          // what holds a node that is looked for
  std::vector<CNode> m_Held;                     // the same, each after what holds it
};

#endif
