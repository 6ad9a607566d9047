// Linear systems, determinant and product, polynomial roots and regression; numpy or hand values.
#include "math_test_support.h"

using namespace math_test;

namespace {

MATH_TWIN_SUITE(SolveTwins);

// Tolerance for results of iterative or rounded computations in each precision.
template <class T>
const T kLoose = ByTwin<T>(1e-9, 2e-4);

const wchar_t* const kNullCoefficients = L"Error while resolving 2-dim polynom : null coefficients";
const wchar_t* const kNegativeDelta = L"Error while resolving 2-dim polynom : negative delta";

TYPED_TEST(SolveTwins, LinearSystemsRefuseBelowTheFloatSingularThresholds) {
  using T = TypeParam;
  // [[1, 0], [0, -v]]: x = (b0, -b1 / v), solved whatever loose says down to the 1e-12f threshold
  // itself (9.999999960041972e-13 in double, not the decimal 1e-12); below, b untouched.
  const T atThreshold = static_cast<T>(1.0e-12f);
  for (unsigned char loose : {0, 1}) {
    // 2x + y = 3, x + 3y = 5: numpy.linalg.solve -> (0.8, 1.4).
    T m[2][2] = {{2, 1}, {1, 3}}, b[2] = {3, 5};
    ASSERT_EQ(Math<T>::SolveSystem2x2(m, b, loose), 1);
    ExpectNearRows<T>(T(1e-6), {{b[0], 0.8}, {b[1], 1.4}});
    for (T v : {T(1e-9), atThreshold, std::nextafter(atThreshold, T(0)), T(1e-13), T(0), kNan<T>}) {
      T singular[2][2] = {{1, 0}, {0, -v}}, rhs[2] = {2, 3};
      const bool solved = v >= atThreshold;
      EXPECT_EQ(Math<T>::SolveSystem2x2(singular, rhs, loose), solved ? 1 : 0) << v;
      ExpectRows<T>({{rhs[0], 2}, {rhs[1], solved ? -T(3) / v : T(3)}});
    }
  }
  // numpy: det([[4,-2,1],[3,6,-4],[2,1,8]]) = 263, solve(., [12,-25,32]) = (1, -2, 4).
  T m[3][3] = {{4, -2, 1}, {3, 6, -4}, {2, 1, 8}}, b[3] = {12, -25, 32};
  EXPECT_EQ(Math<T>::Determinant3x3(m), T(263));
  ASSERT_EQ(Math<T>::SolveSystem3x3(m, b), 1);
  ExpectNearRows<T>(T(1e-5), {{b[0], 1}, {b[1], -2}, {b[2], 4}});
  // Refused, b untouched: det < 0 (rows exchanged), singular, NaN, just under 1e-6f (accepted at it).
  const T threshold = static_cast<T>(1.0e-6f);
  T rejected[5][3][3] = {{{3, 6, -4}, {4, -2, 1}, {2, 1, 8}},
                         {{0, 1, 0}, {1, 0, 0}, {0, 0, 1}},
                         {{1, 2, 3}, {2, 4, 6}, {1, 0, 1}},
                         {{1, 0, 0}, {0, kNan<T>, 0}, {0, 0, 1}},
                         {{1, 0, 0}, {0, 1, 0}, {0, 0, std::nextafter(threshold, T(0))}}};
  EXPECT_EQ(Math<T>::Determinant3x3(rejected[1]), T(-1));
  for (auto& r : rejected) {
    T rhs[3] = {7, 8, 9};
    EXPECT_EQ(Math<T>::SolveSystem3x3(r, rhs), 0);
    ExpectRows<T>({{rhs[0], 7}, {rhs[1], 8}, {rhs[2], 9}});
  }
  T small[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, threshold}}, rhs[3] = {1, 2, 3};
  EXPECT_EQ(Math<T>::SolveSystem3x3(small, rhs), 1);
  // D_k times the reciprocal of det: 3 * (1/5) = 0.6000000000000001 in double (3/5 is 0.6).
  T five[3][3] = {{5, 0, 0}, {0, 1, 0}, {0, 0, 1}}, three[3] = {3, 0, 0};
  ASSERT_EQ(Math<T>::SolveSystem3x3(five, three), 1);
  EXPECT_EQ(three[0], ByTwin<T>(0.6000000000000001, 0.6f));
  // numpy: [[1,2,3],[4,5,6],[7,8,10]] @ [[0.5,-1,2],[3,0.25,-2],[1,1,1]], exact in both twins.
  const T expected[3][3] = {{9.5, 2.5, 1}, {23, 3.25, 4}, {37.5, 5, 8}};
  T left[3][3] = {{1, 2, 3}, {4, 5, 6}, {7, 8, 10}}, right[3][3] = {{0.5, -1, 2}, {3, 0.25, -2}, {1, 1, 1}},
    product[3][3];
  Math<T>::MultMatrix(left, right, product);
  Math<T>::MultMatrix(left, right, left);  // the result into the left factor
  for (int i = 0; i < 9; ++i)
    ExpectRows<T>({{product[i / 3][i % 3], expected[i / 3][i % 3]}, {left[i / 3][i % 3], expected[i / 3][i % 3]}});
}

TYPED_TEST(SolveTwins, QuadraticRootsAndTheCubicTakingItsOtherRootsFromTheLeadingQuadratic) {
  using T = TypeParam;
  // roots[0] = (sqrt(delta) - c1)/(2 c0); linear: the root twice; failures leave the roots alone.
  const struct {
    T c[3];
    const wchar_t* message;
    T r0, r1;
  } rows[] = {{{1, -3, 2}, nullptr, 2, 1},         {{-1, 3, -2}, nullptr, 1, 2},
              {{0, 2, -4}, nullptr, 2, 2},         {{0, 0, 1}, kNullCoefficients, -7, -7},
              {{1, 0, 1}, kNegativeDelta, -7, -7}, {{1, kNan<T>, 1}, kNegativeDelta, -7, -7}};
  for (const auto& r : rows) {
    T roots[2] = {-7, -7};
    EXPECT_EQ(Message(Math<T>::SolvePolynom2(r.c, roots)), r.message ? r.message : Message(nullptr));
    ExpectRows<T>({{roots[0], r.r0}, {roots[1], r.r1}});
  }
  // The cubic ends after its iteration bound.
  const T eps = static_cast<T>(1e-6), marker = T(kMarker);
  // numpy.roots: one real root; the other slots hold those of x^2 - 3x + 2, not the complex pair.
  const T c[4] = {1, -3, 2, 5};
  T roots[3] = {0, 0, 0}, lastStep = marker;
  EXPECT_EQ(Math<T>::SolvePolynom3(c, T(-2), eps, roots, &lastStep, 0), nullptr);
  EXPECT_NEAR(roots[0], T(-0.9041608591349206), kLoose<T>);
  EXPECT_LE(std::fabs(lastStep), eps);
  ExpectRows<T>({{roots[1], 2}, {roots[2], 1}});
  // (x-1)(x-2)(x-3) from 0: 1, and x^2 - 6x + 11 has a negative delta; tolerant: the marker.
  const T c123[4] = {1, -6, 11, -6};
  EXPECT_EQ(Message(Math<T>::SolvePolynom3(c123, T(0), eps, roots, nullptr, 0)), kNegativeDelta);
  EXPECT_NEAR(roots[0], T(1), kLoose<T>);
  roots[1] = roots[2] = 0;
  EXPECT_EQ(Math<T>::SolvePolynom3(c123, T(0), eps, roots, nullptr, 1), nullptr);
  ExpectAll<T>({roots[1], roots[2]}, marker);
  // x^3 - 1 has f'(0) = 0: fails at once, roots[0] = x0 and the other slots untouched.
  const T flat[4] = {1, 0, 0, -1};
  T kept[3] = {5, 5, 5};
  EXPECT_EQ(Message(Math<T>::SolvePolynom3(flat, T(0), eps, kept, nullptr, 1)),
            L"Error while resolving 3-dim polynom : null derivate denominator");
  ExpectRows<T>({{kept[0], 0}, {kept[1], 5}, {kept[2], 5}});
  // x^3 - 2x + 2 from 0 cycles 0, 1, 0 ...: after 1000 updates back at 0. The message names the quartic.
  const T cycles[4] = {1, 0, -2, 2};
  T nine[3] = {9, 9, 9}, step = 42;
  EXPECT_EQ(Message(Math<T>::SolvePolynom3(cycles, T(0), T(1e-6), nine, &step, 0)),
            L"Error while resolving 4-dim polynom : first solution not found");
  ExpectRows<T>({{nine[0], 0}, {nine[1], 9}, {step, 42}});
  // Tolerant: go on with the quadratic x^2 - 2 -> (sqrt(8)/2, -sqrt(8)/2); lastStep unwritten.
  EXPECT_EQ(Math<T>::SolvePolynom3(cycles, T(0), T(1e-6), nine, &step, 1), nullptr);
  ExpectNearRows<T>(kLoose<T>, {{nine[1], 1.4142135623730951}, {nine[2], -1.4142135623730951}});
  EXPECT_EQ(step, T(42));
  // NaN coefficients and a NaN bound never converge: the same bounded failure.
  const T withNaN[4] = {1, kNan<T>, 0, 1};
  EXPECT_NE(Math<T>::SolvePolynom3(withNaN, T(1), T(1e-6), nine, nullptr, 0), nullptr);
  EXPECT_NE(Math<T>::SolvePolynom3(cycles, T(0.5), kNan<T>, nine, nullptr, 0), nullptr);
}

TYPED_TEST(SolveTwins, QuarticRestartsTheCubicFromTheCallersStart) {
  using T = TypeParam;
  const T eps = static_cast<T>(1e-6), marker = T(kMarker);
  // (x-1)(x-2)(x-3)(x-4) from 2.3 -> 2 (numpy Newton); deflated from 2.3 -> 3 (from 2 it would go
  // to 4); x^2 - 8x + 19 has a negative delta; the quartic set the marker first.
  const T c[5] = {1, -10, 35, -50, 24};
  T roots[4] = {0, 0, 0, 0}, lastSteps[2] = {marker, marker};
  EXPECT_EQ(Message(Math<T>::SolvePolynom4(c, T(2.3), eps, roots, lastSteps, 0)), kNegativeDelta);
  ExpectNearRows<T>(kLoose<T>, {{roots[0], 2}, {roots[1], 3}});
  ExpectAll<T>({roots[2], roots[3]}, marker);
  EXPECT_LE(std::max(std::fabs(lastSteps[0]), std::fabs(lastSteps[1])), eps);
  roots[1] = 0;
  EXPECT_EQ(Math<T>::SolvePolynom4(c, T(2.3), eps, roots, lastSteps, 1), nullptr);
  EXPECT_NEAR(roots[1], T(3), kLoose<T>);
  EXPECT_EQ(roots[3], marker);
  // x^4 - 5x^2 + 4 from 0.5: 1, deflated -> -2, then numpy.roots(x^2 + x - 4).
  const T even[5] = {1, 0, -5, 0, 4};
  EXPECT_EQ(Math<T>::SolvePolynom4(even, T(0.5), eps, roots, nullptr, 0), nullptr);
  ExpectNearRows<T>(kLoose<T>,
                    {{roots[0], 1}, {roots[1], -2}, {roots[2], 1.5615528128088303}, {roots[3], -2.5615528128088303}});
  // x^4 + 1: f'(0) = 0 fails at once with the quartic's own message, sentinels already set.
  const T flat[5] = {1, 0, 0, 0, 1};
  T kept[4] = {5, 5, 5, 5};
  EXPECT_EQ(Message(Math<T>::SolvePolynom4(flat, T(0), eps, kept, nullptr, 1)),
            L"Error while resolving 4-dim polynom : null derivate denominator");
  ExpectRows<T>({{kept[0], 0}, {kept[1], marker}});
  // (x - 1)(x^3 + x^2 + 2): Newton from 0 lands on 1; the deflated cubic from 0 has f'(0) = 0: its
  // error, kept[1] its start; tolerant: the marker and success.
  const T deflatesFlat[5] = {1, 0, -1, 2, -2};
  EXPECT_EQ(Message(Math<T>::SolvePolynom4(deflatesFlat, T(0), eps, kept, nullptr, 0)),
            L"Error while resolving 3-dim polynom : null derivate denominator");
  ExpectRows<T>({{kept[0], 1}, {kept[1], 0}});
  EXPECT_EQ(Math<T>::SolvePolynom4(deflatesFlat, T(0), eps, kept, nullptr, 1), nullptr);
  ExpectRows<T>({{kept[0], 1}, {kept[1], marker}, {kept[2], marker}, {kept[3], marker}});
}

TYPED_TEST(SolveTwins, RegressionOverArraysAndOverPoints) {
  using T = TypeParam;
  using A = WbArrayTempl<T>;
  using Points = Curve<T>;
  T slope = 11, intercept = 13, quality = 17;
  // One value or none: success, nothing written; equal x, a short y, one point: refused.
  ExpectRows<int>({{Math<T>::LinearRegression(A{T(1)}, A{T(2)}, slope, intercept), 1},
                   {Math<T>::LinearRegression(A{}, A{}, slope, intercept), 1},
                   {Math<T>::LinearRegression(A{2, 2, 2}, A{1, 2, 3}, slope, intercept), 0},
                   {Math<T>::LinearRegression(A{0, 1, 2}, A{1, 2}, slope, intercept), 0},
                   {Math<T>::LinearRegression(Points{ZmPoint2T<T>(1, 2)}, slope, intercept, quality), 0},
                   {Math<T>::LinearRegression(Points{{1, 2}, {1, 3}}, slope, intercept, quality), 0}});
  ExpectRows<T>({{slope, 11}, {intercept, 13}, {quality, 17}});
  // numpy.polyfit; the quality from its formula over numpy sums.
  const A x{0, 1, 2, 3, 4, 5}, y{T(1.1), T(2.9), T(5.2), T(6.8), T(9.1), T(11.0)};
  ASSERT_EQ(Math<T>::LinearRegression(x, y, slope, intercept), 1);
  ExpectNearRows<T>(T(1e-5), {{slope, 1.9914285714285707}, {intercept, 1.0380952380952362}});
  const Points noisy{{0, T(1.1)}, {1, T(2.9)}, {2, T(5.2)}, {3, T(6.8)}, {4, T(9.1)}, {5, T(11.0)}};
  ASSERT_EQ(Math<T>::LinearRegression(noisy, slope, intercept, quality), 1);
  ExpectNearRows<T>(T(1e-5), {{slope, 1.9914285714285707}, {intercept, 1.0380952380952362}});
  EXPECT_NEAR(quality, T(0.5208801238965849), T(1e-4));
  // quality = (5*9 - 13*3) / sqrt((3*35 - 81) * 6) (Pearson's r would be 1); constant: 12 / 0.
  ASSERT_EQ(Math<T>::LinearRegression(Points{{0, 1}, {1, 3}, {2, 5}}, slope, intercept, quality), 1);
  ExpectRows<T>({{slope, 2}, {intercept, 1}, {quality, 0.5}});
  ASSERT_EQ(Math<T>::LinearRegression(Points{{0, 2}, {1, 2}, {2, 2}}, slope, intercept, quality), 1);
  ExpectRows<T>({{slope, 0}, {intercept, 2}, {quality, std::numeric_limits<T>::infinity()}});
  // A NaN abscissa counts as different from the first: computed, NaN results.
  EXPECT_EQ(Math<T>::LinearRegression(A{kNan<T>, kNan<T>}, A{1, 2}, slope, intercept), 1);
  EXPECT_TRUE(std::isnan(slope));
}

}  // namespace
