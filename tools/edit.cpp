// The subcommands that change a document: set and delete.
#include <memory>
#include <vector>

#include "client.h"
#include "document.h"
#include "message.h"
#include "nodes.h"
#include "output.h"

namespace {

struct CEditOptions {
  std::string m_File;
  std::string m_Expression;
  std::string m_Value;
  std::string m_Output;
  bool m_InPlace = false;
  bool m_NoNamespaces = false;
};

[[noreturn]] void Refuse(const std::string& file, EKind kind, const char* pWhy) {
  throw CFailure(Line(file, std::string("a ") + KindName(kind) + ' ' + pWhy));
}

void SetNode(TSXRefId node, const std::string& file, CText& value) {
  switch (const EKind kind = KindOf(node)) {
    case EKind::kElement:
      return Require(TSXSetText(node, value.Get()), file);
    case EKind::kAttribute:
      return Require(TSXSetAttrValue(node, 0, value.Get()), file);
    case EKind::kText:
    case EKind::kCDATA:
    case EKind::kComment:
    case EKind::kProcessingInstruction:
      return Require(TSXSetNodeValue(node, 0, value.Get()), file);
    default:
      Refuse(file, kind, "has no value that can be set");
  }
}

void SetNodes(CNodeArray& nodes, const CEditOptions& options) {
  CText value(options.m_Value);
  for (size_t i = 0; i < nodes.Size(); ++i) SetNode(nodes.At(i), options.m_File, value);
}

void DeleteAttribute(const CNode& attribute, const std::string& file) {
  CNode element;
  Require(TSXOwnerElement(attribute.Get(), 0, element.Out()), file);
  Require(TSXRemoveAttributeNode(element.Get(), attribute.Get()), file);
}

// The parents are kept until all is done: giving back the last hand-out of the
// bare document node would drop the ids of all nodes.
void DeleteChild(CNode& child, std::vector<CNode>& parents, const std::string& file) {
  CNode parent;
  Require(TSXGetParentNode(child.Get(), 0, parent.Out()), file);
  const EKind kind = KindOf(child.Get());
  if (kind == EKind::kDocument) Refuse(file, kind, "cannot be deleted");
  if (kind == EKind::kElement && KindOf(parent.Get()) == EKind::kDocument) {
    throw CFailure(Line(file, "the document element cannot be deleted"));
  }
  Require(TSXRemoveChild(parent.Get(), child.Get()), file);
  child.Forget();  // the removal took the hand-out
  parents.push_back(std::move(parent));
}

// From the last to the first, so that no node goes before one that it holds.
void DeleteNodes(CNodeArray& nodes, const CEditOptions& options) {
  std::vector<CNode> parents;
  for (size_t i = nodes.Size(); i-- > 0;) {
    CNode node = nodes.Take(i);
    if (KindOf(node.Get()) == EKind::kAttribute) {
      DeleteAttribute(node, options.m_File);
    } else {
      DeleteChild(node, parents, options.m_File);
    }
  }
}

using CEdit = void (*)(CNodeArray&, const CEditOptions&);

int RunEdit(const CEditOptions& options, const CClient& client, CEdit edit) {
  if (options.m_InPlace && options.m_File == "-") {
    throw CLI::ValidationError("--in-place", "standard input is no file that could be changed");
  }
  CReadOptions read;
  read.m_Namespaces = options.m_NoNamespaces ? 0 : 1;
  const CDocument document = ReadDocument(options.m_File, client, read);
  CNodeArray nodes = Select(document, options.m_File, options.m_Expression);
  if (nodes.Size() == 0) {
    PrintError(Line(options.m_File, "nothing found: " + options.m_Expression));
    return kFailed;
  }
  edit(nodes, options);
  WriteResult(options.m_InPlace ? options.m_File : options.m_Output,
              WriteDocument(document, options.m_File));
  return kDone;
}

CLI::App* AddEdit(CLI::App& app, CClient& client, const char* pName, const char* pDescription,
                  const std::shared_ptr<CEditOptions>& options, CEdit edit) {
  CLI::App* pEdit = app.add_subcommand(pName, pDescription);
  pEdit->add_option("FILE", options->m_File, "XML file; - is standard input")->required();
  pEdit->add_option("EXPRESSION", options->m_Expression, "XPath expression")->required();
  CLI::Option* pOutput =
      pEdit->add_option("-o,--output", options->m_Output,
                        "File to write, replaced in one step; standard output by default");
  pEdit
      ->add_flag("--in-place", options->m_InPlace,
                 "Replace FILE, in one step; it is kept as it was if anything fails")
      ->excludes(pOutput);
  pEdit->add_flag("--no-namespaces", options->m_NoNamespaces,
                  "Take names as they are written, prefix and all");
  pEdit->callback([options, &client, edit] {
    client.m_Run = [=, &client] { return RunEdit(*options, client, edit); };
  });
  return pEdit;
}

}  // namespace

void AddSet(CLI::App& app, CClient& client) {
  auto options = std::make_shared<CEditOptions>();
  CLI::App* pSet =
      AddEdit(app, client, "set", "Set the text of every node that an XPath expression selects",
              options, SetNodes);
  pSet->add_option("VALUE", options->m_Value, "New text; put -- before a value that begins with -")
      ->required();
  pSet->footer(
      "Exit status 0: something set; 1: nothing found, or an error.\n\n"
      "Examples:\n"
      "  tessel set catalogue.xml \"//tile[@id='t1']/colour\" azure\n"
      "  tessel set --in-place catalogue.xml '//@size' 25");
}

void AddDelete(CLI::App& app, CClient& client) {
  CLI::App* pDelete =
      AddEdit(app, client, "delete", "Delete every node that an XPath expression selects",
              std::make_shared<CEditOptions>(), DeleteNodes);
  pDelete->footer(
      "Exit status 0: something deleted; 1: nothing found, or an error.\n\n"
      "Examples:\n"
      "  tessel delete catalogue.xml '//comment()'\n"
      "  tessel delete --in-place catalogue.xml '//tile/@size'");
}
