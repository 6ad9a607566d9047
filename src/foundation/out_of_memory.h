#pragma once

// Out-of-memory handling at the library's boundary. Nothing is thrown to the caller: every
// exported function that allocates is a function-try-block that opens with a BoundaryCall and
// whose handler catches std::exception (std::bad_alloc, or std::length_error for a size the
// standard containers refuse) and gives the function's documented result for a lack of
// memory: an error object, 0 with the output arrays emptied, an empty text. Results are built
// aside and handed over by operations that cannot fail, so that a failure leaves the caller's
// objects as documented.
//
// Exported functions call one another (a unit symbol is made while a value is formatted, a
// curve is resampled inside the transmissibility). Only the outermost of them answers a lack
// of memory: an inner one passes the exception on, so that the caller learns that memory ran
// out rather than seeing an inner step's in-band "nothing found".
#include <wbcore/WbError.h>

namespace zm {

// "Not enough memory", localised and recorded; recording it needs no memory.
const WbErrObj* OutOfMemoryError() noexcept;

// Marks a guarded exported call on this thread for as long as it runs.
class BoundaryCall {
 public:
  BoundaryCall() noexcept { ++Depth(); }
  ~BoundaryCall() { --Depth(); }
  BoundaryCall(const BoundaryCall&) = delete;
  BoundaryCall& operator=(const BoundaryCall&) = delete;

  // In a handler (the body's BoundaryCall is gone by then): whether a guarded call further up
  // the stack will answer, so that this one must pass the exception on.
  static bool Nested() noexcept { return Depth() > 0; }

 private:
  static int& Depth() noexcept;
};

}  // namespace zm
