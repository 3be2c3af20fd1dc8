#include "checker.h"

#include <unistd.h>

#include <filesystem>
#include <map>
#include <memory>
#include <utility>
#include <xercesc/framework/LocalFileInputSource.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/framework/StdInInputSource.hpp>
#include <xercesc/parsers/SAXParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/util/TransService.hpp>

namespace {

using xercesc::SAXParseException;
using xercesc::SAXParser;

// As many as the library allows in a document.
constexpr XMLSize_t kMostExpansions = 50000;
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
  std::pair<XMLFileLoc, XMLFileLoc> m_LastFatal{};
  std::string m_Own;  // its name as the parser has it
  const std::function<void(const CFault&, CSourceLines&)>& m_Report;
  std::string m_Path = PathOfLines(m_Input);
  std::map<std::string, CSourceLines> m_Sources;
};

std::unique_ptr<xercesc::InputSource> SourceOf(const CInput& input) {
  if (input.Path().empty()) return std::make_unique<xercesc::StdInInputSource>();
  // The client's names are bytes, the parser's are UTF-16.
  const xercesc::TranscodeFromStr path(reinterpret_cast<const XMLByte*>(input.Path().data()),
                                       input.Path().size(), "UTF-8");
  return std::make_unique<xercesc::LocalFileInputSource>(path.str());
}

void SetUp(SAXParser& parser, const CReadOptions& options, xercesc::SecurityManager& limits) {
  limits.setEntityExpansionLimit(kMostExpansions);
  parser.setSecurityManager(&limits);
  parser.setExitOnFirstFatalError(false);
  parser.setDoNamespaces(options.m_Namespaces != 0);
  parser.setValidationScheme(options.m_Validation != 0 ? SAXParser::Val_Always
                                                       : SAXParser::Val_Never);
  parser.setDoSchema(options.m_Schema != 0);
  parser.setValidationSchemaFullChecking(options.m_FullChecking != 0);
  parser.setLoadExternalDTD(options.m_ExternalDTD != 0);
}

}  // namespace

void Check(const CInput& input, const CReadOptions& options,
           const std::function<void(const CFault&, CSourceLines&)>& report) {
  const std::unique_ptr<xercesc::InputSource> source = SourceOf(input);
  xercesc::SecurityManager limits;
  SAXParser parser;
  CReporter reporter(parser, input, UTF8(source->getSystemId()), report);
  SetUp(parser, options, limits);
  parser.setErrorHandler(&reporter);
  try {
    parser.parse(*source);
  } catch (const xercesc::OutOfMemoryException&) {
    throw std::bad_alloc();
  } catch (const xercesc::XMLException& exception) {
    reporter.Report(UTF8(exception.getMessage()));
  } catch (const xercesc::SAXException& exception) {
    reporter.Report(UTF8(exception.getMessage()));
  }
}
