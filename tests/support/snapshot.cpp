#include "support/snapshot.h"

#include <cstdio>
#include <unordered_map>
#include <utility>
#include <xercesc/util/XMLString.hpp>

namespace support {

namespace {

using xercesc::DOMAttr;
using xercesc::DOMDocument;
using xercesc::DOMDocumentType;
using xercesc::DOMElement;
using xercesc::DOMEntity;
using xercesc::DOMNamedNodeMap;
using xercesc::DOMNode;
using xercesc::DOMNotation;

// Printable, and different for each text.
std::string Told(const XMLCh* pText) {
  if (pText == nullptr) return "-";
  std::string told(1, '\'');
  for (; *pText != 0; ++pText) {
    const bool isPlain = *pText >= 0x20 && *pText < 0x7F && *pText != '\\' && *pText != '\'';
    if (isPlain) {
      told.push_back(static_cast<char>(*pText));
    } else {
      told.push_back('\\');
      told += std::to_string(*pText);
      told.push_back(';');
    }
  }
  told.push_back('\'');
  return told;
}

bool IsSpace(const DOMNode& text) {
  const XMLCh* pText = text.getNodeValue();
  while (xercesc::XMLString::indexOf(u" \t\r\n", *pText) >= 0 && *pText != 0) ++pText;
  return *pText == 0;
}

bool IsText(const DOMNode& node) {
  return node.getNodeType() == DOMNode::TEXT_NODE ||
         node.getNodeType() == DOMNode::CDATA_SECTION_NODE;
}

bool HasElementsAlone(const DOMNode& parent) {
  bool hasElement = false;
  for (const DOMNode* p = parent.getFirstChild(); p != nullptr; p = p->getNextSibling()) {
    if (IsText(*p) && !IsSpace(*p)) return false;
    hasElement |= p->getNodeType() == DOMNode::ELEMENT_NODE;
  }
  return hasElement;
}

class CTeller {
 public:
  explicit CTeller(ETold told) : m_Told(told) {}

  void Tell(const DOMNode& root) {
    Begin(root);
    const DOMNode* pNode = root.getFirstChild();
    for (size_t level = 1; pNode != nullptr; pNode = Next(pNode, root, level)) {
      if (level != m_Indent) EndRun();
      m_Indent = level;
      Begin(*pNode);
    }
    EndRun();
  }
  const std::string& Text() {
    EndRun();
    return m_Text;
  }

 private:
  static const DOMNode* Next(const DOMNode* pNode, const DOMNode& root, size_t& level) {
    if (const DOMNode* pChild = pNode->getFirstChild()) {
      ++level;
      return pChild;
    }
    while (pNode != &root && pNode->getNextSibling() == nullptr) {
      pNode = pNode->getParentNode();
      --level;
    }
    return pNode == &root ? nullptr : pNode->getNextSibling();
  }

  void Line(const std::string& text) {
    EndRun();
    m_Text += std::string(m_Indent, ' ') + text + "\n";
  }
  // A run of text that is told as one.
  void EndRun() {
    if (m_Run.empty()) return;
    const std::u16string run = std::exchange(m_Run, {});
    Line("text " + Told(run.c_str()));
  }

  void Begin(const DOMNode& node) {
    if (IsText(node)) return TellText(node);
    Line(std::to_string(node.getNodeType()) + " " + Told(node.getNodeName()) + " " +
         Told(node.getNamespaceURI()) + " " + Told(node.getNodeValue()));
    if (node.getNodeType() == DOMNode::ELEMENT_NODE) {
      const DOMNamedNodeMap& attributes = *node.getAttributes();
      for (XMLSize_t i = 0; i < attributes.getLength(); ++i) TellAttribute(*attributes.item(i));
    } else if (node.getNodeType() == DOMNode::DOCUMENT_NODE) {
      const auto& document = static_cast<const DOMDocument&>(node);
      const bool isXml11 = xercesc::XMLString::equals(document.getXmlVersion(), u"1.1");
      Line((isXml11 ? "1.1 " : "1.0 ") + std::to_string(document.getXmlStandalone()));
    } else if (node.getNodeType() == DOMNode::DOCUMENT_TYPE_NODE) {
      TellType(static_cast<const DOMDocumentType&>(node));
    }
  }

  // Each parent is looked through once, however many texts it has.
  bool IsAmongElements(const DOMNode& text) {
    const DOMNode* pParent = text.getParentNode();
    if (pParent == nullptr) return false;
    const auto [place, isNew] = m_HaveElementsAlone.try_emplace(pParent);
    if (isNew) place->second = HasElementsAlone(*pParent);
    return place->second;
  }

  void TellText(const DOMNode& node) {
    const bool isLayout = May(ETold::kLayout) && node.getNodeType() == DOMNode::TEXT_NODE &&
                          IsSpace(node) && IsAmongElements(node);
    if (isLayout) return;
    if (May(ETold::kRuns)) {
      m_Run += node.getNodeValue();
      return;
    }
    Line(std::to_string(node.getNodeType()) + " " + Told(node.getNodeValue()));
  }

  void TellAttribute(const DOMNode& node) {
    const auto& attribute = static_cast<const DOMAttr&>(node);
    std::string line(1, '@');
    for (const XMLCh* p :
         {attribute.getNodeName(), attribute.getNamespaceURI(), attribute.getNodeValue()}) {
      line += Told(p);
      line += ' ';
    }
    if (!attribute.getSpecified()) line += "default";
    Line(line);
    for (const DOMNode* p = attribute.getFirstChild(); p != nullptr; p = p->getNextSibling()) {
      if (p->getNodeType() != DOMNode::TEXT_NODE) Line("  &" + Told(p->getNodeName()));
    }
  }

  void TellType(const DOMDocumentType& type) {
    // An empty one is as good as none.
    std::string line = "type";
    const auto subset = Escaped(type.getInternalSubset());
    for (const XMLCh* p : {type.getPublicId(), type.getSystemId(), subset.c_str()}) {
      line += ' ';
      line += Told(p != nullptr ? p : u"");
    }
    Line(line);
    for (XMLSize_t i = 0; i < type.getEntities()->getLength(); ++i) {
      const auto& entity = static_cast<const DOMEntity&>(*type.getEntities()->item(i));
      Line("entity " + Told(entity.getPublicId()) + " " + Told(entity.getSystemId()) + " " +
           Told(entity.getNotationName()));
      CTeller content(m_Told);
      content.Tell(entity);
      m_Text += content.Text();
    }
    for (XMLSize_t i = 0; i < type.getNotations()->getLength(); ++i) {
      const auto& notation = static_cast<const DOMNotation&>(*type.getNotations()->item(i));
      Line("notation " + Told(notation.getNodeName()) + " " + Told(notation.getPublicId()) + " " +
           Told(notation.getSystemId()));
    }
  }

  bool May(ETold differ) const { return (m_Told | differ) == m_Told; }

  // The text, with a reference for each character that not every encoding has.
  std::u16string Escaped(const XMLCh* pText) const {
    std::u16string text;
    for (; pText != nullptr && *pText != 0; ++pText) {
      if (*pText < 0x80 || !May(ETold::kRuns)) {
        text += *pText;
        continue;
      }
      uint32_t character = *pText;
      if (character >> 10 == 0xD800 >> 10) {
        character = 0x10000 + ((character - 0xD800) << 10) + (*++pText - 0xDC00U);
      }
      char reference[16];
      text.append(reference, reference + std::snprintf(reference, 16, "&#x%X;", character));
    }
    return text;
  }

  ETold m_Told;
  size_t m_Indent = 0;
  std::u16string m_Run;
  std::unordered_map<const DOMNode*, bool> m_HaveElementsAlone;
  std::string m_Text;
};

}  // namespace

std::string Snapshot(const DOMNode& root, ETold told) {
  CTeller teller(told);
  teller.Tell(root);
  return teller.Text();
}

}  // namespace support
