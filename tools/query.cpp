#include <CLI/CLI.hpp>
#include <memory>

#include "client.h"
#include "document.h"
#include "markup.h"
#include "message.h"
#include "nodes.h"
#include "output.h"
#include "prefixes.h"

namespace {

struct CQueryOptions {
  std::string m_File;
  std::string m_Expression;
  bool m_Text = false;
  bool m_Count = false;
  bool m_Lines = false;
  CNameOptions m_Names;
};

// An attribute is no XML alone, so the writer refuses it.
std::string AttributeXML(TSXRefId attribute) {
  return std::string(Property(attribute, TSXName).View()) + "=\"" +
         Escaped(Property(attribute, TSXGetAttrValue).View()) + '"';
}

std::string NodeXML(TSXRefId node, const std::string& file) {
  if (KindOf(node) == EKind::kAttribute) return AttributeXML(node);
  CText xml;
  Require(TSXGetXML(node, xml.Get()), file);
  return std::string(xml.View());
}

std::string NodeText(TSXRefId node, const std::string& file) {
  CText text;
  // A document has no text content of its own: that of its document element counts.
  CNode element;
  if (KindOf(node) == EKind::kDocument) {
    for (element = FirstChild(node); element && KindOf(element.Get()) != EKind::kElement;) {
      element = NextSibling(element);
    }
  }
  Require(TSXGetText(element ? element.Get() : node, text.Get()), file);
  return std::string(text.View());
}

// What stands before a node. The file alone for what is not in its text, as a default is.
std::string PlaceOf(TSXRefId node, const std::string& file) {
  int32_t line = 0, column = 0;
  int64_t begin = 0, end = 0;
  Require(TSXGetSourcePosition(node, &line, &column, &begin, &end), file);
  if (line == 0) return file + ": ";
  return file + ':' + std::to_string(line) + ':' + std::to_string(column) + ": ";
}

int PrintNodes(const CDocument& document, const CQueryOptions& options) {
  const CNodeArray nodes = Select(document, options.m_File, options.m_Expression);
  if (options.m_Count) {
    Print(std::to_string(nodes.Size()) + '\n');
  } else {
    // What is shown beside other text, and with --text, is in one encoding.
    SetEncoding(document, "UTF-8");
    const auto show = options.m_Text ? NodeText : NodeXML;
    for (size_t i = 0; i < nodes.Size(); ++i) {
      const std::string place = options.m_Lines ? PlaceOf(nodes.At(i), options.m_File) : "";
      Print(place + show(nodes.At(i), options.m_File) + '\n');
    }
  }
  return nodes.Size() > 0 ? kDone : kFailed;
}

int RunQuery(const CQueryOptions& options, const CClient& client) {
  CReadOptions reading = OptionsFor(options.m_Names);
  reading.m_Positions = options.m_Lines ? 1 : 0;
  const CDocument document = ReadDocument(options.m_File, client, reading);
  const auto value = ValueOf(document, options.m_File, options.m_Expression);
  if (!value || options.m_Count) return PrintNodes(document, options);
  Print(*value + '\n');
  return kDone;
}

}  // namespace

void AddQuery(CLI::App& app, CClient& client) {
  auto options = std::make_shared<CQueryOptions>();
  CLI::App* pQuery =
      app.add_subcommand("query", "Print what an XPath expression gives: nodes, or a value");
  pQuery->add_option("FILE", options->m_File, "XML file; - is standard input")->required();
  pQuery->add_option("EXPRESSION", options->m_Expression, "XPath expression")->required();
  CLI::Option* pText =
      pQuery->add_flag("--text", options->m_Text, "Print the text of each node, not its XML");
  CLI::Option* pLines =
      pQuery->add_flag("--lines", options->m_Lines, "Put FILE:LINE:COLUMN before each node");
  pQuery->add_flag("--count", options->m_Count, "Print how many nodes there are")
      ->excludes(pText)
      ->excludes(pLines);
  AddNameOptions(pQuery, options->m_Names);
  pQuery->footer(
      "Exit status 0: something found, or a value; 1: nothing found, or an error.\n\n"
      "Examples:\n"
      "  tessel query catalogue.xml '//tile[@size > 20]'\n"
      "  tessel query --text catalogue.xml //colour\n"
      "  tessel query --count catalogue.xml //@id\n"
      "  tessel query catalogue.xml 'sum(//@size) div count(//@size)'\n"
      "  tessel query -N s=http://www.w3.org/2000/svg picture.svg //s:path");
  pQuery->callback(
      [options, &client] { client.m_Run = [=, &client] { return RunQuery(*options, client); }; });
}
