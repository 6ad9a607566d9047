#include "foundation/out_of_memory.h"

#include <wbcore/WbLocalize.h>

const WbErrObj* zm::OutOfMemoryError() noexcept { return WbSetError(WbLocalizeStringExW(L"Not enough memory", 0)); }

int& zm::BoundaryCall::Depth() noexcept {
  // Constant-initialised and trivially destructible: no memory is needed on any thread.
  thread_local int depth = 0;
  return depth;
}
