#include "xpath/nodetext.h"

#include <charconv>
#include <limits>
#include <xalanc/PlatformSupport/DOMStringHelper.hpp>

#include "dom/look.h"
#include "xpath/expressionlexer.h"

using xercesc::DOMNode;

namespace plain {

namespace {

// Xalan-C takes deeper texts by recursion, as far as the stack reaches.
constexpr std::size_t kMostLevels = 1000;

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

bool IsText(DOMNode::NodeType type) {
  return type == DOMNode::TEXT_NODE || type == DOMNode::CDATA_SECTION_NODE;
}

// Entity references are not seen through.
bool AppendTexts(const DOMNode& top, std::u16string& buffer) {
  std::size_t level = 0;
  for (const DOMNode* p = dom::FirstChild(top); p != nullptr;) {
    const DOMNode::NodeType type = p->getNodeType();
    const DOMNode* pNext = nullptr;
    if (IsText(type)) {
      buffer += p->getNodeValue();
    } else if (type == DOMNode::ELEMENT_NODE) {
      pNext = dom::FirstChildAs(*p, type);
      if (pNext != nullptr && ++level > kMostLevels) return false;
    }
    if (pNext == nullptr) pNext = dom::NextSiblingAs(*p, type);
    for (; pNext == nullptr && level > 0; --level) {
      p = dom::Parent(*p);
      pNext = dom::NextSibling(*p);
    }
    p = pNext;
  }
  return true;
}

// [-] digits [. [digits]] or [-] . digits
bool IsNumber(std::u16string_view text) {
  if (text.starts_with(u'-')) text.remove_prefix(1);
  bool hasDigit = false;
  bool hasPoint = false;
  for (const char16_t unit : text) {
    if (unit == u'.' && !hasPoint) {
      hasPoint = true;
    } else if (unit >= u'0' && unit <= u'9') {
      hasDigit = true;
    } else {
      return false;
    }
  }
  return hasDigit;
}

// A whole number of few digits, as most are; from_chars is slower.
bool ReadSmall(std::u16string_view text, double& number) {
  if (text.empty() || text.size() > 9) return false;
  int value = 0;
  for (const char16_t unit : text) {
    if (unit < u'0' || unit > u'9') return false;
    value = value * 10 + (unit - u'0');
  }
  number = value;
  return true;
}

}  // namespace

std::optional<std::u16string_view> StringValue(const DOMNode& node, std::u16string& buffer) {
  switch (node.getNodeType()) {
    case DOMNode::ATTRIBUTE_NODE:
      return View(dom::Value(dom::As<xercesc::DOMAttr>(node)));
    case DOMNode::TEXT_NODE:
    case DOMNode::CDATA_SECTION_NODE:
    case DOMNode::COMMENT_NODE:
    case DOMNode::PROCESSING_INSTRUCTION_NODE:
      return View(node.getNodeValue());
    case DOMNode::ELEMENT_NODE:
    case DOMNode::DOCUMENT_NODE:
    case DOMNode::DOCUMENT_FRAGMENT_NODE:
      break;
    default:
      return std::nullopt;
  }
  const DOMNode* pOnly = dom::FirstChild(node);
  if (pOnly == nullptr) return std::u16string_view();
  const DOMNode::NodeType type = pOnly->getNodeType();
  if (IsText(type) && dom::NextSiblingAs(*pOnly, type) == nullptr)
    return View(pOnly->getNodeValue());
  buffer.clear();
  if (!AppendTexts(node, buffer)) return std::nullopt;
  return buffer;
}

std::optional<double> ToNumber(std::u16string_view text) {
  double number = 0;
  if (ReadSmall(text, number)) return number;
  const std::size_t begin = text.find_first_not_of(kSpaces);
  if (begin == text.npos) return kNotANumber;
  text = text.substr(begin, text.find_last_not_of(kSpaces) - begin + 1);
  if (!IsNumber(text)) return kNotANumber;
  const std::string digits(text.begin(), text.end());
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (result.ec != std::errc()) return std::nullopt;
  return number;
}

std::u16string ToText(double number) {
  xalanc::XalanDOMString text;
  xalanc::NumberToDOMString(number, text);
  return text.c_str();
}

std::u16string_view Normalized(std::u16string_view text, std::u16string& buffer) {
  std::u16string result;
  for (std::size_t at = 0; (at = text.find_first_not_of(kSpaces, at)) != text.npos;) {
    const std::size_t end = std::min(text.find_first_of(kSpaces, at), text.size());
    if (!result.empty()) result += u' ';
    result += text.substr(at, end - at);
    at = end;
  }
  buffer = std::move(result);  // the text may have stood there
  return buffer;
}

bool IsDeclaration(const DOMNode& attribute) {
  const XMLCh* pName = attribute.getNodeName();
  if (pName[0] != u'x' || pName[1] != u'm') return false;
  const std::u16string_view name = pName;
  return name == u"xmlns" || name.starts_with(u"xmlns:");
}

std::u16string_view NameOf(const DOMNode& node) {
  switch (node.getNodeType()) {
    case DOMNode::ELEMENT_NODE:
    case DOMNode::ATTRIBUTE_NODE:
    case DOMNode::PROCESSING_INSTRUCTION_NODE:
      return View(node.getNodeName());
    default:
      return {};
  }
}

std::u16string_view LocalNameOf(const DOMNode& node) {
  const XMLCh* pName = node.getLocalName();
  return pName != nullptr ? View(pName) : NameOf(node);
}

}  // namespace plain
