#pragma once

// Small pieces shared by the tensor sources.
#include "zemcalc/ZmConstants.h"

namespace zm {
namespace tensor {

template <class T>
T Magnitude(T v) {
  return v < 0 ? -v : v;
}

// Principal values of the 2D tensor (xx, yy, xy): R = sqrt(4 xy xy + (xx - yy)^2),
// first = (xx + yy + R) 0.5, second = (xx + yy - R) 0.5.
template <class T>
void PlaneMainValues(T xx, T yy, T xy, T& first, T& second) {
  const T d = xx - yy;
  const T r = zm::Sqrt(T(4) * xy * xy + d * d);
  first = (xx + yy + r) * T(0.5);
  second = (xx + yy - r) * T(0.5);
}

}  // namespace tensor
}  // namespace zm
