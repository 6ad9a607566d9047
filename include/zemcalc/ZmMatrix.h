#pragma once

// Square matrices: ZmMatrix3d / ZmMatrix3f (3x3) and ZmMatrix4d / ZmMatrix4f (4x4).
//
// Coefficients are stored row by row, and m[row][col] reads and writes one of them
// (operator[] hands out a pointer to the row). The coefficients are the only data besides
// the virtual-table pointer: the matrices have a virtual destructor so that callers may derive
// from them.
//
// Vectors are columns: M * v is the matrix times the column vector v, and a product A * B
// applied to v transforms by B first, then by A. A rotation matrix therefore has the rotated
// axes as its columns. The free operator v * M (a point or vector on the left) is the row
// vector times the matrix, r_j = sum_i v_i m[i][j], which is M transposed applied to v.
//
// A 4x4 matrix is a homogeneous transform for column vectors: the linear part is the upper
// left 3x3 block and the translation is column 3 (m[0][3], m[1][3], m[2][3]); an affine
// matrix has the last row (0, 0, 0, 1). Transforming a point applies the linear part and adds
// the translation, transforming a vector applies the linear part only; both read rows 0 to 2
// and ignore the last row (there is no perspective division).
//
// The constants IDENTITY, ZERO (and ZEROAFFINE for 4x4, the zero matrix with m[3][3] = 1)
// are built by constexpr constructors, so the compiler stores their values in the image even
// though the class has a virtual table: they are valid before any code of the library runs,
// whatever the order of static initialisation. Only the registration of their destructor for
// unload happens at load.
#include <cstddef>
#include <type_traits>

#include "zemcalc/ZmConstants.h"
#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmPoint3.h"

// The members shared by the square matrices of both sizes and precisions. It holds the
// coefficients and implements every rule that does not depend on the size once.
template <class Derived, class T, int N>
class ZMCALC_API ZmMatrixOps {
public:
  static_assert(std::is_floating_point<T>::value, "matrices are float or double");
  using Scalar = T;
  static constexpr int kSize = N;

  ZmMatrixOps(const ZmMatrixOps&) = default;
  ZmMatrixOps& operator=(const ZmMatrixOps&) = default;
  virtual ~ZmMatrixOps() = default;

  // Row `row`, so that m[row][col] is one coefficient. The index is not checked.
  T* operator[](int row) { return m_coefs[row]; }
  const T* operator[](int row) const { return m_coefs[row]; }

  // Copies N x N coefficients given rows first (a `const T[N][N]` array converts to this).
  void SetCoefs(const T (*coefs)[N]);
  // Writes the coefficients rows first.
  void GetCoefs(T (*coefs)[N]) const;

  Derived Transpose() const;
  // The matrix product this * o: coefficient (i, j) is the sum over k of this[i][k] * o[k][j],
  // added in increasing k.
  Derived operator*(const Derived& o) const;
  Derived operator+(const Derived& o) const;
  Derived operator-(const Derived& o) const;
  Derived operator-() const;
  Derived operator*(T s) const;
  friend Derived operator*(T s, const Derived& m) { return m * s; }
  Derived& operator*=(const Derived& o) { return Self() = Self() * o; }
  Derived& operator+=(const Derived& o) { return Self() = Self() + o; }
  Derived& operator-=(const Derived& o) { return Self() = Self() - o; }
  Derived& operator*=(T s) { return Self() = Self() * s; }

  // Exact coefficient-wise equality (unsigned char 1/0).
  unsigned char operator==(const Derived& o) const;
  unsigned char operator!=(const Derived& o) const { return (*this == o) ? 0 : 1; }
  // 1 when every coefficient differs from o's by at most |tol| (inclusive); a NaN gives 0.
  unsigned char Equals(const Derived& o, T tol) const;

protected:
  // All coefficients zero.
  constexpr ZmMatrixOps() : m_coefs{} {}
  // Rows first, converted to T.
  template <class U>
  constexpr explicit ZmMatrixOps(const U (&coefs)[N][N]) : m_coefs{} {
    for (int i = 0; i < N; ++i) {
      for (int j = 0; j < N; ++j) m_coefs[i][j] = zm::ConvertScalar<T>(coefs[i][j]);
    }
  }
  // The other precision, coefficient by coefficient (double to float rounds to nearest).
  template <class D, class U>
  explicit ZmMatrixOps(const ZmMatrixOps<D, U, N>& o) : m_coefs{} {
    for (int i = 0; i < N; ++i) {
      for (int j = 0; j < N; ++j) m_coefs[i][j] = zm::ConvertScalar<T>(o[i][j]);
    }
  }

  // 1 when |det| > tol * (product of the Euclidean norms of the rows). The bound is the
  // largest |det| can be (Hadamard), so the test asks whether the rows are independent to
  // within tol whatever the scale of each row: the ratio is 1 for orthogonal rows and 0 for
  // dependent ones. A zero row, a NaN or an overflow count as singular.
  unsigned char IsInvertible(T det, T tol) const;

  Derived& Self() { return static_cast<Derived&>(*this); }

  T m_coefs[N][N];
};

template <class T>
class ZMCALC_API ZmMatrix3T : public ZmMatrixOps<ZmMatrix3T<T>, T, 3> {
  using Ops = ZmMatrixOps<ZmMatrix3T<T>, T, 3>;
  using Ops::m_coefs;

public:
  // The identity.
  constexpr ZmMatrix3T() : Ops() { m_coefs[0][0] = m_coefs[1][1] = m_coefs[2][2] = T(1); }
  // Nine coefficients, rows first.
  constexpr ZmMatrix3T(T a00, T a01, T a02, T a10, T a11, T a12, T a20, T a21, T a22) : Ops() {
    const T rows[3][3] = {{a00, a01, a02}, {a10, a11, a12}, {a20, a21, a22}};
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) m_coefs[i][j] = rows[i][j];
    }
  }
  // A 3x3 array, rows first, of either precision.
  template <class U, std::enable_if_t<std::is_floating_point<U>::value, int> = 0>
  constexpr explicit ZmMatrix3T(const U (&coefs)[3][3]) : Ops(coefs) {}
  // The other precision (implicit, like every twin conversion).
  template <class U>
  ZmMatrix3T(const ZmMatrix3T<U>& o) : Ops(o) {}
  ZmMatrix3T(const ZmMatrix3T&) = default;
  ZmMatrix3T& operator=(const ZmMatrix3T&) = default;

  static const ZmMatrix3T IDENTITY;
  static const ZmMatrix3T ZERO;

  // Row i and column i as vectors (the index is not checked).
  ZmVector3T<T> GetRow(int i) const { return ZmVector3T<T>(m_coefs[i][0], m_coefs[i][1], m_coefs[i][2]); }
  ZmVector3T<T> GetColumn(int i) const { return ZmVector3T<T>(m_coefs[0][i], m_coefs[1][i], m_coefs[2][i]); }
  void SetRow(int i, const ZmVector3T<T>& v);
  void SetColumn(int i, const ZmVector3T<T>& v);

  // a00 (a11 a22 - a12 a21) + a01 (a12 a20 - a10 a22) + a02 (a10 a21 - a11 a20).
  T Determinant() const;
  // Writes the inverse (the transposed cofactors divided by the determinant) and returns 1;
  // returns 0 with `out` untouched when the matrix is singular to within tol, measured
  // against the rows' scale (see ZmMatrixOps::IsInvertible). Never divides by zero.
  unsigned char Inverse(ZmMatrix3T& out, T tol = T(zm::kTolerance6)) const;
  // The inverse, or ZERO when the matrix is singular to within tol.
  ZmMatrix3T Inverse(T tol = T(zm::kTolerance6)) const;

  // The matrix times the column vector: r_i = m[i][0] v.x + m[i][1] v.y + m[i][2] v.z. The
  // result has the class of the operand and is computed in its precision.
  template <class U>
  ZmVector3T<U> operator*(const ZmVector3T<U>& v) const {
    return TimesColumn(v);
  }
  template <class U>
  ZmPoint3T<U> operator*(const ZmPoint3T<U>& p) const {
    return TimesColumn(p);
  }
  using Ops::operator*;

  // The row vector times the matrix: r_j = v.x m[0][j] + v.y m[1][j] + v.z m[2][j]. The result
  // has the class of the left operand and is computed in its precision.
  template <class U>
  friend ZmVector3T<U> operator*(const ZmVector3T<U>& v, const ZmMatrix3T& m) {
    return m.RowTimes(v);
  }
  template <class U>
  friend ZmPoint3T<U> operator*(const ZmPoint3T<U>& p, const ZmMatrix3T& m) {
    return m.RowTimes(p);
  }

private:
  template <class C>
  C TimesColumn(const C& v) const {
    using U = typename C::Scalar;
    const auto& a = m_coefs;
    return C(U(a[0][0]) * v.x + U(a[0][1]) * v.y + U(a[0][2]) * v.z,
             U(a[1][0]) * v.x + U(a[1][1]) * v.y + U(a[1][2]) * v.z,
             U(a[2][0]) * v.x + U(a[2][1]) * v.y + U(a[2][2]) * v.z);
  }
  template <class C>
  C RowTimes(const C& v) const {
    using U = typename C::Scalar;
    const auto& a = m_coefs;
    return C(v.x * U(a[0][0]) + v.y * U(a[1][0]) + v.z * U(a[2][0]),
             v.x * U(a[0][1]) + v.y * U(a[1][1]) + v.z * U(a[2][1]),
             v.x * U(a[0][2]) + v.y * U(a[1][2]) + v.z * U(a[2][2]));
  }
};

template <class T>
class ZMCALC_API ZmMatrix4T : public ZmMatrixOps<ZmMatrix4T<T>, T, 4> {
  using Ops = ZmMatrixOps<ZmMatrix4T<T>, T, 4>;
  using Ops::m_coefs;

public:
  // The identity.
  constexpr ZmMatrix4T() : Ops() { m_coefs[0][0] = m_coefs[1][1] = m_coefs[2][2] = m_coefs[3][3] = T(1); }
  // Sixteen coefficients, rows first.
  constexpr ZmMatrix4T(T a00, T a01, T a02, T a03, T a10, T a11, T a12, T a13, T a20, T a21, T a22, T a23, T a30,
                       T a31, T a32, T a33)
      : Ops() {
    const T rows[4][4] = {{a00, a01, a02, a03}, {a10, a11, a12, a13}, {a20, a21, a22, a23}, {a30, a31, a32, a33}};
    for (int i = 0; i < 4; ++i) {
      for (int j = 0; j < 4; ++j) m_coefs[i][j] = rows[i][j];
    }
  }
  // A 4x4 array, rows first, of either precision.
  template <class U, std::enable_if_t<std::is_floating_point<U>::value, int> = 0>
  constexpr explicit ZmMatrix4T(const U (&coefs)[4][4]) : Ops(coefs) {}
  // The affine transform with the given linear part and no translation.
  explicit ZmMatrix4T(const ZmMatrix3T<T>& linear) : ZmMatrix4T(linear, ZmVector3T<T>(0, 0, 0)) {}
  // The affine transform p -> linear * p + translation.
  ZmMatrix4T(const ZmMatrix3T<T>& linear, const ZmVector3T<T>& translation);
  // The other precision (implicit, like every twin conversion).
  template <class U>
  ZmMatrix4T(const ZmMatrix4T<U>& o) : Ops(o) {}
  ZmMatrix4T(const ZmMatrix4T&) = default;
  ZmMatrix4T& operator=(const ZmMatrix4T&) = default;

  static const ZmMatrix4T IDENTITY;
  static const ZmMatrix4T ZERO;
  // The zero matrix with m[3][3] = 1: the zero affine transform.
  static const ZmMatrix4T ZEROAFFINE;

  // 1 when the last row is exactly (0, 0, 0, 1).
  unsigned char IsAffine() const;
  // Column 3, rows 0 to 2.
  ZmVector3T<T> GetTranslation() const { return ZmVector3T<T>(m_coefs[0][3], m_coefs[1][3], m_coefs[2][3]); }
  void SetTranslation(const ZmVector3T<T>& t);
  // The upper left 3x3 block, the linear part of an affine transform.
  ZmMatrix3T<T> Extract3x3Matrix() const;
  // Replaces the upper left 3x3 block; the rest is kept.
  void Set3x3Matrix(const ZmMatrix3T<T>& linear);

  // Laplace expansion along the first two rows (products of 2x2 minors).
  T Determinant() const;
  // Writes the inverse (the transposed cofactors divided by the determinant) and returns 1;
  // returns 0 with `out` untouched when the matrix is singular to within tol, measured
  // against the rows' scale (see ZmMatrixOps::IsInvertible). Never divides by zero.
  unsigned char Inverse(ZmMatrix4T& out, T tol = T(zm::kTolerance6)) const;
  // The inverse, or ZERO when the matrix is singular to within tol.
  ZmMatrix4T Inverse(T tol = T(zm::kTolerance6)) const;

  // Transforms a point: r_i = m[i][0] p.x + m[i][1] p.y + m[i][2] p.z + m[i][3] for rows 0 to 2
  // (the last row is ignored). Computed in the point's precision.
  template <class U>
  ZmPoint3T<U> operator*(const ZmPoint3T<U>& p) const {
    const auto& a = m_coefs;
    return ZmPoint3T<U>(U(a[0][0]) * p.x + U(a[0][1]) * p.y + U(a[0][2]) * p.z + U(a[0][3]),
                        U(a[1][0]) * p.x + U(a[1][1]) * p.y + U(a[1][2]) * p.z + U(a[1][3]),
                        U(a[2][0]) * p.x + U(a[2][1]) * p.y + U(a[2][2]) * p.z + U(a[2][3]));
  }
  // Transforms a direction: the linear part only, r_i = m[i][0] v.x + m[i][1] v.y + m[i][2] v.z.
  template <class U>
  ZmVector3T<U> operator*(const ZmVector3T<U>& v) const {
    const auto& a = m_coefs;
    return ZmVector3T<U>(U(a[0][0]) * v.x + U(a[0][1]) * v.y + U(a[0][2]) * v.z,
                         U(a[1][0]) * v.x + U(a[1][1]) * v.y + U(a[1][2]) * v.z,
                         U(a[2][0]) * v.x + U(a[2][1]) * v.y + U(a[2][2]) * v.z);
  }
  using Ops::operator*;
};

extern template class ZmMatrixOps<ZmMatrix3T<double>, double, 3>;
extern template class ZmMatrixOps<ZmMatrix3T<float>, float, 3>;
extern template class ZmMatrixOps<ZmMatrix4T<double>, double, 4>;
extern template class ZmMatrixOps<ZmMatrix4T<float>, float, 4>;
extern template class ZmMatrix3T<double>;
extern template class ZmMatrix3T<float>;
extern template class ZmMatrix4T<double>;
extern template class ZmMatrix4T<float>;

using ZmMatrix3d = ZmMatrix3T<double>;
using ZmMatrix3f = ZmMatrix3T<float>;
using ZmMatrix4d = ZmMatrix4T<double>;
using ZmMatrix4f = ZmMatrix4T<float>;

// The coefficients and the virtual-table pointer, nothing else.
namespace zm {
template <class M, int Count>
constexpr bool kIsCoefsAndVptr =
    sizeof(M) == (sizeof(void*) + Count * sizeof(typename M::Scalar) + alignof(M) - 1) / alignof(M) * alignof(M);
}
static_assert(zm::kIsCoefsAndVptr<ZmMatrix3d, 9> && zm::kIsCoefsAndVptr<ZmMatrix3f, 9>, "");
static_assert(zm::kIsCoefsAndVptr<ZmMatrix4d, 16> && zm::kIsCoefsAndVptr<ZmMatrix4f, 16>, "");
