// Reading a document with a command's options, and writing it.
#ifndef TESSEL_TOOLS_DOCUMENT_H
#define TESSEL_TOOLS_DOCUMENT_H

#include <string>
#include <vector>

#include "fault.h"
#include "input.h"
#include "owners.h"

struct CReadOptions {
  uint8_t m_Namespaces = 0;
  int32_t m_Validation = 0;  // as TSXSetValidateOnLoad takes it
  uint8_t m_Schema = 0;
  uint8_t m_FullChecking = 0;
  uint8_t m_ExternalDTD = 1;
  int32_t m_Access = 2;                      // as TSXSetExternalAccess takes it
  std::vector<std::string> m_Prefixes = {};  // to bind, each PREFIX=URI
  uint8_t m_Positions = 0;
};

// For a command with expressions.
struct CNameOptions;
CReadOptions OptionsFor(const CNameOptions& names);

// A document with nothing in it yet.
CDocument NewDocument();

// Loads an input and gives the lines to print about it; none when all is well.
std::string Load(const CDocument& document, const CInput& input, const CReadOptions& options);

// Says of a reference that was refused which option allows it.
void AddAdvice(CFault& fault, const CReadOptions& options);

// The document of a file that a command cannot do without.
CDocument ReadDocument(const CInput& input, const CClient& client, CReadOptions options = {});
CDocument ReadDocument(const std::string& file, const CClient& client, CReadOptions options = {});

// The document as XML text in its own encoding.
CText DocumentText(const CDocument& document, const std::string& file, bool pretty = false);
// The same as a file would hold it. Only a text with a mark is a copy.
class CWritten {
 public:
  CWritten(CText text, std::string_view mark);

  std::string_view Bytes() const { return m_Marked.empty() ? m_Text.View() : m_Marked; }

 private:
  CText m_Text;
  std::string m_Marked;
};
CWritten WriteDocument(const CDocument& document, const std::string& file, bool pretty = false);

// The encoding that the document declares or was given; empty for none.
std::string NamedEncoding(const CDocument& document);
void SetEncoding(const CDocument& document, const std::string& encoding);

#endif
