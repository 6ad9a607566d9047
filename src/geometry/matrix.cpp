#include "zemcalc/ZmMatrix.h"

#include <cmath>

#include "foundation/build_info.h"

ZM_BUILD_INFO(matrix)

// Constant-initialised through the constexpr constructors: the values are in the image, only
// the destructor registration runs at load.
template <class T>
const ZmMatrix3T<T> ZmMatrix3T<T>::IDENTITY(1, 0, 0, 0, 1, 0, 0, 0, 1);
template <class T>
const ZmMatrix3T<T> ZmMatrix3T<T>::ZERO(0, 0, 0, 0, 0, 0, 0, 0, 0);
template <class T>
const ZmMatrix4T<T> ZmMatrix4T<T>::IDENTITY(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);
template <class T>
const ZmMatrix4T<T> ZmMatrix4T<T>::ZERO(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
template <class T>
const ZmMatrix4T<T> ZmMatrix4T<T>::ZEROAFFINE(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1);

// --- shared by both sizes

template <class Derived, class T, int N>
void ZmMatrixOps<Derived, T, N>::SetCoefs(const T (*coefs)[N]) {
  for (int i = 0; i < N; ++i) {
    for (int j = 0; j < N; ++j) m_coefs[i][j] = coefs[i][j];
  }
}

template <class Derived, class T, int N>
void ZmMatrixOps<Derived, T, N>::GetCoefs(T (*coefs)[N]) const {
  for (int i = 0; i < N; ++i) {
    for (int j = 0; j < N; ++j) coefs[i][j] = m_coefs[i][j];
  }
}

template <class Derived, class T, int N>
Derived ZmMatrixOps<Derived, T, N>::Transpose() const {
  Derived r;
  for (int i = 0; i < N; ++i) {
    for (int j = 0; j < N; ++j) r[i][j] = m_coefs[j][i];
  }
  return r;
}

template <class Derived, class T, int N>
Derived ZmMatrixOps<Derived, T, N>::operator*(const Derived& o) const {
  Derived r;
  for (int i = 0; i < N; ++i) {
    for (int j = 0; j < N; ++j) {
      T sum = m_coefs[i][0] * o[0][j];
      for (int k = 1; k < N; ++k) sum += m_coefs[i][k] * o[k][j];
      r[i][j] = sum;
    }
  }
  return r;
}

template <class Derived, class T, int N>
Derived ZmMatrixOps<Derived, T, N>::operator+(const Derived& o) const {
  Derived r;
  for (int i = 0; i < N; ++i) {
    for (int j = 0; j < N; ++j) r[i][j] = m_coefs[i][j] + o[i][j];
  }
  return r;
}

template <class Derived, class T, int N>
Derived ZmMatrixOps<Derived, T, N>::operator-(const Derived& o) const {
  Derived r;
  for (int i = 0; i < N; ++i) {
    for (int j = 0; j < N; ++j) r[i][j] = m_coefs[i][j] - o[i][j];
  }
  return r;
}

template <class Derived, class T, int N>
Derived ZmMatrixOps<Derived, T, N>::operator-() const {
  Derived r;
  for (int i = 0; i < N; ++i) {
    for (int j = 0; j < N; ++j) r[i][j] = -m_coefs[i][j];
  }
  return r;
}

template <class Derived, class T, int N>
Derived ZmMatrixOps<Derived, T, N>::operator*(T s) const {
  Derived r;
  for (int i = 0; i < N; ++i) {
    for (int j = 0; j < N; ++j) r[i][j] = m_coefs[i][j] * s;
  }
  return r;
}

template <class Derived, class T, int N>
unsigned char ZmMatrixOps<Derived, T, N>::operator==(const Derived& o) const {
  for (int i = 0; i < N; ++i) {
    for (int j = 0; j < N; ++j) {
      if (!(m_coefs[i][j] == o[i][j])) return 0;
    }
  }
  return 1;
}

template <class Derived, class T, int N>
unsigned char ZmMatrixOps<Derived, T, N>::Equals(const Derived& o, T tol) const {
  const T bound = std::fabs(tol);
  for (int i = 0; i < N; ++i) {
    for (int j = 0; j < N; ++j) {
      if (!(std::fabs(m_coefs[i][j] - o[i][j]) <= bound)) return 0;
    }
  }
  return 1;
}

template <class Derived, class T, int N>
unsigned char ZmMatrixOps<Derived, T, N>::IsInvertible(T det, T tol) const {
  T bound = std::fabs(tol);
  for (int i = 0; i < N; ++i) {
    T squares = 0;
    for (int j = 0; j < N; ++j) squares += m_coefs[i][j] * m_coefs[i][j];
    bound *= zm::Sqrt(squares);
  }
  return std::fabs(det) > bound ? 1 : 0;
}

// --- 3x3

template <class T>
void ZmMatrix3T<T>::SetRow(int i, const ZmVector3T<T>& v) {
  m_coefs[i][0] = v.x;
  m_coefs[i][1] = v.y;
  m_coefs[i][2] = v.z;
}

template <class T>
void ZmMatrix3T<T>::SetColumn(int i, const ZmVector3T<T>& v) {
  m_coefs[0][i] = v.x;
  m_coefs[1][i] = v.y;
  m_coefs[2][i] = v.z;
}

template <class T>
T ZmMatrix3T<T>::Determinant() const {
  const auto& a = m_coefs;
  return a[0][0] * (a[1][1] * a[2][2] - a[1][2] * a[2][1]) + a[0][1] * (a[1][2] * a[2][0] - a[1][0] * a[2][2]) +
         a[0][2] * (a[1][0] * a[2][1] - a[1][1] * a[2][0]);
}

template <class T>
unsigned char ZmMatrix3T<T>::Inverse(ZmMatrix3T& out, T tol) const {
  const auto& a = m_coefs;
  // Cofactors of the first row; the determinant is their dot product with that row.
  const T c00 = a[1][1] * a[2][2] - a[1][2] * a[2][1];
  const T c01 = a[1][2] * a[2][0] - a[1][0] * a[2][2];
  const T c02 = a[1][0] * a[2][1] - a[1][1] * a[2][0];
  const T det = a[0][0] * c00 + a[0][1] * c01 + a[0][2] * c02;
  if (!this->IsInvertible(det, tol)) return 0;
  out = ZmMatrix3T(c00 / det, (a[0][2] * a[2][1] - a[0][1] * a[2][2]) / det,
                   (a[0][1] * a[1][2] - a[0][2] * a[1][1]) / det,  //
                   c01 / det, (a[0][0] * a[2][2] - a[0][2] * a[2][0]) / det,
                   (a[0][2] * a[1][0] - a[0][0] * a[1][2]) / det,  //
                   c02 / det, (a[0][1] * a[2][0] - a[0][0] * a[2][1]) / det,
                   (a[0][0] * a[1][1] - a[0][1] * a[1][0]) / det);
  return 1;
}

template <class T>
ZmMatrix3T<T> ZmMatrix3T<T>::Inverse(T tol) const {
  ZmMatrix3T r;
  return Inverse(r, tol) ? r : ZERO;
}

// --- 4x4

template <class T>
ZmMatrix4T<T>::ZmMatrix4T(const ZmMatrix3T<T>& linear, const ZmVector3T<T>& translation) : Ops() {
  Set3x3Matrix(linear);
  SetTranslation(translation);
  m_coefs[3][3] = T(1);
}

template <class T>
unsigned char ZmMatrix4T<T>::IsAffine() const {
  return (m_coefs[3][0] == 0 && m_coefs[3][1] == 0 && m_coefs[3][2] == 0 && m_coefs[3][3] == 1) ? 1 : 0;
}

template <class T>
void ZmMatrix4T<T>::SetTranslation(const ZmVector3T<T>& t) {
  m_coefs[0][3] = t.x;
  m_coefs[1][3] = t.y;
  m_coefs[2][3] = t.z;
}

template <class T>
ZmMatrix3T<T> ZmMatrix4T<T>::Extract3x3Matrix() const {
  const auto& a = m_coefs;
  return ZmMatrix3T<T>(a[0][0], a[0][1], a[0][2], a[1][0], a[1][1], a[1][2], a[2][0], a[2][1], a[2][2]);
}

template <class T>
void ZmMatrix4T<T>::Set3x3Matrix(const ZmMatrix3T<T>& linear) {
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) m_coefs[i][j] = linear[i][j];
  }
}

namespace {
// The 2x2 minors of rows 0-1 (s) and of rows 2-3 (c) of a 4x4 matrix, both indexed by
// column pair: [0] = columns (0,1), [1] = (0,2), [2] = (0,3), [3] = (1,2), [4] = (1,3),
// [5] = (2,3). s[k] and c[5 - k] use complementary columns.
template <class T>
struct Minors4 {
  T s[6];
  T c[6];

  explicit Minors4(const T (&a)[4][4]) {
    s[0] = a[0][0] * a[1][1] - a[1][0] * a[0][1];
    s[1] = a[0][0] * a[1][2] - a[1][0] * a[0][2];
    s[2] = a[0][0] * a[1][3] - a[1][0] * a[0][3];
    s[3] = a[0][1] * a[1][2] - a[1][1] * a[0][2];
    s[4] = a[0][1] * a[1][3] - a[1][1] * a[0][3];
    s[5] = a[0][2] * a[1][3] - a[1][2] * a[0][3];
    c[5] = a[2][2] * a[3][3] - a[3][2] * a[2][3];
    c[4] = a[2][1] * a[3][3] - a[3][1] * a[2][3];
    c[3] = a[2][1] * a[3][2] - a[3][1] * a[2][2];
    c[2] = a[2][0] * a[3][3] - a[3][0] * a[2][3];
    c[1] = a[2][0] * a[3][2] - a[3][0] * a[2][2];
    c[0] = a[2][0] * a[3][1] - a[3][0] * a[2][1];
  }
  // Laplace expansion along rows 0 and 1.
  T Determinant() const { return s[0] * c[5] - s[1] * c[4] + s[2] * c[3] + s[3] * c[2] - s[4] * c[1] + s[5] * c[0]; }
};
}  // namespace

template <class T>
T ZmMatrix4T<T>::Determinant() const {
  return Minors4<T>(m_coefs).Determinant();
}

template <class T>
unsigned char ZmMatrix4T<T>::Inverse(ZmMatrix4T& out, T tol) const {
  const auto& a = m_coefs;
  const Minors4<T> m(a);
  const T* s = m.s;
  const T* c = m.c;
  const T det = m.Determinant();
  if (!this->IsInvertible(det, tol)) return 0;
  out = ZmMatrix4T((a[1][1] * c[5] - a[1][2] * c[4] + a[1][3] * c[3]) / det,
                   (-a[0][1] * c[5] + a[0][2] * c[4] - a[0][3] * c[3]) / det,
                   (a[3][1] * s[5] - a[3][2] * s[4] + a[3][3] * s[3]) / det,
                   (-a[2][1] * s[5] + a[2][2] * s[4] - a[2][3] * s[3]) / det,
                   // row 1
                   (-a[1][0] * c[5] + a[1][2] * c[2] - a[1][3] * c[1]) / det,
                   (a[0][0] * c[5] - a[0][2] * c[2] + a[0][3] * c[1]) / det,
                   (-a[3][0] * s[5] + a[3][2] * s[2] - a[3][3] * s[1]) / det,
                   (a[2][0] * s[5] - a[2][2] * s[2] + a[2][3] * s[1]) / det,
                   // row 2
                   (a[1][0] * c[4] - a[1][1] * c[2] + a[1][3] * c[0]) / det,
                   (-a[0][0] * c[4] + a[0][1] * c[2] - a[0][3] * c[0]) / det,
                   (a[3][0] * s[4] - a[3][1] * s[2] + a[3][3] * s[0]) / det,
                   (-a[2][0] * s[4] + a[2][1] * s[2] - a[2][3] * s[0]) / det,
                   // row 3
                   (-a[1][0] * c[3] + a[1][1] * c[1] - a[1][2] * c[0]) / det,
                   (a[0][0] * c[3] - a[0][1] * c[1] + a[0][2] * c[0]) / det,
                   (-a[3][0] * s[3] + a[3][1] * s[1] - a[3][2] * s[0]) / det,
                   (a[2][0] * s[3] - a[2][1] * s[1] + a[2][2] * s[0]) / det);
  return 1;
}

template <class T>
ZmMatrix4T<T> ZmMatrix4T<T>::Inverse(T tol) const {
  ZmMatrix4T r;
  return Inverse(r, tol) ? r : ZERO;
}

template class ZmMatrixOps<ZmMatrix3T<double>, double, 3>;
template class ZmMatrixOps<ZmMatrix3T<float>, float, 3>;
template class ZmMatrixOps<ZmMatrix4T<double>, double, 4>;
template class ZmMatrixOps<ZmMatrix4T<float>, float, 4>;
template class ZmMatrix3T<double>;
template class ZmMatrix3T<float>;
template class ZmMatrix4T<double>;
template class ZmMatrix4T<float>;
