// Gives ids of the registries without owners back.
#pragma once

#include <tessel/export.h>
#include <tessel/status.h>

#include "host/guards.h"
#include "registry/ptrsessmap.h"

// The object is not freed: its document, or the XML library, owns it.
template <class T>
void CloseReference(CPtrSessMap<T>& registry, TSXRefId id) {
  if (registry.GetPtrBySess(id) == nullptr) return;
  Always<domErrUnexpected>::Run([&] { registry.DeleteBySess(id); });
}
