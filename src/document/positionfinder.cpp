#include "document/positionfinder.h"

#include <algorithm>
#include <limits>

#include "dom/look.h"

using xercesc::DOMDocument;
using xercesc::DOMNode;

namespace {

bool IsText(const DOMNode* pNode) {
  return pNode != nullptr && pNode->getNodeType() == DOMNode::TEXT_NODE;
}

int32_t Clamped(int64_t number) {
  return static_cast<int32_t>(std::min<int64_t>(number, std::numeric_limits<int32_t>::max()));
}

}  // namespace

CPositionFinder::CPositionFinder(DOMDocument& document, const DOMNode* pUnfinished,
                                 CSourceText& text, CPositions& positions)
    : m_Document(document),
      m_pUnfinished(pUnfinished),
      m_Text(text),
      m_Lexer(text),
      m_Positions(positions),
      m_pParent(&document),
      m_pNext(dom::FirstChild(document)) {}

void CPositionFinder::Find() {
  const CPlace begin = m_Text.Here();
  EPiece piece = EPiece::kNone;
  do {
    piece = m_Lexer.Next();
  } while (piece != EPiece::kNone && Follow(piece));
  const bool isAtEnd =
      m_Text.IsAtEnd() && m_Lexer.Begin().m_Offset == m_Lexer.End().m_Offset && m_pNext == nullptr;
  const bool isWhole = m_pParent == &m_Document && m_Document.getDocumentElement() != nullptr;
  if (piece == EPiece::kNone && isAtEnd && isWhole) Add(m_Document, begin, m_Text.Here().m_Offset);
}

bool CPositionFinder::Follow(EPiece piece) {
  switch (piece) {
    case EPiece::kBlank:
      AddToText();
      return true;
    case EPiece::kText:
      AddToText();
      return m_pParent != &m_Document;
    case EPiece::kReference:
      return FollowReference();
    case EPiece::kStartTag:
      return EndText() && FollowStartTag();
    case EPiece::kEndTag:
      return EndText() && FollowEndTag();
    case EPiece::kCDATA:
      return FollowMarkup(DOMNode::CDATA_SECTION_NODE);
    case EPiece::kComment:
      return FollowMarkup(DOMNode::COMMENT_NODE);
    case EPiece::kInstruction:
      return FollowMarkup(DOMNode::PROCESSING_INSTRUCTION_NODE);
    case EPiece::kDocumentType:
      return FollowMarkup(DOMNode::DOCUMENT_TYPE_NODE);
    default:  // the declaration of XML, which is no node
      return m_pParent == &m_Document;
  }
}

bool CPositionFinder::FollowMarkup(DOMNode::NodeType type) {
  if (!EndText() || m_pNext == nullptr || m_pNext->getNodeType() != type) return false;
  Add(*m_pNext, m_Lexer.Begin(), m_Lexer.End().m_Offset);
  m_pNext = dom::NextSibling(*m_pNext);
  return true;
}

// -- Elements ---------------------------------------------------------------------

bool CPositionFinder::FollowStartTag() {
  if (m_pNext == nullptr || m_pNext->getNodeType() != DOMNode::ELEMENT_NODE) return false;
  if (m_Lexer.Name() != m_pNext->getNodeName()) return false;
  m_Open.push_back(Add(*m_pNext, m_Lexer.Begin(), -1));
  AddAttributes(dom::As<xercesc::DOMElement>(*m_pNext));
  m_pParent = m_pNext;
  m_pNext = dom::FirstChild(*m_pParent);
  return !m_Lexer.IsEmpty() || Close();
}

// An attribute that the source does not have was declared.
void CPositionFinder::AddAttributes(xercesc::DOMElement& element) {
  for (const CSourceLexer::CAttribute& source : m_Lexer.Attributes()) {
    DOMNode* pAttribute = dom::Attribute(element, source.m_Name.c_str());
    if (pAttribute == nullptr) continue;
    Add(*pAttribute, source.m_Begin, source.m_End.m_Offset);
    DOMNode* pText = dom::FirstChild(*pAttribute);
    if (IsText(pText)) Add(*pText, source.m_ValueBegin, source.m_ValueEnd.m_Offset);
  }
}

bool CPositionFinder::FollowEndTag() {
  return m_pParent != &m_Document && m_Lexer.Name() == m_pParent->getNodeName() && Close();
}

// A schema gives an element without content a default text.
bool CPositionFinder::Close() {
  if (IsText(m_pNext)) m_pNext = dom::NextSibling(*m_pNext);
  if (m_pNext != nullptr || m_pParent == m_pUnfinished) return false;
  m_Positions.SetEnd(m_Open.back(), m_Lexer.End().m_Offset);
  m_Open.pop_back();
  m_pNext = dom::NextSibling(*m_pParent);
  m_pParent = dom::Parent(*m_pParent);
  return true;
}

// -- Text -------------------------------------------------------------------------

void CPositionFinder::AddToText() {
  if (!m_HasText) m_TextBegin = m_Lexer.Begin();
  m_TextEnd = m_Lexer.End();
  m_HasText = true;
}

// The text of which the parser did not reach the end may lack what follows.
bool CPositionFinder::EndText() {
  if (!m_HasText || !IsText(m_pNext)) {
    m_HasText = false;
    return true;
  }
  DOMNode& text = *m_pNext;
  m_pNext = dom::NextSibling(text);
  m_HasText = false;
  if (m_pParent == m_pUnfinished && m_pNext == nullptr) return false;
  Add(text, m_TextBegin, m_TextEnd.m_Offset);
  return true;
}

// The parser passes over a reference to what a part of the document type that it does not
// read may declare, and the text goes on behind it.
bool CPositionFinder::FollowReference() {
  const DOMNode* pNode = m_HasText && IsText(m_pNext) ? dom::NextSibling(*m_pNext) : m_pNext;
  const bool isNode = pNode != nullptr && pNode->getNodeType() == DOMNode::ENTITY_REFERENCE_NODE &&
                      m_Lexer.Name() == pNode->getNodeName();
  if (isNode) return pNode != m_pUnfinished && FollowMarkup(DOMNode::ENTITY_REFERENCE_NODE);
  AddToText();
  return m_pParent != &m_Document;
}

size_t CPositionFinder::Add(DOMNode& node, const CPlace& begin, int64_t end) {
  return m_Positions.Add(node,
                         {Clamped(begin.m_Line), Clamped(begin.m_Column), begin.m_Offset, end});
}
