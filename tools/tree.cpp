#include <unistd.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "client.h"
#include "document.h"
#include "message.h"
#include "nodes.h"
#include "output.h"

namespace {

struct CTreeOptions {
  std::string m_File;
  bool m_Attributes = true;
};

constexpr const char* kKindColour = "36";
constexpr const char* kNameColour = "1";
constexpr const char* kValueColour = "32";

// As a string literal, so that a node is one line and cannot steer a terminal.
std::string Quoted(std::string_view text) {
  constexpr std::string_view kHex = "0123456789abcdef";
  std::string quoted = "\"";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\n') {
      quoted += "\\n";
    } else if (c == '\t') {
      quoted += "\\t";
    } else if (c == '"' || c == '\\') {
      quoted += {'\\', c};
    } else if (byte < 0x20 || byte == 0x7f) {
      quoted += {'\\', 'x', kHex[byte >> 4], kHex[byte & 15]};
    } else {
      quoted += c;
    }
  }
  return quoted + '"';
}

bool HasValue(EKind kind) {
  return kind == EKind::kText || kind == EKind::kCDATA || kind == EKind::kComment ||
         kind == EKind::kProcessingInstruction || kind == EKind::kAttribute;
}

// The names of these are the kind over again.
bool HasName(EKind kind) {
  return kind != EKind::kText && kind != EKind::kCDATA && kind != EKind::kComment &&
         kind != EKind::kDocument;
}

class CTreePrinter {
 public:
  CTreePrinter(bool attributes, bool colour) : m_Attributes(attributes), m_Colour(colour) {}

  void PrintDocument(const CDocument& document) {
    PrintLine(document.Get(), 0, EKind::kDocument);
    PrintBelow(document.Get(), 1);
  }

 private:
  // Walks with a list of its own: a document may be deeper than the stack.
  void PrintBelow(TSXRefId root, size_t depth) {
    std::vector<CNode> ancestors;
    CNode node = FirstChild(root);
    while (node || !ancestors.empty()) {
      if (node) {
        PrintNode(node.Get(), depth + ancestors.size());
        CNode child = FirstChild(node.Get());
        ancestors.push_back(std::move(node));
        node = std::move(child);
      } else {
        node = NextSibling(ancestors.back());
        ancestors.pop_back();
      }
    }
  }

  void PrintNode(TSXRefId node, size_t depth) {
    const EKind kind = KindOf(node);
    PrintLine(node, depth, kind);
    if (kind == EKind::kElement && m_Attributes) PrintMap(node, depth + 1, TSXGetAttributes);
    if (kind != EKind::kDocumentType) return;
    PrintMap(node, depth + 1, TSXGetEntities);
    PrintMap(node, depth + 1, TSXGetNotations);
  }

  // A map has no order of its own: print by name.
  void PrintMap(TSXRefId node, size_t depth, TSXStatus (*getMap)(TSXRefId, uint64_t, TSXRefId*)) {
    CNodeMap map;
    Require(getMap(node, 0, map.Out()), "node");
    if (!map) return;
    CNodeArray items;
    Require(TSXGetArray(map.Get(), 0, items.Get()), "node");
    std::vector<std::pair<std::string, TSXRefId>> byName;
    for (size_t i = 0; i < items.Size(); ++i) {
      byName.emplace_back(Property(items.At(i), TSXGetNodeName).View(), items.At(i));
    }
    std::ranges::sort(byName);
    for (const auto& [name, item] : byName) {
      const EKind kind = KindOf(item);
      PrintLine(item, depth, kind);
      if (kind == EKind::kEntity) PrintBelow(item, depth + 1);
    }
  }

  void PrintLine(TSXRefId node, size_t depth, EKind kind) {
    // Beyond this the number alone says how deep a node is.
    constexpr size_t kDeepestIndent = 40;
    std::string line = std::to_string(depth);
    line.append(1 + 2 * std::min(depth, kDeepestIndent), ' ');
    line += Coloured(kKindColour, KindName(kind));
    if (HasName(kind)) {
      line += ' ' + Coloured(kNameColour, Property(node, TSXGetNodeName).View());
    }
    if (HasValue(kind)) line += ' ' + Value(Property(node, TSXGetNodeValue).View());
    Print(line + Details(node, kind) + '\n');
  }

  // What only some kinds have.
  std::string Details(TSXRefId node, EKind kind) {
    switch (kind) {
      case EKind::kAttribute:
        return IsDefault(node) ? " default" : "";
      case EKind::kDocumentType:
        return Detail("public", node, TSXGetDocTypePublicID) +
               Detail("system", node, TSXGetDocTypeSystemID);
      case EKind::kEntity:
        return Detail("public", node, TSXGetEntityPublicId) +
               Detail("system", node, TSXGetEntitySystemId) +
               Detail("notation", node, TSXGetNotationName);
      case EKind::kNotation:
        return Detail("public", node, TSXGetNotationPublicID) +
               Detail("system", node, TSXGetNotationSystemID);
      default:
        return {};
    }
  }

  static bool IsDefault(TSXRefId attribute) {
    uint8_t specified = 1;
    Require(TSXGetSpecified(attribute, 0, &specified), "attribute");
    return specified == 0;
  }

  std::string Detail(std::string_view label, TSXRefId node, CStringGetter getter) {
    const CText text = Property(node, getter);
    if (text.View().empty()) return {};
    return ' ' + std::string(label) + ' ' + Value(text.View());
  }

  std::string Value(std::string_view text) { return Coloured(kValueColour, Quoted(text)); }

  std::string Coloured(const char* pColour, std::string_view text) {
    if (!m_Colour) return std::string(text);
    return std::string("\x1b[") + pColour + 'm' + std::string(text) + "\x1b[0m";
  }

  bool m_Attributes;
  bool m_Colour;
};

int RunTree(const CTreeOptions& options, const CClient& client) {
  const CDocument document = ReadDocument(options.m_File, client);
  CTreePrinter(options.m_Attributes, HasColour(STDOUT_FILENO)).PrintDocument(document);
  return kDone;
}

}  // namespace

void AddTree(CLI::App& app, CClient& client) {
  auto options = std::make_shared<CTreeOptions>();
  CLI::App* pTree = app.add_subcommand("tree", "Print the nodes of a document, one a line");
  pTree->add_option("FILE", options->m_File, "XML file; - is standard input")->required();
  pTree->add_flag_callback(
      "--no-attributes", [options] { options->m_Attributes = false; }, "Print no attributes");
  pTree->footer(
      "Each line is the depth, the kind, the name and the value of a node.\n\n"
      "Examples:\n"
      "  tessel tree catalogue.xml\n"
      "  tessel tree --no-attributes - < catalogue.xml");
  pTree->callback(
      [options, &client] { client.m_Run = [=, &client] { return RunTree(*options, client); }; });
}
