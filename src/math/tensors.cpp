// Principal values and directions of symmetric tensors, strain modes and strain measures.
// The members that work in a frame's plane are in tensors_plane.cpp.
#include <cmath>

#include "foundation/build_info.h"
#include "math/tensor_kernels.h"
#include "zemcalc/ZmMathTensor.h"
#include "zemcalc/ZmMatrix.h"

ZM_BUILD_INFO(tensors)

namespace {

using zm::tensor::Magnitude;

constexpr float kMultipleEigenvalue = 1.0e-20f;     // largest cross-product component below it
constexpr float kSignificant = 1.0e-5f;             // a row or a product that counts
constexpr float kThirdOfPiF = 1.0471975803375244f;  // pi/3 rounded to float

template <class T>
T LargestComponent(const ZmVector3T<T>& v) {
  T best = Magnitude(v.x);
  if (Magnitude(v.y) > best) best = Magnitude(v.y);
  if (Magnitude(v.z) > best) best = Magnitude(v.z);
  return best;
}

template <class T>
bool AnyComponentAbove(const ZmVector3T<T>& v, T limit) {
  return Magnitude(v.x) > limit || Magnitude(v.y) > limit || Magnitude(v.z) > limit;
}

// The rows of T - lambda I.
template <class T>
struct ShiftedRows {
  ZmVector3T<T> r[3];
  ShiftedRows(T xx, T yy, T zz, T xy, T yz, T xz, T lambda)
      : r{ZmVector3T<T>(xx - lambda, xy, xz), ZmVector3T<T>(xy, yy - lambda, yz), ZmVector3T<T>(xz, yz, zz - lambda)} {}
};

// The cross product of two rows that stands out most (largest absolute component; the earlier
// on ties) and its score.
template <class T>
ZmVector3T<T> BestRowCross(const ShiftedRows<T>& rows, T& score) {
  const ZmVector3T<T> candidates[3] = {rows.r[0].cross(rows.r[1]), rows.r[0].cross(rows.r[2]),
                                       rows.r[1].cross(rows.r[2])};
  ZmVector3T<T> best = candidates[0];
  score = LargestComponent(best);
  for (int i = 1; i < 3; ++i) {
    const T candidateScore = LargestComponent(candidates[i]);
    if (candidateScore > score) {
      best = candidates[i];
      score = candidateScore;
    }
  }
  return best;
}

// Direction for the largest value of a multiple eigenvalue: perpendicular to the first row that
// is not negligible.
template <class T>
ZmVector3T<T> MultipleFirstDirection(const ShiftedRows<T>& rows) {
  const T significant = T(kSignificant);
  for (const ZmVector3T<T>& row : rows.r) {
    if (!AnyComponentAbove(row, significant)) continue;
    const ZmVector3T<T> d = row.cross(ZmVector3T<T>::UNIT_X);
    return AnyComponentAbove(d, significant) ? d : row.cross(ZmVector3T<T>::UNIT_Y);
  }
  return ZmVector3T<T>::UNIT_X;
}

// Direction for the smallest value of a multiple eigenvalue: perpendicular to d1.
template <class T>
ZmVector3T<T> MultipleLastDirection(const ZmVector3T<T>& d1) {
  const ZmVector3T<T> d = ZmVector3T<T>::UNIT_X.cross(d1);
  return AnyComponentAbove(d, T(kSignificant)) ? d : ZmVector3T<T>::UNIT_Y.cross(d1);
}

// A NaN value has no mode: NaN, rather than the -90 the comparisons alone would give.
template <class T>
T ModeAngle(T major, T minor) {
  if (major != major || minor != minor) return major + minor;
  const T degrees = T(zm::kRadToDeg);
  if (major > 0) return std::atan(minor / major) * degrees;
  if (minor < 0) return std::atan(minor / major) * degrees - T(180);
  return T(-90);
}

// Logarithmic strain of a principal Green-Lagrange strain; 0 below -0.5, where 2e + 1 < 0.
template <class T>
T LogStrain(T e) {
  return e < T(-0.5) ? T(0) : T(0.5) * std::log(T(2) * e + T(1));
}

template <class T>
void Store(T* out, T value) {
  if (out) *out = value;
}

}  // namespace

template <class T>
void ZmMathTensorT<T>::Tensor3DToMainValues(T xx, T yy, T zz, T xy, T yz, T xz, T* s1, T* s2, T* s3) {
  const T i1 = xx + yy + zz;
  const T n = xy * xy + yz * yz + xz * xz - (yy + zz) * xx - yy * zz;
  const T p = i1 * i1 / T(3) + n;
  const T cubeTerm = p * p * p / T(27);
  const T q = (yz * xz - zz * xy) * xy + (yy * zz - yz * yz) * xx + (xy * yz - yy * xz) * xz + n * i1 / T(3) +
              T(2) * i1 * i1 * i1 / T(27);
  T c;
  if (cubeTerm <= T(1.0e-100)) {
    c = q >= 0 ? T(1) : T(-1);
  } else {
    c = q * T(0.5) / zm::Sqrt(cubeTerm);
    if (c > T(1)) c = T(1);
    if (c < T(-1)) c = T(-1);
  }
  const T theta = std::acos(c);
  const T m = p > 0 ? T(2) * zm::Sqrt(p / T(3)) : T(0);
  const T a = m * std::cos(theta / T(3)) + i1 / T(3);
  const T b = i1 / T(3) - m * std::cos(T(kThirdOfPiF) - theta / T(3));
  const T c3 = i1 - a - b;

  T first, second, third;
  if (a >= b && a >= c3) {
    first = a;
    second = b >= c3 ? b : c3;
    third = b >= c3 ? c3 : b;
  } else if (b >= a && b >= c3) {
    first = b;
    second = a >= c3 ? a : c3;
    third = a >= c3 ? c3 : a;
  } else {
    first = c3;
    second = a >= b ? a : b;
    third = a >= b ? b : a;
  }
  Store(s1, first);
  Store(s2, second);
  Store(s3, third);
}

template <class T>
void ZmMathTensorT<T>::Tensor3DToVectors3D(T xx, T yy, T zz, T xy, T yz, T xz, T* s1, T* s2, T* s3, Vector3* d1,
                                           Vector3* d2, Vector3* d3) {
  T first, second, third;
  Tensor3DToMainValues(xx, yy, zz, xy, yz, xz, &first, &second, &third);
  const T multiple = T(kMultipleEigenvalue);

  T score;
  const ShiftedRows<T> firstRows(xx, yy, zz, xy, yz, xz, first);
  Vector3 firstDirection = BestRowCross(firstRows, score);
  if (score < multiple) firstDirection = MultipleFirstDirection(firstRows);
  firstDirection.unitize(multiple);

  Vector3 lastDirection = BestRowCross(ShiftedRows<T>(xx, yy, zz, xy, yz, xz, third), score);
  if (score < multiple) lastDirection = MultipleLastDirection(firstDirection);
  lastDirection.unitize(multiple);

  Store(s1, first);
  Store(s2, second);
  Store(s3, third);
  if (d1) *d1 = firstDirection;
  if (d2) *d2 = firstDirection.cross(lastDirection);
  if (d3) *d3 = lastDirection;
}

template <class T>
void ZmMathTensorT<T>::Tensor2DToMainValues(T xx, T yy, T xy, T* s1, T* s2) {
  T first, second;
  zm::tensor::PlaneMainValues(xx, yy, xy, first, second);
  Store(s1, first);
  Store(s2, second);
}

template <class T>
T ZmMathTensorT<T>::PlaneTensor3DToMode(T xx, T yy, T zz, T xy, T yz, T xz) {
  T s1, s2, s3;
  Tensor3DToMainValues(xx, yy, zz, xy, yz, xz, &s1, &s2, &s3);
  const T major = Magnitude(s2) > Magnitude(s1) ? s2 : s1;
  const T minor = (Magnitude(s2) <= Magnitude(s1) && Magnitude(s2) > Magnitude(s3)) ? s2 : s3;
  return ModeAngle(major, minor);
}

template <class T>
void ZmMathTensorT<T>::PlaneTensor3DToVectors3D(T xx, T yy, T zz, T xy, T yz, T xz, T& m1, T& m2, Vector3& d1,
                                                Vector3& d2) {
  T middle;
  Vector3 middleDirection;
  Tensor3DToVectors3D(xx, yy, zz, xy, yz, xz, &m1, &middle, &m2, &d1, &middleDirection, &d2);
  if (Magnitude(middle) > Magnitude(m1)) {
    m1 = middle;
    d1 = middleDirection;
  } else if (Magnitude(middle) > Magnitude(m2)) {
    m2 = middle;
    d2 = middleDirection;
  }
}

template <class T>
T ZmMathTensorT<T>::StrainTensor2DToMode(T xx, T yy, T xy, T* mode) {
  T e1, e2;
  zm::tensor::PlaneMainValues(xx, yy, xy, e1, e2);
  const T angle = ModeAngle(e1, e2);
  Store(mode, angle);
  return angle;
}

template <class T>
void ZmMathTensorT<T>::PureStrainTensor2TrueStrainTensor(Vector3& t) {
  const T xx = t.x, yy = t.y, xy = t.z;
  if (xy == T(0)) {
    t.x = LogStrain(xx);
    t.y = LogStrain(yy);
    return;
  }
  const T d = xx - yy;
  const T r = zm::Sqrt(T(4) * xy * xy + d * d);
  const T cosine = d / r;
  const T sine = T(2) * xy / r;
  const T l1 = LogStrain((xx + yy + r) / T(2));
  const T l2 = LogStrain((xx + yy - r) / T(2));
  t.x = ((l1 + l2) + (l1 - l2) * cosine) / T(2);
  t.y = ((l1 + l2) - (l1 - l2) * cosine) / T(2);
  t.z = (l1 - l2) * T(0.5) * sine;
}

template <class T>
T ZmMathTensorT<T>::EngineerStrain2TrueStrain(T e) {
  return -std::log(T(1) - e);
}

template <class T>
T ZmMathTensorT<T>::TrueStrain2EngineerStrain(T e, unsigned char compressive) {
  return compressive ? T(1) - std::exp(-e) : std::exp(e) - T(1);
}

template <class T>
T ZmMathTensorT<T>::ComputeDirectionalTensorValue(T xx, T yy, T zz, T xy, T yz, T xz, const Vector3& dir) {
  const ZmMatrix3T<T> m(xx, xy, xz, xy, yy, yz, xz, yz, zz);
  return dir.dot(m * dir);
}

template class ZmMathTensorT<double>;
template class ZmMathTensorT<float>;
