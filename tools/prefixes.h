// What the names in expressions mean, by a command's options.
#ifndef TESSEL_TOOLS_PREFIXES_H
#define TESSEL_TOOLS_PREFIXES_H

#include <string>
#include <vector>

#include "client.h"
#include "owners.h"

struct CNameOptions {
  bool m_NoNamespaces = false;
  std::vector<std::string> m_Prefixes;  // each PREFIX=URI
};

void AddNameOptions(CLI::App* pCommand, CNameOptions& options);

// Throws a CFailure that names what is no prefix.
void BindPrefixes(const CDocument& document, const std::vector<std::string>& prefixes);

#endif
