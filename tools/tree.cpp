#include <unistd.h>

#include <CLI/CLI.hpp>
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
void AppendQuoted(std::string& line, std::string_view text) {
  constexpr std::string_view kHex = "0123456789abcdef";
  line += '"';
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\n') {
      line += "\\n";
    } else if (c == '\t') {
      line += "\\t";
    } else if (c == '"' || c == '\\') {
      line += {'\\', c};
    } else if (byte < 0x20 || byte == 0x7f) {
      line += {'\\', 'x', kHex[byte >> 4], kHex[byte & 15]};
    } else {
      line += c;
    }
  }
  line += '"';
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
    PrintLine(document.Get(), 0, EKind::kDocument, {});
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
    PrintLine(node, depth, kind, NameOf(node, kind).View());
    if (kind == EKind::kElement && m_Attributes && HasAttributes(node)) {
      PrintMap(node, depth + 1, EKind::kAttribute, TSXGetAttributes);
    }
    if (kind != EKind::kDocumentType) return;
    PrintMap(node, depth + 1, EKind::kEntity, TSXGetEntities);
    PrintMap(node, depth + 1, EKind::kNotation, TSXGetNotations);
  }

  // A map has no order of its own: print by name.
  void PrintMap(TSXRefId node, size_t depth, EKind kind,
                TSXStatus (*getMap)(TSXRefId, uint64_t, TSXRefId*)) {
    CNodeMap map;
    Require(getMap(node, 0, map.Out()), "node");
    if (!map) return;
    CNodeArray items;
    Require(TSXGetArray(map.Get(), 0, items.Get()), "node");
    std::vector<std::pair<std::string, TSXRefId>> byName;
    for (size_t i = 0; i < items.Size(); ++i) {
      byName.emplace_back(NameOf(items.At(i), kind).View(), items.At(i));
    }
    std::ranges::sort(byName);
    for (const auto& [name, item] : byName) {
      PrintLine(item, depth, kind, name);
      if (kind == EKind::kEntity) PrintBelow(item, depth + 1);
    }
  }

  void PrintLine(TSXRefId node, size_t depth, EKind kind, std::string_view name) {
    // Beyond this the number alone says how deep a node is.
    constexpr size_t kDeepestIndent = 40;
    m_Line = std::to_string(depth);
    m_Line.append(1 + 2 * std::min(depth, kDeepestIndent), ' ');
    Append(kKindColour, [&] { m_Line += KindName(kind); });
    if (HasName(kind)) {
      m_Line += ' ';
      Append(kNameColour, [&] { m_Line += name; });
    }
    if (HasValue(kind)) AppendValue(Property(node, TSXGetNodeValue));
    AppendDetails(node, kind);
    m_Line += '\n';
    Print(m_Line);
  }

  // What only some kinds have.
  void AppendDetails(TSXRefId node, EKind kind) {
    switch (kind) {
      case EKind::kAttribute:
        if (IsDefault(node)) m_Line += " default";
        return;
      case EKind::kDocumentType:
        AppendDetail("public", node, TSXGetDocTypePublicID);
        return AppendDetail("system", node, TSXGetDocTypeSystemID);
      case EKind::kEntity:
        AppendDetail("public", node, TSXGetEntityPublicId);
        AppendDetail("system", node, TSXGetEntitySystemId);
        return AppendDetail("notation", node, TSXGetNotationName);
      case EKind::kNotation:
        AppendDetail("public", node, TSXGetNotationPublicID);
        return AppendDetail("system", node, TSXGetNotationSystemID);
      default:
        return;
    }
  }

  static CText NameOf(TSXRefId node, EKind kind) {
    return HasName(kind) ? Property(node, TSXGetNodeName) : CText();
  }

  static bool HasAttributes(TSXRefId element) {
    uint8_t has = 0;
    Require(TSXHasAttributes(element, &has), "element");
    return has != 0;
  }

  static bool IsDefault(TSXRefId attribute) {
    uint8_t specified = 1;
    Require(TSXGetSpecified(attribute, 0, &specified), "attribute");
    return specified == 0;
  }

  void AppendDetail(std::string_view label, TSXRefId node, CStringGetter getter) {
    const CText text = Property(node, getter);
    if (text.View().empty()) return;
    (m_Line += ' ') += label;
    AppendValue(text);
  }

  void AppendValue(const CText& text) {
    m_Line += ' ';
    Append(kValueColour, [&] { AppendQuoted(m_Line, text.View()); });
  }

  template <class What>
  void Append(const char* pColour, What append) {
    if (m_Colour) ((m_Line += "\x1b[") += pColour) += 'm';
    append();
    if (m_Colour) m_Line += "\x1b[0m";
  }

  bool m_Attributes;
  bool m_Colour;
  std::string m_Line;
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
