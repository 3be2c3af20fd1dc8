// Where the nodes of a document stand in the text that it was read from.
#ifndef TESSEL_TOOLS_PLACES_H
#define TESSEL_TOOLS_PLACES_H

#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "nodes.h"
#include "tokens.h"

// Tree and text are followed side by side, once, and in the tree only through the elements
// above the nodes that are looked for.
class CPlaces {
 public:
  // UTF-8 without a mark; must live as long.
  explicit CPlaces(std::string_view text) : m_Rest(text) {}

  // Looks for nodes, no attributes, whose ids are open. False where tree and text do not
  // go together, as at a node inside an entity. Walks up to the bare document node.
  bool Find(const std::vector<TSXRefId>& nodes);

  // The token of a node that was found: of an element the start tag, of a document an empty
  // text before the first that is no declaration.
  const CToken& TokenOf(TSXRefId node) const { return m_Found.at(node).m_Token; }
  // The end tag of an element that has one.
  const CToken& EndOf(TSXRefId node) const { return m_Found.at(node).m_End; }

 private:
  struct CPlace {
    CToken m_Token{EToken::kText, {}};  // null until it is found
    CToken m_End{EToken::kEnd, {}};     // of an element that has one
  };
  // A container whose children are being followed, and the one that is next.
  struct CLevel {
    TSXRefId m_Container;
    CNode m_Child;
  };

  void Want(TSXRefId node);
  bool Follow();
  bool Leave();
  bool Meet();
  CToken Next();
  CToken SkipElement();

  std::string_view m_Rest;                       // behind what was followed
  std::unordered_map<TSXRefId, CPlace> m_Found;  // by id
  std::unordered_set<TSXRefId> m_Above;          // what holds a node that is looked for
  std::vector<CNode> m_Held;                     // the same, each after what holds it
  std::vector<CLevel> m_Levels;                  // from the document down
};

#endif
