// An XML text that loads is written, read again and compared: the same tree, the same
// bytes the next time, and those of the XML library's own writer where that one's text
// comes back as the same tree.
#include <unistd.h>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <xercesc/framework/MemBufFormatTarget.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "document/xercesdom.h"
#include "harness.h"
#include "host/domowner.h"
#include "registry/globals.h"
#include "support/snapshot.h"

namespace {

using std::string_view_literals::operator""sv;
using support::ETold;
using xercesc::DOMElement;
using xercesc::DOMNode;
using xercesc::XMLString;
using xercesc::XMLUni;

// How an input is read and written.
struct COptions {
  COptions(uint8_t bits, std::string_view xml)
      : m_HasNamespaces((bits & 1) != 0), m_IsPretty((bits & 2) != 0), m_IsFile((bits & 4) != 0) {
    constexpr const char* kEncodings[] = {"",          "UTF-8",          "UTF-16",  "UTF-16BE",
                                          "US-ASCII",  "ISO-8859-1",     "GB18030", "windows-1251",
                                          "Shift_JIS", "ISO-10646-UCS-4"};
    m_Encoding = kEncodings[(bits >> 3) % std::size(kEncodings)];
    m_HasControls = std::any_of(xml.begin(), xml.end(), [](unsigned char byte) {
      return byte < ' ' && byte != '\t' && byte != '\n' && byte != '\r';
    });
  }
  // Has every character, so that nothing may be refused.
  bool IsUnicode() const {
    return m_Encoding.empty() || m_Encoding.starts_with("UTF") || m_Encoding.starts_with("ISO-1");
  }
  ETold Told() const {
    return (m_IsPretty ? ETold::kLayout : ETold::kAll) | (IsUnicode() ? ETold::kAll : ETold::kRuns);
  }

  bool m_HasNamespaces, m_IsPretty, m_IsFile;
  bool m_HasControls;  // which the parser takes in identifiers, and no text may have
  std::string m_Encoding;
};

// A file that text goes through.
class CFile {
 public:
  CFile() : m_Path(StandinPathFromText(Name().c_str())) {}
  ~CFile() { StandinPathDispose(m_Path); }
  CFile(const CFile&) = delete;
  CFile& operator=(const CFile&) = delete;

  HostPath Get() const { return m_Path; }
  static void Write(std::string_view text) { std::ofstream(Name(), std::ios::binary) << text; }
  static std::string Read() {
    std::ifstream in(Name(), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

 private:
  static std::string Name() {
    return std::filesystem::temp_directory_path() /
           ("tessel_fuzz_write_" + std::to_string(getpid()));
  }
  HostPath m_Path;
};

class CLoaded {
 public:
  CLoaded(std::string_view xml, const COptions& options) {
    const uint8_t namespaces = options.m_HasNamespaces ? 1 : 0, externalDTD = 0;
    TSXSetDoNamespaces(m_Doc.Id(), 0, &namespaces);
    TSXSetLoadExternalDTD(m_Doc.Id(), 0, &externalDTD);
    m_IsGood = (options.m_IsFile ? LoadFile(xml) : LoadBytes(xml)) == 0;
    // The tree goes with the next load.
    m_pTree = static_cast<CXercesDOM*>(g_NodeSessMap.GetPtrBySess(m_Doc.Id()))->m_pDoc;
  }

  bool IsGood() const { return m_IsGood; }
  TSXRefId Id() const { return m_Doc.Id(); }
  const xercesc::DOMDocument& Tree() const { return *m_pTree; }
  std::string Seen(const COptions& options) const { return Snapshot(*m_pTree, options.Told()); }

 private:
  TSXStatus LoadBytes(std::string_view xml) const {
    fuzz::CText text(xml), errors, exception;
    return TSXLoadBytes(m_Doc.Id(), text.Out(), errors.Out(), exception.Out());
  }
  TSXStatus LoadFile(std::string_view xml) const {
    const CFile file;
    fuzz::CText errors, exception;
    CFile::Write(xml);
    return TSXLoadFile(m_Doc.Id(), file.Get(), errors.Out(), exception.Out());
  }

  fuzz::CDoc m_Doc;
  bool m_IsGood = false;
  const xercesc::DOMDocument* m_pTree = nullptr;
};

std::string Bytes(HStr handle) {
  if (handle == nullptr) return {};
  return {reinterpret_cast<const char*>((*handle)->bytes), static_cast<size_t>((*handle)->count)};
}

// What is written without declaration is the end of the text with it, behind a mark where
// the encoding has one.
void RequireEnd(TSXRefId document, const COptions& options, std::string_view text) {
  fuzz::CText xml;
  uint8_t declares = 0;
  fuzz::RequireKnown(TSXSetWriteDeclaration(document, 0, &declares));
  fuzz::RequireKnown(TSIGetXMLCommon(document, xml.Out(), options.m_IsPretty));
  declares = 1;
  fuzz::RequireKnown(TSXSetWriteDeclaration(document, 0, &declares));
  const std::string bytes = Bytes(*xml.Out());
  std::string_view bare = bytes;
  for (const std::string_view mark : {"\xff\xfe\0\0"sv, "\xff\xfe"sv, "\xfe\xff"sv}) {
    if (bare.starts_with(mark)) bare.remove_prefix(mark.size());
  }
  const bool declaresAll = bare.size() == text.size() || bare.starts_with("<?xml ");
  if (declaresAll || !text.ends_with(bare)) fuzz::Fail("without declaration\n" + bytes);
}

// Nothing where the encoding lacks a character.
bool IsWritten(TSXRefId document, const COptions& options, std::string& text) {
  fuzz::CText xml, error;
  TSXStatus status = TSIGetXMLCommon(document, xml.Out(), options.m_IsPretty);
  text = Bytes(*xml.Out());
  const bool mayRefuse = (status == domErrInvalidCharacter && !options.IsUnicode()) ||
                         (status == domErrSerialize && options.m_HasControls);
  if (status != 0 && !mayRefuse) {
    fuzz::Fail("writing gave " + std::to_string(status));
  }
  if (status == 0) RequireEnd(document, options, text);
  if (options.m_IsFile) {
    const CFile file;
    CFile::Write("old");
    const auto save = options.m_IsPretty ? TSXSaveFilePP : TSXSaveFile;
    const TSXStatus saved = save(document, file.Get(), error.Out());
    if ((saved == 0) != (status == 0)) fuzz::Fail("the save gave " + std::to_string(saved));
    if (CFile::Read() != (status == 0 ? text : "old")) fuzz::Fail("the file has another text");
  }
  return status == 0;
}

void RequireEqual(const std::string& got, const std::string& wanted, const char* pWhat) {
  if (got != wanted)
    fuzz::Fail(std::string(pWhat) + "\n--- got\n" + got + "\n--- wanted\n" + wanted);
}

// Whether the name is in the namespace that stands at its prefix, as far as one is declared.
bool IsAsDeclared(const DOMNode& named, const DOMElement& element) {
  if (named.getLocalName() == nullptr) return true;
  std::u16string name = u"xmlns";
  if (named.getPrefix() != nullptr) name.append(u":").append(named.getPrefix());
  for (const DOMNode* p = &element; p->getNodeType() != DOMNode::DOCUMENT_NODE;
       p = p->getParentNode()) {
    if (p->getNodeType() != DOMNode::ELEMENT_NODE) continue;
    const auto* pDeclaration = static_cast<const DOMElement*>(p)->getAttributeNode(name.c_str());
    if (pDeclaration != nullptr) {
      return XMLString::equals(pDeclaration->getValue(), named.getNamespaceURI());
    }
  }
  return true;
}

// What the declarations of a tree let us compare.
struct CDeclarations {
  explicit CDeclarations(const xercesc::DOMDocument& document) {
    const xercesc::DOMNodeList& elements = *document.getElementsByTagName(u"*");
    for (XMLSize_t i = 0; i < elements.getLength(); ++i) {
      Look(static_cast<const DOMElement&>(*elements.item(i)));
    }
  }
  void Look(const DOMElement& element) {
    m_AreBound &= IsAsDeclared(element, element);
    const xercesc::DOMNamedNodeMap& attributes = *element.getAttributes();
    for (XMLSize_t i = 0; i < attributes.getLength(); ++i) {
      const auto& attribute = static_cast<const xercesc::DOMAttr&>(*attributes.item(i));
      const XMLCh* pUri = attribute.getNamespaceURI();
      // The parser adds a default with a prefix once more, in the namespace of "xml".
      const bool hasDeclared =
          attribute.getPrefix() != nullptr && !XMLString::equals(pUri, XMLUni::fgXMLURIName);
      if (hasDeclared) m_AreBound &= IsAsDeclared(attribute, element);
      if (!XMLString::equals(pUri, XMLUni::fgXMLNSURIName)) continue;
      const std::u16string_view name = attribute.getName();
      const bool isElsewhere =
          name == u"xmlns:xml" ||
          (name == u"xmlns" && (*attribute.getValue() == 0 || element.getPrefix() != nullptr));
      m_AreInPlace &= attribute.getSpecified() && !isElsewhere;
    }
  }

  // The parser binds a prefix to the value as it stands. Where the attribute is of a type
  // that drops blanks, the tree contradicts itself; ours then writes more declarations.
  bool m_AreBound = true;
  // The XML library's writer overlooks declarations that the document type makes and those
  // of the default namespace by prefixed elements; it takes "xml" for undeclared, and does
  // not notice the end of a default namespace. There it declares anew, in front of the
  // attributes, what ours leaves among them: another order, and as good.
  bool m_AreInPlace = true;
};

// What the XML library's own writer makes of it; empty where it gives up.
std::string ByXerces(const xercesc::DOMDocument& document) {
  auto* pImplementation = document.getImplementation();
  CDOMOwner<xercesc::DOMLSSerializer> serializer(pImplementation->createLSSerializer());
  CDOMOwner<xercesc::DOMLSOutput> output(pImplementation->createLSOutput());
  xercesc::MemBufFormatTarget target;
  output->setByteStream(&target);
  output->setEncoding(document.getXmlEncoding());
  try {
    if (!serializer->write(&document, output.get())) return {};
  } catch (const xercesc::DOMException&) {
    return {};
  }
  return {reinterpret_cast<const char*>(target.getRawBuffer()), target.getLen()};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t size) {
  fuzz::CBytes bytes(pData, size);
  const uint8_t bits = bytes.Byte();
  const std::string_view xml = bytes.Rest();
  const COptions options(bits, xml);
  if (!fuzz::IsTame(xml)) return 0;
  fuzz::CLedger ledger;
  const CLoaded first(xml, options);
  if (!first.IsGood()) return 0;
  const CDeclarations declarations(first.Tree());
  if (!declarations.m_AreBound) return 0;
  const std::string seen = first.Seen(options);
  fuzz::CText encoding(options.m_Encoding);
  if (!options.m_Encoding.empty()) TSXSetEncoding(first.Id(), 0, encoding.Out());
  std::string text, again;
  if (!IsWritten(first.Id(), options, text)) return 0;
  const CLoaded second(text, options);
  if (!second.IsGood()) fuzz::Fail("what was written cannot be read\n" + text);
  RequireEqual(second.Seen(options), seen, "another tree");
  if (!IsWritten(second.Id(), options, again)) fuzz::Fail("written once, and not again");
  RequireEqual(again, text, "another text");
  if (options.m_IsPretty || !declarations.m_AreInPlace) return 0;
  const std::string theirs = ByXerces(first.Tree());
  const CLoaded third(theirs, options);
  if (third.IsGood() && third.Seen(options) == seen) {
    RequireEqual(text, theirs, "other bytes");
  }
  return 0;
}
