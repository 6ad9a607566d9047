#pragma once

#include <wbcore/WbError.h>
#include <wbcore/WbLocalize.h>

#include <new>

#include "zemcalc/ZmFilter.h"

namespace zm {
namespace filter {

// The messages of the filters, in English; the host application may translate them. Point
// and interval numbers are printed with %llu from an unsigned long long, so that they stay
// right on curves of more than 2^31 points.
constexpr const wchar_t* kLowerStep = L"Can't process filtering. The time step of interval %llu is lower than %g";
constexpr const wchar_t* kHigherStep = L"Can't process filtering. The time step of interval %llu is higher than %g";
constexpr const wchar_t* kNotEnoughPoints = L"Not enough points to filter";
constexpr const wchar_t* kNotEnoughMemory = L"Not enough memory to filter";
constexpr const wchar_t* kInvalidKernelSize = L"Invalid filter kernel size %d";
constexpr const wchar_t* kUnknownExtrapolation = L"Unknown extrapolation type %d";
constexpr const wchar_t* kInvalidWidth = L"Can't process filtering. The window width %g is not a positive number";
constexpr const wchar_t* kInvalidBefore = L"Can't process filtering. The window position %g is not between 0 and 1";
constexpr const wchar_t* kAbscissaNotFinite = L"Can't process filtering. The abscissa of point %llu is not a finite number";
constexpr const wchar_t* kAbscissaDecreases = L"Can't process filtering. The abscissa decreases at interval %llu";

// Records a failure: the message passes through the localisation hook, then is formatted.
template <class... Args>
const WbErrObj* Fail(const wchar_t* message, const Args&... args) {
  return WbSetError(WbLocalizeStringExW(message, 0), args...);
}

// The result of a filter's Compute: on failure out becomes the copy of in (unless it is in),
// which needs memory in its turn.
template <class Curve>
const WbErrObj* KeepInputOnFailure(const WbErrObj* error, const Curve& in, Curve& out) {
  if (error && &in != &out) {
    try {
      out = in;
    } catch (const std::bad_alloc&) {
      return Fail(kNotEnoughMemory);
    }
  }
  return error;
}

inline bool IsKnownExtrapolation(Extrapolation e) {
  return e == ZmExtrapolationZeros || e == ZmExtrapolationConstant || e == ZmExtrapolationLinear ||
         e == ZmExtrapolationReflection;
}

}  // namespace filter
}  // namespace zm
