#include "namespaces.h"

#include "message.h"

namespace {

constexpr const char* kXML = "http://www.w3.org/XML/1998/namespace";
constexpr const char* kXMLNS = "http://www.w3.org/2000/xmlns/";

std::string PrefixOf(const std::string& name) {
  const size_t colon = name.find(':');
  return colon == name.npos ? "" : name.substr(0, colon);
}

// What is declared further down comes first, so it stays.
void AddDeclared(TSXRefId element, std::map<std::string, std::string>& namespaces) {
  const CNodeArray attributes = AttributesOf(element);
  for (size_t i = 0; i < attributes.Size(); ++i) {
    const std::string name(Property(attributes.At(i), TSXName).View());
    const bool isDefault = name == "xmlns";
    if (!isDefault && PrefixOf(name) != "xmlns") continue;
    namespaces.emplace(isDefault ? "" : name.substr(6),
                       Property(attributes.At(i), TSXGetAttrValue).View());
  }
}

std::string NamespaceOf(TSXRefId element, const std::string& prefix, const std::string& file) {
  if (prefix == "xml") return kXML;
  const auto namespaces = NamespacesAt(element);
  const auto found = namespaces.find(prefix);
  if (found != namespaces.end()) return found->second;
  if (prefix.empty()) return {};
  throw CFailure(Line(file, "no namespace is declared here for the prefix " + prefix));
}

}  // namespace

CNodeArray AttributesOf(TSXRefId node) {
  CNodeMap map;
  CNodeArray attributes;
  Require(TSXGetAttributes(node, 0, map.Out()), "node");
  if (map) Require(TSXGetArray(map.Get(), 0, attributes.Get()), "node");
  return attributes;
}

std::map<std::string, std::string> NamespacesAt(TSXRefId element) {
  std::map<std::string, std::string> namespaces;
  AddDeclared(element, namespaces);
  for (CNode above = Parent(element); above; above = Parent(above.Get())) {
    AddDeclared(above.Get(), namespaces);
  }
  return namespaces;
}

std::string NamespaceOfElement(TSXRefId element, const std::string& name, const std::string& file) {
  return NamespaceOf(element, PrefixOf(name), file);
}

std::string NamespaceOfAttribute(TSXRefId element, const std::string& name,
                                 const std::string& file) {
  const std::string prefix = PrefixOf(name);
  if (name == "xmlns" || prefix == "xmlns") return kXMLNS;
  return prefix.empty() ? "" : NamespaceOf(element, prefix, file);
}
