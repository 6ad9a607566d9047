#include <cmath>

#include "zemcalc/ZmFrame.h"
#include "zemcalc/ZmMath.h"
#include "zemcalc/ZmQuaternion.h"
#include "foundation/build_info.h"
#include "frames/frame_kernels.h"

ZM_BUILD_INFO(frame_rotations)

namespace {

template <class T>
bool IsUsableFrame(const ZmFrameT<T>& frame) {
  return zm::frames::Placement<T>(frame.GetOrigin(), frame.GetMatrix()).usable;
}

// A rotation needs an axis that unitize(1e-6f) can normalise (so neither invalid, NaN nor too
// short) and a finite angle. Shorter axes would otherwise be turned about Z by RotationMatrix.
template <class T>
bool IsUsableRotation(const ZmVector3T<T>& axis, T angleDeg) {
  ZmVector3T<T> unit(axis);
  return std::isfinite(angleDeg) && unit.unitize(T(zm::kTolerance6));
}

// The angles in degrees of r = Rx(a) Ry(b) Rz(c) (rows first). a is read from the last
// column; b and c from Rx(-a) r = Ry(b) Rz(c), which stays accurate at b = +-90 degrees, where
// a and c are no longer separate and any a is completed by the matching c.
template <class T>
void CardanAnglesXYZ(const ZmMatrix3T<T>& r, T* anglesDeg) {
  const T a = std::atan2(-r[1][2], r[2][2]);
  const T ca = std::cos(a), sa = std::sin(a);
  const T b = std::atan2(r[0][2], ca * r[2][2] - sa * r[1][2]);
  const T c = std::atan2(ca * r[1][0] + sa * r[2][0], ca * r[1][1] + sa * r[2][1]);
  anglesDeg[0] = a * T(zm::kRadToDeg);
  anglesDeg[1] = b * T(zm::kRadToDeg);
  anglesDeg[2] = c * T(zm::kRadToDeg);
}

}  // namespace

template <class T>
unsigned char ZmFrameT<T>::Rotate(const Vector3& axis, T angleDeg) {
  if (!IsUsableRotation(axis, angleDeg)) return 0;
  ZmMathT<T>::RotateMatrix(m_matrix, axis, angleDeg);
  return 1;
}

template <class T>
unsigned char ZmFrameT<T>::Rotate(const Point3& center, const Vector3& axis, T angleDeg) {
  Point3 origin(m_origin);
  if (!IsUsableRotation(axis, angleDeg) || !zm::metric::AreUsable(center, origin)) return 0;
  if (!origin.Rotate(center, axis, angleDeg)) return 0;
  m_origin = origin;
  ZmMathT<T>::RotateMatrix(m_matrix, axis, angleDeg);
  return 1;
}

template <class T>
unsigned char ZmFrameT<T>::Rotate(const ZmFrameT& other) {
  if (!IsUsableFrame(*this) || !IsUsableFrame(other)) return 0;
  // Other's origin + M_other times the origin, and M_other M column by column: this frame
  // converted from other's local coordinates to its parent's.
  *this = other.LocalToGlobal(*this);
  return 1;
}

template <class T>
unsigned char ZmFrameT<T>::RotateAroundAxes(T angleXDeg, T angleYDeg, T angleZDeg) {
  const T angles[3] = {angleXDeg, angleYDeg, angleZDeg};
  ZmFrameT turned(*this);
  for (int i = 0; i < 3; ++i) {
    if (angles[i] == T(0) || angles[i] == zm::Invalid<T>()) continue;
    if (!turned.Rotate(turned.m_matrix.GetColumn(i), angles[i])) return 0;
  }
  *this = turned;
  return 1;
}

template <class T>
unsigned char ZmFrameT<T>::RotateAxis(int i, const Vector3& target) {
  if (i < 0 || i > 2) return 0;
  const T angle = ZmMathT<T>::AngleDeg(m_matrix.GetColumn(i), target);
  if (angle == zm::Invalid<T>()) return 0;
  if (angle == T(0)) return 1;
  return Rotate(m_matrix.GetRow(i).cross(target), angle);
}

template <class T>
unsigned char ZmFrameT<T>::GetEulerFrame(const ZmFrameT& other, ZmFrameT& euler) const {
  if (!IsUsableFrame(*this) || !IsUsableFrame(other)) return 0;
  euler = GlobalToLocal(other);
  return 1;
}

template <class T>
unsigned char ZmFrameT<T>::GetGlobalTransformation(const ZmFrameT& other, Vector3& translation,
                                                   Vector3& rotationDeg) const {
  if (!IsUsableFrame(*this) || !IsUsableFrame(other)) return 0;
  // M_other M^T = Rz(c) Ry(b) Rx(a); its transpose M M_other^T = Rx(-a) Ry(-b) Rz(-c).
  T negated[3];
  CardanAnglesXYZ(m_matrix * other.m_matrix.Transpose(), negated);
  translation = other.m_origin - m_origin;
  rotationDeg = Vector3(-negated[0], -negated[1], -negated[2]);
  return 1;
}

template <class T>
unsigned char ZmFrameT<T>::GetRotationAngles(const ZmFrameT& other, T* const anglesDeg) const {
  if (!anglesDeg || !IsUsableFrame(*this) || !IsUsableFrame(other)) return 0;
  CardanAnglesXYZ(m_matrix.Transpose() * other.m_matrix, anglesDeg);
  return 1;
}

template <class T>
unsigned char ZmFrameT<T>::GetRotationTo(const ZmFrameT& other, T& angleDeg, Vector3& axis) const {
  if (!IsUsableFrame(*this) || !IsUsableFrame(other)) return 0;
  const ZmQuaternionT<T> turn(other.m_matrix * m_matrix.Transpose());
  typename ZmQuaternionT<T>::Radian angle;
  Vector3 direction;
  turn.ToAngleAxis(angle, direction);
  // ToAngleAxis gives [0, 2 pi]; beyond a half turn the same rotation is the complement about
  // the opposite axis.
  const T pi = std::acos(T(-1));
  T radians = T(angle);
  if (radians > pi) {
    radians = T(2) * pi - radians;
    direction = -direction;
  }
  angleDeg = radians * T(zm::kRadToDeg);
  axis = direction;
  return 1;
}

// The members of this file, for both twins (the rest of the class is instantiated in frame.cpp).
#define ZM_INSTANTIATE_FRAME_ROTATIONS(T)                                                             \
  template unsigned char ZmFrameT<T>::Rotate(const ZmVector3T<T>&, T);                                \
  template unsigned char ZmFrameT<T>::Rotate(const ZmPoint3T<T>&, const ZmVector3T<T>&, T);           \
  template unsigned char ZmFrameT<T>::Rotate(const ZmFrameT<T>&);                                     \
  template unsigned char ZmFrameT<T>::RotateAroundAxes(T, T, T);                                      \
  template unsigned char ZmFrameT<T>::RotateAxis(int, const ZmVector3T<T>&);                          \
  template unsigned char ZmFrameT<T>::GetEulerFrame(const ZmFrameT<T>&, ZmFrameT<T>&) const;          \
  template unsigned char ZmFrameT<T>::GetGlobalTransformation(const ZmFrameT<T>&, ZmVector3T<T>&,     \
                                                              ZmVector3T<T>&) const;                  \
  template unsigned char ZmFrameT<T>::GetRotationAngles(const ZmFrameT<T>&, T* const) const;          \
  template unsigned char ZmFrameT<T>::GetRotationTo(const ZmFrameT<T>&, T&, ZmVector3T<T>&) const;

ZM_INSTANTIATE_FRAME_ROTATIONS(double)
ZM_INSTANTIATE_FRAME_ROTATIONS(float)
#undef ZM_INSTANTIATE_FRAME_ROTATIONS
