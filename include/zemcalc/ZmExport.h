#pragma once

// Only what is marked with ZMCALC_API is visible outside the shared library.
#if defined(_WIN32)
#  if defined(ZEMCALC_BUILDING)
#    define ZMCALC_API __declspec(dllexport)
#  else
#    define ZMCALC_API __declspec(dllimport)
#  endif
#else
#  define ZMCALC_API __attribute__((visibility("default")))
#endif

// Nothing is thrown across this boundary, not even when memory runs out. A function that
// allocates and finds no memory gives its failure result instead:
// - a function returning const WbErrObj* returns an error ("Not enough memory", or the
//   family's own wording such as "Not enough memory to filter");
// - a function returning a count returns 0 with its output arrays (and the optional index
//   arrays that go with them) emptied; a curve edited in place is left as it was;
// - a function returning 1/0 returns 0; its out-value is then the invalid marker, its text
//   empty, its array emptied;
// - a function returning a text returns the empty text; one returning an index returns -1;
// - WbRuntimeClass::CreateObject returns null.
// The error record itself needs no memory (WbSetError). Constructors and copies of the values
// that hold text or arrays (WbString, the arrays, ZmUnitDim) report a lack of memory as the
// standard containers do, with std::bad_alloc; they leak nothing and leave an assigned object
// as it was. A filter whose kernel could not be allocated refuses to compute (SetKernelSize).
// Forward declarations of exported class templates. Clang fixes a template's visibility at its
// first declaration, so the mark must be there as well; GCC takes it from the definition and
// rejects it on a declaration seen after the definition.
#if defined(__clang__)
#  define ZMCALC_API_FORWARD ZMCALC_API
#else
#  define ZMCALC_API_FORWARD
#endif
