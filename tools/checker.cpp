#include "checker.h"

#include <unistd.h>

#include <filesystem>
#include <map>
#include <memory>
#include <utility>
#include <xercesc/framework/StdInInputSource.hpp>
#include <xercesc/parsers/SAXParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/TransService.hpp>
#include <xercesc/validators/DTD/DTDElementDecl.hpp>

#include "document/contentmodel.h"
#include "document/externalresolver.h"
#include "document/prefixscope.h"
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

// Reads beside the document, and lets it expand, as the library's own parser does: its
// rules are compiled into the client.
class CCheckParser final : public SAXParser {
 public:
  // The base asks to be told of what handlers of its own were set for: here there are none.
  CCheckParser() : m_Stop(Scanner()) {
    Scanner().setDocHandler(this);
    Scanner().setDocTypeHandler(this);
    Scanner().setEntityHandler(this);
  }

  // The stream of an input, and what is read from it.
  std::unique_ptr<xercesc::InputSource> SourceOf(const CInput& input, int32_t access) {
    m_Resolver.Policy().SetMode(access);
    if (!input.Path().empty()) return m_Resolver.Document(input.Path().c_str());
    m_Resolver.Policy().SetDocument("");
    return std::make_unique<xercesc::StdInInputSource>();
  }
  void Read(const xercesc::InputSource& source) {
    const CExpansionLimits::CLoad load(m_Limits);
    m_Stop.Begin();
    m_Prefixes.Begin();
    parse(source);
    m_Resolver.Lost().Free();
  }

  xercesc::InputSource* resolveEntity(xercesc::XMLResourceIdentifier* pResource) override {
    m_Stop.RequireGoing();
    const bool needsDocumentType =
        pResource->getLocator() == getScanner().getLocator() && getValidationScheme() != Val_Never;
    return m_Resolver.Resolve(*pResource, needsDocumentType).release();
  }
  void startExtSubset() override {
    m_Resolver.Lost().TakeFrom(*getScanner().getReaderMgr());
    SAXParser::startExtSubset();
  }
  void startElement(const xercesc::XMLElementDecl& declaration, unsigned int uri,
                    const XMLCh* pPrefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                    XMLSize_t count, bool isEmpty, bool isRoot) override {
    m_Stop.RequireGoing();
    m_Limits.RequireFewExpansions();
    if (getDoNamespaces()) {
      m_Prefixes.Enter(Scanner(), pPrefix, attributes, count);
    }
    SAXParser::startElement(declaration, uri, pPrefix, attributes, count, isEmpty, isRoot);
  }
  void endElement(const xercesc::XMLElementDecl& declaration, unsigned int uri, bool isRoot,
                  const XMLCh* pPrefix) override {
    m_Prefixes.Leave();
    SAXParser::endElement(declaration, uri, isRoot, pPrefix);
  }
  void elementDecl(const xercesc::DTDElementDecl& declaration, bool isIgnored) override {
    if (getValidationScheme() != Val_Never && IsTooDeep(declaration.getContentSpec())) {
      m_Stop.Stop(u"the content model is too large for the stack of this thread");
    }
    SAXParser::elementDecl(declaration, isIgnored);
  }
  // The parser goes on after a fault in the text, and not after one that the rules made.
  void error(unsigned int code, const XMLCh* pDomain, ErrTypes type, const XMLCh* pText,
             const XMLCh* pSystemId, const XMLCh* pPublicId, XMLFileLoc line,
             XMLFileLoc column) override {
    m_Stop.OnError();
    if (code == xercesc::XMLErrs::XMLException_Fatal ||
        code == xercesc::XMLErrs::EntityExpansionLimitExceeded) {
      setExitOnFirstFatalError(true);
    }
    SAXParser::error(code, pDomain, type, pText, pSystemId, pPublicId, line, column);
  }

 private:
  // It is ours, and the base gives it for reading alone.
  xercesc::XMLScanner& Scanner() { return const_cast<xercesc::XMLScanner&>(getScanner()); }

  CLoadStop m_Stop;
  CExpansionLimits m_Limits{m_Stop};
  CExternalResolver m_Resolver{m_Stop, m_Limits};
  CPrefixScope m_Prefixes;
};

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

void Check(const CInput& input, const CReadOptions& options,
           const std::function<void(const CFault&, CSourceLines&)>& report) {
  CCheckParser parser;
  const std::unique_ptr<xercesc::InputSource> source = parser.SourceOf(input, options.m_Access);
  if (source == nullptr) throw CFailure(Line(input.Name(), "there is no current folder"));
  CReporter reporter(parser, input, UTF8(source->getSystemId()), report);
  SetUp(parser, options);
  parser.setErrorHandler(&reporter);
  try {
    parser.Read(*source);
  } catch (const xercesc::OutOfMemoryException&) {
    throw std::bad_alloc();
  } catch (const xercesc::XMLException& exception) {
    reporter.Report(UTF8(exception.getMessage()));
  } catch (const xercesc::SAXException& exception) {
    reporter.Report(UTF8(exception.getMessage()));
  }
}
