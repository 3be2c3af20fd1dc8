// What the subcommands ask of nodes, with failures as CFailure.
#ifndef TESSEL_TOOLS_NODES_H
#define TESSEL_TOOLS_NODES_H

#include <optional>
#include <string>
#include <string_view>

#include "owners.h"

// The kinds of node, numbered as TSXGetNodeType gives them.
enum class EKind : int32_t {
  kElement = 1,
  kAttribute,
  kText,
  kCDATA,
  kEntityReference,
  kEntity,
  kProcessingInstruction,
  kComment,
  kDocument,
  kDocumentType,
  kFragment,
  kNotation
};

EKind KindOf(TSXRefId node);
const char* KindName(EKind kind);
// "an element", "a text" and so on.
std::string OneOf(EKind kind);

CNode FirstChild(TSXRefId node);
CNode NextSibling(const CNode& node);
// Closing the last id of the bare document node drops the ids of all its nodes: who
// walks up to it keeps it as long as these.
CNode Parent(TSXRefId node);

// As Require, for a call that takes a name from the command line.
void RequireName(TSXStatus status, const std::string& name, const std::string& file);

// A string property, by the function that gives it.
using CStringGetter = TSXStatus (*)(TSXRefId, uint64_t, HStr*);
CText Property(TSXRefId node, CStringGetter getter);

// The nodes that an expression selects, in document order. `file` is named in
// the message of a failure.
CNodeArray Select(const CDocument& document, const std::string& file,
                  const std::string& expression);

// The value of an expression as a string; none for one that selects nodes.
std::optional<std::string> ValueOf(const CDocument& document, const std::string& file,
                                   const std::string& expression);

#endif
