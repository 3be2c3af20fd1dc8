// The namespaces that prefixes stand for at a place in a document.
#ifndef TESSEL_TOOLS_NAMESPACES_H
#define TESSEL_TOOLS_NAMESPACES_H

#include <map>
#include <string>

#include "nodes.h"

// From prefix to URI, "" for the default, as declared at the element and above it.
// Walks up to the bare document node.
std::map<std::string, std::string> NamespacesAt(TSXRefId element);

// The URI of a name with or without prefix; empty for none. Throws a CFailure about
// `file` for a prefix that is not declared.
std::string NamespaceOfElement(TSXRefId element, const std::string& name, const std::string& file);
std::string NamespaceOfAttribute(TSXRefId element, const std::string& name,
                                 const std::string& file);

// The attributes of an element; of another node none.
CNodeArray AttributesOf(TSXRefId node);

#endif
