// Finds where the nodes of a loaded tree stand in its source.
#pragma once

#include <vector>
#include <xercesc/dom/DOM.hpp>

#include "document/positions.h"
#include "document/sourcelexer.h"

// Follows tree and source side by side. Each piece of markup outside entities has made a
// node, in this order; runs of text may have made none, where a grammar leaves no room for
// them. Where a piece and a node do not go together the finder stops, and from there on
// nothing has a position; an element gets its own with its end tag.
class CPositionFinder {
 public:
  // `pUnfinished` is the element or the reference in which the parser stopped; the document
  // where it came through.
  CPositionFinder(xercesc::DOMDocument& document, const xercesc::DOMNode* pUnfinished,
                  CSourceText& text, CPositions& positions);

  void Find();

 private:
  bool Follow(EPiece piece);
  bool FollowStartTag();
  bool FollowEndTag();
  bool FollowMarkup(xercesc::DOMNode::NodeType type);
  bool FollowReference();
  void AddToText();
  bool EndText();
  void AddAttributes(xercesc::DOMElement& element);
  bool Close();
  size_t Add(xercesc::DOMNode& node, const CPlace& begin, int64_t end);

  xercesc::DOMDocument& m_Document;
  const xercesc::DOMNode* m_pUnfinished;
  CSourceText& m_Text;
  CSourceLexer m_Lexer;
  CPositions& m_Positions;
  xercesc::DOMNode* m_pParent;
  xercesc::DOMNode* m_pNext;   // the child that comes next; null for none
  std::vector<size_t> m_Open;  // the indexes of the elements that have not ended
  // The run of text before the next piece of markup.
  bool m_HasText = false;
  CPlace m_TextBegin, m_TextEnd;
};
