// Bytes as calls of all exported functions, watched by a model.
#include "decoder.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t size) {
  if (!fuzz::IsTame({reinterpret_cast<const char*>(pData), size})) return 0;
  const fuzz::CLedger ledger;
  fuzz::RunCalls(fuzz::CBytes(pData, size), false);
  return 0;
}
