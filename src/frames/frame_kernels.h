#pragma once

// Inline kernels of the frames: the coordinate-type conversions and the placement of local
// coordinates in a frame (origin + axes). The typed frames (ZmFramed / ZmFramef), the
// array-based ZmFrame3D and the point members that take a frame all go through them, so each
// rule is written once and the per-element loops make no call through the exported interface.
#include <cmath>

#include "zemcalc/ZmConstants.h"
#include "zemcalc/ZmMatrix.h"
#include "zemcalc/ZmPoint3.h"
#include "math/metric_kernels.h"

namespace zm {
namespace frames {

// The precision in which a frame of scalar T works on an argument of scalar U: the wider one.
template <class T, class U>
using Wider = decltype(T() + U());

// A frame's origin and axes in the precision W, the axes being the columns of m (m[row][col]).
// It is a plain copy without the matrix class's virtual table, so a widened copy costs twelve
// assignments; usable tells whether every coordinate is neither the invalid marker nor NaN.
template <class W>
struct Placement {
  ZmPoint3T<W> origin;
  W m[3][3];
  bool usable;

  template <class T>
  Placement(const WbCoord3DT<T>& o, const ZmMatrix3T<T>& axes) : origin(o) {
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) m[i][j] = W(axes[i][j]);
    }
    usable = metric::AreUsable(origin, Column(0), Column(1), Column(2));
  }

  ZmVector3T<W> Column(int j) const { return ZmVector3T<W>(m[0][j], m[1][j], m[2][j]); }

  // M v: local Cartesian components turned into global ones.
  ZmVector3T<W> AxesTimes(const WbCoord3DT<W>& v) const {
    return ZmVector3T<W>(m[0][0] * v.x + m[0][1] * v.y + m[0][2] * v.z, m[1][0] * v.x + m[1][1] * v.y + m[1][2] * v.z,
                         m[2][0] * v.x + m[2][1] * v.y + m[2][2] * v.z);
  }
  // M^T v: the dot products of a global vector with the X, Y and Z axes.
  ZmVector3T<W> AxesTransposedTimes(const WbCoord3DT<W>& v) const {
    return ZmVector3T<W>(m[0][0] * v.x + m[1][0] * v.y + m[2][0] * v.z, m[0][1] * v.x + m[1][1] * v.y + m[2][1] * v.z,
                         m[0][2] * v.x + m[1][2] * v.y + m[2][2] * v.z);
  }
};

// Cartesian components of coordinates given in a frame type: 0 (x, y, z) unchanged;
// 1 (r, theta, z); 2 (rho, theta, phi), angles in degrees converted with the double value of
// pi/180. Any other type writes nothing and returns false.
template <class W>
bool ToCartesian(int type, const WbCoord3DT<W>& in, WbCoord3DT<W>& out) {
  const W k = W(kDegToRad);
  switch (type) {
    case 0:
      out = in;
      return true;
    case 1: {
      const W theta = in.y * k;
      out = WbCoord3DT<W>(in.x * std::cos(theta), in.x * std::sin(theta), in.z);
      return true;
    }
    case 2: {
      const W theta = in.y * k, phi = in.z * k;
      out = WbCoord3DT<W>(in.x * std::cos(theta) * std::cos(phi), in.x * std::sin(theta) * std::cos(phi),
                          in.x * std::sin(phi));
      return true;
    }
    default:
      return false;
  }
}

// The azimuth in degrees from its cosine, in (-180, 180]: acos of the cosine clamped to
// [-1, 1] (rounding can push x / r a hair past 1), negated when y < 0.
template <class W>
W Azimuth(W cosine, W y) {
  const W clamped = cosine > W(1) ? W(1) : (cosine < W(-1) ? W(-1) : cosine);
  const W theta = std::acos(clamped);
  return (y < 0 ? -theta : theta) * W(kRadToDeg);
}

// Coordinates in a frame type from Cartesian components, the inverse of ToCartesian for
// r, rho >= 0, theta in (-180, 180] and phi in [-90, 90]. A radius below 1e-6f (widened) has
// no direction: its angles are 0. On the polar axis of a spherical frame theta is 0: where
// x = y = 0, and where rho cos phi is not positive, which happens only by rounding at the
// pole (cos(asin(1)) is -4.4e-8 in float). Any other type writes nothing and returns false.
template <class W>
bool FromCartesian(int type, const WbCoord3DT<W>& in, WbCoord3DT<W>& out) {
  const W small = W(kTolerance6);
  switch (type) {
    case 0:
      out = in;
      return true;
    case 1: {
      const W r = Sqrt(in.x * in.x + in.y * in.y);
      out = WbCoord3DT<W>(r, r < small ? W(0) : Azimuth(in.x / r, in.y), in.z);
      return true;
    }
    case 2: {
      const W rho = Sqrt(in.x * in.x + in.y * in.y + in.z * in.z);
      if (rho < small) {
        out = WbCoord3DT<W>(rho, W(0), W(0));
        return true;
      }
      const W sine = in.z / rho;
      const W phi = std::asin(sine > W(1) ? W(1) : (sine < W(-1) ? W(-1) : sine));
      const W across = rho * std::cos(phi);
      const bool polar = (in.x == 0 && in.y == 0) || !(across > 0);
      out = WbCoord3DT<W>(rho, polar ? W(0) : Azimuth(in.x / across, in.y), phi * W(kRadToDeg));
      return true;
    }
    default:
      return false;
  }
}

// Local coordinates of the frame type to global ones: origin + M c for a point, M c for a
// vector, c the Cartesian form. False (nothing written) for an unknown type.
template <class W>
bool LocalToGlobal(const Placement<W>& frame, int type, bool isPoint, const WbCoord3DT<W>& local,
                   WbCoord3DT<W>& global) {
  WbCoord3DT<W> c;
  if (!ToCartesian(type, local, c)) return false;
  ZmVector3T<W> g = frame.AxesTimes(c);
  if (isPoint) g += frame.origin;
  global = g;
  return true;
}

// Global coordinates to local ones of the frame type: M^T (p - origin) for a point, M^T v
// for a vector, then converted from Cartesian. False (nothing written) for an unknown type.
template <class W>
bool GlobalToLocal(const Placement<W>& frame, int type, bool isPoint, const WbCoord3DT<W>& global,
                   WbCoord3DT<W>& local) {
  const ZmVector3T<W> d = isPoint ? ZmVector3T<W>(ZmPoint3T<W>(global) - frame.origin) : ZmVector3T<W>(global);
  return FromCartesian(type, frame.AxesTransposedTimes(d), local);
}

}  // namespace frames
}  // namespace zm
