// Angles, signed rotation angles, normals and the orthonormal completion.
#include "math_test_support.h"

using namespace math_test;

namespace {

MATH_TWIN_SUITE(AngleTwins);

// acos(0) * 57.2957763671875 (the float 180/pi); in float acosf(0) * 57.29578f rounds to exactly 90.
template <class T>
T RightAngle() {
  return ByTwin<T>(89.99999505843996, 90);
}

TEST(Angles, DegreesUseTheFloatValueOf180OverPiAndTheCosineIsClamped) {
  using V = ZmVector3d;
  using Vf = ZmVector3f;
  // (1, 1, 1) and (1, 0, 4) normalised dot themselves to 1 + 2.2e-16 (double), 1 + 1.2e-7 (float).
  ExpectRows<double>({
      {ZmMathd::AngleDeg(V(1, 0, 0), V(0, 2, 0)), 89.99999505843996},
      {ZmMathd::AngleDeg(ZmVector2d(3, 0), ZmVector2d(0, -1)), 89.99999505843996},
      {ZmMathd::AngleDeg(V(1, 0, 0), V(-1, 0, 0)), 179.99999011687993},  // pi * 57.2957763671875
      {ZmMathd::AngleRad(V(1, 0, 0), V(0, 0, 7)), std::acos(0.0)},
      {ZmMathf::AngleDeg(Vf(1, 0, 0), Vf(0, 2, 0)), 90.0},
      {ZmMathf::AngleDeg(Vf(1, 0, 0), Vf(-1, 0, 0)), 180.0},
      {ZmMathd::AngleRad(V(1, 1, 1), V(1, 1, 1)), 0.0},
      {ZmMathd::AngleRad(V(1, 1, 1), V(-1, -1, -1)), std::acos(-1.0)},
      {ZmMathf::AngleRad(Vf(1, 0, 4), Vf(1, 0, 4)), 0.0},
  });
}

TYPED_TEST(AngleTwins, VertexAndRotationAnglesSignsNormalsAndTheZeroVectorSentinel) {
  MATH_TWIN_TYPES;
  const T right = RightAngle<T>();
  EXPECT_EQ(M::AngleDeg(P(1, 1, 0), P(3, 1, 0), P(1, 4, 0)), right);
  // The marker, unscaled by the degree factor: coincident points, vectors under 1e-6f, NaN, invalid.
  ExpectAll<T>({M::AngleRad(V(0, 0, 0), V(1, 0, 0)), M::AngleDeg(V(0, 0, 0), V(1, 0, 0)),
                M::AngleDeg(ZmVector2T<T>(1, 0), ZmVector2T<T>(0, 0)), M::AngleDeg(P(1, 1, 0), P(1, 1, 0), P(1, 4, 0)),
                M::AngleRad(V(9e-7, 0, 0), V(1, 0, 0)), M::AngleDeg(V(kNan<T>, 0, 0), V(1, 0, 0)),
                M::AngleDeg(V(WbCoord3DT<T>::INVALID), V(1, 0, 0)),
                M::AngleDeg(P(WbCoord3DT<T>::INVALID), P(3, 1, 0), P(1, 4, 0))},
               T(kMarker));
  ExpectRows<T>({
      {M::RotationAngle(V2(1, 0), V2(0, -1)), -right},  // clockwise
      {M::RotationAngle(V2(1, 0), V2(0, 5)), right},
      // The marker is never negated, even when the cross product is negative.
      {M::RotationAngle(V2(WbCoord2DT<T>::INVALID), V2(0, 1)), T(kMarker)},
      {M::RotationAngle(V(1, 0, 0), V(0, 1, 0), V(0, 0, 1), 0), right},
      {M::RotationAngle(V(1, 0, 0), V(0, 1, 0), V(0, 0, -1), 0), -right},
      // Projected on the plane orthogonal to z, (1, 0, 5) and (0, 1, -3) are x and y.
      {M::RotationAngle(V(1, 0, 5), V(0, 1, -3), V(0, 0, 1), 1), right},
      {M::RotationAngle(V(1, 0, 0), V(0, 1, 0), V(WbCoord3DT<T>::INVALID), 1), T(kMarker)},
  });
  // Unprojected: acos(-15 / (sqrt 26 sqrt 10)) = 158.475451 degrees, (u x v).z > 0: positive.
  EXPECT_NEAR(M::RotationAngle(V(1, 0, 5), V(0, 1, -3), V(0, 0, 1), 0), 158.475451, 2e-5);
  const P o(0, 0, 0), b(2, 0, 0), c(2, 2, 0), d(0, 2, 0);  // square of side 2
  // A degenerate triangle keeps its unnormalised product; square: diagonals' product (0, 0, 8).
  ExpectRows<V>({{M::Normal(o, P(3, 0, 0), P(3, 3, 0)), V(0, 0, 1)},
                 {M::Normal(o, P(0, 3, 0), P(3, 3, 0)), V(0, 0, -1)},
                 {M::Normal(o, P(1e-4, 0, 0), P(1e-4, 1e-4, 0)), V(0, 0, T(1e-4) * T(1e-4))},
                 {M::Normal(o, P(1, 1, 1), P(2, 2, 2)), V(0, 0, 0)},
                 {M::Normal(o, b, c, d, 0), V(0, 0, 8)},
                 {M::Normal(o, b, c, d, 1), V(0, 0, 1)}});
  EXPECT_EQ(M::Normal(o, b, c, InvalidPoint<T>(), 1).IsValid(), 0);
}

TYPED_TEST(AngleTwins, OrthogonalCompletion) {
  MATH_TWIN_TYPES;
  // Zero or NaN: z. Along z: v = (u.z, 0, 0). (1e-4, 0, 0): w from the unit u, v, not from 1e-8 z.
  const struct {
    V in, u, v, w;
  } rows[] = {{V(0, 0, 0), V(0, 0, 1), V(1, 0, 0), V(0, 1, 0)},
              {V(kNan<T>, 0, 0), V(0, 0, 1), V(1, 0, 0), V(0, 1, 0)},
              {V(0, 0, -2), V(0, 0, -1), V(-1, 0, 0), V(0, 1, 0)},
              {V(3, 0, 0), V(1, 0, 0), V(0, 1, 0), V(0, 0, 1)},
              {V(1e-4, 0, 0), V(1, 0, 0), V(0, 1, 0), V(0, 0, 1)}};
  for (const auto& r : rows) {
    V u = r.in, v, w;
    M::OrthogonalVectors(u, v, w);
    ExpectRows<V>({{u, r.u}, {v, r.v}, {w, r.w}});
  }
  // Any direction: unit, pairwise orthogonal, right-handed, u along the input.
  const T tol = ByTwin<T>(1e-14, 1e-6);
  for (const V& input : {V(1, 2, 3), V(-0.3, 0.1, -7), V(1e-3, -1e-3, 1), V(5, -4, 0)}) {
    V u = input, v, w;
    M::OrthogonalVectors(u, v, w);
    for (T one : {u.length(), v.length(), w.length(), u.cross(v).dot(w)}) EXPECT_NEAR(one, 1, tol);
    for (T zero : {u.dot(v), u.dot(w), v.dot(w)}) EXPECT_NEAR(zero, 0, tol);
    EXPECT_NEAR(u.cross(input).length(), 0, tol * input.length());
    EXPECT_GT(u.dot(input), 0);
  }
}

}  // namespace
