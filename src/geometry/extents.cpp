#include "zemcalc/ZmExtents.h"

#include <cmath>

#include "foundation/build_info.h"

ZM_BUILD_INFO(extents)

namespace {
// A point that may enter a box: valid and finite in every component.
template <class Point>
bool IsUsable(const Point& p) {
  if (!p.IsValid()) return false;
  for (int i = 0; i < Point::kDimension; ++i) {
    if (!std::isfinite(zm::Component(p, i))) return false;
  }
  return true;
}
}  // namespace

template <class Point>
unsigned char ZmExtentsOps<Point>::Add(const Point& p) {
  if (!IsUsable(p)) return 0;
  // The base fold takes the other side for a marker component, so an empty box starts here.
  m_min.minimum(p);
  m_max.maximum(p);
  return 1;
}

template <class Point>
std::uint64_t ZmExtentsOps<Point>::Add(const WbArrayTempl<Point>& points) {
  std::uint64_t added = 0;
  for (std::uint64_t i = 0; i < points.GetSize(); ++i) added += Add(points[i]);
  return added;
}

template <class Point>
void ZmExtentsOps<Point>::Merge(const ZmExtentsOps& o) {
  if (o.IsEmpty()) return;
  Add(o.m_min);
  Add(o.m_max);
}

template <class Point>
unsigned char ZmExtentsOps<Point>::Contains(const Point& p, T tol) const {
  if (IsEmpty() || !IsUsable(p)) return 0;
  const T margin = std::fabs(tol);
  for (int i = 0; i < kDimension; ++i) {
    const T c = zm::Component(p, i);
    if (!(zm::Component(m_min, i) - margin <= c && c <= zm::Component(m_max, i) + margin)) return 0;
  }
  return 1;
}

template <class Point>
Point ZmExtentsOps<Point>::GetCenter() const {
  if (IsEmpty()) return Point(Point::INVALID);
  Point c;
  for (int i = 0; i < kDimension; ++i) {
    zm::Component(c, i) = (zm::Component(m_min, i) + zm::Component(m_max, i)) / T(2);
  }
  return c;
}

template <class Point>
typename ZmExtentsOps<Point>::Vector ZmExtentsOps<Point>::GetSize() const {
  if (IsEmpty()) return Vector();
  return m_max - m_min;
}

template class ZmExtentsOps<ZmPoint2T<double>>;
template class ZmExtentsOps<ZmPoint2T<float>>;
template class ZmExtentsOps<ZmPoint3T<double>>;
template class ZmExtentsOps<ZmPoint3T<float>>;
template class ZmExtents2T<double>;
template class ZmExtents2T<float>;
template class ZmExtents3T<double>;
template class ZmExtents3T<float>;
