// Linear systems, determinant and product, polynomial roots and straight-line regression of
// ZmMathd / ZmMathf. Expected values come from numpy (quoted) or by hand.
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <cmath>
#include <cwchar>
#include <limits>

namespace {

template <class T>
class SolveTwins : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(SolveTwins, Scalars);

template <class T>
using Math = ZmMathT<T>;

template <class T>
T Marker() {
  return static_cast<T>(-1.0e32f);  // -1.0000000331813535e+32 in double
}

// Tolerance for results of iterative or rounded computations in each precision.
template <class T>
T Loose() {
  return std::is_same<T, double>::value ? T(1e-9) : T(2e-4);
}

bool HasMessage(const WbErrObj* error, const wchar_t* text) {
  return error && std::wcscmp(error->GetMessage(), text) == 0;
}

const wchar_t* const kNullCoefficients = L"Error while resolving 2-dim polynom : null coefficients";
const wchar_t* const kNegativeDelta = L"Error while resolving 2-dim polynom : negative delta";

TYPED_TEST(SolveTwins, System2x2RefusesOnlyBelowTheFloatSingularThreshold) {
  using T = TypeParam;
  // 2x + y = 3, x + 3y = 5: numpy.linalg.solve -> (0.8, 1.4).
  for (unsigned char loose : {0, 1}) {
    T m[2][2] = {{2, 1}, {1, 3}};
    T b[2] = {3, 5};
    ASSERT_EQ(Math<T>::SolveSystem2x2(m, b, loose), 1);
    EXPECT_NEAR(b[0], T(0.8), T(1e-6));
    EXPECT_NEAR(b[1], T(1.4), T(1e-6));
  }
  // m = [[1, 0], [0, -v]] has d = v: x0 = b0, x1 = -b1 / v. 1e-9 is far under the 1e-6 stage,
  // yet solved whatever loose says; the 1e-12f threshold itself (9.999999960041972e-13 in
  // double, above the exact decimal 1e-12 test it replaces) is solved, the next value below
  // is refused with b untouched.
  const T atThreshold = static_cast<T>(1.0e-12f);
  const T below = std::nextafter(atThreshold, T(0));
  for (unsigned char loose : {0, 1}) {
    for (T v : {T(1e-9), atThreshold}) {
      T m[2][2] = {{1, 0}, {0, -v}};
      T b[2] = {2, 3};
      EXPECT_EQ(Math<T>::SolveSystem2x2(m, b, loose), 1) << v;
      EXPECT_EQ(b[0], T(2));
      EXPECT_EQ(b[1], -T(3) / v);
    }
    for (T v : {below, T(1e-13), T(0), std::numeric_limits<T>::quiet_NaN()}) {
      T m[2][2] = {{1, 0}, {0, -v}};
      T b[2] = {2, 3};
      EXPECT_EQ(Math<T>::SolveSystem2x2(m, b, loose), 0) << v;
      EXPECT_EQ(b[0], T(2));
      EXPECT_EQ(b[1], T(3));
    }
  }
}

TYPED_TEST(SolveTwins, System3x3RefusesNegativeAndTinyDeterminants) {
  using T = TypeParam;
  // numpy: det([[4,-2,1],[3,6,-4],[2,1,8]]) = 263, solve(., [12,-25,32]) = (1, -2, 4).
  T m[3][3] = {{4, -2, 1}, {3, 6, -4}, {2, 1, 8}};
  EXPECT_EQ(Math<T>::Determinant3x3(m), T(263));
  T b[3] = {12, -25, 32};
  ASSERT_EQ(Math<T>::SolveSystem3x3(m, b), 1);
  EXPECT_NEAR(b[0], T(1), T(1e-5));
  EXPECT_NEAR(b[1], T(-2), T(1e-5));
  EXPECT_NEAR(b[2], T(4), T(1e-5));

  // The same system with two rows exchanged (det = -263), the identity with two rows
  // exchanged (det = -1), a singular one and a NaN are all refused with b untouched.
  T swapped[3][3] = {{3, 6, -4}, {4, -2, 1}, {2, 1, 8}};
  T permutation[3][3] = {{0, 1, 0}, {1, 0, 0}, {0, 0, 1}};
  T singular[3][3] = {{1, 2, 3}, {2, 4, 6}, {1, 0, 1}};
  T withNaN[3][3] = {{1, 0, 0}, {0, std::numeric_limits<T>::quiet_NaN(), 0}, {0, 0, 1}};
  EXPECT_EQ(Math<T>::Determinant3x3(permutation), T(-1));
  for (auto* rejected : {swapped, permutation, singular, withNaN}) {
    T rhs[3] = {7, 8, 9};
    EXPECT_EQ(Math<T>::SolveSystem3x3(rejected, rhs), 0);
    EXPECT_EQ(rhs[0], T(7));
    EXPECT_EQ(rhs[1], T(8));
    EXPECT_EQ(rhs[2], T(9));
  }

  // diag(1, 1, v): det = v exactly. 1e-6f is accepted, the value just under it refused.
  const T threshold = static_cast<T>(1.0e-6f);
  T small[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, threshold}};
  T rhs[3] = {1, 2, 3};
  EXPECT_EQ(Math<T>::SolveSystem3x3(small, rhs), 1);
  small[2][2] = std::nextafter(threshold, T(0));
  EXPECT_EQ(Math<T>::SolveSystem3x3(small, rhs), 0);

  // Each unknown is D_k times the reciprocal of det: diag(5, 1, 1) with b0 = 3 gives
  // 3 * (1/5) = 0.6000000000000001 in double (3/5 would be 0.6); in float both are 0.6f.
  T five[3][3] = {{5, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  T three[3] = {3, 0, 0};
  ASSERT_EQ(Math<T>::SolveSystem3x3(five, three), 1);
  EXPECT_EQ(three[0], T(3) * (T(1) / T(5)));
  if (std::is_same<T, double>::value) {
    EXPECT_EQ(three[0], T(0.6000000000000001));
  }
}

TYPED_TEST(SolveTwins, MatrixProductMayOverwriteAFactor) {
  using T = TypeParam;
  // numpy: [[1,2,3],[4,5,6],[7,8,10]] @ [[0.5,-1,2],[3,0.25,-2],[1,1,1]]
  //      = [[9.5, 2.5, 1], [23, 3.25, 4], [37.5, 5, 8]] (exact in both precisions).
  const T expected[3][3] = {{9.5, 2.5, 1}, {23, 3.25, 4}, {37.5, 5, 8}};
  T a[3][3] = {{1, 2, 3}, {4, 5, 6}, {7, 8, 10}};
  T b[3][3] = {{0.5, -1, 2}, {3, 0.25, -2}, {1, 1, 1}};
  T c[3][3];
  Math<T>::MultMatrix(a, b, c);
  Math<T>::MultMatrix(a, b, a);  // the result into the left factor
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      EXPECT_EQ(c[i][j], expected[i][j]);
      EXPECT_EQ(a[i][j], expected[i][j]);
    }
  }
}

TYPED_TEST(SolveTwins, QuadraticRootsOrderAndMessages) {
  using T = TypeParam;
  T roots[2] = {-7, -7};
  // x^2 - 3x + 2: roots[0] = (sqrt(delta) - c1)/(2 c0) = 2, roots[1] = 1.
  const T monic[3] = {1, -3, 2};
  EXPECT_EQ(Math<T>::SolvePolynom2(monic, roots), nullptr);
  EXPECT_EQ(roots[0], T(2));
  EXPECT_EQ(roots[1], T(1));
  // A negative leading coefficient swaps them: -x^2 + 3x - 2 -> (1 - 3)/-2 = 1, then 2.
  const T negative[3] = {-1, 3, -2};
  EXPECT_EQ(Math<T>::SolvePolynom2(negative, roots), nullptr);
  EXPECT_EQ(roots[0], T(1));
  EXPECT_EQ(roots[1], T(2));
  // Linear: 2x - 4 = 0 gives its root twice.
  const T linear[3] = {0, 2, -4};
  EXPECT_EQ(Math<T>::SolvePolynom2(linear, roots), nullptr);
  EXPECT_EQ(roots[0], T(2));
  EXPECT_EQ(roots[1], T(2));

  T untouched[2] = {-7, -7};
  const T constant[3] = {0, 0, 1};
  EXPECT_TRUE(HasMessage(Math<T>::SolvePolynom2(constant, untouched), kNullCoefficients));
  const T noRealRoot[3] = {1, 0, 1};
  EXPECT_TRUE(HasMessage(Math<T>::SolvePolynom2(noRealRoot, untouched), kNegativeDelta));
  const T withNaN[3] = {1, std::numeric_limits<T>::quiet_NaN(), 1};
  EXPECT_TRUE(HasMessage(Math<T>::SolvePolynom2(withNaN, untouched), kNegativeDelta));
  EXPECT_EQ(untouched[0], T(-7));
  EXPECT_EQ(untouched[1], T(-7));
}

TYPED_TEST(SolveTwins, CubicTakesItsOtherRootsFromTheLeadingQuadratic) {
  using T = TypeParam;
  const T eps = static_cast<T>(1e-6);
  // x^3 - 3x^2 + 2x + 5: numpy.roots -> one real root -0.9041608591349206 (Newton from -2);
  // the other two slots hold the roots of x^2 - 3x + 2, i.e. 2 and 1, not the complex pair.
  const T c[4] = {1, -3, 2, 5};
  T roots[3] = {0, 0, 0};
  T lastStep = Marker<T>();
  EXPECT_EQ(Math<T>::SolvePolynom3(c, T(-2), eps, roots, &lastStep, 0), nullptr);
  EXPECT_NEAR(roots[0], T(-0.9041608591349206), Loose<T>());
  EXPECT_LE(std::fabs(lastStep), eps);
  EXPECT_EQ(roots[1], T(2));
  EXPECT_EQ(roots[2], T(1));

  // (x-1)(x-2)(x-3) from 0: roots[0] -> 1; x^2 - 6x + 11 has a negative delta.
  const T c123[4] = {1, -6, 11, -6};
  EXPECT_TRUE(HasMessage(Math<T>::SolvePolynom3(c123, T(0), eps, roots, nullptr, 0), kNegativeDelta));
  EXPECT_NEAR(roots[0], T(1), Loose<T>());
  roots[1] = roots[2] = 0;
  EXPECT_EQ(Math<T>::SolvePolynom3(c123, T(0), eps, roots, nullptr, 1), nullptr);
  EXPECT_EQ(roots[1], Marker<T>());
  EXPECT_EQ(roots[2], Marker<T>());

  // x^3 - 1 has f'(0) = 0: fails at once, roots[0] = x0 and the other slots untouched.
  const T flat[4] = {1, 0, 0, -1};
  T kept[3] = {5, 5, 5};
  EXPECT_TRUE(HasMessage(Math<T>::SolvePolynom3(flat, T(0), eps, kept, nullptr, 1),
                         L"Error while resolving 3-dim polynom : null derivate denominator"));
  EXPECT_EQ(kept[0], T(0));
  EXPECT_EQ(kept[1], T(5));
  EXPECT_EQ(kept[2], T(5));
}

TYPED_TEST(SolveTwins, CubicNonConvergenceEndsAfterTheIterationBound) {
  using T = TypeParam;
  // x^3 - 2x + 2 from 0 cycles exactly: f(0)/f'(0) = 2/-2 -> x = 1, f(1)/f'(1) = 1/1 -> x = 0.
  // After 1000 updates (an even number) x is back at 0. The message names the quartic.
  const T c[4] = {1, 0, -2, 2};
  T roots[3] = {9, 9, 9};
  T lastStep = 42;
  EXPECT_TRUE(HasMessage(Math<T>::SolvePolynom3(c, T(0), T(1e-6), roots, &lastStep, 0),
                         L"Error while resolving 4-dim polynom : first solution not found"));
  EXPECT_EQ(roots[0], T(0));
  EXPECT_EQ(roots[1], T(9));
  EXPECT_EQ(lastStep, T(42));
  // Tolerant: go on with the quadratic x^2 - 2 -> (sqrt(8)/2, -sqrt(8)/2); lastStep unwritten.
  EXPECT_EQ(Math<T>::SolvePolynom3(c, T(0), T(1e-6), roots, &lastStep, 1), nullptr);
  EXPECT_NEAR(roots[1], T(1.4142135623730951), Loose<T>());
  EXPECT_NEAR(roots[2], T(-1.4142135623730951), Loose<T>());
  EXPECT_EQ(lastStep, T(42));
  // NaN coefficients and a NaN bound never converge: the same bounded failure.
  const T withNaN[4] = {1, std::numeric_limits<T>::quiet_NaN(), 0, 1};
  EXPECT_NE(Math<T>::SolvePolynom3(withNaN, T(1), T(1e-6), roots, nullptr, 0), nullptr);
  EXPECT_NE(Math<T>::SolvePolynom3(c, T(0.5), std::numeric_limits<T>::quiet_NaN(), roots, nullptr, 0), nullptr);
}

TYPED_TEST(SolveTwins, QuarticRestartsTheCubicFromTheCallersStart) {
  using T = TypeParam;
  const T eps = static_cast<T>(1e-6);
  // (x-1)(x-2)(x-3)(x-4) from 2.3: Newton (independent numpy run) -> 2. The deflated cubic
  // (x-1)(x-3)(x-4) from 2.3 -> 3, while from the root 2 it would go to 4. Its leading
  // quadratic x^2 - 8x + 19 has a negative delta.
  const T c[5] = {1, -10, 35, -50, 24};
  T roots[4] = {0, 0, 0, 0};
  T lastSteps[2] = {Marker<T>(), Marker<T>()};
  EXPECT_TRUE(HasMessage(Math<T>::SolvePolynom4(c, T(2.3), eps, roots, lastSteps, 0), kNegativeDelta));
  EXPECT_NEAR(roots[0], T(2), Loose<T>());
  EXPECT_NEAR(roots[1], T(3), Loose<T>());
  EXPECT_EQ(roots[2], Marker<T>());  // set by the quartic before anything else
  EXPECT_EQ(roots[3], Marker<T>());
  EXPECT_LE(std::fabs(lastSteps[0]), eps);
  EXPECT_LE(std::fabs(lastSteps[1]), eps);
  roots[1] = 0;
  EXPECT_EQ(Math<T>::SolvePolynom4(c, T(2.3), eps, roots, lastSteps, 1), nullptr);
  EXPECT_NEAR(roots[1], T(3), Loose<T>());
  EXPECT_EQ(roots[3], Marker<T>());

  // x^4 - 5x^2 + 4 from 0.5: 1, deflated x^3 + x^2 - 4x - 4 from 0.5 -> -2, and the roots of
  // x^2 + x - 4: numpy.roots -> 1.5615528128088303 then -2.5615528128088303.
  const T even[5] = {1, 0, -5, 0, 4};
  EXPECT_EQ(Math<T>::SolvePolynom4(even, T(0.5), eps, roots, nullptr, 0), nullptr);
  EXPECT_NEAR(roots[0], T(1), Loose<T>());
  EXPECT_NEAR(roots[1], T(-2), Loose<T>());
  EXPECT_NEAR(roots[2], T(1.5615528128088303), Loose<T>());
  EXPECT_NEAR(roots[3], T(-2.5615528128088303), Loose<T>());

  // x^4 + 1: f'(0) = 0 fails at once with the quartic's own message, sentinels already set.
  const T flat[5] = {1, 0, 0, 0, 1};
  T kept[4] = {5, 5, 5, 5};
  EXPECT_TRUE(HasMessage(Math<T>::SolvePolynom4(flat, T(0), eps, kept, nullptr, 1),
                         L"Error while resolving 4-dim polynom : null derivate denominator"));
  EXPECT_EQ(kept[0], T(0));
  EXPECT_EQ(kept[1], Marker<T>());
  // x^4 - x^2 + 2x - 2 = (x - 1)(x^3 + x^2 + 2): from 0, Newton lands exactly on 1 (f(0)/f'(0) =
  // -2/2); the deflated cubic restarted at 0 has f'(0) = 0. Not tolerant: the cubic's error.
  // Tolerant: roots[1..3] back to the marker and success.
  const T deflatesFlat[5] = {1, 0, -1, 2, -2};
  EXPECT_TRUE(HasMessage(Math<T>::SolvePolynom4(deflatesFlat, T(0), eps, kept, nullptr, 0),
                         L"Error while resolving 3-dim polynom : null derivate denominator"));
  EXPECT_EQ(kept[0], T(1));
  EXPECT_EQ(kept[1], T(0));  // the cubic's start, written before it failed
  EXPECT_EQ(Math<T>::SolvePolynom4(deflatesFlat, T(0), eps, kept, nullptr, 1), nullptr);
  EXPECT_EQ(kept[0], T(1));
  EXPECT_EQ(kept[1], Marker<T>());
  EXPECT_EQ(kept[2], Marker<T>());
  EXPECT_EQ(kept[3], Marker<T>());
}

TYPED_TEST(SolveTwins, RegressionOverTwoArrays) {
  using T = TypeParam;
  T slope = 11, intercept = 13;
  // One value: success that writes nothing.
  EXPECT_EQ(Math<T>::LinearRegression(WbArrayTempl<T>{T(1)}, WbArrayTempl<T>{T(2)}, slope, intercept), 1);
  EXPECT_EQ(Math<T>::LinearRegression(WbArrayTempl<T>{}, WbArrayTempl<T>{}, slope, intercept), 1);
  EXPECT_EQ(slope, T(11));
  EXPECT_EQ(intercept, T(13));
  // Every x equal: 0. A y shorter than x: 0, never read past its end.
  EXPECT_EQ(Math<T>::LinearRegression(WbArrayTempl<T>{2, 2, 2}, WbArrayTempl<T>{1, 2, 3}, slope, intercept), 0);
  EXPECT_EQ(Math<T>::LinearRegression(WbArrayTempl<T>{0, 1, 2}, WbArrayTempl<T>{1, 2}, slope, intercept), 0);
  EXPECT_EQ(slope, T(11));
  // numpy.polyfit([0..5], [1.1, 2.9, 5.2, 6.8, 9.1, 11.0], 1) -> 1.9914285714285707,
  // 1.0380952380952362.
  const WbArrayTempl<T> x{0, 1, 2, 3, 4, 5};
  const WbArrayTempl<T> y{T(1.1), T(2.9), T(5.2), T(6.8), T(9.1), T(11.0)};
  ASSERT_EQ(Math<T>::LinearRegression(x, y, slope, intercept), 1);
  EXPECT_NEAR(slope, T(1.9914285714285707), T(1e-5));
  EXPECT_NEAR(intercept, T(1.0380952380952362), T(1e-5));
  // A NaN abscissa counts as different from the first: computed, NaN results.
  const T nan = std::numeric_limits<T>::quiet_NaN();
  EXPECT_EQ(Math<T>::LinearRegression(WbArrayTempl<T>{nan, nan}, WbArrayTempl<T>{1, 2}, slope, intercept), 1);
  EXPECT_TRUE(std::isnan(slope));
}

TYPED_TEST(SolveTwins, RegressionOverPointsAndItsQuality) {
  using T = TypeParam;
  using Points = WbArrayTempl<ZmPoint2T<T>>;
  T slope = 11, intercept = 13, quality = 17;
  EXPECT_EQ(Math<T>::LinearRegression(Points{ZmPoint2T<T>(1, 2)}, slope, intercept, quality), 0);
  EXPECT_EQ(Math<T>::LinearRegression(Points{{1, 2}, {1, 3}}, slope, intercept, quality), 0);
  EXPECT_EQ(slope, T(11));

  // (0,1), (1,3), (2,5): Sx 3, Sy 9, Sxx 5, Sxy 13, Syy 35, D = 6. slope 2, intercept 1;
  // quality = (5*9 - 13*3) / sqrt((3*35 - 81) * 6) = 6 / 12 = 0.5 (Pearson's r would be 1).
  ASSERT_EQ(Math<T>::LinearRegression(Points{{0, 1}, {1, 3}, {2, 5}}, slope, intercept, quality), 1);
  EXPECT_EQ(slope, T(2));
  EXPECT_EQ(intercept, T(1));
  EXPECT_EQ(quality, T(0.5));

  // numpy as above; quality from its formula over numpy sums: 0.5208801238965849.
  const Points noisy{{0, T(1.1)}, {1, T(2.9)}, {2, T(5.2)}, {3, T(6.8)}, {4, T(9.1)}, {5, T(11.0)}};
  ASSERT_EQ(Math<T>::LinearRegression(noisy, slope, intercept, quality), 1);
  EXPECT_NEAR(slope, T(1.9914285714285707), T(1e-5));
  EXPECT_NEAR(intercept, T(1.0380952380952362), T(1e-5));
  EXPECT_NEAR(quality, T(0.5208801238965849), T(1e-4));

  // A constant ordinate: n*Syy - Sy^2 = 3*12 - 36 = 0, so quality = 12 / 0 = +inf.
  ASSERT_EQ(Math<T>::LinearRegression(Points{{0, 2}, {1, 2}, {2, 2}}, slope, intercept, quality), 1);
  EXPECT_EQ(slope, T(0));
  EXPECT_EQ(intercept, T(2));
  EXPECT_EQ(quality, std::numeric_limits<T>::infinity());
}

}  // namespace
