#include <tessel/mutation.h>
#include <tessel/status.h>

#include "api/frame.h"
#include "api/outs.h"
#include "dom/copy.h"
#include "dom/edit.h"
#include "dom/release.h"

using xercesc::DOMNode;

namespace {

// Registers what a document makes and remembers that no tree owns it yet.
template <class Guard, class Call, class... Strings>
TSXStatus Create(CXercesDOM& dom, CNodeOut out, Call create, Strings*... pStrings) {
  return frame::WithTexts(
      [&](auto... pTexts) {
        const TSXStatus status = Guard::Run([&] {
          DOMNode* pNode = create(*dom.m_pDoc, pTexts...);
          if (pNode == nullptr) return;
          out.Store(pNode);
          g_NodeDomMap.Insert(pNode, &dom);
        });
        return status == 0 ? 0 : out.Fail(status);
      },
      pStrings...);
}

// The frame of the creating functions. `required` says whether the strings that
// must be there are.
template <class Guard, class Call, class... Strings>
TSXStatus CreateIn(TSXRefId document, TSXRefId* pNodeOut, TSXStatus badDocument, bool required,
                   TSXStatus missing, Call create, Strings*... pStrings) {
  const CNodeOut out(pNodeOut);
  auto* pDom = FindObject<CXercesDOM>(document);
  if (pDom == nullptr) return badDocument;
  if (!required) return missing;
  return Create<Guard>(*pDom, out, create, pStrings...);
}

bool IsGiven(const HStr* pString) { return *pString != nullptr; }

}  // namespace

TSXStatus TSXCreateElement(TSXRefId document, HStr* tagName, TSXRefId* elementOut) {
  return CreateIn<CMapsName>(
      document, elementOut, domErrRefCreateElement, IsGiven(tagName), domErrEmptyCreateElement,
      [](auto& doc, auto* pName) { return doc.createElement(pName); }, tagName);
}

TSXStatus TSXCreateElementNS(TSXRefId document, HStr* namespaceURI, HStr* qualifiedName,
                             TSXRefId* elementOut) {
  return CreateIn<CMapsQualifiedName>(
      document, elementOut, domErrRefCreateElementNS,
      IsGiven(namespaceURI) && IsGiven(qualifiedName), domErrEmptyCreateElementNS,
      [](auto& doc, auto* pURI, auto* pName) { return doc.createElementNS(pURI, pName); },
      namespaceURI, qualifiedName);
}

// Contract: a bad document is no failure here; the id is 0 and the status too. Only a
// missing name is refused, with the code of entity references.
TSXStatus TSXCreateAttribute(TSXRefId document, HStr* name, TSXRefId* attributeOut) {
  return CreateIn<CMapsName>(
      document, attributeOut, 0, IsGiven(name), domErrEmptyCreateEntityReference,
      [](auto& doc, auto* pName) { return doc.createAttribute(pName); }, name);
}

TSXStatus TSXCreateAttributeNS(TSXRefId document, HStr* namespaceURI, HStr* qualifiedName,
                               TSXRefId* attributeOut) {
  return CreateIn<CMapsQualifiedName>(
      document, attributeOut, domErrRefCreateAttributeNS,
      IsGiven(namespaceURI) && IsGiven(qualifiedName), domErrEmptyCreateAttributeNS,
      [](auto& doc, auto* pURI, auto* pName) { return doc.createAttributeNS(pURI, pName); },
      namespaceURI, qualifiedName);
}

TSXStatus TSXCreateTextNode(TSXRefId document, HStr* text, TSXRefId* textOut) {
  return CreateIn<Unguarded>(
      document, textOut, domErrRefCreateTextNode, true, 0,
      [](auto& doc, auto* pText) { return doc.createTextNode(pText); }, text);
}

TSXStatus TSXCreateComment(TSXRefId document, HStr* text, TSXRefId* commentOut) {
  return CreateIn<Unguarded>(
      document, commentOut, domErrRefCreateComment, true, 0,
      [](auto& doc, auto* pText) { return doc.createComment(pText); }, text);
}

TSXStatus TSXCreateCDATASection(TSXRefId document, HStr* text, TSXRefId* sectionOut) {
  return CreateIn<CMapsSupport>(
      document, sectionOut, domErrRefCreateCDATASection, true, 0,
      [](auto& doc, auto* pText) { return doc.createCDATASection(pText); }, text);
}

TSXStatus TSXCreateProcessingInstruction(TSXRefId document, HStr* target, HStr* data,
                                         TSXRefId* instructionOut) {
  return CreateIn<CMapsNameSupport>(
      document, instructionOut, domErrRefCreateProcessingInstruction, IsGiven(target),
      domErrEmptyCreateProcessingInstruction,
      [](auto& doc, auto* pTarget, auto* pData) {
        return doc.createProcessingInstruction(pTarget, pData);
      },
      target, data);
}

TSXStatus TSXCreateEntityReference(TSXRefId document, HStr* name, TSXRefId* referenceOut) {
  return CreateIn<CMapsNameSupport>(
      document, referenceOut, domErrRefCreateEntityReference, IsGiven(name),
      domErrEmptyCreateEntityReference,
      [](auto& doc, auto* pName) { return doc.createEntityReference(pName); }, name);
}

TSXStatus TSXCreateDocumentFragment(TSXRefId document, TSXRefId* fragmentOut) {
  return CreateIn<Unguarded>(document, fragmentOut, domErrRefCreateDocumentFragment, true, 0,
                             [](auto& doc) { return doc.createDocumentFragment(); });
}

// Contract: the source is entered, not the copy.
TSXStatus TSXImportNode(TSXRefId document, TSXRefId source, const uint8_t* deep,
                        TSXRefId* copyOut) {
  return GetAll<CMapsSupport>(CNodeOut(copyOut),
                              std::tuple{CRef<CXercesDOM>{document, domErrRefImportNode},
                                         CRef<DOMNode>{source, domErrRefImportNodeArg}},
                              [&](auto& out, auto& dom, auto& from) {
                                DOMNode* pCopy = dom::Import(*dom.m_pDoc, from, *deep != 0);
                                if (pCopy == nullptr) return;
                                out.Store(pCopy);
                                g_NodeDomMap.Insert(&from, &dom);
                              });
}

// Contract: a node that is to be appended to itself is a missing child.
TSXStatus TSXAppendChild(TSXRefId parent, TSXRefId child) {
  return DoAll<CMapsAppend>(
      std::tuple{CRef<DOMNode>{parent, domErrRefAppendChild},
                 CRef<DOMNode>{child != parent ? child : 0, domErrRefAppendChildArg}},
      [](auto& parentNode, auto& childNode) {
        dom::InsertBefore(parentNode, childNode, nullptr);
        g_NodeDomMap.DeleteByNode(&childNode);
      });
}

// Contract: the reference child stands before the new child, against the order of
// the DOM call, and is not checked: one that names nothing appends at the end.
TSXStatus TSXInsertBefore(TSXRefId parent, TSXRefId referenceChild, TSXRefId newChild) {
  return DoAll<CMapsInsert>(
      std::tuple{CRef<DOMNode>{parent, domErrRefImportNode}, CUncheckedRef{referenceChild},
                 CRef<DOMNode>{newChild, domErrRefImportNodeArg}},
      [](auto& parentNode, auto* pReference, auto& childNode) {
        dom::InsertBefore(parentNode, childNode, pReference);
        g_NodeDomMap.DeleteByNode(&childNode);
      });
}

TSXStatus TSXReplaceChild(TSXRefId parent, TSXRefId newChild, TSXRefId oldChild) {
  return DoAll<CMapsInsert>(std::tuple{CRef<DOMNode>{parent, domErrRefReplaceChild},
                                       CRef<DOMNode>{newChild, domErrRefReplaceChildNew},
                                       CRef<DOMNode>{oldChild, domErrRefReplaceChildOld}},
                            [](auto& parentNode, auto& childNode, auto& oldNode) {
                              dom::ReplaceChild(parentNode, childNode, oldNode);
                              g_NodeDomMap.DeleteByNode(&childNode);
                              // Contract: an entry that the old child had stays; none is
                              // made for it. A host sees the locks of both calls.
                              g_NodeDomMap.Insert(&oldNode, g_NodeDomMap.GetDomByNode(&oldNode));
                            });
}

TSXStatus TSXRemoveChild(TSXRefId parent, TSXRefId child) {
  return DoAll<CMapsRemove>(std::tuple{CRef<DOMNode>{parent, domErrRefRemoveChild},
                                       CRef<DOMNode>{child, domErrRefRemoveChildArg}},
                            [&](auto& parentNode, auto& childNode) {
                              dom::RemoveChild(parentNode, childNode);
                              if (g_NodeSessMap.DeleteBySess(child)) dom::Release(childNode);
                            });
}
