// The subcommands that change documents: set, delete, insert, rename, and edit for
// several changes or files.
#include <CLI/CLI.hpp>
#include <memory>
#include <vector>

#include "client.h"
#include "document.h"
#include "edit.h"
#include "edited.h"
#include "message.h"
#include "output.h"
#include "prefixes.h"
#include "progress.h"

namespace {

struct CEditOptions {
  std::vector<std::string> m_Files{""};
  std::vector<CEdit> m_Edits{CEdit{}};
  std::string m_Output;
  bool m_InPlace = false;
  CNameOptions m_Names;

  CEdit& Only() { return m_Edits.front(); }
};
using COptions = std::shared_ptr<CEditOptions>;

void EditFile(const CInput& input, const CEditOptions& options, const CClient& client) {
  CEditedFile file(input, client, OptionsFor(options.m_Names));
  file.Apply(options.m_Edits);
  if (!file.IsChangedInPlace()) {
    PrintError(Line(input.Name(), "its text cannot be changed in part, so it is written anew"));
  }
  WriteResult(options.m_InPlace ? input.Name() : options.m_Output, *file.Bytes());
}

void RequireUsable(const CEditOptions& options) {
  if (options.m_Edits.empty()) throw CLI::RequiredError("at least one edit");
  if (!options.m_InPlace && options.m_Files.size() > 1) {
    throw CLI::ValidationError("FILE", "several files are changed with --in-place only");
  }
  for (const std::string& file : options.m_Files) {
    if (options.m_InPlace && file == "-") {
      throw CLI::ValidationError("--in-place", "standard input is no file that could be changed");
    }
  }
}

// A file in which one edit fails is left as it was; the others are changed.
int RunEdits(const CEditOptions& options, const CClient& client) {
  RequireUsable(options);
  const std::vector<CInput> inputs = PrepareInputs(options.m_Files, client);
  int result = kDone;
  for (const CInput& input : inputs) {
    NextFile();
    try {
      EditFile(input, options, client);
    } catch (const CFailure& failure) {
      PrintError(failure.what());
      result = kFailed;
    }
  }
  return result;
}

CLI::App* AddCommand(CLI::App& app, CClient& client, const char* pName, const char* pDescription,
                     const COptions& options) {
  CLI::App* pCommand = app.add_subcommand(pName, pDescription);
  CLI::Option* pOutput =
      pCommand->add_option("-o,--output", options->m_Output,
                           "File to write, replaced in one step; standard output by default");
  pCommand
      ->add_flag("--in-place", options->m_InPlace,
                 "Replace FILE, in one step; it is kept as it was if anything fails")
      ->excludes(pOutput);
  AddNameOptions(pCommand, options->m_Names);
  pCommand->callback(
      [options, &client] { client.m_Run = [=, &client] { return RunEdits(*options, client); }; });
  return pCommand;
}

// A command with one edit of one file.
CLI::App* AddSingle(CLI::App& app, CClient& client, const char* pName, const char* pDescription,
                    const COptions& options, EAction action) {
  CLI::App* pCommand = AddCommand(app, client, pName, pDescription, options);
  options->Only().m_Action = action;
  pCommand->add_option("FILE", options->m_Files.front(), "XML file; - is standard input")
      ->required();
  pCommand->add_option("EXPRESSION", options->Only().m_Expression, "XPath expression")->required();
  return pCommand;
}

// -- Options of insert -----------------------------------------------------------------

template <class Value>
void AddChoice(CLI::App* pCommand, const char* pName, const char* pDescription, Value& variable,
               Value value) {
  pCommand->add_flag_callback(
      pName, [&variable, value] { variable = value; }, pDescription);
}

// -- Options of edit ------------------------------------------------------------------

// Adds an option that appends an edit each time it is given, with as many texts as
// there are members to fill.
void AddEditOption(CLI::App* pCommand, const COptions& options, const char* pName,
                   const char* pTexts, const char* pDescription, const CEdit& pattern,
                   std::vector<std::string CEdit::*> members) {
  const auto append = [options, pattern, members](const std::vector<std::string>& texts) {
    CEdit edit = pattern;
    for (size_t i = 0; i < members.size(); ++i) edit.*members[i] = texts[i];
    options->m_Edits.push_back(edit);
  };
  pCommand->add_option_function<std::vector<std::string>>(pName, append, pDescription)
      ->type_size(static_cast<int>(members.size()))
      ->type_name(pTexts)
      ->allow_extra_args(false)
      ->trigger_on_parse();
}

CEdit Insertion(EPlace place) {
  CEdit edit;
  edit.m_Action = EAction::kInsert;
  edit.m_Place = place;
  return edit;
}

void AddEditOptions(CLI::App* pEdit, const COptions& options) {
  const auto add = [&](const char* pName, const char* pTexts, const char* pDescription,
                       const CEdit& pattern, std::vector<std::string CEdit::*> members) {
    members.insert(members.begin(), &CEdit::m_Expression);
    AddEditOption(pEdit, options, pName, pTexts, pDescription, pattern, std::move(members));
  };
  add("--set", "EXPRESSION VALUE", "Set the text of the nodes", {}, {&CEdit::m_Value});
  add("--set-attribute", "EXPRESSION NAME VALUE", "Set an attribute of the elements",
      {.m_Action = EAction::kSetAttribute, .m_Expression = {}}, {&CEdit::m_Name, &CEdit::m_Value});
  add("--delete", "EXPRESSION", "Delete the nodes",
      {.m_Action = EAction::kDelete, .m_Expression = {}}, {});
  add("--rename", "EXPRESSION NAME", "Rename the nodes",
      {.m_Action = EAction::kRename, .m_Expression = {}}, {&CEdit::m_Name});
  add("--insert-before", "EXPRESSION XML", "Insert XML before the nodes",
      Insertion(EPlace::kBefore), {&CEdit::m_Value});
  add("--insert-after", "EXPRESSION XML", "Insert XML after the nodes", Insertion(EPlace::kAfter),
      {&CEdit::m_Value});
  add("--insert-first", "EXPRESSION XML", "Insert XML as the first thing in the elements",
      Insertion(EPlace::kFirst), {&CEdit::m_Value});
  add("--insert-last", "EXPRESSION XML", "Insert XML as the last thing in the elements",
      Insertion(EPlace::kLast), {&CEdit::m_Value});
}

}  // namespace

void AddSet(CLI::App& app, CClient& client) {
  auto options = std::make_shared<CEditOptions>();
  CLI::App* pSet =
      AddSingle(app, client, "set", "Set the text of every node that an XPath expression selects",
                options, EAction::kSet);
  pSet->add_option("VALUE", options->Only().m_Value,
                   "New text; put -- before a value that begins with -")
      ->required();
  const auto ofAttribute = [options](const std::string& name) {
    options->Only().m_Action = EAction::kSetAttribute;
    options->Only().m_Name = name;
  };
  pSet->add_option_function<std::string>(
          "--attribute", ofAttribute,
          "Set this attribute of the selected elements, whether it is there yet or not")
      ->type_name("NAME");
  pSet->footer(
      "Exit status 0: something set; 1: nothing found, or an error.\n\n"
      "Examples:\n"
      "  tessel set catalogue.xml \"//tile[@id='t1']/colour\" azure\n"
      "  tessel set --in-place catalogue.xml '//@size' 25\n"
      "  tessel set --attribute xml:lang catalogue.xml //colour fr");
}

void AddDelete(CLI::App& app, CClient& client) {
  CLI::App* pDelete =
      AddSingle(app, client, "delete", "Delete every node that an XPath expression selects",
                std::make_shared<CEditOptions>(), EAction::kDelete);
  pDelete->footer(
      "Exit status 0: something deleted; 1: nothing found, or an error.\n\n"
      "Examples:\n"
      "  tessel delete catalogue.xml '//comment()'\n"
      "  tessel delete --in-place catalogue.xml '//tile/@size'");
}

void AddRename(CLI::App& app, CClient& client) {
  auto options = std::make_shared<CEditOptions>();
  CLI::App* pRename = AddSingle(
      app, client, "rename",
      "Rename every element, attribute or processing instruction that an XPath expression selects",
      options, EAction::kRename);
  pRename->add_option("NAME", options->Only().m_Name, "New name; its prefix must be declared there")
      ->required();
  pRename->footer(
      "Exit status 0: something renamed; 1: nothing found, or an error.\n\n"
      "Examples:\n"
      "  tessel rename catalogue.xml //colour shade\n"
      "  tessel rename --in-place catalogue.xml '//tile/@size' edge");
}

void AddInsert(CLI::App& app, CClient& client) {
  auto options = std::make_shared<CEditOptions>();
  CLI::App* pInsert = AddSingle(
      app, client, "insert",
      "Insert something at every node that an XPath expression selects, last in it by default",
      options, EAction::kInsert);
  CEdit& edit = options->Only();
  pInsert->add_option("CONTENT", edit.m_Value, "XML text, unless an option says otherwise")
      ->required();
  AddChoice(pInsert, "--before", "Before the node", edit.m_Place, EPlace::kBefore);
  AddChoice(pInsert, "--after", "After the node", edit.m_Place, EPlace::kAfter);
  AddChoice(pInsert, "--first", "As the first thing in the element", edit.m_Place, EPlace::kFirst);
  AddChoice(pInsert, "--last", "As the last thing in the element", edit.m_Place, EPlace::kLast);
  AddChoice(pInsert, "--text", "CONTENT is text, for which nothing needs to be escaped",
            edit.m_Content, EContent::kText);
  AddChoice(pInsert, "--comment", "CONTENT is the text of a comment", edit.m_Content,
            EContent::kComment);
  AddChoice(pInsert, "--element", "CONTENT is the name of an empty element", edit.m_Content,
            EContent::kElement);
  pInsert->footer(
      "In XML text the prefixes stand for what they do at its place.\n"
      "Exit status 0: something inserted; 1: nothing found, or an error.\n\n"
      "Examples:\n"
      "  tessel insert catalogue.xml /catalogue '<tile id=\"t9\"/>'\n"
      "  tessel insert --before --comment catalogue.xml //tile[1] ' the smallest '");
}

void AddEdit(CLI::App& app, CClient& client) {
  auto options = std::make_shared<CEditOptions>();
  options->m_Files.clear();
  options->m_Edits.clear();
  CLI::App* pEdit =
      AddCommand(app, client, "edit", "Change files by one edit after the other", options);
  pEdit->add_option("FILE", options->m_Files, "XML files, several with --in-place only")
      ->required();
  AddEditOptions(pEdit, options);
  pEdit->footer(
      "The edits are done in the order in which they stand. A file in which one of them\n"
      "fails or finds nothing is left as it was, and the exit status is 1.\n\n"
      "Examples:\n"
      "  tessel edit --set //colour azure --delete //note catalogue.xml\n"
      "  tessel edit --in-place --rename //colour shade --insert-last /* '<end/>' *.xml");
}
