#include "edited.h"

#include "message.h"
#include "recode.h"
#include "splice.h"
#include "tokens.h"

namespace {

constexpr std::string_view kMark = "\xef\xbb\xbf";

// As marked or declared; UTF-8 without either.
std::string EncodingOf(std::string_view bytes) {
  if (bytes.starts_with("\xff\xfe")) return "UTF-16LE";
  if (bytes.starts_with("\xfe\xff")) return "UTF-16BE";
  const std::string_view declaration = bytes.substr(0, bytes.find('>'));
  const size_t at = declaration.find("encoding");
  if (!declaration.starts_with("<?xml") || at == declaration.npos) return "UTF-8";
  const size_t begin = declaration.find_first_of("\"'", at);
  if (begin == declaration.npos) return "UTF-8";
  const size_t end = declaration.find(declaration[begin], begin + 1);
  return std::string(declaration.substr(begin + 1, end - begin - 1));
}

}  // namespace

// -- The text ------------------------------------------------------------------------

// UTF-8 that a parser has accepted, or an edit has made of it, is not recoded.
std::optional<CSourceText> CSourceText::Of(const CInput& input) {
  CSourceText source;
  source.m_Text = input.Bytes();
  if (source.m_Text.empty()) return std::nullopt;
  source.m_Encoding = EncodingOf(source.m_Text);
  if (!IsUTF8(source.m_Encoding)) {
    std::optional<std::string> text = Recode(source.m_Text, source.m_Encoding, "UTF-8");
    if (!text || Recode(*text, "UTF-8", source.m_Encoding) != source.m_Text) return std::nullopt;
    source.m_Text = *std::move(text);
  }
  source.m_Mark = source.m_Text.starts_with(kMark) ? kMark.size() : 0;
  return source;
}

bool CSourceText::SetText(std::string text) {
  if (!IsUTF8(m_Encoding) && !Recode(text, "UTF-8", m_Encoding)) return false;
  if (m_Mark > 0) text.insert(0, kMark);
  m_Text = std::move(text);
  return true;
}

std::string CSourceText::Bytes() const {
  if (IsUTF8(m_Encoding)) return m_Text;
  return Recode(m_Text, "UTF-8", m_Encoding).value_or("");
}

// -- The file ------------------------------------------------------------------------

CEditedFile::CEditedFile(const CInput& input, const CClient& client, const CReadOptions& options)
    : m_Input(input),
      m_Client(client),
      m_Options(options),
      m_Document(ReadDocument(input, client, options)),
      m_Source(CSourceText::Of(input)) {}

void CEditedFile::Apply(const CEdit& edit) {
  std::optional<std::string> text;
  ::Apply(edit, m_Document, m_Input.Name(), [&](CNodeArray& nodes) {
    if (m_Source) text = Spliced(m_Source->Text(), edit, nodes, m_Source->Encoding());
  });
  m_Done.push_back(edit);
  if (!m_Source) return;
  if (!text || !m_Source->SetText(*std::move(text)) || !IsConfirmed()) m_Source.reset();
}

// The tree that was edited makes room for the one that is read. A text that names other
// files may be beyond reach where it is no file itself: then the edits are done again.
bool CEditedFile::IsConfirmed() {
  const std::string& file = m_Input.Name();
  try {
    const CText wanted = DocumentText(m_Document, file);
    m_Document = {};
    m_Document = ReadDocument(CInput::OfText(file, m_Source->Bytes()), m_Client, m_Options);
    if (DocumentText(m_Document, file).View() == wanted.View()) return true;
  } catch (const CFailure&) {
  }
  m_Document = {};
  m_Document = ReadDocument(m_Input, m_Client, m_Options);
  for (const CEdit& edit : m_Done) ::Apply(edit, m_Document, file, [](CNodeArray&) {});
  return false;
}

std::string CEditedFile::Bytes() const {
  return m_Source ? m_Source->Bytes() : WriteDocument(m_Document, m_Input.Name());
}
