#include <tessel/mutation.h>
#include <tessel/status.h>

#include "api/frame.h"
#include "api/outs.h"
#include "document/depth.h"
#include "document/release.h"
#include "document/takentypes.h"

using xercesc::DOMDocument;
using xercesc::DOMException;
using xercesc::DOMNode;

namespace {

using CMapsName = Maps<DOMException::INVALID_CHARACTER_ERR>;
using CMapsSupport = Maps<DOMException::NOT_SUPPORTED_ERR>;
using CMapsNameSupport = Maps<DOMException::INVALID_CHARACTER_ERR, DOMException::NOT_SUPPORTED_ERR>;
using CMapsQualifiedName = Maps<DOMException::INVALID_CHARACTER_ERR,
                                DOMException::NOT_SUPPORTED_ERR, DOMException::NAMESPACE_ERR>;
using CMapsInsert = Maps<DOMException::HIERARCHY_REQUEST_ERR, DOMException::WRONG_DOCUMENT_ERR,
                         DOMException::NO_MODIFICATION_ALLOWED_ERR>;
using CMapsInsertAt = Maps<DOMException::HIERARCHY_REQUEST_ERR, DOMException::WRONG_DOCUMENT_ERR,
                           DOMException::NO_MODIFICATION_ALLOWED_ERR, DOMException::NOT_FOUND_ERR>;
using CMapsRemove = Maps<DOMException::NO_MODIFICATION_ALLOWED_ERR, DOMException::NOT_FOUND_ERR>;

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

// Puts a node into a tree, which owns it from then on.
template <class Guard, class Call>
TSXStatus Attach(DOMNode* pNew, Call attach) {
  const COfferedNode offered(pNew);
  const TSXStatus status = Guard::Run([&] {
    attach();
    g_NodeDomMap.DeleteByNode(pNew);
  });
  const TSXStatus tied = Guard::Run([&] { offered.Tie(); });
  return status != 0 ? status : tied;
}

// The DOM looks for the new child from the parent's parent upwards only, and would
// make a ring of a node that is put into itself.
void RequireOther(const DOMNode* pParent, const DOMNode* pNew) {
  if (pNew == pParent) throw DOMException(DOMException::HIERARCHY_REQUEST_ERR);
}

// A child that takes its own place is removed: insertion before itself does nothing. A
// document would go on to call it its element or its type.
void ReplaceChild(DOMNode& parent, DOMNode* pNew, DOMNode* pOld) {
  if (pNew == pOld) {
    parent.removeChild(pOld);
  } else {
    parent.replaceChild(pNew, pOld);
  }
}

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

TSXStatus TSXImportNode(TSXRefId document, TSXRefId source, const uint8_t* deep,
                        TSXRefId* copyOut) {
  CNodeOut out(copyOut);
  auto* pDom = FindObject<CXercesDOM>(document);
  auto* pSource = FindObject<DOMNode>(source);
  if (pDom == nullptr) return domErrRefImportNode;
  if (pSource == nullptr) return domErrRefImportNodeArg;
  const TSXStatus status = CMapsSupport::Run([&] {
    if (*deep != 0) depth::RequireRoom(*pSource, depth::kImportLevel);
    DOMNode* pCopy = pDom->m_pDoc->importNode(pSource, *deep != 0);
    if (pCopy == nullptr) return;
    out.Store(pCopy);
    // Contract: the source is entered, not the copy.
    g_NodeDomMap.Insert(pSource, pDom);
  });
  return status == 0 ? 0 : out.Fail(status);
}

TSXStatus TSXAppendChild(TSXRefId parent, TSXRefId child) {
  auto* pParent = FindObject<DOMNode>(parent);
  auto* pChild = FindObject<DOMNode>(child);
  if (pParent == nullptr) return domErrRefAppendChild;
  if (pChild == nullptr || pChild == pParent) return domErrRefAppendChildArg;
  return Attach<CMapsInsert>(pChild, [&] { pParent->appendChild(pChild); });
}

// Contract: the reference child stands before the new child, against the order of
// the DOM call, and is not checked: one that names nothing appends at the end.
TSXStatus TSXInsertBefore(TSXRefId parent, TSXRefId referenceChild, TSXRefId newChild) {
  auto* pParent = FindObject<DOMNode>(parent);
  auto* pReference = FindObject<DOMNode>(referenceChild);
  auto* pNew = FindObject<DOMNode>(newChild);
  if (pParent == nullptr) return domErrRefImportNode;
  if (pNew == nullptr) return domErrRefImportNodeArg;
  return Attach<CMapsInsertAt>(pNew, [&] {
    RequireOther(pParent, pNew);
    pParent->insertBefore(pNew, pReference);
  });
}

TSXStatus TSXReplaceChild(TSXRefId parent, TSXRefId newChild, TSXRefId oldChild) {
  auto* pParent = FindObject<DOMNode>(parent);
  auto* pNew = FindObject<DOMNode>(newChild);
  auto* pOld = FindObject<DOMNode>(oldChild);
  if (pParent == nullptr) return domErrRefReplaceChild;
  if (pNew == nullptr) return domErrRefReplaceChildNew;
  if (pOld == nullptr) return domErrRefReplaceChildOld;
  return Attach<CMapsInsertAt>(pNew, [&] {
    RequireOther(pParent, pNew);
    ReplaceChild(*pParent, pNew, pOld);
    // Contract: an entry that the old child had stays; none is made for it.
    g_NodeDomMap.Insert(pOld, g_NodeDomMap.GetDomByNode(pOld));
  });
}

TSXStatus TSXRemoveChild(TSXRefId parent, TSXRefId child) {
  auto* pParent = FindObject<DOMNode>(parent);
  auto* pChild = FindObject<DOMNode>(child);
  if (pParent == nullptr) return domErrRefRemoveChild;
  if (pChild == nullptr) return domErrRefRemoveChildArg;
  return CMapsRemove::Run([&] {
    DOMNode* pRemoved = pParent->removeChild(pChild);
    if (pRemoved != nullptr && g_NodeSessMap.DeleteBySess(child)) ReleaseNode(pRemoved);
  });
}
