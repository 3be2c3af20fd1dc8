#include "io/declarations.h"

#include <algorithm>
#include <string_view>

#include "document/subsetlexer.h"
#include "io/characters.h"
#include "io/unwritable.h"

using xercesc::DOMDocumentType;
using xercesc::DOMEntity;

namespace {

void WriteIds(CTextWriter& out, std::u16string_view publicId, std::u16string_view systemId) {
  if (!publicId.empty()) {
    if (systemId.empty())
      throw NotWellFormed(u"a public identifier is without a system identifier");
    if (!characters::IsPublicId(publicId)) throw NotWellFormed(u"a public identifier is none");
    out.Markup(" PUBLIC ");
    out.Quoted(publicId);
    out.Markup(" ");
    out.Quoted(systemId);
  } else if (!systemId.empty()) {
    out.Markup(" SYSTEM ");
    out.Quoted(systemId);
  }
}

// The part of a declaration in front of its first literal: "<!ENTITY % name SYSTEM".
class CHead {
 public:
  // `text` begins with the declaration.
  explicit CHead(std::u16string_view text) : m_Left(text.substr(0, text.find_first_of(u"\"'>"))) {
    m_Keyword = Next();
    m_Name = Next();
    m_IsParameter = m_Name == u"%";
    if (m_IsParameter) m_Name = Next();
  }
  // Whether its literals are values, in which characters have references, and not identifiers.
  bool HasValues() {
    return m_Keyword == u"<!ATTLIST" || (m_Keyword == u"<!ENTITY" && Next().empty());
  }
  bool IsEntity(std::u16string_view name) const {
    return m_Keyword == u"<!ENTITY" && !m_IsParameter && m_Name == name;
  }

 private:
  std::u16string_view Next() {
    constexpr const XMLCh* kSpace = u" \t\n\r";
    const std::size_t begin = std::min(m_Left.find_first_not_of(kSpace), m_Left.size());
    const std::size_t end = std::min(m_Left.find_first_of(kSpace, begin), m_Left.size());
    const std::u16string_view word = m_Left.substr(begin, end - begin);
    m_Left.remove_prefix(end);
    return word;
  }

  std::u16string_view m_Left, m_Keyword, m_Name;
  bool m_IsParameter = false;
};

// The code at the front of a text, a lone half of a pair for itself.
char32_t CodeAt(std::u16string_view text) {
  const char32_t unit = text[0];
  if ((unit & 0xFC00) != 0xD800 || text.size() == 1) return unit;
  return 0x10000 + ((unit - 0xD800) << 10) + (text[1] - 0xDC00u);
}

// The name of a reference has no other form, so that an encoding may refuse it.
void WriteSubset(CTextWriter& out, std::u16string_view subset) {
  CSubsetLexer lexer;
  bool hasValues = false;
  bool isInReference = false;
  std::size_t begin = 0;  // of what is not written yet
  for (std::size_t i = 0; i < subset.size(); ++i) {
    if (lexer.IsOutside() && subset[i] == u'<') hasValues = CHead(subset.substr(i)).HasValues();
    lexer.Take(subset[i]);
    if (subset[i] == u'&') isInReference = lexer.IsInLiteral();
    if (subset[i] == u';') isInReference = false;
    if (subset[i] < 0x80 || !hasValues || !lexer.IsInLiteral() || isInReference) continue;
    const std::size_t at = i;
    const char32_t code = CodeAt(subset.substr(at));
    if (code > 0xFFFF) ++i;
    if (out.IsRaw(code)) continue;
    out.Verbatim(subset.substr(begin, at - begin));
    out.Reference(code);
    begin = i + 1;
  }
  out.Verbatim(subset.substr(begin));
}

// The declaration of a general entity, which is the first one of its name; empty for none.
std::u16string_view DeclarationOf(std::u16string_view subset, std::u16string_view name) {
  CSubsetLexer lexer;
  std::size_t begin = 0;
  bool isWanted = false;
  for (std::size_t i = 0; i < subset.size(); ++i) {
    if (lexer.IsOutside() && subset[i] == u'<') {
      begin = i;
      isWanted = CHead(subset.substr(i)).IsEntity(name);
    }
    lexer.Take(subset[i]);
    if (isWanted && lexer.IsOutside()) return subset.substr(begin, i + 1 - begin);
  }
  return {};
}

}  // namespace

void WriteXmlDeclaration(CTextWriter& out, const xercesc::DOMDocument& document) {
  out.Markup("<?xml version=\"");
  out.Markup(out.IsXml11() ? "1.1" : "1.0");
  out.Markup("\" encoding=\"");
  out.Verbatim(WrittenEncoding(&document));
  out.Markup("\" standalone=\"");
  out.Markup(document.getXmlStandalone() ? "yes" : "no");
  out.Markup("\" ?>");
}

void WriteDocType(CTextWriter& out, const DOMDocumentType& type) {
  out.Markup("<!DOCTYPE ");
  out.Name(type.getNodeName());
  WriteIds(out, View(type.getPublicId()), View(type.getSystemId()));
  const std::u16string_view subset = View(type.getInternalSubset());
  if (!subset.empty()) {
    out.Markup(" [");
    WriteSubset(out, subset);
    out.Markup("]");
  }
  out.Markup(">");
}

void WriteEntity(CTextWriter& out, const DOMEntity& entity) {
  const DOMDocumentType* pType = entity.getOwnerDocument()->getDoctype();
  const std::u16string_view subset =
      pType != nullptr ? View(pType->getInternalSubset()) : std::u16string_view();
  const std::u16string_view declaration = DeclarationOf(subset, entity.getNodeName());
  if (!declaration.empty()) {
    WriteSubset(out, declaration);
    return;
  }
  if (View(entity.getSystemId()).empty()) throw NotWellFormed(u"the value of an entity is unknown");
  out.Markup("<!ENTITY ");
  out.Name(entity.getNodeName());
  WriteIds(out, View(entity.getPublicId()), View(entity.getSystemId()));
  if (!View(entity.getNotationName()).empty()) {
    out.Markup(" NDATA ");
    out.Name(entity.getNotationName());
  }
  out.Markup(">");
}
