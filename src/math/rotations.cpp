#include "zemcalc/ZmMathRotation.h"

#include <cmath>

#include "zemcalc/ZmMathAngle.h"
#include "foundation/build_info.h"
#include "math/metric_kernels.h"

ZM_BUILD_INFO(rotations)

namespace {

// Cosine and sine of an angle in degrees, exact for the quarter turns of integer angles.
template <class T>
void CosSin(T angleDeg, T& c, T& s) {
  const T rounded = std::round(angleDeg);
  // Beyond the float range the conversion below would overflow; such angles are not integers
  // that float can hold anyway. A NaN fails the test too.
  if (std::fabs(rounded) <= T(zm::metric::kFloatMax) && T(static_cast<float>(rounded)) == angleDeg) {
    T k = std::fmod(rounded, T(360));
    if (k < 0) k += T(360);
    const T quarterCos[4] = {1, 0, -1, 0};
    const T quarterSin[4] = {0, 1, 0, -1};
    for (int q = 0; q < 4; ++q) {
      if (k == T(90 * q)) {
        c = quarterCos[q];
        s = quarterSin[q];
        return;
      }
    }
  }
  const T theta = std::acos(T(-1)) * angleDeg / T(180);
  c = std::cos(theta);
  s = std::sin(theta);
}

}  // namespace

template <class T>
ZmMatrix3T<T> ZmMathRotationT<T>::RotationMatrix(const Vector3& axis, T angleDeg) {
  Matrix3 result;  // the identity
  if (!zm::metric::IsUsable(axis) || !std::isfinite(angleDeg)) return result;
  if (!(zm::RoundToFloat(axis.length()) >= T(zm::metric::kFloatEpsilon))) return result;
  Vector3 u(axis), v, w;
  ZmMathAngleT<T>::OrthogonalVectors(u, v, w);
  T c, s;
  CosSin(angleDeg, c, s);
  const Vector3 vr = v * c + w * s;
  const Vector3 wr = w * c - v * s;
  T coefs[3][3];
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      coefs[i][j] = zm::Component(u, i) * zm::Component(u, j) + zm::Component(vr, i) * zm::Component(v, j) +
                    zm::Component(wr, i) * zm::Component(w, j);
    }
  }
  result.SetCoefs(coefs);
  return result;
}

template <class T>
ZmMatrix3T<T> ZmMathRotationT<T>::RotationMatrix(int axisIndex, T angleDeg) {
  T coefs[3][3] = {};
  if (!std::isfinite(angleDeg)) return Matrix3(coefs);
  T c, s;
  CosSin(angleDeg, c, s);
  switch (axisIndex) {
    case 0:
      coefs[0][0] = 1;
      coefs[1][1] = c;
      coefs[1][2] = -s;
      coefs[2][1] = s;
      coefs[2][2] = c;
      break;
    case 1:
      coefs[0][0] = c;
      coefs[0][2] = s;
      coefs[1][1] = 1;
      coefs[2][0] = -s;
      coefs[2][2] = c;
      break;
    case 2:
      coefs[0][0] = c;
      coefs[0][1] = -s;
      coefs[1][0] = s;
      coefs[1][1] = c;
      coefs[2][2] = 1;
      break;
    default:
      break;
  }
  return Matrix3(coefs);
}

template <class T>
void ZmMathRotationT<T>::RotateMatrix(Matrix3& m, const Vector3& axis, T angleDeg) {
  m = RotationMatrix(axis, angleDeg) * m;
}

template class ZmMathRotationT<double>;
template class ZmMathRotationT<float>;
