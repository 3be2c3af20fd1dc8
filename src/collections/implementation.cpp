#include <tessel/collections.h>
#include <tessel/status.h>

#include "api/frame.h"
#include "collections/outs.h"

using xercesc::DOMException;
using xercesc::DOMImplementation;

TSXStatus TSXGetImplementation(TSXRefId document, uint64_t, TSXRefId* implementationOut) {
  return Get<CXercesDOM, Maps<>>(
      document, domErrRefGetImplementation,
      CHeldOut<DOMImplementation>(implementationOut, g_DOMImplSessMap), [](auto& dom) {
        return CHeld<DOMImplementation>{dom.m_pDoc->getImplementation(), nullptr};
      });
}

TSXStatus TSXHasFeature(TSXRefId implementation, HStr* feature, HStr* version, uint8_t* flagOut) {
  return Get<DOMImplementation, Maps<>>(
      implementation, domErrRefHasFeature, CFlagOut(flagOut),
      [](auto& impl, auto* pFeature, auto* pVersion) {
        return impl.hasFeature(pFeature, pVersion);
      },
      feature, version);
}

TSXStatus TSXCreateDocumentType(TSXRefId implementation, HStr* qualifiedName, HStr* publicId,
                                HStr* systemId, TSXRefId* typeOut) {
  return Get<DOMImplementation, Maps<DOMException::INVALID_CHARACTER_ERR,
                                     DOMException::NOT_SUPPORTED_ERR, DOMException::NAMESPACE_ERR>>(
      implementation, domErrRefCreateDocumentType, CNodeOut(typeOut),
      [](auto& impl, auto* pName, auto* pPublic, auto* pSystem) {
        return impl.createDocumentType(pName, pPublic, pSystem);
      },
      qualifiedName, publicId, systemId);
}

void TSXImplementationClose(TSXRefId implementation) {
  g_DOMImplSessMap.CloseKnown(implementation);
}
