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
