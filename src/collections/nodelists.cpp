#include <tessel/collections.h>
#include <tessel/status.h>

#include "api/frame.h"
#include "collections/outs.h"
#include "dom/lists.h"

using xercesc::DOMElement;
using xercesc::DOMNode;
using xercesc::DOMNodeList;

namespace {

using CHeldList = CHeld<DOMNodeList>;

CHeldOut<DOMNodeList> ListOut(TSXRefId* pId) { return {pId, g_NodeListSessMap}; }

// Kinds that cannot have children share one empty list for the whole process.
bool HasListOfItsOwn(const DOMNode& node) {
  switch (node.getNodeType()) {
    case DOMNode::TEXT_NODE:
    case DOMNode::CDATA_SECTION_NODE:
    case DOMNode::COMMENT_NODE:
    case DOMNode::PROCESSING_INSTRUCTION_NODE:
    case DOMNode::NOTATION_NODE:
      return false;
    default:
      return true;
  }
}

CHeldList ChildList(DOMNode& node) {
  return {node.getChildNodes(), HasListOfItsOwn(node) ? &node : nullptr};
}

// Lists by tag name, of a document or of an element.
template <class Interface>
auto* RootOf(Interface& root) {
  if constexpr (std::is_same_v<Interface, CXercesDOM>) {
    return root.m_pDoc;
  } else {
    return &root;
  }
}

constexpr auto kByName = [](auto& root, auto* pName) {
  return dom::ListByName(*RootOf(root), pName);
};
constexpr auto kByNameNS = [](auto& root, auto* pURI, auto* pName) {
  return dom::ListByNameNS(*RootOf(root), pURI, pName);
};

template <class Interface, class Find, class... Strings>
TSXStatus GetList(TSXRefId root, TSXStatus badReference, TSXRefId* pListOut, Find find,
                  Strings*... pStrings) {
  return Get<Interface, Maps<>>(
      root, badReference, ListOut(pListOut),
      [&](auto& node, auto*... pTexts) {
        return CHeldList{find(node, pTexts...), RootOf(node)};
      },
      pStrings...);
}

constexpr auto kAllByName = [](auto& root, auto* pName) {
  return dom::ElementsByName(*RootOf(root), pName);
};
constexpr auto kAllByNameNS = [](auto& root, auto* pURI, auto* pName) {
  return dom::ElementsByNameNS(*RootOf(root), pURI, pName);
};

template <class Interface, class Find, class... Strings>
TSXStatus GetArray(TSXRefId root, TSXStatus badReference, GenericRefObjSessionArray* pNodesOut,
                   Find find, Strings*... pStrings) {
  return Get<Interface, Maps<>>(root, badReference, CArrayOut(pNodesOut), find, pStrings...);
}

// A question to a list, which starts where the last one ended.
template <class Out, class Ask>
TSXStatus Read(TSXRefId list, TSXStatus badReference, Out out, Ask ask) {
  return Get<CHeldList, Maps<>>(list, badReference, out, [&](const CHeldList& held) {
    auto reading = held.m_Reading;
    const auto answer = ask(*held.m_pCollection, held.m_pHolder, reading);
    if (reading != held.m_Reading) g_NodeListSessMap.KeepReading(list, reading);
    return answer;
  });
}

}  // namespace

TSXStatus TSXGetChildNodeList(TSXRefId node, uint64_t, TSXRefId* listOut) {
  return Get<DOMNode, Maps<>>(node, domErrRefGetChildNodeList, ListOut(listOut), ChildList);
}

TSXStatus TSXGetChildNodes(TSXRefId node, uint64_t, GenericRefObjSessionArray* nodesOut) {
  return Get<DOMNode, Maps<>>(node, domErrRefGetChildNodeList, CArrayOut(nodesOut),
                              [](auto& n) { return n.getChildNodes(); });
}

TSXStatus TSXGetElementsByTagNameList(TSXRefId document, HStr* name, TSXRefId* listOut) {
  return GetList<CXercesDOM>(document, domErrRefGetElementsByTagNameList, listOut, kByName, name);
}

TSXStatus TSXGetElementsByTagName(TSXRefId document, HStr* name,
                                  GenericRefObjSessionArray* nodesOut) {
  return GetArray<CXercesDOM>(document, domErrRefGetElementsByTagNameList, nodesOut, kAllByName,
                              name);
}

TSXStatus TSXGetElementsByTagNameNS(TSXRefId document, HStr* namespaceURI, HStr* localName,
                                    TSXRefId* listOut) {
  return GetList<CXercesDOM>(document, domErrRefGetElementsByTagNameNS, listOut, kByNameNS,
                             namespaceURI, localName);
}

// Contract: the code of the functions without namespace.
TSXStatus TSXGetElementsByTagNameNSArray(TSXRefId document, HStr* namespaceURI, HStr* localName,
                                         GenericRefObjSessionArray* nodesOut) {
  return GetArray<CXercesDOM>(document, domErrRefGetElementsByTagNameList, nodesOut, kAllByNameNS,
                              namespaceURI, localName);
}

TSXStatus TSXElementGetElementsByTagName(TSXRefId element, HStr* name, TSXRefId* listOut) {
  return GetList<DOMElement>(element, domErrRefElementGetElementsByTagName, listOut, kByName, name);
}

TSXStatus TSXElementGetElementsByTagNameArray(TSXRefId element, HStr* name,
                                              GenericRefObjSessionArray* nodesOut) {
  return GetArray<DOMElement>(element, domErrRefElementGetElementsByTagName, nodesOut, kAllByName,
                              name);
}

TSXStatus TSXElementGetElementsByTagNameNS(TSXRefId element, HStr* namespaceURI, HStr* localName,
                                           TSXRefId* listOut) {
  return GetList<DOMElement>(element, domErrRefElementGetElementsByTagNameNS, listOut, kByNameNS,
                             namespaceURI, localName);
}

TSXStatus TSXElementGetElementsByTagNameNSArray(TSXRefId element, HStr* namespaceURI,
                                                HStr* localName,
                                                GenericRefObjSessionArray* nodesOut) {
  return GetArray<DOMElement>(element, domErrRefElementGetElementsByTagNameNS, nodesOut,
                              kAllByNameNS, namespaceURI, localName);
}

TSXStatus TSXGetItem(TSXRefId list, int32_t index, TSXRefId* nodeOut) {
  return Read(list, domErrRefGetItem, CNodeOut(nodeOut), [&](auto&... read) {
    return index < 0 ? nullptr : dom::Member(read..., static_cast<XMLSize_t>(index));
  });
}

TSXStatus TSXGetListLength(TSXRefId list, uint64_t, int32_t* lengthOut) {
  return Read(list, domErrRefGetListLength, CCountOut(lengthOut),
              [](auto&... read) { return dom::Length(read...); });
}

TSXStatus TSXGetNodeListArray(TSXRefId list, uint64_t, GenericRefObjSessionArray* nodesOut) {
  return Get<DOMNodeList, Maps<>>(list, domErrRefGetItem, CArrayOut(nodesOut),
                                  [](auto& l) { return &l; });
}

void TSXNodeListClose(TSXRefId list) { g_NodeListSessMap.CloseKnown(list); }
