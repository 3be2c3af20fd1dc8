// Writes a node with all below it.
#pragma once

#include <vector>
#include <xercesc/dom/DOM.hpp>

#include "io/starttag.h"
#include "io/textwriter.h"

// Goes down a tree without recursion, whatever its depth. Throws CUnwritable for what
// no XML text stands for.
class CTreeWriter {
 public:
  // Pretty text has line breaks and indentation where there is no white space to lose.
  CTreeWriter(CTextWriter& out, const xercesc::DOMNode& root, bool isPretty);

  void Write();  // once

 private:
  // A node whose children are being written.
  struct COpen {
    const xercesc::DOMNode* m_pNode;
    CTextWriter::CPlace m_Name{};
    std::size_t m_Mark = 0;      // of the prefixes
    bool m_IsLaidOut = false;    // children have a line each
    bool m_IsPreserved = false;  // xml:space says so
    bool m_IsInText = false;     // text stands here or around
  };

  // Each writes the beginning of a node and gives the child to go on with, if any.
  const xercesc::DOMNode* Begin(const xercesc::DOMNode& node);
  const xercesc::DOMNode* BeginElement(const xercesc::DOMElement& element);
  const xercesc::DOMNode* BeginContainer(const xercesc::DOMNode& node);
  void LayOut(const xercesc::DOMElement& element, COpen& open) const;
  void End();

  void WriteComment(std::u16string_view text);
  void WriteInstruction(const xercesc::DOMProcessingInstruction& instruction);

  std::size_t Level() const { return m_Open.size() - (m_HasContainer ? 1 : 0); }
  void NewLine(std::size_t level);

  CTextWriter& m_Out;
  const xercesc::DOMNode& m_Root;
  const bool m_IsPretty;
  bool m_HasContainer = false;  // the outermost node is a document or a fragment
  std::size_t m_MarkSize = 0;   // of the byte order mark
  std::vector<COpen> m_Open;
  CStartTags m_StartTags;
};

// The text of a node in the encoding of its document, with the declaration of a document
// unless its document object goes without.
CByteBuffer TextOf(const xercesc::DOMNode& node, bool isPretty);
