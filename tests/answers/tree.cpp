#include "answers/tree.h"

#include "host/text.h"

using xercesc::DOMAttr;
using xercesc::DOMNode;

namespace answers {

namespace {

std::string Narrow(const XMLCh* pText) {
  const CLocalText text(pText);
  return text.Get() != nullptr ? text.Get() : "";
}

std::string DumpChildren(const DOMNode& node) {
  std::string all;
  const DOMNode* pLast = nullptr;
  for (const DOMNode* p = node.getFirstChild(); p != nullptr; p = p->getNextSibling()) {
    const auto isText = [](const DOMNode* pOne) {
      return pOne != nullptr && pOne->getNodeType() == DOMNode::TEXT_NODE;
    };
    if (isText(p) && isText(pLast)) all += '|';
    all += Dump(*p);
    pLast = p;
  }
  return all;
}

std::string DumpElement(const DOMNode& element) {
  const std::string name = Narrow(element.getNodeName());
  std::string all = "<" + name;
  const xercesc::DOMNamedNodeMap* pAttributes = element.getAttributes();
  for (XMLSize_t i = 0; i < pAttributes->getLength(); ++i) all += " " + Dump(*pAttributes->item(i));
  const std::string children = DumpChildren(element);
  return all + (element.hasChildNodes() ? ">" + children + "</" + name + ">" : "/>");
}

}  // namespace

std::string Escaped(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string all;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\n' || c == '\\') {
      all += c == '\n' ? "\\n" : "\\\\";
    } else if (byte < 0x20 || byte >= 0x7f) {
      all += {'\\', 'x', kDigits[byte / 16], kDigits[byte % 16]};
    } else {
      all += c;
    }
  }
  return all;
}

std::string Quoted(std::string_view bytes) { return "'" + Escaped(bytes) + "'"; }

std::string Dump(const DOMNode& node) {
  const std::string name = Narrow(node.getNodeName());
  const std::string value = Escaped(Narrow(node.getNodeValue()));
  switch (node.getNodeType()) {
    case DOMNode::ELEMENT_NODE:
      return DumpElement(node);
    case DOMNode::ATTRIBUTE_NODE:
      return name + "='" + value + (static_cast<const DOMAttr&>(node).getSpecified() ? "'" : "'*");
    case DOMNode::TEXT_NODE:
      return value;
    case DOMNode::CDATA_SECTION_NODE:
      return "<![CDATA[" + value + "]]>";
    case DOMNode::COMMENT_NODE:
      return "<!--" + value + "-->";
    case DOMNode::PROCESSING_INSTRUCTION_NODE:
      return "<?" + name + (value.empty() ? "" : " " + value) + "?>";
    case DOMNode::ENTITY_REFERENCE_NODE:
      return "&" + name + ";";
    case DOMNode::DOCUMENT_TYPE_NODE:
      return "<!DOCTYPE " + name + ">";
    case DOMNode::DOCUMENT_FRAGMENT_NODE:
      return "fragment(" + DumpChildren(node) + ")";
    default:
      return DumpChildren(node);
  }
}

std::string StepOf(const DOMNode& node) {
  const std::string name = Narrow(node.getNodeName());
  switch (node.getNodeType()) {
    case DOMNode::ATTRIBUTE_NODE:
      return "@" + name;
    case DOMNode::TEXT_NODE:
      return "text()";
    case DOMNode::CDATA_SECTION_NODE:
      return "cdata()";
    case DOMNode::COMMENT_NODE:
      return "comment()";
    case DOMNode::PROCESSING_INSTRUCTION_NODE:
      return "pi()";
    case DOMNode::ENTITY_REFERENCE_NODE:
      return "ref()";
    case DOMNode::DOCUMENT_TYPE_NODE:
      return "doctype";
    case DOMNode::ENTITY_NODE:
      return "entity(" + name + ")";
    case DOMNode::NOTATION_NODE:
      return "notation(" + name + ")";
    default:
      return name;
  }
}

DOMNode* Follow(DOMNode* pFrom, std::string_view steps) {
  while (pFrom != nullptr && !steps.empty()) {
    steps.remove_prefix(1);
    const std::string_view whole = steps.substr(0, steps.find('/'));
    steps.remove_prefix(whole.size());
    const std::string_view step = whole.substr(0, whole.find('['));
    const int index = step == whole ? 1 : whole[step.size() + 1] - '0';
    if (step.starts_with('@')) {
      const CWideText name(std::string(step.substr(1)).c_str());
      pFrom = pFrom->getAttributes()->getNamedItem(name.Get());
      continue;
    }
    int seen = 0;
    DOMNode* p = pFrom->getFirstChild();
    while (p != nullptr && (StepOf(*p) != step || ++seen < index)) p = p->getNextSibling();
    pFrom = p;
  }
  return pFrom;
}

std::string StepsTo(const DOMNode* pNode, const DOMNode*& pTop) {
  std::string steps;
  while (true) {
    const bool isAttribute = pNode->getNodeType() == DOMNode::ATTRIBUTE_NODE;
    const DOMNode* pAbove = isAttribute ? static_cast<const DOMAttr*>(pNode)->getOwnerElement()
                                        : pNode->getParentNode();
    pTop = pNode;
    if (pAbove == nullptr) return steps;
    std::string step = StepOf(*pNode);
    int index = 1;
    for (const DOMNode* p = isAttribute ? pNode : pAbove->getFirstChild(); p != pNode;
         p = p->getNextSibling()) {
      if (StepOf(*p) == step) ++index;
    }
    if (index > 1) step += "[" + std::to_string(index) + "]";
    steps = "/" + step + steps;
    pNode = pAbove;
  }
}

DOMNode* Declared(const xercesc::DOMDocument& document, std::string_view kind,
                  std::string_view name) {
  const xercesc::DOMDocumentType* pType = document.getDoctype();
  if (pType == nullptr) return nullptr;
  const CWideText wide(std::string(name).c_str());
  return (kind == "entity" ? pType->getEntities() : pType->getNotations())
      ->getNamedItem(wide.Get());
}

}  // namespace answers
