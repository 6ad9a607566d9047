// The principal-axes frame of a point cloud (ZmPoint3 ComputePointsCloudLocalFrame).
#include <cmath>
#include <utility>

#include "zemcalc/ZmExtents.h"
#include "zemcalc/ZmFrame.h"
#include "zemcalc/ZmMath.h"
#include "foundation/build_info.h"
#include "frames/frame_kernels.h"
#include "math/symmetric_eigen.h"

ZM_BUILD_INFO(point_cloud_frame)

namespace {

template <class T>
bool IsFinite(const WbCoord3DT<T>& c) {
  return std::isfinite(c.x) && std::isfinite(c.y) && std::isfinite(c.z);
}

// The eigenvector's sign chosen so that its component of largest magnitude (the first of
// equal ones) is positive.
template <class T>
ZmVector3T<T> Oriented(const ZmVector3T<T>& v) {
  int largest = 0;
  for (int i = 1; i < 3; ++i) {
    if (std::fabs(zm::Component(v, i)) > std::fabs(zm::Component(v, largest))) largest = i;
  }
  return zm::Component(v, largest) < 0 ? -v : v;
}

// Sums of the products of the centred coordinates (the covariance up to the factor 1/n, which
// changes neither the axes nor the ratios of the variances).
template <class T>
void ScatterMatrix(const WbArrayTempl<ZmPoint3T<T>>& points, const ZmPoint3T<T>& mean, T (&scatter)[3][3]) {
  for (const ZmPoint3T<T>& p : points) {
    if (!zm::metric::IsUsable(p)) continue;
    const ZmVector3T<T> d = p - mean;
    for (int i = 0; i < 3; ++i) {
      for (int j = i; j < 3; ++j) scatter[i][j] += zm::Component(d, i) * zm::Component(d, j);
    }
  }
}

// The axes from the eigenpairs sorted by decreasing variance, with the rules for equal
// variances of the header.
template <class T>
void PrincipalAxes(const T (&variance)[3], const ZmVector3T<T> (&direction)[3], ZmVector3T<T>& x, ZmVector3T<T>& y,
                   ZmVector3T<T>& z) {
  const T tol = T(zm::kTolerance5) * variance[0];
  const bool largerEqual = variance[0] - variance[1] <= tol;
  const bool smallerEqual = variance[1] - variance[2] <= tol;
  if (largerEqual && smallerEqual) {
    x = ZmVector3T<T>::UNIT_X;
    y = ZmVector3T<T>::UNIT_Y;
    z = ZmVector3T<T>::UNIT_Z;
  } else if (smallerEqual) {
    x = Oriented(direction[0]);
    ZmMathT<T>::OrthogonalVectors(x, y, z);
  } else if (largerEqual) {
    z = Oriented(direction[2]);
    ZmMathT<T>::OrthogonalVectors(z, x, y);
  } else {
    x = Oriented(direction[0]);
    y = Oriented(direction[1]);
    z = x.cross(y);
  }
}

}  // namespace

template <class T>
unsigned char ZmPoint3T<T>::ComputePointsCloudLocalFrame(const WbArrayTempl<ZmPoint3T>& points, ZmFrameT<T>& frame,
                                                         ZmExtents3T<T>* extents) {
  // The mean leaves out the points holding the marker or a NaN; an infinite coordinate, or a
  // sum that overflows, leaves no finite mean.
  const ZmPoint3T mean = ZmMathT<T>::ComputeCenter(points);
  if (!IsFinite(mean) || !mean.IsValid()) return 0;
  T scatter[3][3] = {};
  ScatterMatrix(points, mean, scatter);
  T values[3], vectors[3][3];
  zm::eigen::SymmetricEigen3(scatter, values, vectors);
  // Scatter sums that overflowed leave a variance that is not finite.
  if (!IsFinite(WbCoord3DT<T>(values[0], values[1], values[2]))) return 0;
  // Decreasing variance; equal ones keep their order.
  int order[3] = {0, 1, 2};
  for (int i = 1; i < 3; ++i) {
    for (int k = i; k > 0 && values[order[k]] > values[order[k - 1]]; --k) std::swap(order[k], order[k - 1]);
  }
  T variance[3];
  ZmVector3T<T> direction[3];
  for (int k = 0; k < 3; ++k) {
    variance[k] = values[order[k]];
    direction[k] = ZmVector3T<T>(vectors[0][order[k]], vectors[1][order[k]], vectors[2][order[k]]);
  }
  ZmVector3T<T> x, y, z;
  PrincipalAxes(variance, direction, x, y, z);
  frame = ZmFrameT<T>(x, y, z, mean, ZmFrameCartesian);
  if (extents) {
    const zm::frames::Placement<T> placement(frame.GetOrigin(), frame.GetMatrix());
    ZmExtents3T<T> box;
    for (const ZmPoint3T& p : points) {
      if (!zm::metric::IsUsable(p)) continue;
      WbCoord3DT<T> local;
      zm::frames::GlobalToLocal(placement, ZmFrameCartesian, true, p, local);
      box.Add(ZmPoint3T(local));
    }
    *extents = box;
  }
  return 1;
}

template unsigned char ZmPoint3T<double>::ComputePointsCloudLocalFrame(const WbArrayTempl<ZmPoint3T<double>>&,
                                                                       ZmFrameT<double>&, ZmExtents3T<double>*);
template unsigned char ZmPoint3T<float>::ComputePointsCloudLocalFrame(const WbArrayTempl<ZmPoint3T<float>>&,
                                                                      ZmFrameT<float>&, ZmExtents3T<float>*);
