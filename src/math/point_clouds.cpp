#include "zemcalc/ZmMathPointCloud.h"

#include "foundation/build_info.h"
#include "math/metric_kernels.h"

ZM_BUILD_INFO(point_clouds)

using zm::metric::IsUsable;

namespace {

// Calls visit(point) for every whole, usable point of a flat coordinate list.
template <class T, class Visit>
void ForEachPoint(const WbArrayTempl<T>& coords, Visit visit) {
  const std::uint64_t count = coords.GetSize() / 3;
  const T* xyz = coords.GetData();
  for (std::uint64_t i = 0; i < count; ++i) {
    const ZmPoint3T<T> p(xyz[3 * i], xyz[3 * i + 1], xyz[3 * i + 2]);
    if (IsUsable(p)) visit(p);
  }
}

// sum * (1 / n), or the invalid point when nothing was summed.
template <class T>
ZmPoint3T<T> Mean(const ZmVector3T<T>& sum, std::uint64_t n) {
  if (n == 0) return zm::metric::InvalidPoint<T>();
  return ZmPoint3T<T>(sum * (T(1) / T(n)));
}

}  // namespace

template <class T>
void ZmMathPointCloudT<T>::CartesianBox(const WbArrayTempl<T>& coords, T* box) {
  if (!box) return;
  const T far = T(zm::metric::kFloatMax);
  for (int axis = 0; axis < 3; ++axis) {
    box[2 * axis] = far;
    box[2 * axis + 1] = -far;
  }
  ForEachPoint(coords, [box](const Point3& p) {
    for (int axis = 0; axis < 3; ++axis) {
      const T c = zm::Component(p, axis);
      if (c < box[2 * axis]) box[2 * axis] = c;
      if (c > box[2 * axis + 1]) box[2 * axis + 1] = c;
    }
  });
}

template <class T>
ZmPoint3T<T> ZmMathPointCloudT<T>::ComputeCenter(const WbArrayTempl<T>& coords) {
  ZmVector3T<T> sum(0, 0, 0);
  std::uint64_t n = 0;
  ForEachPoint(coords, [&sum, &n](const Point3& p) {
    sum += p;
    ++n;
  });
  return Mean(sum, n);
}

template <class T>
ZmPoint3T<T> ZmMathPointCloudT<T>::ComputeCenter(const WbArrayTempl<Point3>& points) {
  ZmVector3T<T> sum(0, 0, 0);
  std::uint64_t n = 0;
  for (const Point3& p : points) {
    if (!IsUsable(p)) continue;
    sum += p;
    ++n;
  }
  return Mean(sum, n);
}

template class ZmMathPointCloudT<double>;
template class ZmMathPointCloudT<float>;
