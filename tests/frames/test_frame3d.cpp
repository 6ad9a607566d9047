// The array-based frame: three points, the homogeneous matrix, points, vectors and tensors
// both ways, in place, and null pointers.
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <random>
#include <type_traits>

#include "frames/frame_test_support.h"

namespace {

using frame_test::Near;

// Exposes the protected axis builder.
class ProbeFrame3D : public ZmFrame3D {
 public:
  using ZmFrame3D::CreateFrom3Point;
};

TEST(Frame3D, IsPolymorphicAndStartsAsTheIdentity) {
  static_assert(std::is_polymorphic<ZmFrame3D>::value && std::has_virtual_destructor<ZmFrame3D>::value, "");
  const ZmFrame3D frame;
  double m[4][4];
  frame.GetMatrix(m);
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) EXPECT_EQ(m[i][j], i == j ? 1.0 : 0.0) << i << ", " << j;
  }
}

TEST(Frame3D, ThreePoints) {
  double p0[3] = {0, 0, 0}, p1[3] = {2, 0, 0}, p2[3] = {0, 3, 0};
  const ZmFrame3D frame(p0, p1, p2);
  double x[3], y[3], z[3], o[3];
  frame.GetXAxis(x);
  frame.GetYAxis(y);
  frame.GetZAxis(z);
  frame.GetOrigin(o);
  EXPECT_EQ(ZmVector3d(x), ZmVector3d(1, 0, 0));
  EXPECT_EQ(ZmVector3d(y), ZmVector3d(0, 1, 0));
  EXPECT_EQ(ZmVector3d(z), ZmVector3d(0, 0, 1));
  EXPECT_EQ(ZmPoint3d(o), ZmPoint3d(0, 0, 0));
  // e = (1, 2, 2), b = (-1, 1, 4) from (1, 1, 1): X = e/3, Z = unit(e x b) = (6, -6, 3)/9,
  // Y = Z x X = (-2, -1, 2)/3.
  double q0[3] = {1, 1, 1}, q1[3] = {2, 3, 3}, q2[3] = {0, 2, 5};
  const ZmFrame3D tilted(q0, q1, q2);
  tilted.GetYAxis(y);
  tilted.GetZAxis(z);
  tilted.GetOrigin(o);
  EXPECT_TRUE(Near(ZmVector3d(y), ZmVector3d(-2.0 / 3, -1.0 / 3, 2.0 / 3), 1e-15));
  EXPECT_TRUE(Near(ZmVector3d(z), ZmVector3d(2.0 / 3, -2.0 / 3, 1.0 / 3), 1e-15));
  EXPECT_EQ(ZmPoint3d(o), ZmPoint3d(1, 1, 1));
  // The builder leaves the origin alone; collinear points leave Z (and so Y) zero.
  ProbeFrame3D probe;
  probe.CreateFrom3Point(ZmPoint3d(5, 5, 5), ZmPoint3d(6, 5, 5), ZmPoint3d(7, 5, 5));
  probe.GetOrigin(o);
  probe.GetZAxis(z);
  probe.GetYAxis(y);
  EXPECT_EQ(ZmPoint3d(o), ZmPoint3d(0, 0, 0));
  EXPECT_EQ(ZmVector3d(z), ZmVector3d(0, 0, 0));
  EXPECT_EQ(ZmVector3d(y), ZmVector3d(0, 0, 0));
}

TEST(Frame3D, HomogeneousMatrix) {
  // Translation (1, 2, 3) and a quarter turn about Z (columns X = (0,1,0), Y = (-1,0,0)).
  const ZmMatrix4d m(0, -1, 0, 1,  //
                     1, 0, 0, 2,   //
                     0, 0, 1, 3,   //
                     7, 7, 7, 7);  // the last row is ignored
  ZmFrame3D frame;
  frame.SetMatrix(m);
  double origin[3] = {0, 0, 0}, global[3];
  frame.PointLocalToGlobal(origin, global);
  EXPECT_EQ(ZmPoint3d(global), ZmPoint3d(1, 2, 3));
  double local[3] = {1, 0, 0};
  frame.PointLocalToGlobal(local);  // in place: (1, 2, 3) + X
  EXPECT_EQ(ZmPoint3d(local), ZmPoint3d(1, 3, 3));
  double back[4][4];
  ZmFrame3D(m).GetMatrix(back);
  EXPECT_EQ(back[0][1], -1.0);
  EXPECT_EQ(back[1][3], 2.0);
  EXPECT_EQ(back[3][0], 0.0);
  EXPECT_EQ(back[3][3], 1.0);
  double axes[3][3];
  frame.GetAxes(axes);
  EXPECT_EQ(axes[1][0], 1.0);
  // SetAxes takes rows first and does not re-orthonormalise.
  const double skew[3][3] = {{1, 2, 0}, {0, 1, 0}, {0, 0, 1}};
  frame.SetAxes(skew);
  double x[3], y[3];
  frame.GetXAxis(x);
  frame.GetYAxis(y);
  EXPECT_EQ(ZmVector3d(x), ZmVector3d(1, 0, 0));
  EXPECT_EQ(ZmVector3d(y), ZmVector3d(2, 1, 0));
}

TEST(Frame3D, PointsAndVectorsBothWays) {
  // X = (0,1,0), Y = (-1,0,0), Z = (0,0,1), origin (1, 2, 3).
  ZmFrame3D frame(ZmMatrix4d(ZmMatrix3d(0, -1, 0, 1, 0, 0, 0, 0, 1), ZmVector3d(1, 2, 3)));
  double p[3] = {2, 2, 3}, out[3];
  frame.PointGlobalToLocal(p, out);  // R^T (1, 0, 0) = (0, -1, 0)
  EXPECT_EQ(ZmPoint3d(out), ZmPoint3d(0, -1, 0));
  double v[3] = {1, 0, 5};
  frame.VectorGlobalToLocal(v, out);
  EXPECT_EQ(ZmVector3d(out), ZmVector3d(0, -1, 5));
  frame.VectorLocalToGlobal(out);
  EXPECT_EQ(ZmVector3d(out), ZmVector3d(1, 0, 5));
  frame.PointGlobalToLocal(p);
  frame.PointLocalToGlobal(p, p);
  EXPECT_EQ(ZmPoint3d(p), ZmPoint3d(2, 2, 3));
  // Null pointers and bad axis indexes do nothing.
  frame.PointGlobalToLocal(nullptr, out);
  frame.VectorLocalToGlobal(v, nullptr);
  frame.GetOrigin(nullptr);
  frame.SetXAxis(nullptr);
  frame.GetMatrix(nullptr);
  frame.Tensor2GlobalToLocal(nullptr);
  EXPECT_EQ(ZmVector3d(out), ZmVector3d(1, 0, 5));
}

TEST(Frame3D, TensorsTurnWithTheAxes) {
  // R^T T R with X = (0,1,0), Y = (-1,0,0): T'_ij = axis_i . T axis_j, so diag(1, 2, 3)
  // becomes diag(2, 1, 3) and the shear T_xz = 4 becomes T'_yz = -4.
  ZmFrame3D frame(ZmMatrix4d(ZmMatrix3d(0, -1, 0, 1, 0, 0, 0, 0, 1), ZmVector3d(9, 9, 9)));
  const double t[3][3] = {{1, 0, 4}, {0, 2, 0}, {4, 0, 3}};
  double local[3][3];
  frame.Tensor2GlobalToLocal(t, local);
  const double expected[3][3] = {{2, 0, 0}, {0, 1, -4}, {0, -4, 3}};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) EXPECT_EQ(local[i][j], expected[i][j]) << i << ", " << j;
  }
  // Round trip on a random orthonormal frame and a random symmetric tensor, in place.
  std::mt19937 rng(5);
  std::uniform_real_distribution<double> value(-100, 100);
  const ZmFramed random = frame_test::RandomFrame<double>(rng, ZmFrameCartesian);
  ZmFrame3D turned(ZmMatrix4d(random.GetMatrix(), ZmVector3d(random.GetOrigin())));
  double tensor[3][3], original[3][3];
  for (int i = 0; i < 3; ++i) {
    for (int j = i; j < 3; ++j) original[i][j] = original[j][i] = tensor[i][j] = tensor[j][i] = value(rng);
  }
  turned.Tensor2LocalToGlobal(tensor);
  turned.Tensor2GlobalToLocal(tensor);
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) EXPECT_NEAR(tensor[i][j], original[i][j], 1e-12);
  }
  // The trace is invariant.
  turned.Tensor2LocalToGlobal(original, tensor);
  EXPECT_NEAR(tensor[0][0] + tensor[1][1] + tensor[2][2], original[0][0] + original[1][1] + original[2][2], 1e-12);
}

}  // namespace
