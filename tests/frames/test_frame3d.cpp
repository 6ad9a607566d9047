// The array-based frame: three points, the homogeneous matrix, points, vectors and tensors
// both ways, in place, and null pointers.
#include <type_traits>

#include "frames/frame_test_support.h"

namespace {

using namespace frame_test;

// Exposes the protected axis builder.
class ProbeFrame3D : public ZmFrame3D {
 public:
  using ZmFrame3D::CreateFrom3Point;
};

// The origin and the axes read through the array accessors are o, x, y and z within tol.
::testing::AssertionResult Is(const ZmFrame3D& frame, const ZmPoint3d& o, const ZmVector3d& x, const ZmVector3d& y,
                              const ZmVector3d& z, double tol) {
  double read[4][3];
  frame.GetOrigin(read[0]);
  frame.GetXAxis(read[1]);
  frame.GetYAxis(read[2]);
  frame.GetZAxis(read[3]);
  const ZmVector3d expected[4] = {ZmVector3d(o), x, y, z};
  for (int i = 0; i < 4; ++i) {
    const auto result = Near(ZmVector3d(read[i]), expected[i], tol);
    if (!result) return ::testing::AssertionFailure() << (i ? "axis " : "origin ") << i << ", " << result.message();
  }
  return ::testing::AssertionSuccess();
}

// A quarter turn about Z (columns X = (0,1,0), Y = (-1,0,0)) and a translation.
ZmFrame3D QuarterTurn(const ZmVector3d& origin) {
  return ZmFrame3D(ZmMatrix4d(ZmMatrix3d(0, -1, 0, 1, 0, 0, 0, 0, 1), origin));
}

TEST(Frame3D, DefaultThreePointsAndHomogeneousMatrix) {
  static_assert(std::is_polymorphic<ZmFrame3D>::value && std::has_virtual_destructor<ZmFrame3D>::value, "");
  double identity[4][4];
  ZmFrame3D().GetMatrix(identity);
  for (int i = 0; i < 16; ++i) EXPECT_EQ(identity[i / 4][i % 4], i % 5 == 0 ? 1.0 : 0.0) << i;
  const ZmVector3d x(1, 0, 0), y(0, 1, 0), z(0, 0, 1), zero(0, 0, 0);
  double p0[3] = {0, 0, 0}, p1[3] = {2, 0, 0}, p2[3] = {0, 3, 0};
  EXPECT_TRUE(Is(ZmFrame3D(p0, p1, p2), ZmPoint3d(0, 0, 0), x, y, z, 0));
  // e = (1, 2, 2), b = (-1, 1, 4) from (1, 1, 1): X = e/3, Z = unit(e x b) = (6, -6, 3)/9,
  // Y = Z x X = (-2, -1, 2)/3.
  double q0[3] = {1, 1, 1}, q1[3] = {2, 3, 3}, q2[3] = {0, 2, 5};
  EXPECT_TRUE(Is(ZmFrame3D(q0, q1, q2), ZmPoint3d(1, 1, 1), ZmVector3d(1.0 / 3, 2.0 / 3, 2.0 / 3),
                 ZmVector3d(-2.0 / 3, -1.0 / 3, 2.0 / 3), ZmVector3d(2.0 / 3, -2.0 / 3, 1.0 / 3), 1e-15));
  // The builder leaves the origin alone; collinear points leave Z (and so Y) zero.
  ProbeFrame3D probe;
  probe.CreateFrom3Point(ZmPoint3d(5, 5, 5), ZmPoint3d(6, 5, 5), ZmPoint3d(7, 5, 5));
  EXPECT_TRUE(Is(probe, ZmPoint3d(0, 0, 0), x, zero, zero, 0));
  // Translation (1, 2, 3) and a quarter turn about Z.
  const ZmMatrix4d m(0, -1, 0, 1,  //
                     1, 0, 0, 2,   //
                     0, 0, 1, 3,   //
                     7, 7, 7, 7);  // the last row is ignored
  ZmFrame3D frame;
  frame.SetMatrix(m);
  EXPECT_TRUE(Is(frame, ZmPoint3d(1, 2, 3), ZmVector3d(0, 1, 0), ZmVector3d(-1, 0, 0), ZmVector3d(0, 0, 1), 0));
  double back[4][4], axes[3][3];
  ZmFrame3D(m).GetMatrix(back);
  frame.GetAxes(axes);
  ExpectRows<double>({{back[0][1], -1}, {back[1][3], 2}, {back[3][0], 0}, {back[3][3], 1}, {axes[1][0], 1}});
  // SetAxes takes rows first and does not re-orthonormalise.
  const double skew[3][3] = {{1, 2, 0}, {0, 1, 0}, {0, 0, 1}};
  frame.SetAxes(skew);
  EXPECT_TRUE(Is(frame, ZmPoint3d(1, 2, 3), ZmVector3d(1, 0, 0), ZmVector3d(2, 1, 0), ZmVector3d(0, 0, 1), 0));
}

TEST(Frame3D, PointsAndVectorsBothWays) {
  // Origin (1, 2, 3): the point (2, 2, 3) is R^T (1, 0, 0) = (0, -1, 0) locally; the local
  // point (1, 0, 0) is (1, 2, 3) + X = (1, 3, 3) globally; vectors ignore the origin.
  const ZmFrame3D frame = QuarterTurn(ZmVector3d(1, 2, 3));
  const struct {
    void (ZmFrame3D::*convert)(const double*, double*) const;
    ZmVector3d in, out;
  } rows[] = {
      {&ZmFrame3D::PointGlobalToLocal, {2, 2, 3}, {0, -1, 0}},
      {&ZmFrame3D::PointLocalToGlobal, {0, 0, 0}, {1, 2, 3}},
      {&ZmFrame3D::PointLocalToGlobal, {1, 0, 0}, {1, 3, 3}},
      {&ZmFrame3D::VectorGlobalToLocal, {1, 0, 5}, {0, -1, 5}},
      {&ZmFrame3D::VectorLocalToGlobal, {0, -1, 5}, {1, 0, 5}},
  };
  for (const auto& r : rows) {
    double in[3] = {r.in.x, r.in.y, r.in.z}, out[3] = {7, 7, 7};
    (frame.*r.convert)(in, out);
    (frame.*r.convert)(in, in);  // in place
    ExpectAll<ZmVector3d>({ZmVector3d(out), ZmVector3d(in)}, r.out);
  }
  // Null pointers and bad axis indexes do nothing.
  double v[3] = {1, 0, 5}, out[3] = {1, 0, 5};
  ZmFrame3D copy(frame);
  copy.PointGlobalToLocal(nullptr, out);
  copy.VectorLocalToGlobal(v, nullptr);
  copy.GetOrigin(nullptr);
  copy.SetXAxis(nullptr);
  copy.GetMatrix(nullptr);
  copy.Tensor2GlobalToLocal(nullptr);
  EXPECT_EQ(ZmVector3d(out), ZmVector3d(1, 0, 5));
  EXPECT_TRUE(Is(copy, ZmPoint3d(1, 2, 3), ZmVector3d(0, 1, 0), ZmVector3d(-1, 0, 0), ZmVector3d(0, 0, 1), 0));
}

TEST(Frame3D, TensorsTurnWithTheAxes) {
  // R^T T R with X = (0,1,0), Y = (-1,0,0): T'_ij = axis_i . T axis_j, so diag(1, 2, 3)
  // becomes diag(2, 1, 3) and the shear T_xz = 4 becomes T'_yz = -4.
  const ZmFrame3D frame = QuarterTurn(ZmVector3d(9, 9, 9));
  const double t[3][3] = {{1, 0, 4}, {0, 2, 0}, {4, 0, 3}};
  double local[3][3];
  frame.Tensor2GlobalToLocal(t, local);
  const double expected[3][3] = {{2, 0, 0}, {0, 1, -4}, {0, -4, 3}};
  for (int i = 0; i < 9; ++i) EXPECT_EQ(local[i / 3][i % 3], expected[i / 3][i % 3]) << i;
  // Round trip on a random orthonormal frame and a random symmetric tensor, in place; the
  // trace is invariant.
  std::mt19937 rng(5);
  std::uniform_real_distribution<double> value(-100, 100);
  const ZmFramed random = frame_test::RandomFrame<double>(rng, ZmFrameCartesian);
  ZmFrame3D turned(ZmMatrix4d(random.GetMatrix(), ZmVector3d(random.GetOrigin())));
  double tensor[3][3], original[3][3];
  for (int i = 0; i < 9; ++i)
    original[i / 3][i % 3] = tensor[i / 3][i % 3] = i / 3 > i % 3 ? original[i % 3][i / 3] : value(rng);
  turned.Tensor2LocalToGlobal(tensor);
  turned.Tensor2GlobalToLocal(tensor);
  for (int i = 0; i < 9; ++i) EXPECT_NEAR(tensor[i / 3][i % 3], original[i / 3][i % 3], 1e-12);
  turned.Tensor2LocalToGlobal(original, tensor);
  EXPECT_NEAR(tensor[0][0] + tensor[1][1] + tensor[2][2], original[0][0] + original[1][1] + original[2][2], 1e-12);
}

}  // namespace
