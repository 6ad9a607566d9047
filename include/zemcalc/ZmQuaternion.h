#pragma once

// Quaternions: ZmQuaterniond / ZmQuaternionf, the four scalars w, x, y, z in that order (w the
// scalar part), no virtual table. Default value: the identity (1, 0, 0, 0).
//
// A unit quaternion q = (cos(a/2), sin(a/2) u) is the rotation by the angle a about the unit
// axis u, right-hand rule; q * v rotates the vector v, and q1 * q2 rotates by q2 first, then by
// q1. q and -q are the same rotation. Its rotation matrix (ToRotationMatrix) rotates column
// vectors the same way: R * v == q * v.
//
// Euler angles, for a frame whose Y axis points up and which looks down its -Z axis: the
// pitch is the rotation about X, the yaw about Y, the roll about Z. They are the angles of the
// decomposition q = Rz(roll) * Ry(yaw) * Rx(pitch) (pitch applied first); pitch and roll are
// in [-pi, pi], yaw in [-pi/2, pi/2]. Angles are ZmRadiand / ZmRadianf.
#include <type_traits>

#include "zemcalc/ZmAngle.h"
#include "zemcalc/ZmConstants.h"
#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmMatrix.h"
#include "zemcalc/ZmPoint3.h"

template <class T>
class ZMCALC_API ZmQuaternionT {
public:
  static_assert(std::is_floating_point<T>::value, "quaternions are float or double");
  using Scalar = T;
  using Radian = ZmAngleT<T, zm::AngleUnit::Radian>;

  T w = 1;
  T x = 0;
  T y = 0;
  T z = 0;

  // The identity.
  constexpr ZmQuaternionT() = default;
  constexpr ZmQuaternionT(T wValue, T xValue, T yValue, T zValue) : w(wValue), x(xValue), y(yValue), z(zValue) {}
  // The other precision, component by component (implicit, like every twin conversion).
  template <class U>
  constexpr ZmQuaternionT(const ZmQuaternionT<U>& o)
      : w(zm::ConvertScalar<T>(o.w)),
        x(zm::ConvertScalar<T>(o.x)),
        y(zm::ConvertScalar<T>(o.y)),
        z(zm::ConvertScalar<T>(o.z)) {}
  // The rotation of a rotation matrix (see FromRotationMatrix).
  explicit ZmQuaternionT(const ZmMatrix3T<T>& rotation) { FromRotationMatrix(rotation); }

  static const ZmQuaternionT IDENTITY;
  static const ZmQuaternionT ZERO;

  // The rotation by `angle` about `axis` (right-hand rule). The axis need not be of unit
  // length; an invalid or zero axis returns 0 and leaves the quaternion unchanged.
  unsigned char FromAngleAxis(const Radian& angle, const ZmVector3T<T>& axis);
  // The angle in [0, 2 pi] and the unit axis of the rotation, also for a quaternion that is
  // not of unit length. Without a rotation (the vector part is zero) the angle is 0 and the
  // axis is (1, 0, 0).
  void ToAngleAxis(Radian& angle, ZmVector3T<T>& axis) const;
  // From a rotation matrix (orthonormal, determinant 1), which rotates column vectors. Taken
  // from the largest of w, x, y, z to stay accurate near half turns; w >= 0 when the trace is
  // positive.
  void FromRotationMatrix(const ZmMatrix3T<T>& rotation);
  // The rotation matrix of the quaternion normalised (a zero quaternion gives the identity).
  void ToRotationMatrix(ZmMatrix3T<T>& rotation) const;
  ZmMatrix3T<T> ToRotationMatrix() const;

  // Rotations about X, Y and Z of the decomposition above; scale does not matter.
  Radian GetPitch() const;
  Radian GetYaw() const;
  Radian GetRoll() const;

  // 1 when the two quaternions are the same rotation to within |tolerance|: the angle of the
  // rotation that turns one into the other (in [0, pi], q and -q giving 0) is at most the
  // tolerance. Lengths do not matter; a zero quaternion equals only another zero quaternion.
  unsigned char Equals(const ZmQuaternionT& o, const Radian& tolerance) const;
  // Exact component-wise equality.
  unsigned char operator==(const ZmQuaternionT& o) const {
    return (w == o.w && x == o.x && y == o.y && z == o.z) ? 1 : 0;
  }
  unsigned char operator!=(const ZmQuaternionT& o) const { return (*this == o) ? 0 : 1; }

  // The Hamilton product: (w1 w2 - v1.v2, w1 v2 + w2 v1 + v1 x v2).
  ZmQuaternionT operator*(const ZmQuaternionT& o) const {
    return ZmQuaternionT(w * o.w - x * o.x - y * o.y - z * o.z, w * o.x + x * o.w + y * o.z - z * o.y,
                         w * o.y + y * o.w + z * o.x - x * o.z, w * o.z + z * o.w + x * o.y - y * o.x);
  }
  ZmQuaternionT operator+(const ZmQuaternionT& o) const { return ZmQuaternionT(w + o.w, x + o.x, y + o.y, z + o.z); }
  ZmQuaternionT operator-(const ZmQuaternionT& o) const { return ZmQuaternionT(w - o.w, x - o.x, y - o.y, z - o.z); }
  ZmQuaternionT operator-() const { return ZmQuaternionT(-w, -x, -y, -z); }
  ZmQuaternionT operator*(T s) const { return ZmQuaternionT(w * s, x * s, y * s, z * s); }
  friend ZmQuaternionT operator*(T s, const ZmQuaternionT& q) { return q * s; }

  // Rotates a vector, or a point about the origin, by this quaternion, which must be of unit
  // length (normalise first): v + 2w (u x v) + 2 u x (u x v), u the vector part.
  ZmVector3T<T> operator*(const ZmVector3T<T>& v) const { return Rotated(v); }
  ZmPoint3T<T> operator*(const ZmPoint3T<T>& p) const { return Rotated(p); }

  T Dot(const ZmQuaternionT& o) const { return w * o.w + x * o.x + y * o.y + z * o.z; }
  T SquaredNorm() const { return Dot(*this); }
  // The Euclidean length sqrt(w^2 + x^2 + y^2 + z^2).
  T Norm() const { return zm::Sqrt(SquaredNorm()); }
  // Divides by the length; 0 and unchanged when the length is zero or not finite.
  unsigned char Normalise();
  // (w, -x, -y, -z): the inverse of a unit quaternion.
  ZmQuaternionT Conjugate() const { return ZmQuaternionT(w, -x, -y, -z); }
  // The conjugate divided by the squared length; ZERO for a zero quaternion.
  ZmQuaternionT Inverse() const;

  // Spherical linear interpolation from p (t = 0) to q (t = 1) at constant angular speed, for
  // unit quaternions. With shortestPath, q is negated when that makes the arc shorter. When
  // the sine of the angle between p and q (as unit 4-vectors) is below 1.0e-6 (the float value),
  // that is when they are equal or opposite, the interpolation is linear and the result
  // normalised, which avoids dividing by a vanishing sine.
  static ZmQuaternionT Slerp(T t, const ZmQuaternionT& p, const ZmQuaternionT& q, unsigned char shortestPath = 1);

private:
  template <class C>
  C Rotated(const C& v) const {
    const ZmVector3T<T> u(x, y, z);
    const ZmVector3T<T> uv = u.cross(ZmVector3T<T>(v));
    const ZmVector3T<T> uuv = u.cross(uv);
    return C(v.x + (T(2) * w * uv.x + T(2) * uuv.x), v.y + (T(2) * w * uv.y + T(2) * uuv.y),
             v.z + (T(2) * w * uv.z + T(2) * uuv.z));
  }
};

extern template class ZmQuaternionT<double>;
extern template class ZmQuaternionT<float>;

using ZmQuaterniond = ZmQuaternionT<double>;
using ZmQuaternionf = ZmQuaternionT<float>;

static_assert(sizeof(ZmQuaterniond) == 4 * sizeof(double) && std::is_standard_layout<ZmQuaterniond>::value, "");
static_assert(sizeof(ZmQuaternionf) == 4 * sizeof(float) && std::is_standard_layout<ZmQuaternionf>::value, "");
