// The pieces of a document's text, as a writer made it or a parser accepted it.
#ifndef TESSEL_TOOLS_TOKENS_H
#define TESSEL_TOOLS_TOKENS_H

#include <string_view>
#include <vector>

enum class EToken {
  kText,       // with references to characters
  kReference,  // to an entity
  kStart,
  kEmpty,  // a start tag that ends its element
  kEnd,
  kCDATA,
  kComment,
  kInstruction,  // the XML declaration, too
  kDocumentType
};

struct CToken {
  EToken m_Kind;
  std::string_view m_Text;  // from the first to the last character
};

// The first piece of text in UTF-8 that is known to be well-formed, and not empty.
CToken FirstToken(std::string_view xml);
// All pieces.
std::vector<CToken> Tokens(std::string_view xml);

#endif
