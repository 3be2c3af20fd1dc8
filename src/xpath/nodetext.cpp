#include "xpath/nodetext.h"

#include <charconv>
#include <limits>
#include <vector>

#include "xpath/domlinks.h"

using xercesc::DOMNode;

namespace plain {

namespace {

// Xalan-C takes deeper texts by recursion, as far as the stack reaches.
constexpr std::size_t kMostLevels = 1000;

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr std::u16string_view kSpaces = u" \t\r\n";

bool IsText(const DOMNode& node) {
  const DOMNode::NodeType type = node.getNodeType();
  return type == DOMNode::TEXT_NODE || type == DOMNode::CDATA_SECTION_NODE;
}

// Entity references are not seen through.
bool AppendTexts(const DOMNode& top, std::u16string& buffer) {
  std::vector<const DOMNode*> open;
  for (const DOMNode* p = DomFirstChild(top); p != nullptr;) {
    const DOMNode* pNext = nullptr;
    if (IsText(*p)) {
      buffer += p->getNodeValue();
    } else if (p->getNodeType() == DOMNode::ELEMENT_NODE) {
      pNext = DomFirstChild(*p);
      if (pNext != nullptr) open.push_back(p);
      if (open.size() > kMostLevels) return false;
    }
    if (pNext == nullptr) pNext = DomNextSibling(*p);
    for (; pNext == nullptr && !open.empty(); open.pop_back()) pNext = DomNextSibling(*open.back());
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
      return View(DomAttributeValue(node));
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
  const DOMNode* pOnly = DomFirstChild(node);
  if (pOnly == nullptr) return std::u16string_view();
  if (IsText(*pOnly) && DomNextSibling(*pOnly) == nullptr) return View(pOnly->getNodeValue());
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
