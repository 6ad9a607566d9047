#pragma once

// Symbols of the base library are hidden unless marked: the shared object exports exactly
// its documented interface.
#if defined(_WIN32)
#  if defined(WBCORE_BUILDING)
#    define WBCORE_API __declspec(dllexport)
#  else
#    define WBCORE_API __declspec(dllimport)
#  endif
#else
#  define WBCORE_API __attribute__((visibility("default")))
#endif

// Header-only class templates whose instantiations appear in the interface of other shared
// libraries: visible on ELF, so that those instantiations are exported too (a template's
// instantiation is only as visible as its arguments).
#if defined(_WIN32)
#  define WBCORE_VISIBLE
#else
#  define WBCORE_VISIBLE __attribute__((visibility("default")))
#endif
