#pragma once

// Rotation matrices in ZmMathd / ZmMathf. Angles are in degrees; the matrices rotate column
// vectors by the right-hand rule (R v turns v about the axis, counter-clockwise when the axis
// points at the viewer).
//
// Quarter turns are exact: when the angle is an integer (the angle rounded half away from
// zero, converted to float, equals it) and that integer is a multiple of 90 modulo 360, the
// cosine and sine are exactly 0 and +-1. Every other angle goes through
// theta = acos(-1) * angle / 180 in the class's precision and its cos and sin.
#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmMatrix.h"
#include "zemcalc/ZmPoint3.h"

template <class T>
class ZMCALC_API ZmMathRotationT {
public:
  using Vector3 = ZmVector3T<T>;
  using Matrix3 = ZmMatrix3T<T>;

  // The rotation by angleDeg about axis (any length): with (u, v, w) the orthonormal
  // completion of the axis (ZmMathAngleT::OrthogonalVectors), v' = c v + s w and
  // w' = c w - s v, the coefficient (i, j) is u_i u_j + v'_i v_j + w'_i w_j. An axis shorter
  // than the float epsilon 1.1920929e-7 (its length rounded to float), an unusable axis, or a
  // non-finite angle give the identity: no rotation. An axis from that length up to 1e-6f is
  // replaced by (0, 0, 1) in the completion, so it turns about Z: pass axes of sensible length.
  static Matrix3 RotationMatrix(const Vector3& axis, T angleDeg);
  // The rotation about a principal axis: 0 (X) rows (1, 0, 0), (0, c, -s), (0, s, c); 1 (Y)
  // rows (c, 0, s), (0, 1, 0), (-s, 0, c); 2 (Z) rows (c, -s, 0), (s, c, 0), (0, 0, 1). Any
  // other index, or a non-finite angle, gives the zero matrix, deliberately not the identity,
  // so that the mistake shows.
  static Matrix3 RotationMatrix(int axisIndex, T angleDeg);
  // m = RotationMatrix(axis, angleDeg) * m: the rotation is applied after m.
  static void RotateMatrix(Matrix3& m, const Vector3& axis, T angleDeg);
};

extern template class ZmMathRotationT<double>;
extern template class ZmMathRotationT<float>;
