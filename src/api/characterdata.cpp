#include <tessel/characterdata.h>
#include <tessel/status.h>

#include <algorithm>

#include "api/frame.h"
#include "api/outs.h"
#include "document/release.h"
#include "registry/nodetree.h"

using xercesc::DOMCharacterData;
using xercesc::DOMException;
using xercesc::DOMNode;
using xercesc::DOMProcessingInstruction;
using xercesc::DOMText;

namespace {

using CMapsIndex = Maps<DOMException::INDEX_SIZE_ERR, DOMException::NO_MODIFICATION_ALLOWED_ERR>;
using CMapsReadOnly = Maps<DOMException::NO_MODIFICATION_ALLOWED_ERR>;

// Widened with its sign, so that a negative offset is far outside every text.
XMLSize_t Widen(int32_t count) { return static_cast<XMLSize_t>(static_cast<int64_t>(count)); }

// The DOM copies as many units as it is told into a buffer sized for the text, so
// it is told no more than there are. A bad offset is for the DOM to refuse.
XMLSize_t CountWithin(const DOMCharacterData& data, XMLSize_t offset, XMLSize_t count) {
  const XMLSize_t length = data.getLength();
  return offset > length ? count : std::min(count, length - offset);
}

// The text content of a node, as the DOM defines it. The DOM's own operation keeps
// a copy in the document at every call, recurses, and crashes for a document type
// that no document has taken.
std::u16string TextContent(DOMNode& node) {
  std::u16string text;
  const auto append = [&](const DOMNode& part) {
    if (part.getNodeValue() != nullptr) text += part.getNodeValue();
  };
  switch (node.getNodeType()) {
    case DOMNode::ELEMENT_NODE:
    case DOMNode::ENTITY_NODE:
    case DOMNode::ENTITY_REFERENCE_NODE:
    case DOMNode::DOCUMENT_FRAGMENT_NODE:
      nodetree::ForEachChild(&node, [&](const DOMNode* pNode) {
        const auto type = pNode->getNodeType();
        if (type == DOMNode::TEXT_NODE || type == DOMNode::CDATA_SECTION_NODE) append(*pNode);
      });
      break;
    case DOMNode::DOCUMENT_NODE:
    case DOMNode::DOCUMENT_TYPE_NODE:
    case DOMNode::NOTATION_NODE:
      break;
    default:
      append(node);
  }
  return text;
}

}  // namespace

TSXStatus TSXGetCharacterDataLength(TSXRefId node, uint64_t, int32_t* lengthOut) {
  return Get<DOMCharacterData, Unguarded>(node, domErrRefGetCharacterDataLength,
                                          CCountOut(lengthOut),
                                          [](auto& data) { return data.getLength(); });
}

// Contract: the mapped codes of this and the other string getters of this family
// are dropped; the host sees an empty string.
TSXStatus TSXGetCharacterDataData(TSXRefId node, uint64_t, HStr* dataOut) {
  return Get<DOMCharacterData, CMapsReadOnly>(node, domErrRefGetCharacterDataData,
                                              CForgivingStringOut(dataOut),
                                              [](auto& data) { return data.getData(); });
}

TSXStatus TSXSetCharacterDataData(TSXRefId node, uint64_t, HStr* dataIn) {
  return Do<DOMCharacterData, CMapsReadOnly>(
      node, domErrRefSetCharacterDataData, [](auto& data, auto* pText) { data.setData(pText); },
      dataIn);
}

TSXStatus TSXGetSubstringData(TSXRefId node, int32_t offset, int32_t count, HStr* dataOut) {
  return Get<DOMCharacterData, Maps<DOMException::INDEX_SIZE_ERR>>(
      node, domErrRefGetSubstringData, CForgivingStringOut(dataOut), [&](auto& data) {
        const XMLSize_t start = Widen(offset);
        return data.substringData(start, CountWithin(data, start, Widen(count)));
      });
}

TSXStatus TSXAppendData(TSXRefId node, HStr* dataIn) {
  return Do<DOMCharacterData, CMapsReadOnly>(
      node, domErrRefAppendData, [](auto& data, auto* pText) { data.appendData(pText); }, dataIn);
}

TSXStatus TSXInsertData(TSXRefId node, int32_t offset, HStr* dataIn) {
  return Do<DOMCharacterData, CMapsIndex>(
      node, domErrRefInsertData,
      [&](auto& data, auto* pText) { data.insertData(Widen(offset), pText); }, dataIn);
}

TSXStatus TSXDeleteData(TSXRefId node, int32_t offset, int32_t count) {
  return Do<DOMCharacterData, CMapsIndex>(
      node, domErrRefDeleteData, [&](auto& data) { data.deleteData(Widen(offset), Widen(count)); });
}

TSXStatus TSXReplaceData(TSXRefId node, int32_t offset, int32_t count, HStr* dataIn) {
  return Do<DOMCharacterData, CMapsIndex>(
      node, domErrRefReplaceData,
      [&](auto& data, auto* pText) { data.replaceData(Widen(offset), Widen(count), pText); },
      dataIn);
}

TSXStatus TSXSplitText(TSXRefId node, int32_t offset, TSXRefId* textOut) {
  return Get<DOMText, CMapsIndex>(node, domErrRefSplitText, CNodeOut(textOut),
                                  [&](auto& text) { return text.splitText(Widen(offset)); });
}

TSXStatus TSXGetText(TSXRefId node, HStr* textOut) {
  return Get<DOMNode,
             Maps<DOMException::DOMSTRING_SIZE_ERR, DOMException::NO_MODIFICATION_ALLOWED_ERR>>(
      node, domErrRefGetText, CForgivingStringOut(textOut), [](auto& n) { return TextContent(n); });
}

TSXStatus TSXSetText(TSXRefId node, HStr* textIn) {
  return Do<DOMNode,
            Maps<DOMException::DOMSTRING_SIZE_ERR, DOMException::NO_MODIFICATION_ALLOWED_ERR>>(
      node, domErrRefSetText,
      [](auto& n, auto* pText) { SetReplacingChildren(n, [&] { n.setTextContent(pText); }); },
      textIn);
}

TSXStatus TSXGetData(TSXRefId instruction, uint64_t, HStr* dataOut) {
  return Get<DOMProcessingInstruction, CMapsReadOnly>(instruction, domErrRefGetData,
                                                      CForgivingStringOut(dataOut),
                                                      [](auto& pi) { return pi.getData(); });
}

TSXStatus TSXSetData(TSXRefId instruction, uint64_t, HStr* dataIn) {
  return Do<DOMProcessingInstruction, CMapsReadOnly>(
      instruction, domErrRefSetData, [](auto& pi, auto* pText) { pi.setData(pText); }, dataIn);
}
