#pragma once

// Axis-aligned boxes: ZmExtents2d / ZmExtents2f (2D) and ZmExtents3d / ZmExtents3f (3D), the
// minimum and maximum corners and nothing else.
//
// A default box is empty: both corners hold the invalid marker. Adding a point grows the box
// to include it; a point that is invalid (any component equal to the marker) or has a NaN or
// infinite component is ignored, so one bad sample cannot blow the box up. Containment is
// closed: a point on a face is inside.
#include <cstdint>

#include <wbcore/WbArray.h>

#include "zemcalc/ZmCoordOps.h"
#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmPoint2.h"
#include "zemcalc/ZmPoint3.h"

// The rules of both dimensions, over the point class.
template <class Point>
class ZMCALC_API ZmExtentsOps {
public:
  using Scalar = typename Point::Scalar;
  using T = Scalar;
  using Vector = typename zm::SumResult<Point, Point>::type;
  static constexpr int kDimension = Point::kDimension;

  // Empty.
  ZmExtentsOps() = default;
  // The smallest box holding a and b (either may be ignored as above).
  ZmExtentsOps(const Point& a, const Point& b) {
    Add(a);
    Add(b);
  }
  // The smallest box holding the points.
  explicit ZmExtentsOps(const WbArrayTempl<Point>& points) { Add(points); }
  // The other precision: the corners converted component by component (double to float rounds
  // to nearest; an empty box stays empty, the marker being a float value).
  template <class OtherPoint, std::enable_if_t<!std::is_same<OtherPoint, Point>::value, int> = 0>
  ZmExtentsOps(const ZmExtentsOps<OtherPoint>& o) : m_min(o.GetMinimum()), m_max(o.GetMaximum()) {}

  unsigned char IsEmpty() const { return m_min.IsValid() ? 0 : 1; }
  void SetEmpty() { *this = ZmExtentsOps(); }

  // Grows the box to hold p; returns 1, or 0 when p is ignored (invalid, NaN or infinite).
  unsigned char Add(const Point& p);
  // Adds every point; returns how many were not ignored.
  std::uint64_t Add(const WbArrayTempl<Point>& points);
  // Grows the box to hold the other box (an empty one changes nothing).
  void Merge(const ZmExtentsOps& o);

  // 1 when every coordinate of p lies in [min - |tol|, max + |tol|]; 0 for an empty box and
  // for an ignored point.
  unsigned char Contains(const Point& p, T tol = T(0)) const;

  // The corners; invalid points when the box is empty.
  const Point& GetMinimum() const { return m_min; }
  const Point& GetMaximum() const { return m_max; }
  // The midpoint of the corners; the invalid point when the box is empty.
  Point GetCenter() const;
  // max - min; the zero vector when the box is empty.
  Vector GetSize() const;

  // Exact equality of the corners (two empty boxes are equal).
  unsigned char operator==(const ZmExtentsOps& o) const { return (m_min == o.m_min && m_max == o.m_max) ? 1 : 0; }
  unsigned char operator!=(const ZmExtentsOps& o) const { return (*this == o) ? 0 : 1; }

private:
  Point m_min = Point(Point::INVALID);
  Point m_max = Point(Point::INVALID);
};

template <class T>
class ZMCALC_API ZmExtents2T : public ZmExtentsOps<ZmPoint2T<T>> {
public:
  using ZmExtentsOps<ZmPoint2T<T>>::ZmExtentsOps;
  ZmExtents2T() = default;
  // The other precision (implicit, like every twin conversion).
  template <class U>
  ZmExtents2T(const ZmExtents2T<U>& o) : ZmExtentsOps<ZmPoint2T<T>>(o) {}
};

template <class T>
class ZMCALC_API ZmExtents3T : public ZmExtentsOps<ZmPoint3T<T>> {
public:
  using ZmExtentsOps<ZmPoint3T<T>>::ZmExtentsOps;
  ZmExtents3T() = default;
  // The other precision (implicit, like every twin conversion).
  template <class U>
  ZmExtents3T(const ZmExtents3T<U>& o) : ZmExtentsOps<ZmPoint3T<T>>(o) {}
};

extern template class ZmExtentsOps<ZmPoint2T<double>>;
extern template class ZmExtentsOps<ZmPoint2T<float>>;
extern template class ZmExtentsOps<ZmPoint3T<double>>;
extern template class ZmExtentsOps<ZmPoint3T<float>>;
extern template class ZmExtents2T<double>;
extern template class ZmExtents2T<float>;
extern template class ZmExtents3T<double>;
extern template class ZmExtents3T<float>;

using ZmExtents2d = ZmExtents2T<double>;
using ZmExtents2f = ZmExtents2T<float>;
using ZmExtents3d = ZmExtents3T<double>;
using ZmExtents3f = ZmExtents3T<float>;

static_assert(sizeof(ZmExtents3d) == 2 * sizeof(ZmPoint3d) && sizeof(ZmExtents2f) == 2 * sizeof(ZmPoint2f), "");
