#include <tessel/document.h>
#include <tessel/status.h>

#include <cstring>
#include <memory>

#include "document/find.h"
#include "dom/release.h"
#include "dom/takentypes.h"
#include "host/domowner.h"
#include "host/guards.h"
#include "host/text.h"

using xercesc::DOMDocument;
using xercesc::DOMDocumentType;
using xercesc::DOMException;
using xercesc::DOMImplementation;
using xercesc::DOMNode;

namespace {

// A document object on its way to the host. Unless it is kept, it goes again and
// leaves no trace in the registries.
class CNewDocument {
 public:
  CNewDocument() : m_pDom(std::make_unique<CXercesDOM>()) {}
  ~CNewDocument() {
    if (m_pDom == nullptr || !m_IsKnown) return;
    g_NodeSessMap.Withdraw(m_pDom.get());
    g_NodeDomMap.DeleteByDom(m_pDom.get());
  }
  CNewDocument(const CNewDocument&) = delete;
  CNewDocument& operator=(const CNewDocument&) = delete;

  void Adopt(DOMDocument* pDoc) {
    m_pDom->m_pDoc->release();
    m_pDom->m_pDoc = pDoc;
  }
  TSXRefId Register() {
    m_IsKnown = true;
    return g_NodeSessMap.Insert(m_pDom.get());
  }
  void Enter() {
    m_IsKnown = true;
    g_NodeDomMap.Insert(m_pDom->DocumentNode(), m_pDom.get());
  }
  void Keep() { static_cast<void>(m_pDom.release()); }

 private:
  std::unique_ptr<CXercesDOM> m_pDom;
  bool m_IsKnown = false;  // to a registry
};

// A name that the DOM refuses would leave the document type pointing into the
// document that was given up, so the names are tried without the type first.
CDOMOwner<DOMDocument> CreateTree(DOMImplementation& implementation, const XMLCh* pURI,
                                  const XMLCh* pName, DOMDocumentType* pType) {
  if (pType != nullptr && dom::IsFreeType(*pType)) {
    CDOMOwner<DOMDocument>(implementation.createDocument(pURI, pName, nullptr)).reset();
  }
  return CDOMOwner<DOMDocument>(implementation.createDocument(pURI, pName, pType));
}

TSXRefId CreateDocument(DOMImplementation& implementation, const XMLCh* pURI, const XMLCh* pName,
                        DOMDocumentType* pType) {
  const bool isTaken = pType != nullptr && dom::IsFreeType(*pType);
  CNewDocument document;
  CDOMOwner<DOMDocument> tree = CreateTree(implementation, pURI, pName, pType);
  if (tree == nullptr) return 0;
  document.Adopt(tree.release());
  document.Enter();
  const TSXRefId id = document.Register();
  if (isTaken) dom::takentypes::Note(*pType);
  document.Keep();
  return id;
}  // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): the registries have it

// Frees what belongs to no document object and to no tree: a cloned document, a
// document type that no document took. Its last id has just been given back.
void ReleaseUnowned(const CDOMNodeSessMap::CEntry& entry) {
  DOMNode* pNode = entry.m_pNode;
  if (entry.m_Kind == ENodeKind::kBareDocument) {
    if (g_NodeDomMap.GetDomByNode(pNode) == nullptr) dom::ReleaseTree(dom::DocumentBehind(*pNode));
  } else if (dom::IsFreeType(*pNode)) {
    dom::Release(*pNode);
  }
}

// Frees a document object that has left the map, with its tree.
void DeleteDocumentObject(CXercesDOM* pDom) {
  dom::BeforeTreeGoes(*pDom->m_pDoc);
  delete pDom;
}

void CloseDocument(const CDOMNodeSessMap::CClosed& entry) {
  if (!entry.m_IsLast) return;
  const bool isObject = entry.m_Kind == ENodeKind::kDocumentObject;
  // Contract: whatever was closed, a host sees the lock of this look-up.
  auto* pDom = isObject ? static_cast<CXercesDOM*>(entry.m_pNode) : nullptr;
  if (g_NodeDomMap.DeleteByDom(pDom) && pDom != nullptr) DeleteDocumentObject(pDom);
  if (!isObject) ReleaseUnowned(entry);
}

void CloseNode(const CDOMNodeSessMap::CClosed& entry) {
  // The document node's entry leads to its document object, which owns the tree:
  // it does not make the node one to be freed. A host sees the lock all the same.
  if (g_NodeDomMap.DeleteByNode(entry.m_Kind == ENodeKind::kNode ? entry.m_pNode : nullptr)) {
    // Contract: freed at every close, however many hand-outs are left.
    dom::Release(*entry.m_pNode);
  } else if (entry.m_IsLast && !entry.m_IsOwned && entry.m_Kind != ENodeKind::kDocumentObject) {
    ReleaseUnowned(entry);
  }
}

// Contract: closing reports nothing and swallows what the DOM refuses. A host sees the
// lock of a look-up, of the closing and of the map.
template <class Call>
void Close(TSXRefId id, Call close) {
  if (g_NodeSessMap.GetPtrBySess(id) == nullptr) return;
  Always<domErrUnexpected>::Run([&] {
    const auto closed = g_NodeSessMap.Close(id);
    if (closed.m_pNode != nullptr) close(closed);
  });
}

}  // namespace

TSXStatus TSXDocumentOpen(uint64_t, TSXRefId* documentOut) {
  CNewDocument document;
  *documentOut = document.Register();
  document.Enter();
  document.Keep();
  return 0;
}

TSXStatus TSXCreateDocument(TSXRefId implementation, HStr* namespaceURI, HStr* qualifiedName,
                            TSXRefId documentType, TSXRefId* documentOut) {
  DOMImplementation* pImplementation = g_DOMImplSessMap.GetPtrBySess(implementation);
  auto* pType = documentType != 0 ? FindObject<DOMDocumentType>(documentType) : nullptr;
  *documentOut = 0;
  if (pImplementation == nullptr) return domErrRefCreateDocument;
  if (documentType != 0 && pType == nullptr) return domErrRefCreateDocumentDocType;
  const CWideText uri(namespaceURI);
  const CWideText name(qualifiedName);
  return Maps<DOMException::INVALID_CHARACTER_ERR, DOMException::NAMESPACE_ERR,
              DOMException::WRONG_DOCUMENT_ERR, DOMException::NOT_SUPPORTED_ERR>::Run([&] {
    *documentOut = CreateDocument(*pImplementation, uri.Get(), name.Get(), pType);
  });
}

void TSXDocumentClose(TSXRefId document) { Close(document, CloseDocument); }

void TSXNodeClose(TSXRefId node) { Close(node, CloseNode); }

void CleanupProcCXercesDOM(unsigned char* data) {
  TSXRefId document = 0;
  std::memcpy(&document, data, sizeof document);
  CXercesDOM* pDom = FindObject<CXercesDOM>(document);
  Always<domErrUnexpected>::Run([&] {
    if (!g_NodeDomMap.DeleteByDom(pDom)) return;
    // Contract: the ids name nothing from here on, however many hand-outs are open.
    g_NodeSessMap.Withdraw(pDom);
    DeleteDocumentObject(pDom);
  });
}
