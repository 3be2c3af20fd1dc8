#include "io/treewriter.h"

#include <xercesc/util/XMLString.hpp>

#include "document/xercesdom.h"
#include "dom/look.h"
#include "io/declarations.h"
#include "io/layout.h"
#include "io/unwritable.h"
#include "registry/globals.h"

using xercesc::DOMAttr;
using xercesc::DOMDocument;
using xercesc::DOMElement;
using xercesc::DOMNode;
using xercesc::DOMProcessingInstruction;

namespace {

// Null for a document type that no document has taken.
const DOMDocument* DocumentOf(const DOMNode& node) {
  if (node.getNodeType() == DOMNode::DOCUMENT_NODE) return static_cast<const DOMDocument*>(&node);
  return node.getOwnerDocument();
}

bool IsXml11(const DOMDocument* pDocument) {
  return pDocument != nullptr && xercesc::XMLString::equals(pDocument->getXmlVersion(), u"1.1");
}

// Its text brings the defaults of attributes along.
bool HasDocType(const DOMNode& node) {
  return node.getNodeType() == DOMNode::DOCUMENT_NODE &&
         static_cast<const DOMDocument&>(node).getDoctype() != nullptr;
}

// A document without document object, as a clone is, has its declaration.
bool HasDeclaration(const DOMDocument& document) {
  const CXercesDOM* pDom = g_NodeDomMap.GetDomByNode(dom::TreeOf(document));
  return pDom == nullptr || pDom->m_WritesDeclaration;
}

// The declaration, or without it the mark that UTF-16 and UTF-32 are then known by, whose
// size is given.
std::size_t WriteHead(CTextWriter& out, const DOMDocument& document) {
  if (HasDeclaration(document)) {
    WriteXmlDeclaration(out, document);
    return 0;
  }
  if (out.Encoding().IsWide()) out.Verbatim(u"\uFEFF");
  return out.Bytes().Size();
}

}  // namespace

CTreeWriter::CTreeWriter(CTextWriter& out, const DOMNode& root, bool isPretty)
    : m_Out(out), m_Root(root), m_IsPretty(isPretty), m_StartTags(out, HasDocType(root)) {}

void CTreeWriter::Write() {
  const DOMNode* pNode = &m_Root;
  while (true) {
    if (const DOMNode* pChild = Begin(*pNode)) {
      pNode = pChild;
      continue;
    }
    while (true) {
      if (m_Open.empty()) return;
      if (const DOMNode* pNext = pNode->getNextSibling()) {
        pNode = pNext;
        break;
      }
      pNode = m_Open.back().m_pNode;
      End();
    }
  }
}

const DOMNode* CTreeWriter::Begin(const DOMNode& node) {
  const DOMNode::NodeType type = node.getNodeType();
  if (!m_Open.empty() && m_Open.back().m_IsLaidOut) {
    if (type == DOMNode::TEXT_NODE) return nullptr;
    NewLine(Level());
  }
  switch (type) {
    case DOMNode::ELEMENT_NODE:
      return BeginElement(static_cast<const DOMElement&>(node));
    case DOMNode::TEXT_NODE:
      m_Out.Text(node.getNodeValue(), static_cast<const xercesc::DOMText&>(node).getLength());
      return nullptr;
    case DOMNode::DOCUMENT_NODE:
    case DOMNode::DOCUMENT_FRAGMENT_NODE:
      return BeginContainer(node);
    case DOMNode::CDATA_SECTION_NODE:
      m_Out.CData(node.getNodeValue());
      return nullptr;
    case DOMNode::COMMENT_NODE:
      WriteComment(node.getNodeValue());
      return nullptr;
    case DOMNode::PROCESSING_INSTRUCTION_NODE:
      WriteInstruction(static_cast<const DOMProcessingInstruction&>(node));
      return nullptr;
    case DOMNode::ENTITY_REFERENCE_NODE:
      m_Out.EntityReference(node.getNodeName());
      return nullptr;
    case DOMNode::ATTRIBUTE_NODE:
      WriteAttributeAlone(m_Out, static_cast<const DOMAttr&>(node));
      return nullptr;
    case DOMNode::DOCUMENT_TYPE_NODE:
      WriteDocType(m_Out, static_cast<const xercesc::DOMDocumentType&>(node));
      return nullptr;
    case DOMNode::ENTITY_NODE:
      WriteEntity(m_Out, static_cast<const xercesc::DOMEntity&>(node));
      return nullptr;
    default:
      throw NotWellFormed(u"no text stands for a node of this kind");
  }
}

const DOMNode* CTreeWriter::BeginElement(const DOMElement& element) {
  const std::size_t mark = m_StartTags.Prefixes().Mark();
  const CTextWriter::CPlace name = m_StartTags.Write(element);
  const DOMNode* pChild = element.getFirstChild();
  if (pChild == nullptr) {
    m_Out.Markup("/>");
    m_StartTags.Prefixes().GoBackTo(mark);
    return nullptr;
  }
  m_Out.Markup(">");
  COpen open{&element, name, mark};
  if (m_IsPretty) LayOut(element, open);
  m_Open.push_back(open);
  return pChild;
}

void CTreeWriter::LayOut(const DOMElement& element, COpen& open) const {
  const bool isAround =
      m_Open.empty() ? layout::IsPreservedAround(element) : m_Open.back().m_IsPreserved;
  open.m_IsPreserved = layout::IsPreserved(element, isAround);
  open.m_IsInText = !m_Open.empty() && m_Open.back().m_IsInText;
  if (open.m_IsInText) return;
  const layout::EContent content = layout::ContentOf(element);
  open.m_IsInText = content == layout::EContent::kText;
  open.m_IsLaidOut = content == layout::EContent::kElements && !open.m_IsPreserved;
}

// The nodes of a document have a line each; a fragment is like the content of an element.
const DOMNode* CTreeWriter::BeginContainer(const DOMNode& node) {
  const bool isDocument = node.getNodeType() == DOMNode::DOCUMENT_NODE;
  if (isDocument) m_MarkSize = WriteHead(m_Out, *DocumentOf(node));
  const layout::EContent content = layout::ContentOf(node);
  COpen open{&node};
  open.m_IsLaidOut = m_IsPretty && (isDocument || content == layout::EContent::kElements);
  open.m_IsInText = content == layout::EContent::kText;
  m_Open.push_back(open);
  m_HasContainer = true;
  const DOMNode* pChild = node.getFirstChild();
  if (pChild == nullptr) End();
  return pChild;
}

void CTreeWriter::End() {
  const COpen open = m_Open.back();
  m_Open.pop_back();
  if (open.m_pNode->getNodeType() == DOMNode::ELEMENT_NODE) {
    if (open.m_IsLaidOut) NewLine(Level());
    m_Out.Markup("</");
    m_Out.NameAgain(open.m_Name);
    m_Out.Markup(">");
    m_StartTags.Prefixes().GoBackTo(open.m_Mark);
  } else if (open.m_IsLaidOut && open.m_pNode->getNodeType() == DOMNode::DOCUMENT_NODE) {
    m_Out.NewLine(0);
  }
}

// Not in front of all text.
void CTreeWriter::NewLine(std::size_t level) {
  if (m_Out.Bytes().Size() != m_MarkSize) m_Out.NewLine(level);
}

void CTreeWriter::WriteComment(std::u16string_view text) {
  if (text.ends_with(u'-') || text.find(u"--") != std::u16string_view::npos) {
    throw NotWellFormed(u"a comment has two hyphens, or one at its end");
  }
  m_Out.Markup("<!--");
  m_Out.Verbatim(text);
  m_Out.Markup("-->");
}

void CTreeWriter::WriteInstruction(const DOMProcessingInstruction& instruction) {
  const std::u16string_view data = instruction.getData();
  if (data.find(u"?>") != std::u16string_view::npos) {
    throw NotWellFormed(u"the data of an instruction has its end inside");
  }
  if (xercesc::XMLString::compareIStringASCII(instruction.getTarget(), u"xml") == 0) {
    throw NotWellFormed(u"the target of an instruction is reserved");
  }
  m_Out.Markup("<?");
  m_Out.Name(instruction.getTarget());
  if (!data.empty()) m_Out.Markup(" ");
  m_Out.Verbatim(data);
  m_Out.Markup("?>");
}

CByteBuffer TextOf(const DOMNode& node, bool isPretty) {
  const DOMDocument* pDocument = DocumentOf(node);
  CEncoding encoding(WrittenEncoding(pDocument));
  CTextWriter out(encoding, IsXml11(pDocument));
  CTreeWriter(out, node, isPretty).Write();
  encoding.Encode(out.Bytes());
  return std::move(out.Bytes());
}
