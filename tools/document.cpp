#include "document.h"

#include "message.h"
#include "prefixes.h"

namespace {

void SetOptions(const CDocument& document, const CReadOptions& options) {
  const TSXRefId id = document.Get();
  Require(TSXSetDoNamespaces(id, 0, &options.m_Namespaces), "namespaces");
  Require(TSXSetValidateOnLoad(id, 0, &options.m_Validation), "validation");
  Require(TSXSetDoSchema(id, 0, &options.m_Schema), "schemas");
  Require(TSXSetValidationSchemaFullChecking(id, 0, &options.m_FullChecking), "full checking");
  Require(TSXSetLoadExternalDTD(id, 0, &options.m_ExternalDTD), "external DTD");
  Require(TSXSetExternalAccess(id, 0, &options.m_Access), "external access");
  Require(TSXSetKeepPositions(id, 0, &options.m_Positions), "positions");
  BindPrefixes(document, options.m_Prefixes);
}

TSXStatus LoadInput(const CDocument& document, const CInput& input, CText& parseErrors,
                    CText& exceptionText) {
  if (input.Path().empty()) {
    CText text(input.Text());
    return TSXLoadBytes(document.Get(), text.Get(), parseErrors.Get(), exceptionText.Get());
  }
  const CPath path(input.Path().c_str());
  return TSXLoadFile(document.Get(), path.Get(), parseErrors.Get(), exceptionText.Get());
}

// The library's lines do not say which file they are of: where the document names other
// files, no line is shown rather than a wrong one.
CSourceLines SourceOf(const CInput& input) {
  const std::string head = input.Head();
  if (head.find("SYSTEM") != head.npos || head.find("PUBLIC") != head.npos) {
    return CSourceLines::OfText({});
  }
  return input.Path().empty() ? CSourceLines::OfText(input.Text())
                              : CSourceLines::OfFile(input.Path());
}

// The writer leaves out the mark that a file in UTF-16 must begin with.
std::string_view ByteOrderMark(const std::string& encoding, std::string_view xml) {
  if (encoding != "UTF-16" && encoding != "utf-16") return {};
  constexpr std::string_view kLittle("<\0", 2);
  constexpr std::string_view kBig("\0<", 2);
  if (xml.starts_with(kLittle)) return "\xff\xfe";
  return xml.starts_with(kBig) ? "\xfe\xff" : "";
}

}  // namespace

CReadOptions OptionsFor(const CNameOptions& names) {
  CReadOptions options;
  options.m_Namespaces = names.m_NoNamespaces ? 0 : 1;
  options.m_Prefixes = names.m_Prefixes;
  return options;
}

CDocument NewDocument() {
  CDocument document;
  Require(TSXDocumentOpen(0, document.Out()), "new document");
  return document;
}

std::string Load(const CDocument& document, const CInput& input, const CReadOptions& options) {
  if (!input.Problem().empty()) return Line(input.Name(), input.Problem());
  SetOptions(document, options);
  CText parseErrors;
  CText exceptionText;
  const TSXStatus status = LoadInput(document, input, parseErrors, exceptionText);
  if (status == 0) return {};
  CSourceLines source = SourceOf(input);
  std::string lines;
  for (CFault& fault : ParserFaults(input.Name(), parseErrors.View())) {
    AddAdvice(fault, options);
    lines += FaultText(fault, source);
  }
  if (!exceptionText.IsNull()) lines += StatusLine(input.Name(), status, exceptionText.View());
  return lines.empty() ? StatusLine(input.Name(), status, "could not be read") : lines;
}

void AddAdvice(CFault& fault, const CReadOptions& options) {
  constexpr int32_t kNothing = 3;  // was asked for by an option
  const bool isRefused = fault.m_Message.find("' was refused: ") != std::string::npos;
  if (isRefused && options.m_Access != kNothing) fault.m_Message += "; --network allows it";
}

CDocument ReadDocument(const std::string& file, const CClient& client, CReadOptions options) {
  return ReadDocument(PrepareInput(file, client), client, options);
}

CDocument ReadDocument(const CInput& input, const CClient& client, CReadOptions options) {
  options.m_ExternalDTD = client.m_DTD ? 1 : 0;
  options.m_Access = client.m_NoExternal ? 3 : client.m_Network ? 0 : 2;
  CDocument document = NewDocument();
  const std::string lines = Load(document, input, options);
  if (!lines.empty()) throw CFailure(lines);
  return document;
}

CText DocumentText(const CDocument& document, const std::string& file, bool pretty) {
  CText xml;
  const TSXStatus status = TSIGetXMLCommon(document.Get(), xml.Get(), pretty);
  if (status == domErrInvalidCharacter) {
    throw CFailure(StatusLine(file, status, "it cannot be written in " + NamedEncoding(document)));
  }
  Require(status, file);
  return xml;
}

CWritten::CWritten(CText text, std::string_view mark) : m_Text(std::move(text)), m_Marked(mark) {
  if (!m_Marked.empty()) m_Marked += m_Text.View();
}

CWritten WriteDocument(const CDocument& document, const std::string& file, bool pretty) {
  CText xml = DocumentText(document, file, pretty);
  const std::string_view mark = ByteOrderMark(NamedEncoding(document), xml.View());
  return CWritten(std::move(xml), mark);
}

void SetEncoding(const CDocument& document, const std::string& encoding) {
  CText name(encoding);
  Require(TSXSetEncoding(document.Get(), 0, name.Get()), encoding);
}

std::string NamedEncoding(const CDocument& document) {
  CText encoding;
  Require(TSXGetEncoding(document.Get(), 0, encoding.Get()), "encoding");
  return std::string(encoding.View());
}
