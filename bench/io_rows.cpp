#include <libxml/tree.h>

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>

#include "documents.h"
#include "libraries.h"
#include "rows.h"

namespace bench {
namespace {

// -- Loading: each contestant loads into a new document and counts its nodes --

// By default comments and the white space between elements would be missing.
constexpr unsigned kPugixmlWholeTree = pugi::parse_full | pugi::parse_ws_pcdata;

// How each library reads one input.
struct CLoaders {
  std::function<void(const CDocument&)> m_Tessel;
  std::function<void(CXercesDocument&)> m_Xerces;
  std::function<CLibxml2Document()> m_Libxml2;
  std::function<bool(pugi::xml_document&)> m_Pugixml;
};

uint64_t CountTessel(const CDocument& document) {
  CNode root;
  Require(TSXGetDocumentElement(document.Get(), 0, root.Out()), "TSXGetDocumentElement");
  return Walk(CTesselTree(), root.Get());
}

CContestant TesselLoad(const CLoaders& loaders) {
  auto document = std::make_shared<CDocument>();
  return {.m_Name = "Tessel",
          .m_Work = [=, load = loaders.m_Tessel] { return load(*document), 0; },
          .m_Before = [=] { Require(TSXDocumentOpen(0, document->Out()), "TSXDocumentOpen"); },
          .m_After = [=] { *document->Out() = 0; },
          .m_Check = [=] { return CountTessel(*document); }};
}

CContestant XercesLoad(const CLoaders& loaders) {
  auto document = std::make_shared<CXercesDocument>();
  return {.m_Name = kXerces,
          .m_Work = [=, load = loaders.m_Xerces] { return load(*document), 0; },
          .m_Before = [=] { *document = CXercesDocument(); },
          .m_After = [=] { *document = CXercesDocument(); },
          .m_Check = [=] { return Walk(CXercesTree(), document->Root()); }};
}

CContestant Libxml2Load(const CLoaders& loaders) {
  auto document = std::make_shared<CLibxml2Document>();
  return {.m_Name = kLibxml2,
          .m_Work = [=, load = loaders.m_Libxml2] { return *document = load(), 0; },
          .m_After = [=] { document->reset(); },
          .m_Check =
              [=] {
                if (*document == nullptr)
                  throw std::runtime_error("libxml2 cannot read the document");
                return Walk(CLibxml2Tree(), xmlDocGetRootElement(document->get()));
              }};
}

CContestant PugixmlLoad(const CLoaders& loaders) {
  auto document = std::make_shared<pugi::xml_document>();
  return {.m_Name = kPugixml,
          .m_Work =
              [=, load = loaders.m_Pugixml] {
                if (!load(*document)) throw std::runtime_error("pugixml cannot read the document");
                return 0;
              },
          .m_After = [=] { document->reset(); },
          .m_Check = [=] { return Walk(CPugixmlTree(), document->document_element()); }};
}

CRow LoadRow(const CLoaders& loaders) {
  return {"document",
          1,
          {TesselLoad(loaders), XercesLoad(loaders), Libxml2Load(loaders), PugixmlLoad(loaders)},
          true};
}

CLoaders TextLoaders(const std::string& content) {
  const auto xml = std::make_shared<const std::string>(content);
  const auto text = std::make_shared<CText>(*xml);
  return {[=](const CDocument& document) { Load(document, *text); },
          [=](CXercesDocument& document) { document.Parse(*xml); },
          [=] { return ParseLibxml2(*xml); },
          [=](pugi::xml_document& document) {
            return document.load_buffer(xml->data(), xml->size(), kPugixmlWholeTree);
          }};
}

CRow LoadString(const CSizes& sizes) { return LoadRow(TextLoaders(ItemsXml(sizes.m_LargeItems))); }

// libxml2 always heeds namespaces, pugixml never.
CRow LoadWithNamespaces(const std::string& xml) {
  CLoaders loaders = TextLoaders(xml);
  loaders.m_Tessel = [load = loaders.m_Tessel](const CDocument& document) {
    const uint8_t on = 1;
    Require(TSXSetDoNamespaces(document.Get(), 0, &on), "TSXSetDoNamespaces");
    load(document);
  };
  loaders.m_Xerces = [load = loaders.m_Xerces](CXercesDocument& document) {
    document.HeedNamespaces();
    load(document);
  };
  return LoadRow(loaders);
}

CLoaders FileLoaders(const std::string& path) {
  const auto hostPath = std::make_shared<CPath>(path.c_str());
  return {[=](const CDocument& document) {
            CText errors, exception;
            Require(TSXLoadFile(document.Get(), hostPath->Get(), errors.Get(), exception.Get()),
                    "TSXLoadFile");
          },
          [=](CXercesDocument& document) { document.ParseFile(path); },
          [=] {
            return CLibxml2Document(
                xmlReadFile(path.c_str(), nullptr, XML_PARSE_NONET | XML_PARSE_NOENT));
          },
          [=](pugi::xml_document& document) {
            return document.load_file(path.c_str(), kPugixmlWholeTree);
          }};
}

CRow LoadFile(const CSizes& sizes) {
  const auto file = std::make_shared<CTemporaryFile>(ItemsXml(sizes.m_LargeItems));
  CRow row = LoadRow(FileLoaders(file->Path()));
  // Every contestant reads the file, so any of them keeps it.
  row.m_Contestants.front().m_After = [file, after = row.m_Contestants.front().m_After] {
    after();
  };
  return row;
}

CRow LoadRealFile(const char* pPath) { return LoadRow(FileLoaders(pPath)); }

// -- Writing: all agree on the number of tags and declarations ----------------

uint64_t CountTags(std::string_view xml) {
  return static_cast<uint64_t>(std::count(xml.begin(), xml.end(), '<'));
}

void WriteXerces(xercesc::DOMDocument& document, xercesc::MemBufFormatTarget& target) {
  xercesc::DOMImplementation& implementation = *document.getImplementation();
  const COwned<xercesc::DOMLSSerializer> serializer(implementation.createLSSerializer());
  const COwned<xercesc::DOMLSOutput> output(implementation.createLSOutput());
  output->setEncoding(document.getXmlEncoding());
  output->setByteStream(&target);
  if (!serializer->write(&document, output.get())) {
    throw std::runtime_error("Xerces-C cannot write the document");
  }
}

CContestant XercesWrite(const std::shared_ptr<CDocuments>& documents) {
  auto target = std::make_shared<std::unique_ptr<xercesc::MemBufFormatTarget>>();
  return {.m_Name = kXerces,
          .m_Work =
              [=] {
                *target = std::make_unique<xercesc::MemBufFormatTarget>();
                WriteXerces(*documents->m_Xerces.Get(), **target);
                return 0;
              },
          .m_After = [=] { target->reset(); },
          .m_Check =
              [=] {
                return CountTags({reinterpret_cast<const char*>((*target)->getRawBuffer()),
                                  (*target)->getLen()});
              }};
}

struct CXmlFree {
  void operator()(xmlChar* pText) const { xmlFree(pText); }
};

CContestant Libxml2Write(const std::shared_ptr<CDocuments>& documents) {
  auto xml = std::make_shared<std::unique_ptr<xmlChar, CXmlFree>>();
  return {.m_Name = kLibxml2,
          .m_Work =
              [=] {
                xmlChar* pText = nullptr;
                int size = 0;
                xmlDocDumpMemory(documents->m_Libxml2.get(), &pText, &size);
                xml->reset(pText);
                return 0;
              },
          .m_After = [=] { xml->reset(); },
          .m_Check = [=] { return CountTags(reinterpret_cast<const char*>(xml->get())); }};
}

struct CStringWriter : pugi::xml_writer {
  void write(const void* pData, size_t size) override {
    m_Text.append(static_cast<const char*>(pData), size);
  }
  std::string m_Text;
};

CContestant PugixmlWrite(const std::shared_ptr<CDocuments>& documents) {
  auto writer = std::make_shared<CStringWriter>();
  return {.m_Name = kPugixml,
          .m_Work = [=] { return documents->m_Pugixml.save(*writer, "", pugi::format_raw), 0; },
          .m_After = [=] { writer->m_Text = {}; },
          .m_Check = [=] { return CountTags(writer->m_Text); }};
}

CRow WriteString(const CSizes& sizes) {
  const auto documents = std::make_shared<CDocuments>(ItemsXml(sizes.m_LargeItems));
  const auto xml = std::make_shared<CText>();
  const CContestant tessel{
      .m_Name = "Tessel",
      .m_Work =
          [=] { return Require(TSXGetXML(documents->m_Tessel.Get(), xml->Get()), "TSXGetXML"), 0; },
      .m_After = [=] { ClearString(xml->Get()); },
      .m_Check = [=] { return CountTags(xml->View()); }};
  return {"document",
          1,
          {tessel, XercesWrite(documents), Libxml2Write(documents), PugixmlWrite(documents)},
          true};
}

// -- Empty documents ----------------------------------------------------------

CRow OpenClose(const CSizes& sizes) {
  const size_t count = sizes.m_Calls / 10;
  return {"document",
          count,
          {{"Tessel",
            [=] {
              for (size_t i = 0; i < count; ++i) {
                CDocument document;
                Require(TSXDocumentOpen(0, document.Out()), "TSXDocumentOpen");
              }
              return count;
            }},
           {kXerces, [=] {
              for (size_t i = 0; i < count; ++i) {
                const CXercesEmpty document;
              }
              return count;
            }}}};
}

}  // namespace

CRowTable IoRows() {
  static constexpr const char* kCodes = "/usr/share/xml/iso-codes/iso_639-3.xml";
  static constexpr const char* kMime = "/usr/share/mime/packages/freedesktop.org.xml";
  return {
      {"load.string", "Load 19 MB from a string", Times(1, kLibxml2), LoadString},
      {"load.namespaces", "Load 19 MB from a string, with namespaces", Times(1.2, kLibxml2),
       [](const CSizes& sizes) { return LoadWithNamespaces(ItemsXml(sizes.m_LargeItems)); }},
      {"load.prefixes", "Load 22 MB where every name has a prefix, with namespaces",
       Times(1.2, kLibxml2),
       [](const CSizes& sizes) { return LoadWithNamespaces(PrefixedXml(sizes.m_LargeItems)); }},
      {"load.file", "Load 19 MB from a file", kNoAim, LoadFile},
      {"load.codes", "Load the language codes of iso-codes", kNoAim,
       [](const CSizes&) { return LoadRealFile(kCodes); }, kCodes},
      {"load.mime", "Load the file types of shared-mime-info", kNoAim,
       [](const CSizes&) { return LoadRealFile(kMime); }, kMime},
      {"write.string", "Write 19 MB to a string", Times(1, kLibxml2), WriteString},
      {"document.empty", "Open and close an empty document", Times(1.2, kXerces), OpenClose},
  };
}

}  // namespace bench
