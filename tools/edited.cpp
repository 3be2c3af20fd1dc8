#include "edited.h"

#include <strings.h>

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

// As Recode; UTF-8 that a parser has accepted, or an edit has made of it, needs none.
std::optional<std::string> RecodeUnlessSame(std::string_view text, const std::string& from,
                                            const std::string& to) {
  const auto isUTF8 = [](const std::string& name) {
    return strcasecmp(name.c_str(), "UTF-8") == 0;
  };
  if (isUTF8(from) && isUTF8(to)) return std::string(text);
  return Recode(text, from, to);
}

}  // namespace

// -- The text ------------------------------------------------------------------------

std::optional<CSourceText> CSourceText::Of(const CInput& input) {
  const std::string bytes = input.Bytes();
  CSourceText source;
  source.m_Encoding = EncodingOf(bytes);
  const auto text = RecodeUnlessSame(bytes, source.m_Encoding, "UTF-8");
  if (bytes.empty() || !text) return std::nullopt;
  source.m_Text = *text;
  source.m_Mark = text->starts_with(kMark) ? kMark.size() : 0;
  if (RecodeUnlessSame(*text, "UTF-8", source.m_Encoding) != bytes) return std::nullopt;
  return source;
}

bool CSourceText::SetText(const std::string& text) {
  if (!RecodeUnlessSame(text, "UTF-8", m_Encoding)) return false;
  m_Text = m_Text.substr(0, m_Mark) + text;
  return true;
}

std::string CSourceText::Bytes() const {
  return RecodeUnlessSame(m_Text, "UTF-8", m_Encoding).value_or("");
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
  if (!m_Source) return;
  if (!text || !m_Source->SetText(*text) || !IsConfirmed()) m_Source.reset();
}

// A text that names other files may be beyond reach where it is no file itself.
bool CEditedFile::IsConfirmed() {
  try {
    CDocument reread =
        ReadDocument(CInput::OfText(m_Input.Name(), m_Source->Bytes()), m_Client, m_Options);
    const std::string& file = m_Input.Name();
    if (WriteDocument(reread, file) != WriteDocument(m_Document, file)) return false;
    m_Document = std::move(reread);
    return true;
  } catch (const CFailure&) {
    return false;
  }
}

std::string CEditedFile::Bytes() const {
  return m_Source ? m_Source->Bytes() : WriteDocument(m_Document, m_Input.Name());
}
