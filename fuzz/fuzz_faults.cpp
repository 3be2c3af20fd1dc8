// As fuzz_calls, under a host that refuses an allocation now and then and moves
// every block that is resized.
#include "decoder.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t size) {
  if (!fuzz::IsTame({reinterpret_cast<const char*>(pData), size})) return 0;
  StandinMoveOnResize(true);
  const fuzz::CLedger ledger;
  fuzz::RunCalls(fuzz::CBytes(pData, size), true);
  return 0;
}
