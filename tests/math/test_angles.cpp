// Angles between vectors, signed rotation angles, normals and the orthonormal completion:
// the float degree factor, the clamped cosine, the sign rules and the zero-vector sentinel.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include <zemcalc/zemcalc.h>

namespace {

constexpr double kMarker = -1.0000000331813535e+32;  // -1.0e32f widened

template <class T>
class AngleTwins : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(AngleTwins, Scalars);

// A right angle in degrees: acos(0) * 57.2957763671875 = 89.99999505843996 in double; in
// float acosf(0) = 1.5707963705062866 and the product rounds to exactly 90.
template <class T>
T RightAngle() {
  return std::is_same<T, double>::value ? T(89.99999505843996) : T(90);
}

TEST(Angles, DegreesUseTheFloatValueOf180OverPi) {
  EXPECT_EQ(ZmMathd::AngleDeg(ZmVector3d(1, 0, 0), ZmVector3d(0, 2, 0)), 89.99999505843996);
  EXPECT_EQ(ZmMathd::AngleDeg(ZmVector2d(3, 0), ZmVector2d(0, -1)), 89.99999505843996);
  // pi * 57.2957763671875, not 180.
  EXPECT_EQ(ZmMathd::AngleDeg(ZmVector3d(1, 0, 0), ZmVector3d(-1, 0, 0)), 179.99999011687993);
  EXPECT_EQ(ZmMathd::AngleRad(ZmVector3d(1, 0, 0), ZmVector3d(0, 0, 7)), std::acos(0.0));
  EXPECT_EQ(ZmMathf::AngleDeg(ZmVector3f(1, 0, 0), ZmVector3f(0, 2, 0)), 90.0f);
  EXPECT_EQ(ZmMathf::AngleDeg(ZmVector3f(1, 0, 0), ZmVector3f(-1, 0, 0)), 180.0f);
}

TEST(Angles, CosineIsClampedBeforeAcos) {
  // (1, 1, 1) normalised has a dot product with itself of 1.0000000000000002 in double, and
  // (1, 0, 4) of 1.0000001192092896 in float: acos would give NaN without the clamp.
  EXPECT_EQ(ZmMathd::AngleRad(ZmVector3d(1, 1, 1), ZmVector3d(1, 1, 1)), 0.0);
  EXPECT_EQ(ZmMathd::AngleRad(ZmVector3d(1, 1, 1), ZmVector3d(-1, -1, -1)), std::acos(-1.0));
  EXPECT_EQ(ZmMathf::AngleRad(ZmVector3f(1, 0, 4), ZmVector3f(1, 0, 4)), 0.0f);
}

TYPED_TEST(AngleTwins, VertexAngleAndTheZeroVectorSentinel) {
  using M = ZmMathT<TypeParam>;
  using P = ZmPoint3T<TypeParam>;
  using V = ZmVector3T<TypeParam>;
  using V2 = ZmVector2T<TypeParam>;
  const TypeParam marker = TypeParam(kMarker);
  EXPECT_EQ(M::AngleDeg(P(1, 1, 0), P(3, 1, 0), P(1, 4, 0)), RightAngle<TypeParam>());
  // Marker results are passed through unscaled by the degree conversion.
  EXPECT_EQ(M::AngleRad(V(0, 0, 0), V(1, 0, 0)), marker);
  EXPECT_EQ(M::AngleDeg(V(0, 0, 0), V(1, 0, 0)), marker);
  EXPECT_EQ(M::AngleDeg(V2(1, 0), V2(0, 0)), marker);
  EXPECT_EQ(M::AngleDeg(P(1, 1, 0), P(1, 1, 0), P(1, 4, 0)), marker);  // coincident points
  // Shorter than 1e-6f: cannot be normalised either.
  EXPECT_EQ(M::AngleRad(V(9e-7, 0, 0), V(1, 0, 0)), marker);
  const TypeParam nan = std::numeric_limits<TypeParam>::quiet_NaN();
  EXPECT_EQ(M::AngleDeg(V(nan, 0, 0), V(1, 0, 0)), marker);
  EXPECT_EQ(M::AngleDeg(V(WbCoord3DT<TypeParam>::INVALID), V(1, 0, 0)), marker);
  EXPECT_EQ(M::AngleDeg(P(WbCoord3DT<TypeParam>::INVALID), P(3, 1, 0), P(1, 4, 0)), marker);
}

TYPED_TEST(AngleTwins, RotationAngleSigns) {
  using M = ZmMathT<TypeParam>;
  using V = ZmVector3T<TypeParam>;
  using V2 = ZmVector2T<TypeParam>;
  const TypeParam right = RightAngle<TypeParam>();
  EXPECT_EQ(M::RotationAngle(V2(1, 0), V2(0, -1)), -right);  // clockwise
  EXPECT_EQ(M::RotationAngle(V2(1, 0), V2(0, 5)), right);
  // The marker is never negated, even when the cross product is negative.
  EXPECT_EQ(M::RotationAngle(V2(WbCoord2DT<TypeParam>::INVALID), V2(0, 1)), TypeParam(kMarker));

  EXPECT_EQ(M::RotationAngle(V(1, 0, 0), V(0, 1, 0), V(0, 0, 1), 0), right);
  EXPECT_EQ(M::RotationAngle(V(1, 0, 0), V(0, 1, 0), V(0, 0, -1), 0), -right);
  // Projected on the plane orthogonal to z, (1, 0, 5) and (0, 1, -3) are x and y.
  EXPECT_EQ(M::RotationAngle(V(1, 0, 5), V(0, 1, -3), V(0, 0, 1), 1), right);
  // Unprojected: acos(-15 / (sqrt 26 sqrt 10)) = 2.7658... rad = 158.475451 degrees, and
  // (u x v).z = 1 > 0 keeps it positive.
  EXPECT_NEAR(M::RotationAngle(V(1, 0, 5), V(0, 1, -3), V(0, 0, 1), 0), 158.475451, 2e-5);
  EXPECT_EQ(M::RotationAngle(V(1, 0, 0), V(0, 1, 0), V(WbCoord3DT<TypeParam>::INVALID), 1), TypeParam(kMarker));
}

TYPED_TEST(AngleTwins, NormalsOfTrianglesAndQuadrilaterals) {
  using M = ZmMathT<TypeParam>;
  using P = ZmPoint3T<TypeParam>;
  using V = ZmVector3T<TypeParam>;
  EXPECT_EQ(M::Normal(P(0, 0, 0), P(3, 0, 0), P(3, 3, 0)), V(0, 0, 1));
  EXPECT_EQ(M::Normal(P(0, 0, 0), P(0, 3, 0), P(3, 3, 0)), V(0, 0, -1));
  // A degenerate triangle keeps its unnormalised product: (1e-4, 0, 0) x (0, 1e-4, 0) = 1e-8 z.
  const V tiny = M::Normal(P(0, 0, 0), P(1e-4, 0, 0), P(1e-4, 1e-4, 0));
  EXPECT_EQ(tiny.x, TypeParam(0));
  EXPECT_EQ(tiny.z, TypeParam(1e-4) * TypeParam(1e-4));
  EXPECT_EQ(M::Normal(P(0, 0, 0), P(1, 1, 1), P(2, 2, 2)), V(0, 0, 0));
  // Square of side 2: diagonals (2, 2, 0) x (-2, 2, 0) = (0, 0, 8), twice the area.
  const P a(0, 0, 0), b(2, 0, 0), c(2, 2, 0), d(0, 2, 0);
  EXPECT_EQ(M::Normal(a, b, c, d, 0), V(0, 0, 8));
  EXPECT_EQ(M::Normal(a, b, c, d, 1), V(0, 0, 1));
  EXPECT_EQ(M::Normal(a, b, c, P(WbCoord3DT<TypeParam>::INVALID), 1).IsValid(), 0);
}

TYPED_TEST(AngleTwins, OrthogonalCompletion) {
  using M = ZmMathT<TypeParam>;
  using V = ZmVector3T<TypeParam>;
  V u(0, 0, 0), v, w;
  M::OrthogonalVectors(u, v, w);  // zero: replaced by z
  EXPECT_EQ(u, V(0, 0, 1));
  EXPECT_EQ(v, V(1, 0, 0));
  EXPECT_EQ(w, V(0, 1, 0));
  u = V(0, 0, -2);  // along z: v = (u.z, 0, 0) before normalising
  M::OrthogonalVectors(u, v, w);
  EXPECT_EQ(u, V(0, 0, -1));
  EXPECT_EQ(v, V(-1, 0, 0));
  EXPECT_EQ(w, V(0, 1, 0));
  u = V(3, 0, 0);  // v = (-0, 3, 0), w = u x v = (0, 0, 9)
  M::OrthogonalVectors(u, v, w);
  EXPECT_EQ(u, V(1, 0, 0));
  EXPECT_EQ(v, V(0, 1, 0));
  EXPECT_EQ(w, V(0, 0, 1));
  u = V(1e-4, 0, 0);  // u x v = (0, 0, 1e-8) cannot be normalised: formed from the unit u, v
  M::OrthogonalVectors(u, v, w);
  EXPECT_EQ(u, V(1, 0, 0));
  EXPECT_EQ(v, V(0, 1, 0));
  EXPECT_EQ(w, V(0, 0, 1));
  u = V(std::numeric_limits<TypeParam>::quiet_NaN(), 0, 0);
  M::OrthogonalVectors(u, v, w);
  EXPECT_EQ(u, V(0, 0, 1));
  // Any direction: unit, pairwise orthogonal, right-handed, u along the input.
  const TypeParam tol = std::is_same<TypeParam, double>::value ? TypeParam(1e-14) : TypeParam(1e-6);
  for (const V& input : {V(1, 2, 3), V(-0.3, 0.1, -7), V(1e-3, -1e-3, 1), V(5, -4, 0)}) {
    u = input;
    M::OrthogonalVectors(u, v, w);
    EXPECT_NEAR(u.length(), 1, tol);
    EXPECT_NEAR(v.length(), 1, tol);
    EXPECT_NEAR(w.length(), 1, tol);
    EXPECT_NEAR(u.dot(v), 0, tol);
    EXPECT_NEAR(u.dot(w), 0, tol);
    EXPECT_NEAR(v.dot(w), 0, tol);
    EXPECT_NEAR(u.cross(v).dot(w), 1, tol);
    EXPECT_NEAR(u.cross(input).length(), 0, tol * input.length());
    EXPECT_GT(u.dot(input), 0);
  }
}

}  // namespace
