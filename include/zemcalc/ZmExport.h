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

// Forward declarations of exported class templates. Clang fixes a template's visibility at its
// first declaration, so the mark must be there as well; GCC takes it from the definition and
// rejects it on a declaration seen after the definition.
#if defined(__clang__)
#  define ZMCALC_API_FORWARD ZMCALC_API
#else
#  define ZMCALC_API_FORWARD
#endif
