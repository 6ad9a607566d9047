#include "zemcalc/ZmQuaternion.h"

#include <cmath>

#include "foundation/build_info.h"

ZM_BUILD_INFO(quaternion)

template <class T>
const ZmQuaternionT<T> ZmQuaternionT<T>::IDENTITY(1, 0, 0, 0);
template <class T>
const ZmQuaternionT<T> ZmQuaternionT<T>::ZERO(0, 0, 0, 0);

template <class T>
unsigned char ZmQuaternionT<T>::FromAngleAxis(const Radian& angle, const ZmVector3T<T>& axis) {
  ZmVector3T<T> unit = axis;
  if (!unit.unitize(T(0))) return 0;
  const T half = T(angle) / T(2);
  const T s = std::sin(half);
  *this = ZmQuaternionT(std::cos(half), s * unit.x, s * unit.y, s * unit.z);
  return 1;
}

template <class T>
void ZmQuaternionT<T>::ToAngleAxis(Radian& angle, ZmVector3T<T>& axis) const {
  const T length = zm::Sqrt(x * x + y * y + z * z);
  if (length > 0) {
    // atan2 rather than acos(w): accurate near 0 and pi, and indifferent to the scale.
    angle = Radian(T(2) * std::atan2(length, w));
    axis = ZmVector3T<T>(x / length, y / length, z / length);
  } else {
    angle = Radian(T(0));
    axis = ZmVector3T<T>(1, 0, 0);
  }
}

template <class T>
void ZmQuaternionT<T>::FromRotationMatrix(const ZmMatrix3T<T>& m) {
  const T trace = m[0][0] + m[1][1] + m[2][2];
  if (trace > 0) {
    T root = zm::Sqrt(trace + T(1));  // 2w
    w = root / T(2);
    root = T(0.5) / root;  // 1 / (4w)
    x = (m[2][1] - m[1][2]) * root;
    y = (m[0][2] - m[2][0]) * root;
    z = (m[1][0] - m[0][1]) * root;
    return;
  }
  // The largest of x, y, z is taken from the largest diagonal coefficient; it is at least
  // 1/2 for a rotation, so the division below is safe.
  int i = 0;
  if (m[1][1] > m[0][0]) i = 1;
  if (m[2][2] > m[i][i]) i = 2;
  const int j = (i + 1) % 3;
  const int k = (j + 1) % 3;
  T* const v[3] = {&x, &y, &z};
  T root = zm::Sqrt(m[i][i] - m[j][j] - m[k][k] + T(1));  // 2 v[i]
  *v[i] = root / T(2);
  root = T(0.5) / root;
  w = (m[k][j] - m[j][k]) * root;
  *v[j] = (m[j][i] + m[i][j]) * root;
  *v[k] = (m[k][i] + m[i][k]) * root;
}

template <class T>
void ZmQuaternionT<T>::ToRotationMatrix(ZmMatrix3T<T>& r) const {
  const T n = SquaredNorm();
  const T s = n > 0 ? T(2) / n : T(0);
  const T xs = x * s, ys = y * s, zs = z * s;
  const T wx = w * xs, wy = w * ys, wz = w * zs;
  const T xx = x * xs, xy = x * ys, xz = x * zs;
  const T yy = y * ys, yz = y * zs, zz = z * zs;
  r = ZmMatrix3T<T>(T(1) - (yy + zz), xy - wz, xz + wy,  //
                    xy + wz, T(1) - (xx + zz), yz - wx,  //
                    xz - wy, yz + wx, T(1) - (xx + yy));
}

template <class T>
ZmMatrix3T<T> ZmQuaternionT<T>::ToRotationMatrix() const {
  ZmMatrix3T<T> r;
  ToRotationMatrix(r);
  return r;
}

// The angles read the coefficients of the rotation matrix scaled by the squared length,
// R = Rz(roll) Ry(yaw) Rx(pitch): R21 / R11 = tan(roll), R32 / R33 = tan(pitch) and
// -R31 / sqrt(R11^2 + R21^2) = tan(yaw).
template <class T>
typename ZmQuaternionT<T>::Radian ZmQuaternionT<T>::GetPitch() const {
  return Radian(std::atan2(T(2) * (y * z + w * x), w * w - x * x - y * y + z * z));
}

template <class T>
typename ZmQuaternionT<T>::Radian ZmQuaternionT<T>::GetYaw() const {
  const T r11 = w * w + x * x - y * y - z * z;
  const T r21 = T(2) * (x * y + w * z);
  return Radian(std::atan2(T(-2) * (x * z - w * y), zm::Sqrt(r11 * r11 + r21 * r21)));
}

template <class T>
typename ZmQuaternionT<T>::Radian ZmQuaternionT<T>::GetRoll() const {
  return Radian(std::atan2(T(2) * (x * y + w * z), w * w + x * x - y * y - z * z));
}

template <class T>
unsigned char ZmQuaternionT<T>::Equals(const ZmQuaternionT& o, const Radian& tolerance) const {
  const T n1 = SquaredNorm(), n2 = o.SquaredNorm();
  if (n1 == 0 || n2 == 0) return (n1 == 0 && n2 == 0) ? 1 : 0;
  // The rotation from this to o, unnormalised: its angle does not depend on the lengths.
  const ZmQuaternionT r = Conjugate() * o;
  const T angle = T(2) * std::atan2(zm::Sqrt(r.x * r.x + r.y * r.y + r.z * r.z), std::fabs(r.w));
  return angle <= std::fabs(T(tolerance)) ? 1 : 0;
}

template <class T>
unsigned char ZmQuaternionT<T>::Normalise() {
  const T length = Norm();
  if (!(length > 0) || !std::isfinite(length)) return 0;
  w /= length;
  x /= length;
  y /= length;
  z /= length;
  return 1;
}

template <class T>
ZmQuaternionT<T> ZmQuaternionT<T>::Inverse() const {
  const T n = SquaredNorm();
  if (!(n > 0)) return ZERO;
  return ZmQuaternionT(w / n, -x / n, -y / n, -z / n);
}

template <class T>
ZmQuaternionT<T> ZmQuaternionT<T>::Slerp(T t, const ZmQuaternionT& p, const ZmQuaternionT& q,
                                         unsigned char shortestPath) {
  const ZmQuaternionT target = (shortestPath && p.Dot(q) < 0) ? -q : q;
  // The angle between the two unit 4-vectors from the half chord and the half sum: accurate
  // at both ends, where acos of the dot product is not.
  const T angle = T(2) * std::atan2((p - target).Norm(), (p + target).Norm());
  const T sine = std::sin(angle);
  if (!(sine >= T(zm::kTolerance6))) {
    ZmQuaternionT r = p * (T(1) - t) + target * t;
    r.Normalise();
    return r;
  }
  return p * (std::sin((T(1) - t) * angle) / sine) + target * (std::sin(t * angle) / sine);
}

template class ZmQuaternionT<double>;
template class ZmQuaternionT<float>;
