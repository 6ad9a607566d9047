#include <wbcore/WbLocalize.h>

#include <cmath>

#include "foundation/build_info.h"
#include "zemcalc/ZmConstants.h"
#include "zemcalc/ZmMathSolve.h"
#include "zemcalc/ZmMatrix.h"

ZM_BUILD_INFO(solvers)

namespace {

constexpr float kPivotTolerance = 1.0e-6f;  // first stage of the 2x2 test, the 3x3 test
constexpr float kSingularTolerance = 1.0e-12f;
constexpr int kMaxNewtonSteps = 1000;

// Integer powers of the Newton iterations are taken with the double pow in both precisions.
template <class T>
T Power(T x, double exponent) {
  return static_cast<T>(std::pow(static_cast<double>(x), exponent));
}

template <class T>
T Magnitude(T v) {
  return v < 0 ? -v : v;
}

const WbErrObj* Fail(const wchar_t* message) { return WbSetError(WbLocalizeStringExW(message, 0)); }

// Newton's method on a polynomial: x starts at x0 and roots0 follows every update. Returns
// null on convergence (lastStep written when given), the derivative error when f' is exactly
// 0, and sets converged = false after kMaxNewtonSteps updates.
template <class T, class Function, class Derivative>
const WbErrObj* Newton(Function f, Derivative derivative, T x0, T eps, T& roots0, T* lastStep,
                       const wchar_t* nullDerivativeMessage, bool& converged) {
  T x = x0;
  roots0 = x0;
  converged = false;
  for (int i = 0; i < kMaxNewtonSteps; ++i) {
    const T slope = derivative(x);
    if (slope == T(0)) return Fail(nullDerivativeMessage);
    const T step = f(x) / slope;
    if (eps >= Magnitude(step)) {
      if (lastStep) *lastStep = step;
      converged = true;
      return nullptr;
    }
    x = x - step;
    roots0 = x;
  }
  return nullptr;
}

}  // namespace

template <class T>
unsigned char ZmMathSolveT<T>::SolveSystem2x2(T (*m)[2], T* b, unsigned char loose) {
  const T d = m[0][1] * m[1][0] - m[1][1] * m[0][0];
  const T size = Magnitude(d);
  // Two stages, as callers know them: the loose pass and a small determinant both fall back
  // to the 1e-12 test, which therefore alone decides. It compares in double in both twins.
  const bool firstStage = !loose && size >= T(kPivotTolerance);
  if (!firstStage && !(static_cast<double>(size) >= static_cast<double>(kSingularTolerance))) return 0;
  const T b0 = b[0], b1 = b[1];
  b[0] = -(b0 * m[1][1] - m[0][1] * b1) / d;
  b[1] = (b0 * m[1][0] - b1 * m[0][0]) / d;
  return 1;
}

template <class T>
T ZmMathSolveT<T>::Determinant3x3(T (*m)[3]) {
  return m[0][0] * m[1][1] * m[2][2] + m[0][1] * m[1][2] * m[2][0] + m[0][2] * m[1][0] * m[2][1] -
         m[2][1] * m[0][0] * m[1][2] - m[2][2] * m[0][1] * m[1][0] - m[0][2] * m[2][0] * m[1][1];
}

template <class T>
unsigned char ZmMathSolveT<T>::SolveSystem3x3(T (*m)[3], T* b) {
  const T det = Determinant3x3(m);
  // Signed on purpose: a negative determinant is refused like a singular one.
  if (!(det >= T(kPivotTolerance))) return 0;
  const T inverse = T(1) / det;
  T solution[3];
  for (int k = 0; k < 3; ++k) {
    T column[3][3];
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) column[i][j] = (j == k) ? b[i] : m[i][j];
    }
    solution[k] = Determinant3x3(column) * inverse;
  }
  for (int k = 0; k < 3; ++k) b[k] = solution[k];
  return 1;
}

template <class T>
void ZmMathSolveT<T>::MultMatrix(T (*a)[3], T (*b)[3], T (*c)[3]) {
  // Through the matrix class, so that the product rule (row by column, summed in increasing
  // index) lives in one place; both factors are copied before c is written.
  ZmMatrix3T<T> left, right;
  left.SetCoefs(a);
  right.SetCoefs(b);
  (left * right).GetCoefs(c);
}

template <class T>
const WbErrObj* ZmMathSolveT<T>::SolvePolynom2(const T* c, T* roots) {
  if (c[0] == T(0)) {
    if (c[1] == T(0)) return Fail(L"Error while resolving 2-dim polynom : null coefficients");
    roots[0] = roots[1] = -c[2] / c[1];
    return nullptr;
  }
  const T delta = c[1] * c[1] - T(4) * c[0] * c[2];
  // A NaN delta has no real root either: it is refused with the same message.
  if (!(delta >= T(0))) return Fail(L"Error while resolving 2-dim polynom : negative delta");
  const T s = zm::Sqrt(delta);
  roots[0] = (s - c[1]) / (T(2) * c[0]);
  roots[1] = (-c[1] - s) / (T(2) * c[0]);
  return nullptr;
}

template <class T>
const WbErrObj* ZmMathSolveT<T>::SolvePolynom3(const T* c, T x0, T eps, T* roots, T* lastStep, unsigned char tolerant) {
  const auto f = [c](T x) { return c[0] * Power(x, 3.0) + c[1] * Power(x, 2.0) + c[2] * x + c[3]; };
  const auto derivative = [c](T x) { return T(2) * c[1] * x + T(3) * c[0] * Power(x, 2.0) + c[2]; };
  bool converged = false;
  if (const WbErrObj* error = Newton(f, derivative, x0, eps, roots[0], lastStep,
                                     L"Error while resolving 3-dim polynom : null derivate denominator", converged))
    return error;
  if (!converged && !tolerant) return Fail(L"Error while resolving 4-dim polynom : first solution not found");
  // The remaining roots are those of the quadratic made of the first three coefficients.
  const WbErrObj* error = SolvePolynom2(c, roots + 1);
  if (error && tolerant) {
    roots[1] = roots[2] = zm::Invalid<T>();
    return nullptr;
  }
  return error;
}

template <class T>
const WbErrObj* ZmMathSolveT<T>::SolvePolynom4(const T* c, T x0, T eps, T* roots, T* lastStep, unsigned char tolerant) {
  roots[1] = roots[2] = roots[3] = zm::Invalid<T>();
  const auto f = [c](T x) {
    return c[0] * Power(x, 4.0) + c[1] * Power(x, 3.0) + c[2] * Power(x, 2.0) + c[3] * x + c[4];
  };
  const auto derivative = [c](T x) {
    return T(4) * c[0] * Power(x, 3.0) + T(3) * c[1] * Power(x, 2.0) + T(2) * c[2] * x + c[3];
  };
  bool converged = false;
  if (const WbErrObj* error = Newton(f, derivative, x0, eps, roots[0], lastStep,
                                     L"Error while resolving 4-dim polynom : null derivate denominator", converged))
    return error;
  if (!converged && !tolerant) return Fail(L"Error while resolving 4-dim polynom : first solution not found");
  // Synthetic division by (x - r).
  const T r = roots[0];
  T deflated[4];
  deflated[0] = c[0];
  deflated[1] = deflated[0] * r + c[1];
  deflated[2] = deflated[1] * r + c[2];
  deflated[3] = deflated[2] * r + c[3];
  // The cubic starts again from the caller's x0, not from r.
  const WbErrObj* error = SolvePolynom3(deflated, x0, eps, roots + 1, lastStep ? lastStep + 1 : nullptr, tolerant);
  if (error && tolerant) {
    roots[1] = roots[2] = roots[3] = zm::Invalid<T>();
    return nullptr;
  }
  return error;
}

template <class T>
unsigned char ZmMathSolveT<T>::LinearRegression(const WbArrayTempl<T>& x, const WbArrayTempl<T>& y, T& slope,
                                                T& intercept) {
  const std::uint64_t count = x.GetSize();
  if (count < 2) return 1;  // too few values: a success that leaves the outputs alone
  if (y.GetSize() < count) return 0;
  bool allEqual = true;
  for (std::uint64_t i = 1; i < count && allEqual; ++i) allEqual = (x[i] == x[0]);
  if (allEqual) return 0;
  T sx = 0, sxx = 0, sy = 0, sxy = 0;
  for (std::uint64_t i = 0; i < count; ++i) sx += x[i];
  for (std::uint64_t i = 0; i < count; ++i) sxx += x[i] * x[i];
  for (std::uint64_t i = 0; i < count; ++i) sy += y[i];
  for (std::uint64_t i = 0; i < count; ++i) sxy += x[i] * y[i];
  const T n = static_cast<T>(count);
  const T d = n * sxx - sx * sx;
  slope = (n * sxy - sy * sx) / d;
  intercept = (sy * sxx - sxy * sx) / d;
  return 1;
}

template <class T>
unsigned char ZmMathSolveT<T>::LinearRegression(const WbArrayTempl<ZmPoint2T<T>>& pts, T& slope, T& intercept,
                                                T& quality) {
  const int count = static_cast<int>(pts.GetSize());
  if (count < 2) return 0;
  bool allEqual = true;
  for (int i = 1; i < count && allEqual; ++i) allEqual = (pts[i].x == pts[0].x);
  if (allEqual) return 0;
  T sx = 0, sy = 0, sxx = 0, sxy = 0, syy = 0;
  for (int i = 0; i < count; ++i) {
    const T px = pts[i].x, py = pts[i].y;
    sx += px;
    sy += py;
    sxx += px * px;
    sxy += px * py;
    syy += py * py;
  }
  const T n = static_cast<T>(count);
  const T d = n * sxx - sx * sx;
  slope = (n * sxy - sy * sx) / d;
  intercept = (sy - slope * sx) / n;
  quality = (sxx * sy - sxy * sx) / zm::Sqrt((n * syy - sy * sy) * d);
  return 1;
}

template class ZmMathSolveT<double>;
template class ZmMathSolveT<float>;
