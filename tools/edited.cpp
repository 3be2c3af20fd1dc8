#include "edited.h"

#include <algorithm>

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

bool IsDeclaration(std::string_view attribute) {
  return attribute == "xmlns" || attribute.starts_with("xmlns:");
}

// Whether an edit of these nodes is one of what prefixes stand for.
bool ConcernsDeclarations(const CEdit& edit, const CNodeArray& nodes) {
  if (edit.m_Action == EAction::kSetAttribute) return IsDeclaration(edit.m_Name);
  for (size_t i = 0; i < nodes.Size(); ++i) {
    const TSXRefId node = nodes.At(i);
    if (KindOf(node) == EKind::kAttribute && IsDeclaration(Property(node, TSXName).View())) {
      return true;
    }
  }
  return false;
}

// Whether two texts, which are one when they are read, may stand side by side afterwards.
bool MayJoinTexts(const CEdit& edit) {
  return edit.m_Action == EAction::kDelete || edit.m_Action == EAction::kInsert ||
         (edit.m_Action == EAction::kSet && edit.m_Value.empty());
}

}  // namespace

// -- The text ------------------------------------------------------------------------

// UTF-8 that a parser has accepted, or an edit has made of it, is not recoded.
std::optional<CSourceText> CSourceText::Of(const CInput& input) {
  CSourceText source;
  source.m_pText = input.Bytes();
  if (source.m_pText->empty()) return std::nullopt;
  source.m_Encoding = EncodingOf(*source.m_pText);
  if (!IsUTF8(source.m_Encoding)) {
    std::optional<std::string> text = Recode(*source.m_pText, source.m_Encoding, "UTF-8");
    if (!text || Recode(*text, "UTF-8", source.m_Encoding) != *source.m_pText) return std::nullopt;
    source.m_pText = std::make_shared<const std::string>(*std::move(text));
  }
  source.m_Mark = source.m_pText->starts_with(kMark) ? kMark.size() : 0;
  return source;
}

bool CSourceText::SetText(std::string text) {
  if (!IsUTF8(m_Encoding) && !Recode(text, "UTF-8", m_Encoding)) return false;
  if (m_Mark > 0) text.insert(0, kMark);
  m_pText = std::make_shared<const std::string>(std::move(text));
  return true;
}

CSharedText CSourceText::Bytes() const {
  if (IsUTF8(m_Encoding)) return m_pText;
  return std::make_shared<const std::string>(Recode(*m_pText, "UTF-8", m_Encoding).value_or(""));
}

// -- The file ------------------------------------------------------------------------

CEditedFile::CEditedFile(const CInput& input, const CClient& client, const CReadOptions& options)
    : m_Input(input), m_Client(client), m_Options(options) {
  ReadInput();
  m_Source = CSourceText::Of(input);
}

void CEditedFile::Apply(const std::vector<CEdit>& edits) {
  if (edits.size() > 1 && CanBeReadAtTheEnd() && ApplyTogether(edits)) return;
  ApplyEachConfirmed(edits);
}

// Without a document type, which gives what is new its default attributes and IDs, a tree
// that is edited and then normalized is the one that the text would give.
bool CEditedFile::CanBeReadAtTheEnd() const {
  return m_Source && m_Source->Text().find("<!DOCTYPE") == std::string_view::npos;
}

// False, and everything as it was, where the edits have to be confirmed one by one.
bool CEditedFile::ApplyTogether(const std::vector<CEdit>& edits) {
  const CSourceText before = *m_Source;
  bool isNormal = true;
  const bool areChanged = std::ranges::all_of(edits, [&](const CEdit& edit) {
    if (!isNormal) Require(TSXNormalize(m_Document.Get()), m_Input.Name());
    isNormal = !MayJoinTexts(edit);
    return Change(edit);
  });
  if (areChanged && IsConfirmed()) return true;
  m_Source = before;
  ReadInput();
  return false;
}

// A text that names other files may be beyond reach where it is no file itself: then the
// edits are done again. Names of a tree keep their namespace whatever is declared, so
// declarations that give them another would be lost where the tree is written.
void CEditedFile::ApplyEachConfirmed(const std::vector<CEdit>& edits) {
  for (auto edit = edits.begin(); edit != edits.end(); ++edit) {
    const bool isChanged = Change(*edit);
    if (isChanged && IsConfirmed()) continue;
    if (m_ConcernsDeclarations) {
      const char* pWhy = isChanged ? "names that stand there need the namespace declared"
                                   : "a namespace is declared only in a text that is kept";
      throw CFailure(Line(m_Input.Name(), pWhy));
    }
    m_Source.reset();
    if (!isChanged) continue;
    ReadInput();
    std::for_each(edits.begin(), edit + 1, [&](const CEdit& done) { Change(done); });
  }
}

// In the tree, and in the text where there is one. False where the text cannot follow.
bool CEditedFile::Change(const CEdit& edit) {
  std::optional<std::string> text;
  ::Apply(edit, m_Document, m_Input.Name(), [&](CNodeArray& nodes) {
    m_ConcernsDeclarations = ConcernsDeclarations(edit, nodes);
    if (m_Source) text = Spliced(m_Source->Text(), edit, nodes, m_Source->Encoding());
  });
  return text && m_Source->SetText(*std::move(text));
}

// The tree that was edited makes room for the one that is read.
bool CEditedFile::IsConfirmed() {
  const std::string& file = m_Input.Name();
  try {
    const CText wanted = DocumentText(m_Document, file);
    m_Document = {};
    m_Document = ReadDocument(CInput::OfText(file, m_Source->Bytes()), m_Client, m_Options);
    return DocumentText(m_Document, file).View() == wanted.View();
  } catch (const CFailure&) {
    return false;
  }
}

void CEditedFile::ReadInput() {
  m_Document = {};
  m_Document = ReadDocument(m_Input, m_Client, m_Options);
}

CSharedText CEditedFile::Bytes() const {
  return m_Source ? m_Source->Bytes()
                  : std::make_shared<const std::string>(
                        WriteDocument(m_Document, m_Input.Name()).Bytes());
}
