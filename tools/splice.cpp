#include "splice.h"

#include <algorithm>
#include <vector>

#include "markup.h"
#include "message.h"
#include "places.h"

namespace {

struct CSplice {
  size_t m_Begin;
  size_t m_End;
  std::string m_Text;
};

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

size_t SkipSpace(std::string_view text, size_t at) {
  while (at < text.size() && IsSpace(text[at])) ++at;
  return at;
}

size_t NameEnd(std::string_view text, size_t at) {
  return std::min(text.find_first_of(" \t\n\r=/>?", at), text.size());
}

// An attribute in a start tag, by offsets into the tag.
struct CAttribute {
  size_t m_Name;
  size_t m_NameEnd;
  size_t m_Value;  // behind the quote
  size_t m_ValueEnd;
};

std::optional<CAttribute> FindAttribute(std::string_view tag, std::string_view name) {
  for (size_t at = SkipSpace(tag, NameEnd(tag, 1)); at < tag.size() && tag[at] != '>';) {
    CAttribute attribute{at, NameEnd(tag, at), 0, 0};
    const size_t equals = tag.find('=', attribute.m_NameEnd);
    if (equals == tag.npos || attribute.m_NameEnd == at) return std::nullopt;
    attribute.m_Value = SkipSpace(tag, equals + 1) + 1;
    attribute.m_ValueEnd = tag.find(tag[attribute.m_Value - 1], attribute.m_Value);
    if (attribute.m_ValueEnd == tag.npos) return std::nullopt;
    if (tag.substr(at, attribute.m_NameEnd - at) == name) return attribute;
    at = SkipSpace(tag, attribute.m_ValueEnd + 1);
  }
  return std::nullopt;
}

// What an edit changes, node by node.
class CSplicer {
 public:
  CSplicer(std::string_view text, const CEdit& edit, const std::string& encoding)
      : m_Text(text), m_Edit(edit), m_Encoding(encoding), m_Places(text) {}

  std::optional<std::string> Apply(CNodeArray& nodes) {
    std::vector<TSXRefId> ids;
    std::vector<CNode> owners(nodes.Size());  // of those that are attributes
    for (size_t i = 0; i < nodes.Size(); ++i) {
      ids.push_back(nodes.At(i));
      if (KindOf(ids.back()) != EKind::kAttribute) continue;
      Require(TSXOwnerElement(ids.back(), 0, owners[i].Out()), "attribute");
      ids.back() = owners[i].Get();
    }
    if (!m_Places.Find(ids)) return std::nullopt;
    for (size_t i = 0; i < nodes.Size(); ++i) {
      if (owners[i]) {
        ChangeAttribute(ids[i], std::string(Property(nodes.At(i), TSXName).View()));
      } else {
        Change(ids[i]);
      }
    }
    return Result();
  }

 private:
  // -- Where -----------------------------------------------------------------------

  std::string_view TextOf(TSXRefId node) const { return m_Places.TokenOf(node).m_Text; }
  size_t Begin(TSXRefId node) const { return OffsetOf(TextOf(node)); }
  size_t OffsetOf(std::string_view part) const {
    return static_cast<size_t>(part.data() - m_Text.data());
  }
  bool HasContent(TSXRefId node) const { return m_Places.TokenOf(node).m_Kind == EToken::kStart; }
  // Past the last character of a node.
  size_t End(TSXRefId node) const {
    const std::string_view last = HasContent(node) ? m_Places.EndOf(node).m_Text : TextOf(node);
    return OffsetOf(last) + last.size();
  }
  // Between the tags of an element; for an empty one see Open.
  size_t ContentBegin(TSXRefId node) const { return Begin(node) + TextOf(node).size(); }
  size_t ContentEnd(TSXRefId node) const { return OffsetOf(m_Places.EndOf(node).m_Text); }
  std::string_view NameOf(TSXRefId node) const {
    return TextOf(node).substr(1, NameEnd(TextOf(node), 1) - 1);
  }

  void Replace(size_t begin, size_t end, std::string text) {
    m_Splices.push_back({begin, end, std::move(text)});
  }
  // Gives an empty element its end tag, and content.
  void Open(TSXRefId element, const std::string& content) {
    const size_t end = ContentBegin(element);
    Replace(end - 2, end, '>' + content + "</" + std::string(NameOf(element)) + '>');
  }

  // -- Changes ---------------------------------------------------------------------

  void Change(TSXRefId node) {
    switch (m_Edit.m_Action) {
      case EAction::kSet:
        return Set(node);
      case EAction::kSetAttribute:
        return SetAttribute(node);
      case EAction::kDelete:
        return Replace(Begin(node), End(node), "");
      case EAction::kRename:
        return Rename(node);
      case EAction::kInsert:
        return Insert(node);
    }
  }

  void Set(TSXRefId node) {
    const std::string& value = m_Edit.m_Value;
    const size_t begin = Begin(node);
    const size_t size = TextOf(node).size();
    switch (m_Places.TokenOf(node).m_Kind) {
      case EToken::kStart:
        return Replace(ContentBegin(node), ContentEnd(node), EscapedText(value, m_Encoding));
      case EToken::kEmpty:
        return value.empty() ? void() : Open(node, EscapedText(value, m_Encoding));
      case EToken::kText:
        return Replace(begin, begin + size, EscapedText(value, m_Encoding));
      case EToken::kCDATA:
        return Replace(begin + 9, begin + size - 3, value);
      case EToken::kComment:
        return Replace(begin + 4, begin + size - 3, value);
      case EToken::kInstruction: {
        const size_t name = NameEnd(TextOf(node), 2);
        return Replace(begin + name, begin + size - 2, value.empty() ? "" : ' ' + value);
      }
      default:
        return;
    }
  }

  // What is no element is refused when it comes to the tree.
  void SetAttribute(TSXRefId element) {
    if (KindOf(element) != EKind::kElement) return;
    if (FindAttribute(TextOf(element), m_Edit.m_Name)) {
      return ChangeAttribute(element, m_Edit.m_Name);
    }
    const std::string_view tag = TextOf(element);
    size_t at = tag.size() - (HasContent(element) ? 1 : 2);
    while (IsSpace(tag[at - 1])) --at;
    Replace(Begin(element) + at, Begin(element) + at,
            ' ' + m_Edit.m_Name + "=\"" + EscapedValue(m_Edit.m_Value, '"') + '"');
  }

  // One that the grammar supplies is not in the text: set, it is added there.
  void ChangeAttribute(TSXRefId element, const std::string& name) {
    const std::string_view tag = TextOf(element);
    const std::optional<CAttribute> attribute = FindAttribute(tag, name);
    const size_t begin = Begin(element);
    if (!attribute) {
      m_IsWhole = false;
    } else if (m_Edit.m_Action == EAction::kRename) {
      Replace(begin + attribute->m_Name, begin + attribute->m_NameEnd, m_Edit.m_Name);
    } else if (m_Edit.m_Action == EAction::kDelete) {
      size_t from = attribute->m_Name;
      while (IsSpace(tag[from - 1])) --from;
      Replace(begin + from, begin + attribute->m_ValueEnd + 1, "");
    } else {
      Replace(begin + attribute->m_Value, begin + attribute->m_ValueEnd,
              EscapedValue(m_Edit.m_Value, tag[attribute->m_Value - 1]));
    }
  }

  void Rename(TSXRefId node) {
    const size_t begin = Begin(node);
    const size_t name = m_Places.TokenOf(node).m_Kind == EToken::kInstruction ? 2 : 1;
    Replace(begin + name, begin + NameEnd(TextOf(node), name), m_Edit.m_Name);
    if (!HasContent(node)) return;
    const size_t end = ContentEnd(node);
    Replace(end + 2, end + 2 + NameOf(node).size(), m_Edit.m_Name);
  }

  std::string Content() const {
    switch (m_Edit.m_Content) {
      case EContent::kText:
        return EscapedText(m_Edit.m_Value, m_Encoding);
      case EContent::kComment:
        return "<!--" + m_Edit.m_Value + "-->";
      case EContent::kElement:
        return '<' + m_Edit.m_Value + "/>";
      default:
        return m_Edit.m_Value;
    }
  }

  void Insert(TSXRefId node) {
    const bool isDocument = KindOf(node) == EKind::kDocument;
    size_t at = 0;
    if (m_Edit.m_Place == EPlace::kBefore) {
      at = Begin(node);
    } else if (m_Edit.m_Place == EPlace::kAfter) {
      at = End(node);
    } else if (!isDocument && !HasContent(node)) {
      return Open(node, Content());
    } else if (m_Edit.m_Place == EPlace::kFirst) {
      at = isDocument ? Begin(node) : ContentBegin(node);
    } else {
      at = isDocument ? m_Text.size() : ContentEnd(node);
    }
    Replace(at, at, Content());
  }

  std::string EscapedValue(std::string_view value, char quote) const {
    return EscapedFor(value, quote, m_Encoding);
  }

  // -- The text ----------------------------------------------------------------------

  // A change inside a part that is replaced as a whole is gone with it.
  std::optional<std::string> Result() {
    if (!m_IsWhole) return std::nullopt;
    std::ranges::stable_sort(m_Splices, [](const CSplice& a, const CSplice& b) {
      return a.m_Begin != b.m_Begin ? a.m_Begin < b.m_Begin : a.m_End > b.m_End;
    });
    size_t added = 0;
    for (const CSplice& splice : m_Splices) added += splice.m_Text.size();
    std::string result;
    result.reserve(m_Text.size() + added);
    size_t done = 0;
    for (const CSplice& splice : m_Splices) {
      if (splice.m_Begin < done) continue;
      result.append(m_Text, done, splice.m_Begin - done);
      result += splice.m_Text;
      done = splice.m_End;
    }
    result.append(m_Text, done);
    return result;
  }

  std::string_view m_Text;
  const CEdit& m_Edit;
  const std::string& m_Encoding;
  CPlaces m_Places;
  std::vector<CSplice> m_Splices;
  bool m_IsWhole = true;  // every change is in the splices
};

}  // namespace

std::optional<std::string> Spliced(std::string_view text, const CEdit& edit, CNodeArray& nodes,
                                   const std::string& encoding) {
  return CSplicer(text, edit, encoding).Apply(nodes);
}
