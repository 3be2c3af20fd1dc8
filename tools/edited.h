// A file on its way from what it was to what the edits make of it.
#ifndef TESSEL_TOOLS_EDITED_H
#define TESSEL_TOOLS_EDITED_H

#include <optional>
#include <string>
#include <vector>

#include "document.h"
#include "edit.h"

// The bytes of a file as UTF-8 text, from which they can be made again. Copies share it.
class CSourceText {
 public:
  // Nothing where they cannot, or are not there, as those of a pipe.
  static std::optional<CSourceText> Of(const CInput& input);

  const std::string& Encoding() const { return m_Encoding; }
  // Behind the mark, if there is one.
  std::string_view Text() const { return std::string_view(*m_pText).substr(m_Mark); }
  // False where the encoding lacks a character of the text.
  bool SetText(std::string text);
  CSharedText Bytes() const;

 private:
  std::string m_Encoding;
  CSharedText m_pText;
  size_t m_Mark = 0;  // bytes
};

// Edits change the text of the file where it is known what they concern, and are done on
// the tree, too. The text is then read again: it must be the document that the tree is, or
// the tree is what counts from then on, and is written as a whole.
class CEditedFile {
 public:
  CEditedFile(const CInput& input, const CClient& client, const CReadOptions& options);

  // Once. One edit finds what those before it have made.
  void Apply(const std::vector<CEdit>& edits);
  CSharedText Bytes() const;
  // False where the file is written anew as a whole.
  bool IsChangedInPlace() const { return m_Source.has_value(); }

 private:
  bool CanBeReadAtTheEnd() const;
  bool ApplyTogether(const std::vector<CEdit>& edits);
  void ApplyEachConfirmed(const std::vector<CEdit>& edits);
  bool Change(const CEdit& edit);
  bool IsConfirmed();
  void ReadInput();

  const CInput& m_Input;
  const CClient& m_Client;
  CReadOptions m_Options;
  CDocument m_Document;
  std::optional<CSourceText> m_Source;
  bool m_ConcernsDeclarations = false;  // the last edit
};

#endif
