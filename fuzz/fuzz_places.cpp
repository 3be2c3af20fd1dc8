// An XML text in one of several encodings: every node that is in it has a position, and the
// characters there, loaded with the same document type, make that node.
#include <algorithm>
#include <vector>

#include "document/find.h"
#include "dom/look.h"
#include "harness.h"
#include "host/utf8.h"
#include "support/snapshot.h"

using xercesc::DOMAttr;
using xercesc::DOMNode;

namespace {

// Every node is loaded once more, and its references are expanded.
constexpr size_t kMostBytes = 2000;
constexpr auto kMostReferences = 12;

enum class EForm { kUtf8, kUtf8WithMark, kUtf16LE, kUtf16BE };

// A text and the bytes that it is loaded from.
class CSource {
 public:
  CSource(std::string_view xml, EForm form) : m_Form(form) {
    m_Units.resize(xml.size());
    const auto* pBytes = reinterpret_cast<const unsigned char*>(xml.data());
    const auto count = utf8::Decode(pBytes, xml.size(), m_Units.data());
    m_IsWellFormed = count.has_value();
    m_Units.resize(count.value_or(0));
    if (form == EForm::kUtf8WithMark) m_Bytes = "\xEF\xBB\xBF";
    if (form <= EForm::kUtf8WithMark) {
      m_Bytes += xml;
      return;
    }
    m_Units.insert(m_Units.begin(), 0xFEFF);
    for (const char16_t unit : m_Units) {
      const char bytes[] = {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
      m_Bytes += bytes[form == EForm::kUtf16LE ? 0 : 1];
      m_Bytes += bytes[form == EForm::kUtf16LE ? 1 : 0];
    }
    m_Units.erase(m_Units.begin());
  }

  bool IsWellFormed() const { return m_IsWellFormed; }
  const std::string& Bytes() const { return m_Bytes; }
  std::u16string_view Units() const { return m_Units; }

  size_t UnitAt(int64_t offset) const {
    const auto at = static_cast<size_t>(offset);
    const size_t mark = m_Form == EForm::kUtf8 ? 0 : m_Form == EForm::kUtf8WithMark ? 3 : 2;
    if (offset < 0 || at < mark || at > m_Bytes.size()) fuzz::Fail("a position beyond the text");
    if (m_Form > EForm::kUtf8WithMark) return (at - mark) / 2;
    std::u16string units(at, u' ');
    const auto* pBytes = reinterpret_cast<const unsigned char*>(m_Bytes.data()) + mark;
    const auto count = utf8::Decode(pBytes, at - mark, units.data());
    if (!count) fuzz::Fail("a position within a character");
    return *count;
  }

 private:
  EForm m_Form;
  bool m_IsWellFormed;
  std::string m_Bytes;
  std::u16string m_Units;
};

std::string Utf8(std::u16string_view text) {
  std::string bytes(utf8::EncodedSize(std::u16string(text).c_str(), text.size()).value(), ' ');
  utf8::Encode(text.data(), text.size(), reinterpret_cast<unsigned char*>(bytes.data()));
  return bytes;
}

void Prepare(TSXRefId document, uint8_t bits) {
  const uint8_t namespaces = bits & 1, externalDTD = bits & 2, whitespace = bits & 4, on = 1;
  const int32_t scheme = (bits >> 3 & 3) % 3, nothing = 3;
  TSXSetDoNamespaces(document, 0, &namespaces);
  TSXSetLoadExternalDTD(document, 0, &externalDTD);
  TSXSetPreserveWhitespace(document, 0, &whitespace);
  TSXSetValidateOnLoad(document, 0, &scheme);
  TSXSetExternalAccess(document, 0, &nothing);
  TSXSetKeepPositions(document, 0, &on);
}

TSXStatus LoadBytes(TSXRefId document, const std::string& bytes) {
  fuzz::CText text(bytes), errors, exception;
  return TSXLoadBytes(document, text.Out(), errors.Out(), exception.Out());
}

// Line and column of a place, counted by its own rule: a break is counted at its last unit.
void RequirePlace(std::u16string_view before, bool isVersion11, const CPosition& position) {
  const auto breaks = [&](size_t i) {
    const char16_t unit = before[i], next = i + 1 < before.size() ? before[i + 1] : u' ';
    if (unit == u'\r') return next != u'\n' && !(next == 0x85 && isVersion11);
    return unit == u'\n' || (isVersion11 && (unit == 0x85 || unit == 0x2028));
  };
  int line = 1;
  size_t start = 0;
  for (size_t i = 0; i < before.size(); ++i) {
    if (!breaks(i)) continue;
    ++line;
    start = i + 1;
  }
  if (position.m_Line != line ||
      static_cast<size_t>(position.m_Column) != before.size() - start + 1) {
    fuzz::Fail("a wrong line or column");
  }
}

class CCheck {
 public:
  CCheck(const CXercesDOM& dom, const CSource& source, uint8_t options, bool isWhole)
      : m_Dom(dom), m_Source(source), m_Options(options), m_IsWhole(isWhole) {
    m_IsVersion11 = xercesc::XMLString::equals(dom.m_pDoc->getXmlVersion(), u"1.1");
    const DOMNode* pType = dom.m_pDoc->getDoctype();
    const size_t endOfDeclaration = source.Units().find(u"?>");
    if (pType != nullptr) {
      const CPosition position = dom.m_Positions.Of(*pType);
      m_HasProlog = position.m_End >= 0;
      if (m_HasProlog) m_Prolog = source.Units().substr(0, source.UnitAt(position.m_End));
    } else if (source.Units().starts_with(u"<?xml ") && endOfDeclaration != source.Units().npos) {
      m_Prolog = source.Units().substr(0, endOfDeclaration + 2);
    }
  }

  void Check(DOMNode& node) {
    CheckOne(node);
    if (node.getNodeType() == DOMNode::ELEMENT_NODE) {
      const xercesc::DOMNamedNodeMap& attributes = *node.getAttributes();
      for (XMLSize_t i = 0; i < attributes.getLength(); ++i) Check(*attributes.item(i));
    }
    const bool isOutside = node.getNodeType() != DOMNode::ENTITY_REFERENCE_NODE &&
                           node.getNodeType() != DOMNode::DOCUMENT_TYPE_NODE;
    for (DOMNode* p = isOutside ? node.getFirstChild() : nullptr; p != nullptr;
         p = p->getNextSibling()) {
      Check(*p);
    }
  }

 private:
  static bool IsDefault(const DOMNode& node) {
    const bool isAttribute = node.getNodeType() == DOMNode::ATTRIBUTE_NODE;
    if (isAttribute) return !static_cast<const DOMAttr&>(node).getSpecified();
    const DOMNode* pParent = node.getParentNode();
    return pParent != nullptr && pParent->getNodeType() == DOMNode::ATTRIBUTE_NODE &&
           IsDefault(*pParent);
  }

  std::u16string_view Slice(const CPosition& position) const {
    const size_t begin = m_Source.UnitAt(position.m_Begin), end = m_Source.UnitAt(position.m_End);
    if (end < begin) fuzz::Fail("a position that ends before it begins");
    return m_Source.Units().substr(begin, end - begin);
  }

  void CheckOne(DOMNode& node) {
    const CPosition position = m_Dom.m_Positions.Of(node);
    if (position.m_Begin < 0) {
      if (m_IsWhole && !IsDefault(node)) fuzz::Fail("a node has no position");
      return;
    }
    if (IsDefault(node)) fuzz::Fail("a default has a position");
    RequirePlace(m_Source.Units().substr(0, m_Source.UnitAt(position.m_Begin)), m_IsVersion11,
                 position);
    const DOMNode* pOwner = dom::ParentOrElement(node);
    if (pOwner != nullptr && pOwner->getNodeType() == DOMNode::ATTRIBUTE_NODE) {
      const CPosition owner = m_Dom.m_Positions.Of(*pOwner);
      const std::u16string_view whole = Slice(owner);
      const std::u16string quoted = whole.back() + std::u16string(Slice(position)) + whole.back();
      if (!whole.ends_with(quoted)) fuzz::Fail("a text is not the value of its attribute");
    } else if ((m_Options & 1) != 0) {
      RequireName(node, Slice(position));
    } else if (m_HasProlog) {
      LoadAgain(node, Slice(position));
    }
  }

  // With namespaces a node depends on what is declared above it.
  static void RequireName(const DOMNode& node, std::u16string_view slice) {
    const bool isElement = node.getNodeType() == DOMNode::ELEMENT_NODE;
    const std::u16string start = (isElement ? u"<" : u"") + std::u16string(node.getNodeName());
    const bool hasName = isElement || node.getNodeType() == DOMNode::ATTRIBUTE_NODE;
    if (hasName && !slice.starts_with(start)) fuzz::Fail("other than the node: " + Utf8(slice));
  }

  // The node as the only one of its kind in a document; what it becomes there.
  void LoadAgain(const DOMNode& node, std::u16string_view slice) const {
    const std::u16string prolog(m_Prolog), text(slice);
    const DOMNode* pOwner = dom::ParentOrElement(node);
    const std::u16string owner = pOwner != nullptr ? pOwner->getNodeName() : u"";
    std::u16string whole;
    switch (node.getNodeType()) {
      case DOMNode::DOCUMENT_NODE:
        whole = text;
        break;
      case DOMNode::DOCUMENT_TYPE_NODE:
        whole = prolog + u"<x/>";
        break;
      case DOMNode::ELEMENT_NODE:
        whole = prolog + text;
        break;
      case DOMNode::ATTRIBUTE_NODE:
        whole = prolog + u"<" + owner + u" " + text + u"/>";
        break;
      case DOMNode::COMMENT_NODE:
      case DOMNode::PROCESSING_INSTRUCTION_NODE:
        whole = prolog + text + u"<x/>";
        break;
      default:
        whole = prolog + u"<" + owner + u">" + text + u"</" + owner + u">";
    }
    fuzz::CDoc again;
    Prepare(again.Id(), m_Options);
    fuzz::RequireKnown(again.Load(Utf8(whole)));
    const DOMNode* pAgain = Counterpart(node, *FindObject<CXercesDOM>(again.Id())->m_pDoc);
    if (pAgain == nullptr || !IsSame(node, *pAgain)) {
      fuzz::Fail("other than the node: " + Utf8(slice));
    }
  }

  // An entity has its content from the first reference, which only the document has.
  static bool IsSame(const DOMNode& left, const DOMNode& right) {
    if (left.getNodeType() != DOMNode::DOCUMENT_TYPE_NODE) {
      return support::Snapshot(left) == support::Snapshot(right);
    }
    const auto& leftType = dom::As<xercesc::DOMDocumentType>(left);
    const auto& rightType = dom::As<xercesc::DOMDocumentType>(right);
    return xercesc::XMLString::equals(leftType.getName(), rightType.getName()) &&
           xercesc::XMLString::equals(leftType.getSystemId(), rightType.getSystemId()) &&
           xercesc::XMLString::equals(leftType.getInternalSubset(), rightType.getInternalSubset());
  }

  static const DOMNode* Counterpart(const DOMNode& node, xercesc::DOMDocument& document) {
    xercesc::DOMElement* pRoot = document.getDocumentElement();
    if (node.getNodeType() == DOMNode::DOCUMENT_NODE) return &document;
    if (node.getNodeType() == DOMNode::DOCUMENT_TYPE_NODE) return document.getDoctype();
    if (pRoot == nullptr || node.getNodeType() == DOMNode::ELEMENT_NODE) return pRoot;
    if (node.getNodeType() == DOMNode::ATTRIBUTE_NODE) {
      return pRoot->getAttributeNode(node.getNodeName());
    }
    const bool isInProlog = node.getNodeType() == DOMNode::COMMENT_NODE ||
                            node.getNodeType() == DOMNode::PROCESSING_INSTRUCTION_NODE;
    return isInProlog ? pRoot->getPreviousSibling() : pRoot->getFirstChild();
  }

  const CXercesDOM& m_Dom;
  const CSource& m_Source;
  uint8_t m_Options;
  bool m_IsWhole;
  bool m_IsVersion11 = false;
  bool m_HasProlog = true;
  std::u16string_view m_Prolog;  // the declarations that hold for every node
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t size) {
  fuzz::CBytes bytes(pData, size);
  const uint8_t options = bytes.Byte();
  const std::string_view rest = bytes.Rest(), xml = rest.substr(0, rest.find('\0'));
  // What says an encoding is for the tables of answers.
  if (xml.size() > kMostBytes || xml.find("encoding") != xml.npos || !fuzz::IsTame(xml)) return 0;
  if (std::count(xml.begin(), xml.end(), '&') > kMostReferences) return 0;
  const CSource source(xml, static_cast<EForm>(options >> 5 & 3));
  if (!source.IsWellFormed()) return 0;
  fuzz::CLedger ledger;
  fuzz::CDoc document;
  Prepare(document.Id(), options);
  const TSXStatus status = LoadBytes(document.Id(), source.Bytes());
  fuzz::RequireKnown(status);
  const auto& dom = *FindObject<CXercesDOM>(document.Id());
  CCheck(dom, source, options, status == 0).Check(*dom.m_pDoc);
  return 0;
}
