#include "checker.h"

#include <unistd.h>

#include <filesystem>
#include <map>
#include <optional>
#include <utility>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/TransService.hpp>

#include "checkparser.h"
#include "message.h"

namespace {

using xercesc::SAXParseException;
using xercesc::SAXParser;

// Faults against the rules of XML in one file, after which what follows is no help.
constexpr int kMostFatal = 10;

std::string UTF8(const XMLCh* pText) {
  if (pText == nullptr) return {};
  const xercesc::TranscodeToStr text(pText, "UTF-8");
  return {reinterpret_cast<const char*>(text.str()), text.length()};
}

// Where the lines of an input can be read again; empty for nowhere, as for a pipe.
std::string PathOfLines(const CInput& input) {
  if (!input.Path().empty()) return input.Path();
  return lseek(STDIN_FILENO, 0, SEEK_CUR) == 0 ? "/proc/self/fd/0" : "";
}

class CReporter final : public xercesc::ErrorHandler {
 public:
  CReporter(SAXParser& parser, const CInput& input, std::string own,
            const std::function<void(const CFault&, CSourceLines&)>& report)
      : m_Parser(parser), m_Input(input), m_Own(std::move(own)), m_Report(report) {}

  void warning(const SAXParseException&) override {}
  void error(const SAXParseException& fault) override { Report(fault); }
  // The parser goes on as long as it is not told otherwise. One fault may have several
  // messages; the first is the one that helps.
  void fatalError(const SAXParseException& fault) override {
    const std::pair place{fault.getLineNumber(), fault.getColumnNumber()};
    if (std::exchange(m_LastFatal, place) != place) Report(fault);
    if (++m_Fatal == kMostFatal) m_Parser.setExitOnFirstFatalError(true);
  }
  void resetErrors() override {}

  void Report(const SAXParseException& exception) {
    const std::string file = UTF8(exception.getSystemId());
    const bool isOwn = file.empty() || file == m_Own;
    m_Report({isOwn ? m_Input.Name() : ShortName(file), exception.getLineNumber(),
              exception.getColumnNumber(), UTF8(exception.getMessage())},
             SourceOf(isOwn ? m_Path : file));
  }

  void Report(const std::string& message) {
    m_Report({m_Input.Name(), 0, 0, message}, SourceOf(m_Path));
  }

 private:
  CSourceLines& SourceOf(const std::string& path) {
    const auto found = m_Sources.find(path);
    if (found != m_Sources.end()) return found->second;
    return m_Sources.emplace(path, CSourceLines::OfFile(path)).first->second;
  }

  // A file below the working directory by its name from there.
  static std::string ShortName(const std::string& file) {
    std::error_code error;
    const std::string folder = std::filesystem::current_path(error).native() + '/';
    return !error && file.starts_with(folder) ? file.substr(folder.size()) : file;
  }

  SAXParser& m_Parser;
  const CInput& m_Input;
  int m_Fatal = 0;
  std::optional<std::pair<XMLFileLoc, XMLFileLoc>> m_LastFatal;
  std::string m_Own;  // its name as the parser has it
  const std::function<void(const CFault&, CSourceLines&)>& m_Report;
  std::string m_Path = PathOfLines(m_Input);
  std::map<std::string, CSourceLines> m_Sources;
};

void SetUp(SAXParser& parser, const CReadOptions& options) {
  parser.setExitOnFirstFatalError(false);
  parser.setDoNamespaces(options.m_Namespaces != 0);
  parser.setValidationScheme(options.m_Validation != 0 ? SAXParser::Val_Always
                                                       : SAXParser::Val_Never);
  parser.setDoSchema(options.m_Schema != 0);
  parser.setValidationSchemaFullChecking(options.m_FullChecking != 0);
  parser.setLoadExternalDTD(options.m_ExternalDTD != 0);
}

}  // namespace

CChecker::CChecker(const CReadOptions& options, CReport report)
    : m_Options(options), m_Report(std::move(report)) {}

void CChecker::AddSchema(const CInput& schema) {
  if (m_pSchemas == nullptr)
    m_pSchemas = std::make_unique<CLentGrammars>(*xercesc::XMLPlatformUtils::fgMemoryManager);
  Run(schema, &CCheckParser::ReadSchema);
}

void CChecker::Check(const CInput& input) { Run(input, &CCheckParser::Read); }

void CChecker::Run(const CInput& input, CWork work) {
  CLentGrammars own(*xercesc::XMLPlatformUtils::fgMemoryManager);
  CCheckParser parser(m_pSchemas != nullptr ? *m_pSchemas : own, m_pSchemas != nullptr);
  const std::unique_ptr<xercesc::InputSource> source = parser.SourceOf(input, m_Options.m_Access);
  if (source == nullptr) throw CFailure(Line(input.Name(), "there is no current folder"));
  CReporter reporter(parser, input, UTF8(source->getSystemId()), m_Report);
  SetUp(parser, m_Options);
  parser.setErrorHandler(&reporter);
  try {
    (parser.*work)(*source);
  } catch (const xercesc::OutOfMemoryException&) {
    throw std::bad_alloc();
  } catch (const xercesc::XMLException& exception) {
    reporter.Report(UTF8(exception.getMessage()));
  } catch (const xercesc::SAXException& exception) {
    reporter.Report(UTF8(exception.getMessage()));
  }
}
