#include "nodes.h"

#include <tessel/xpath.h>

#include <array>

#include "message.h"

EKind KindOf(TSXRefId node) {
  int32_t kind = 0;
  Require(TSXGetNodeType(node, 0, &kind), "node");
  return static_cast<EKind>(kind);
}

const char* KindName(EKind kind) {
  static constexpr std::array kNames{
      "",        "element",          "attribute",     "text",
      "cdata",   "entity-reference", "entity",        "processing-instruction",
      "comment", "document",         "document-type", "fragment",
      "notation"};
  return kNames.at(static_cast<size_t>(kind));
}

std::string OneOf(EKind kind) {
  const std::string name = KindName(kind);
  return (name.find_first_of("aeiou") == 0 ? "an " : "a ") + name;
}

CNode FirstChild(TSXRefId node) {
  CNode child;
  Require(TSXGetFirstChild(node, 0, child.Out()), "node");
  return child;
}

CNode NextSibling(const CNode& node) {
  CNode sibling;
  Require(TSXGetNextSibling(node.Get(), 0, sibling.Out()), "node");
  return sibling;
}

CNode Parent(TSXRefId node) {
  CNode parent;
  Require(TSXGetParentNode(node, 0, parent.Out()), "node");
  return parent;
}

void RequireName(TSXStatus status, const std::string& name, const std::string& file) {
  if (status == domErrInvalidCharacter || status == domErrNamespace) {
    throw CFailure(Line(file, '"' + name + "\" is no name that can stand here"));
  }
  Require(status, file);
}

CText Property(TSXRefId node, CStringGetter getter) {
  CText text;
  Require(getter(node, 0, text.Get()), "node");
  return text;
}

namespace {

void RequireEvaluated(TSXStatus status, const CText& errorText, const std::string& file) {
  if (status != 0 && !errorText.IsNull()) {
    throw CFailure(StatusLine(file, status, errorText.View()));
  }
  Require(status, file);
}

}  // namespace

CNodeArray Select(const CDocument& document, const std::string& file,
                  const std::string& expression) {
  CText text(expression);
  CText errorText;
  CNodeArray nodes;
  RequireEvaluated(
      XPathEvaluateContextToNodeArray(document.Get(), text.Get(), nodes.Get(), errorText.Get()),
      errorText, file);
  return nodes;
}

std::optional<std::string> ValueOf(const CDocument& document, const std::string& file,
                                   const std::string& expression) {
  constexpr int32_t kNodes = 1;
  CText text(expression);
  CText errorText;
  int32_t type = 0;
  RequireEvaluated(XPathGetExpressionType(document.Get(), text.Get(), &type, errorText.Get()),
                   errorText, file);
  if (type == kNodes) return std::nullopt;
  CText value;
  RequireEvaluated(
      XPathEvaluateContextToString(document.Get(), text.Get(), value.Get(), errorText.Get()),
      errorText, file);
  return std::string(value.View());
}
