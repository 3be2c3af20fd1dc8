#include "prefixes.h"

#include <tessel/xpath.h>
#include <CLI/CLI.hpp>

#include "message.h"

namespace {

std::string ProblemOf(const std::string& text) {
  const size_t equals = text.find('=');
  const bool isWhole = equals != text.npos && equals > 0 && equals + 1 < text.size();
  return isWhole ? "" : '"' + text + "\" is not PREFIX=URI";
}

}  // namespace

void AddNameOptions(CLI::App* pCommand, CNameOptions& options) {
  CLI::Option* pNone = pCommand->add_flag("--no-namespaces", options.m_NoNamespaces,
                                          "Take names as they are written, prefix and all");
  pCommand
      ->add_option("-N,--namespace", options.m_Prefixes,
                   "What a prefix stands for in expressions; may be given again and again")
      ->type_name("PREFIX=URI")
      ->allow_extra_args(false)
      ->check(ProblemOf, "")
      ->excludes(pNone);
}

void BindPrefixes(const CDocument& document, const std::vector<std::string>& prefixes) {
  for (const std::string& text : prefixes) {
    const size_t equals = text.find('=');
    CText prefix(std::string_view(text).substr(0, equals));
    CText uri(std::string_view(text).substr(equals + 1));
    Require(XPathBindPrefix(document.Get(), prefix.Get(), uri.Get()), text);
  }
}
