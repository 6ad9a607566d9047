// Symmetric tensors, strain modes and measures: Python, hand values and a long-double Jacobi solver.
#include <algorithm>
#include <random>

#include "math_test_support.h"

using namespace math_test;

namespace {

using V = ZmVector3d;

// Eigenvalues of a symmetric 3x3 matrix by cyclic Jacobi rotations in long double, decreasing.
void JacobiEigenvalues(const double (&in)[3][3], long double out[3]) {
  long double a[3][3];
  for (int i = 0; i < 9; ++i) a[i / 3][i % 3] = in[i / 3][i % 3];
  for (int sweep = 0; sweep < 20; ++sweep) {
    long double off = 0, norm = 0;
    for (int i = 0; i < 9; ++i) (i / 3 == i % 3 ? norm : off) += a[i / 3][i % 3] * a[i / 3][i % 3];
    if (off <= 1e-40L * norm || off == 0) break;
    for (const auto& pq : {std::pair<int, int>(0, 1), {0, 2}, {1, 2}}) {
      const int p = pq.first, q = pq.second;
      if (a[p][q] == 0) continue;
      const long double theta = (a[q][q] - a[p][p]) / (2 * a[p][q]);
      const long double t = (theta >= 0 ? 1 : -1) / (std::fabs(theta) + std::sqrt(theta * theta + 1));
      const long double c = 1 / std::sqrt(t * t + 1), s = t * c;
      for (int k = 0; k < 6; ++k) {  // columns p and q, then rows p and q
        long double &u = k < 3 ? a[k][p] : a[p][k - 3], &v = k < 3 ? a[k][q] : a[q][k - 3];
        const long double up = u, vq = v;
        u = c * up - s * vq, v = s * up + c * vq;
      }
    }
  }
  for (int i = 0; i < 3; ++i) out[i] = a[i][i];
  std::sort(out, out + 3, [](long double l, long double r) { return l > r; });
}

// Five families: random components, over 12 decades, a near-double (gaps to 1e-12) or near-triple
// eigenvalue, and eigenvalues 1e6, 1, 1e-6; the last three in random orientations.
struct TensorSampler {
  std::mt19937_64 engine{20261123};
  std::uniform_real_distribution<double> unit{-1.0, 1.0};

  double Gap() { return std::pow(10.0, -12 + 10 * (unit(engine) + 1) / 2); }

  void Next(int family, double (&t)[3][3]) {
    if (family < 2) {
      const double scale = family == 0 ? 1.0 : std::pow(10.0, 6.0 * unit(engine));
      for (int i = 0; i < 9; ++i) t[i / 3][i % 3] = i / 3 > i % 3 ? t[i % 3][i / 3] : scale * unit(engine);
      return;
    }
    const double base = 100.0 * unit(engine);
    double values[3] = {base, family < 4 ? base * (1 + Gap()) : 0, 0};
    if (family == 2) values[2] = 100.0 * unit(engine);
    if (family == 3) values[2] = base * (1 - Gap());
    if (family == 4) values[0] = 1e6 * unit(engine), values[1] = unit(engine), values[2] = 1e-6 * unit(engine);
    // t = r diag(values) r^T, r turning about a random axis by a random angle.
    const double x = unit(engine), y = unit(engine), z = unit(engine), angle = 180 * unit(engine);
    const ZmMatrix3d r = ZmMathd::RotationMatrix(V(x, y, z), angle);
    for (int i = 0; i < 9; ++i) {  // the lower half copies the upper one: exactly symmetric
      double& tij = t[i / 3][i % 3] = 0;
      for (int k = 0; k < 3; ++k) tij += r[i / 3][k] * values[k] * r[i % 3][k];
      if (i / 3 > i % 3) tij = t[i % 3][i / 3];
    }
  }
};

// Tensor3DToVectors3D of (xx, yy, zz) without shear: values (when given) and directions.
template <class T>
void ExpectPrincipal(double xx, double yy, double zz, std::initializer_list<double> values, const ZmVector3T<T>& e1,
                     const ZmVector3T<T>& e2, const ZmVector3T<T>& e3) {
  T s[3] = {-7, -7, -7};
  ZmVector3T<T> d[3];
  ZmMathT<T>::Tensor3DToVectors3D(T(xx), T(yy), T(zz), 0, 0, 0, &s[0], &s[1], &s[2], &d[0], &d[1], &d[2]);
  int i = 0;
  for (double v : values) EXPECT_EQ(s[i++], T(v)) << xx << " " << yy << " " << zz;
  ExpectRows<ZmVector3T<T>>({{d[0], e1}, {d[1], e2}, {d[2], e3}});
}

}  // namespace

TEST(Tensors, DiagonalTensorsFallBackToTheAxesAndShowTheFloatThirdOfPi) {
  // Zero or isotropic: every row of T - lambda I vanishes: d1 = x; d3 = x x d1 = 0 -> y x d1 = -z.
  ExpectPrincipal(0, 0, 0, {0, 0, 0}, V(1, 0, 0), V(0, 1, 0), V(0, 0, -1));
  ExpectPrincipal(1, 1, 1, {1, 1, 1}, V(1, 0, 0), V(0, 1, 0), V(0, 0, -1));
  // (3, 1, 2): the float pi/3 puts s2, s3 1.7e-8 off 2 and 1 (Python). lambda = 3: only r1 x r2 =
  // (0,-2,0) x (0,0,-1) survives; lambda ~ 1: r0 x r2 = (2,0,0) x (0,0,0.99..) wins.
  ExpectPrincipal(3, 1, 2, {3.0, 1.9999999831754776, 1.0000000168245224}, V(1, 0, 0), V(0, 0, -1), V(0, -1, 0));
  // (1, 1, 0): s1 = 1 leaves only r2 = (0,0,-1): r2 x (1,0,0). s3 = 3.3e-16: r0 x r1 = (0,0,1).
  ExpectPrincipal(1, 1, 0, {1.0, 0.9999999999999997, 3.3306690738754696e-16}, V(0, -1, 0), V(-1, 0, 0), V(0, 0, 1));
  // (0, 1, 1): the only row left, r0 = (-1,0,0), is along x: r0 x y; s3: r1 x r2 beats 3e-16 products.
  ExpectPrincipal(0, 1, 1, {}, V(0, 0, -1), V(0, -1, 0), V(1, 0, 0));
  ExpectPrincipal(0, 0, 0, {0, 0, 0}, ZmVector3f(1, 0, 0), ZmVector3f(0, 1, 0), ZmVector3f(0, 0, -1));
  // A general tensor against the same Python evaluation, roots ordered; null outputs skipped.
  double s1, s2, s3, alone;
  ZmMathd::Tensor3DToMainValues(4, -2, 1, 1, 0.5, -0.3, &s1, &s2, &s3);
  ZmMathd::Tensor3DToMainValues(4, -2, 1, 1, 0.5, -0.3, nullptr, &alone, nullptr);
  ExpectRows<double>({{s1, 4.177184224970792}, {s2, 1.0754767342783245}, {s3, -2.2526609592491162}, {alone, s2}});
}

TEST(Tensors, ClosedFormMatchesAReferenceSolverOnAMillionTensors) {
  // Values, error relative to the largest magnitude, measured 1.33e-5: clustered values make the
  // cubic's p and q small differences of large terms, about eps/s^2 for a spread s, never above s.
  constexpr double kValueBound = 5.0e-5;
  // d1, d3 unit within 3.4e-16; a value off by e turns its direction by e/g (g the relative gap):
  // orthogonality errors times g measured 3.2e-6.
  constexpr double kUnitBound = 1.0e-15, kScaledOrthogonalityBound = 2.0e-5;
  TensorSampler sampler;
  double worstValue = 0, worstScaledOrthogonality = 0, worstUnit = 0;
  for (int n = 0; n < 1000000; ++n) {
    double t[3][3], s[3];
    sampler.Next(n % 5, t);
    V d[3];
    ZmMathd::Tensor3DToVectors3D(t[0][0], t[1][1], t[2][2], t[0][1], t[1][2], t[0][2], &s[0], &s[1], &s[2], &d[0],
                                 &d[1], &d[2]);
    long double ref[3];
    JacobiEigenvalues(t, ref);
    const long double scale = std::max(std::fabs(ref[0]), std::fabs(ref[2]));
    if (scale == 0) continue;
    for (int i = 0; i < 3; ++i) worstValue = std::max(worstValue, double(std::fabs(s[i] - ref[i]) / scale));
    worstUnit = std::max({worstUnit, std::fabs(d[0].length() - 1), std::fabs(d[2].length() - 1)});
    const double gap = double(std::min(ref[0] - ref[1], ref[1] - ref[2]) / scale);
    const double orthogonality = std::max({std::fabs(d[0].dot(d[2])), std::fabs(d[1].length() - 1),
                                           std::fabs(d[1].dot(d[2])), std::fabs(d[0].cross(d[2]).dot(d[1]) - 1)});
    worstScaledOrthogonality = std::max(worstScaledOrthogonality, orthogonality * gap);
  }
  std::printf("worst relative value error %.3g, unit error %.3g, gap-scaled orthogonality error %.3g\n", worstValue,
              worstUnit, worstScaledOrthogonality);
  EXPECT_LT(worstValue, kValueBound);
  EXPECT_LT(worstUnit, kUnitBound);
  EXPECT_LT(worstScaledOrthogonality, kScaledOrthogonalityBound);
}

TEST(Tensors, StrainModesByQuadrantAndStrainMeasures) {
  // e1 > 0: atan(e2/e1); e1 <= 0 and e2 < 0: atan(e2/e1) - 180 (atan(-inf) for (0, -1)); else -90.
  double mode = 1;
  ExpectRows<double>({{ZmMathd::StrainTensor2DToMode(1, 1, 0, nullptr), 45.0},
                      {ZmMathd::StrainTensor2DToMode(1, 0, 0, nullptr), 0.0},
                      {ZmMathd::StrainTensor2DToMode(1, -1, 0, nullptr), -45.0},
                      {ZmMathd::StrainTensor2DToMode(-1, -2, 0, nullptr), -116.56505117707799},
                      {ZmMathd::StrainTensor2DToMode(0, -1, 0, nullptr), -270.0},
                      {ZmMathd::StrainTensor2DToMode(0, 0, 0, &mode), -90.0},
                      {mode, -90.0}});
  EXPECT_NEAR(ZmMathf::StrainTensor2DToMode(1, -1, 0, nullptr), -45.0f, 1e-5f);
  // Plane states in 3D: s = (0.2, -3.4e-9, -0.1): atan(-0.5); s = (0, -0.05, -0.1): the major is s2.
  ExpectNearRows<double>(1e-6, {{ZmMathd::PlaneTensor3DToMode(0.2, -0.1, 0, 0, 0, 0), -26.56505117707799},
                                {ZmMathd::PlaneTensor3DToMode(-0.05, -0.1, 0, 0, 0, 0), -116.56505117707799}});
  // The smallest magnitude is dropped, the others not reordered: d1 = z, d2 = x, d3 = -y; s2 replaces s1.
  double m1, m2;
  V d1, d2;
  ZmMathd::PlaneTensor3DToVectors3D(-0.05, -0.1, 0, 0, 0, 0, m1, m2, d1, d2);
  ExpectNearRows<double>(1e-8, {{m1, -0.05}, {m2, -0.1}});
  ExpectRows<V>({{d1, V(1, 0, 0)}, {d2, V(0, -1, 0)}});
  // Logarithmic strain, numpy eigh of [[xx, xy], [xy, yy]], l = 0.5 ln(2 e + 1), V diag(l) V^T; below -0.5: 0.
  const V rows[][2] = {{V(0.1, 0.05, 0.02), V(0.09086635749645543, 0.04734308259007968, 0.0174093099625503)},
                       {V(0.3, -0.2, -0.15), V(0.2182587313036738, -0.28788976497042773, -0.15184454888223042)},
                       {V(0, 0, 0), V(0, 0, 0)},
                       {V(-0.6, 0, 0), V(0, 0, 0)}};
  for (const auto& r : rows) {
    V t = r[0];
    ZmMathd::PureStrainTensor2TrueStrainTensor(t);
    ExpectNearRows<double>(1e-15, {{t.x, r[1].x}, {t.y, r[1].y}, {t.z, r[1].z}});
  }
  ZmVector3f tf(0.1f, 0.05f, 0.02f);
  ZmMathf::PureStrainTensor2TrueStrainTensor(tf);
  EXPECT_NEAR(tf.x, 0.0908663575f, 2e-7f);
  // -ln(0.8) = 0.2231435513142097; the compressive conversion is its inverse.
  EXPECT_NEAR(ZmMathd::EngineerStrain2TrueStrain(0.2), 0.2231435513142097, 1e-16);
  ExpectNearRows<double>(1e-15, {{ZmMathd::TrueStrain2EngineerStrain(ZmMathd::EngineerStrain2TrueStrain(0.2), 1), 0.2},
                                 {ZmMathd::TrueStrain2EngineerStrain(std::log(1.5), 0), 0.5}});
  EXPECT_NEAR(ZmMathf::TrueStrain2EngineerStrain(ZmMathf::EngineerStrain2TrueStrain(0.2f), 1), 0.2f, 1e-6f);
  // Directional value in 3D: M (1,2,-1) = (3, 4.25, -3.5) for the tensor below, dot = 15.
  ExpectRows<double>({{ZmMathd::ComputeDirectionalTensorValue(1, 2, 3, 0.5, 0.25, -1, V(1, 2, -1)), 15.0},
                      {ZmMathf::ComputeDirectionalTensorValue(1, 2, 3, 0.5, 0.25, -1, ZmVector3f(1, 2, -1)), 15.0}});
}

TEST(Tensors, BadInputPropagatesWithoutCrashing) {
  const double nan = std::nan(""), inf = HUGE_VAL;
  for (double bad : {nan, inf, -inf}) {
    double s1 = 0, s2 = 0, s3 = 0, m1, m2;
    V d1, d2, d3;
    ZmMathd::Tensor3DToVectors3D(bad, 1, 2, 0.5, 0, 0, &s1, &s2, &s3, &d1, &d2, &d3);
    EXPECT_TRUE(std::isnan(s1) || std::isinf(s1));
    ZmMathd::PlaneTensor3DToVectors3D(1, bad, 0, 0, 0, 0, m1, m2, d1, d2);
    EXPECT_TRUE(std::isnan(ZmMathd::PlaneTensor3DToMode(1, 2, bad, 0, 0, 0)));
  }
  double s1, s2;
  ZmMathd::Tensor2DToMainValues(nan, 1, 0, &s1, &s2);
  // A NaN strain has no mode: NaN, not the -90 of the zero tensor.
  for (double v : {s1, ZmMathd::StrainTensor2DToMode(nan, 0, 0, nullptr),
                   double(ZmMathf::StrainTensor2DToMode(0, 0, std::nanf(""), nullptr))})
    EXPECT_TRUE(std::isnan(v));
}

TEST(Tensors, PlaneTensorsInAFrame) {
  const ZmFramed identity;
  // A frame turned a quarter about z (X = (0,1,0), Y = (-1,0,0)).
  const ZmFramed turned(V(0, 1, 0), V(-1, 0, 0), V(0, 0, 1), ZmPoint3d(5, 5, 5), ZmFrameCartesian);
  const auto check = [](double xx, double yy, double xy, const ZmFramed& frame, double e1, double e2, const V& v1,
                        const V& v2) {
    double s1, s2;
    V d1, d2;
    ZmMathd::Tensor2DToVectors3D(xx, yy, xy, frame, &s1, &s2, &d1, &d2);
    ExpectRows<double>({{s1, e1}, {s2, e2}});
    ExpectRows<V>({{d1, v1}, {d2, v2}});
  };
  // Equal values: both local directions (0,0,0), replaced by x.
  check(1, 1, 0, identity, 1, 1, V(1, 0, 0), V(1, 0, 0));
  // (2, 1, 0) turned: s1 = 2 is local (1,0,0) = global X; s2 = 1 local (0,-1,0) = global -Y.
  check(2, 1, 0, turned, 2, 1, V(0, 1, 0), V(1, 0, 0));
  // Direction (1e-7, 1e-7), under 1e-12 squared: x in the plain form, the diagonal in the Form one.
  V d1;
  ZmMathd::Tensor2DToVectors3D(1, 1, 1e-7, identity, nullptr, nullptr, &d1, nullptr);
  EXPECT_EQ(d1, V(1, 0, 0));
  ZmMathd::Tensor2DToVectors3DForm(1, 1, 1e-7, identity, nullptr, nullptr, &d1, nullptr);
  ExpectNearRows<double>(1e-9, {{d1.x, std::sqrt(0.5)}, {d1.y, std::sqrt(0.5)}});
  ZmVector3f f1;
  ZmMathf::Tensor2DToVectors3D(2, 1, 0, ZmFramef(turned), nullptr, nullptr, &f1, nullptr);
  EXPECT_EQ(f1, ZmVector3f(0, 1, 0));
  // (u, v) = (1, 1): 2 + 2 * 0.5 + 3; turned it reads (1, -1): 2 - 1 + 3; along z, 0 (w ignored).
  ExpectRows<double>({{ZmMathd::ComputeDirectionalTensorValue(2, 3, 0.5, V(1, 1, 5), identity), 6.0},
                      {ZmMathd::ComputeDirectionalTensorValue(2, 3, 0.5, V(1, 1, 0), turned), 4.0},
                      {ZmMathd::ComputeDirectionalTensorValue(2, 3, 0.5, V(0, 0, 1), identity), 0.0},
                      {ZmMathf::ComputeDirectionalTensorValue(2, 3, 0.5, ZmVector3f(1, 1, 0), ZmFramef(turned)), 4.0}});
}
