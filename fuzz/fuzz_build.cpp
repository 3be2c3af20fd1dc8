// An XML text with parser options of any kind, parsed by the builder of trees and by the
// parser of the XML library below it: messages and trees must be the same, down to the
// links and flags of each node. The tree of a text that needs no parser must be, too.
#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <vector>
#include <xercesc/dom/impl/DOMNodeIDMap.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/SecurityManager.hpp>

#include "document/errorreporter.h"
#include "document/parsermemory.h"
#include "document/plaintext.h"
#include "dom/builder.h"
#include "dom/look.h"
#include "harness.h"

namespace {

using xercesc::DOMDocument;
using xercesc::DOMNode;
using xercesc::XercesDOMParser;

// As in the driver of loads.
constexpr auto kMostReferences = 24;

// -- What can be seen of a tree -------------------------------------------------------

class CPicture {
 public:
  // A tree is drawn twice: as the parse left it, and when its entities have been looked into.
  explicit CPicture(DOMDocument& document) : m_Document(dom::Impl(document)) {
    Draw();
    for (const DOMNode* pNode : std::vector(m_Nodes)) {
      if (pNode->getNodeType() == DOMNode::ENTITY_NODE) static_cast<void>(dom::FirstChild(*pNode));
    }
    Draw();
  }
  const std::u16string& Get() const { return m_Picture; }

 private:
  void Draw() {
    m_Nodes.clear();
    m_Numbers.clear();
    dom::ForEachWithin(m_Document, [this](DOMNode& node) {
      m_Numbers.emplace(&node, m_Nodes.size());
      m_Nodes.push_back(&node);
    });
    DrawDocument();
    for (const DOMNode* pNode : m_Nodes) DrawNode(*pNode);
  }

  void DrawDocument() {
    Texts({m_Document.getXmlVersion(), m_Document.getXmlEncoding(), m_Document.getInputEncoding(),
           m_Document.getDocumentURI()});
    Count(m_Document.getXmlStandalone());
    Count(m_Document.getErrorChecking());
    Count(static_cast<size_t>(m_Document.changes()));
    Number(m_Document.getDocumentElement());
    Number(m_Document.getDoctype());
  }

  void DrawNode(const DOMNode& node) {
    m_Picture += u'\n';
    Count(static_cast<size_t>(node.getNodeType()));
    Count(dom::NodePart(node).flags);
    Number(dom::NodePart(node).fOwnerNode);
    Number(dom::MadeFirstChild(node));
    if (const auto* pLinks = dom::ChildPart(node)) {
      Number(pLinks->previousSibling);
      Number(pLinks->nextSibling);
    }
    Names(node);
    Texts({node.getNodeValue()});
    switch (node.getNodeType()) {
      case DOMNode::ELEMENT_NODE:
        return DrawDefaults(dom::As<xercesc::DOMElementImpl>(node));
      case DOMNode::ATTRIBUTE_NODE:
        return DrawId(node);
      case DOMNode::DOCUMENT_TYPE_NODE:
        return DrawType(dom::As<xercesc::DOMDocumentTypeImpl>(node));
      case DOMNode::ENTITY_NODE:
        return DrawEntity(dom::As<xercesc::DOMEntityImpl>(node));
      case DOMNode::NOTATION_NODE:
        return DrawNotation(dom::As<xercesc::DOMNotation>(node));
      default:
        return;
    }
  }

  void Names(const DOMNode& node) {
    for (const XMLCh* pName :
         {node.getNodeName(), node.getNamespaceURI(), node.getPrefix(), node.getLocalName()}) {
      Texts({pName});
      if (dom::IsOneOf(node, dom::Bit(DOMNode::ELEMENT_NODE) | dom::Bit(DOMNode::ATTRIBUTE_NODE))) {
        Count(m_Document.getPooledString(pName) == pName);
      }
    }
  }
  void DrawDefaults(const xercesc::DOMElementImpl& element) {
    Count(element.fAttributes->hasDefaults());
    const xercesc::DOMAttrMapImpl* pDefaults = element.fDefaultAttributes;
    for (XMLSize_t i = 0; i < pDefaults->getLength(); ++i) {
      const DOMNode& attribute = *pDefaults->item(i);
      Names(attribute);
      Texts({attribute.getNodeValue()});
      Count(dom::NodePart(attribute).flags);
    }
  }
  void DrawId(const DOMNode& attribute) {
    xercesc::DOMNodeIDMap* pIds = m_Document.getNodeIDMap();
    Number(pIds != nullptr ? pIds->find(attribute.getNodeValue()) : nullptr);
  }
  void DrawType(const xercesc::DOMDocumentTypeImpl& type) {
    Texts({type.getPublicId(), type.getSystemId(), type.getInternalSubset()});
  }
  void DrawEntity(const xercesc::DOMEntityImpl& entity) {
    Texts({entity.getPublicId(), entity.getSystemId(), entity.getNotationName(),
           entity.getInputEncoding(), entity.getXmlEncoding(), entity.getXmlVersion(),
           entity.getBaseURI()});
    Number(entity.getEntityRef());
  }
  void DrawNotation(const xercesc::DOMNotation& notation) {
    Texts({notation.getPublicId(), notation.getSystemId()});
  }

  void Texts(std::initializer_list<const XMLCh*> texts) {
    for (const XMLCh* pText : texts) m_Picture += pText != nullptr ? u" '" : u" -";
    for (const XMLCh* pText : texts) {
      if (pText != nullptr) m_Picture.append(pText) += u'\'';
    }
  }
  void Count(size_t count) {
    for (const char digit : ' ' + std::to_string(count)) {
      m_Picture += static_cast<char16_t>(digit);
    }
  }
  // Nodes go by their places in the tree.
  void Number(const DOMNode* pNode) {
    const auto found = m_Numbers.find(pNode);
    Count(found != m_Numbers.end() ? found->second + 1 : 0);
  }

  xercesc::DOMDocumentImpl& m_Document;
  std::vector<const DOMNode*> m_Nodes;
  std::map<const DOMNode*, size_t> m_Numbers;
  std::u16string m_Picture;
};

// -- A parse of each kind ---------------------------------------------------------------

void SetOptions(XercesDOMParser& parser, uint8_t bits) {
  parser.setDoNamespaces((bits & 1) != 0);
  parser.setDoSchema((bits & 2) != 0);
  parser.setLoadExternalDTD((bits & 4) != 0);
  parser.setIncludeIgnorableWhitespace((bits & 8) != 0);
  parser.setValidationSchemaFullChecking((bits & 16) != 0);
  parser.setValidationScheme(static_cast<XercesDOMParser::ValSchemes>(bits >> 5));
}

struct CResult {
  std::u16string m_Picture;
  std::string m_Messages;
  auto operator<=>(const CResult&) const = default;
};

std::string Parse(XercesDOMParser& parser, const xercesc::InputSource& source) try {
  parser.parse(source);
  return std::to_string(parser.getErrorCount());
} catch (const xercesc::XMLException& exception) {
  return "XMLException " + std::to_string(exception.getCode());
} catch (const xercesc::DOMException& exception) {
  return "DOMException " + std::to_string(exception.code);
} catch (const xercesc::SAXParseException&) {
  return "SAXParseException";
}

std::string TextOf(HStr text) {
  if (text == nullptr) return {};
  return {reinterpret_cast<const char*>(*text) + sizeof(int32_t),
          static_cast<size_t>((*text)->count)};
}

template <class Parser>
CResult ResultOf(std::string_view xml, uint8_t options) {
  xercesc::SecurityManager security;
  DOMTreeErrorReporter reporter;
  CParserMemory memory;
  Parser parser(nullptr, &memory);
  parser.setErrorHandler(&reporter);
  parser.setSecurityManager(&security);
  SetOptions(parser, options);
  const xercesc::MemBufInputSource source(reinterpret_cast<const XMLByte*>(xml.data()), xml.size(),
                                          "text");
  CResult result;
  result.m_Messages = Parse(parser, source);
  result.m_Messages += TextOf(reporter.getEHMsg());
  if (DOMDocument* pDocument = parser.getDocument()) result.m_Picture = CPicture(*pDocument).Get();
  return result;
}

std::string Readable(const std::u16string& text) {
  std::string readable;
  for (const char16_t c : text) readable += c < 128 ? static_cast<char>(c) : '?';
  return readable;
}

void Require(const CResult& built, const CResult& expected, uint8_t options) {
  if (built == expected) return;
  fuzz::Fail("options " + std::to_string(options) + '\n' + built.m_Messages +
             Readable(built.m_Picture) + "\ninstead of\n" + expected.m_Messages +
             Readable(expected.m_Picture));
}

void Compare(const std::string& xml, uint8_t options) {
  const CResult expected = ResultOf<XercesDOMParser>(xml, options);
  Require(ResultOf<dom::CBuilder>(xml, options), expected, options);
  // What a library's parser does not use for schemas or validation either.
  const auto plain = BuildPlain(xml, u"text", (options & 1) != 0);
  if (plain == nullptr || (options & 2) != 0 || options >> 5 == XercesDOMParser::Val_Always) return;
  Require({CPicture(*plain).Get(), "0"}, expected, options);
}

}  // namespace

// The options of the input, and beside them namespaces and white space the other way.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t size) {
  fuzz::CBytes bytes(pData, size);
  const uint8_t options = bytes.Byte();
  const std::string xml(bytes.Rest());
  if (!fuzz::IsTame(xml)) return 0;
  if (std::count(xml.begin(), xml.end(), '&') > kMostReferences) return 0;
  for (const unsigned changed : {0u, 1u, 8u}) {
    Compare(xml, static_cast<uint8_t>(options ^ changed));
  }
  return 0;
}
