#include <tessel/characterdata.h>
#include <tessel/status.h>

#include "api/frame.h"
#include "api/outs.h"
#include "dom/text.h"

using xercesc::DOMCharacterData;
using xercesc::DOMNode;
using xercesc::DOMProcessingInstruction;
using xercesc::DOMText;

namespace {

// Widened with its sign, so that a negative offset is far outside every text.
XMLSize_t Widen(int32_t count) { return static_cast<XMLSize_t>(static_cast<int64_t>(count)); }

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
      node, domErrRefGetSubstringData, CForgivingStringOut(dataOut),
      [&](auto& data) { return dom::Substring(data, Widen(offset), Widen(count)); });
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
                                  [&](auto& text) { return &dom::SplitText(text, Widen(offset)); });
}

TSXStatus TSXGetText(TSXRefId node, HStr* textOut) {
  return Get<DOMNode, CMapsText>(node, domErrRefGetText, CForgivingStringOut(textOut),
                                 dom::TextContent);
}

TSXStatus TSXSetText(TSXRefId node, HStr* textIn) {
  return Do<DOMNode, CMapsText>(node, domErrRefSetText, dom::SetTextContent, textIn);
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
