// Convex hull of a set of 2D points by the monotone chain: the points sorted by x then y, the
// lower chain built left to right and the upper chain right to left, each turning strictly
// counter-clockwise. O(n log n).
#include <algorithm>
#include <exception>
#include <vector>

#include "geometry/curve_search.h"
#include "foundation/build_info.h"
#include "foundation/out_of_memory.h"

ZM_BUILD_INFO(convex_shape)

namespace {

// Twice the signed area of the triangle o, a, b: > 0 for a counter-clockwise turn. Evaluated
// in double for both precisions, so that a float turn is not lost to rounding.
template <class T>
double Turn(const ZmPoint2T<T>& o, const ZmPoint2T<T>& a, const ZmPoint2T<T>& b) {
  return (double(a.x) - double(o.x)) * (double(b.y) - double(o.y)) -
         (double(a.y) - double(o.y)) * (double(b.x) - double(o.x));
}

// Appends the indices of one chain to hull, dropping points that do not turn strictly left;
// the chain starts on top of `floor` hull points that it never removes.
template <class T>
void AddChain(const ZmPoint2T<T>* p, const int* first, const int* last, std::size_t floor, std::vector<int>& hull) {
  for (const int* it = first; it != last; ++it) {
    while (hull.size() >= floor + 2 && !(Turn(p[hull[hull.size() - 2]], p[hull.back()], p[*it]) > 0)) hull.pop_back();
    hull.push_back(*it);
  }
}

}  // namespace

template <class T>
std::uint64_t ZmPoint2T<T>::EvaluateConvexShape(const WbArrayTempl<ZmPoint2T>& points, WbArrayTempl<ZmPoint2T>& out,
                                                WbArrayTempl<int>* indices) try {
  const zm::BoundaryCall boundary;
  if (&points == &out) {
    const WbArrayTempl<ZmPoint2T> copy(points);
    return EvaluateConvexShape(copy, out, indices);
  }
  out.RemoveAll();
  if (indices) indices->RemoveAll();
  const ZmPoint2T* p = points.GetData();
  const std::uint64_t count = zm::curve::IndexedCount(p, points.GetSize());

  // Points with a NaN coordinate have no place in the order and are left out; of equal
  // points only the first (lowest index) is kept.
  std::vector<int> order;
  order.reserve(count);
  for (std::uint64_t i = 0; i < count; ++i) {
    if (p[i].x == p[i].x && p[i].y == p[i].y) order.push_back(int(i));
  }
  std::sort(order.begin(), order.end(), [p](int a, int b) {
    if (p[a].x != p[b].x) return p[a].x < p[b].x;
    if (p[a].y != p[b].y) return p[a].y < p[b].y;
    return a < b;
  });
  order.erase(
      std::unique(order.begin(), order.end(), [p](int a, int b) { return p[a].x == p[b].x && p[a].y == p[b].y; }),
      order.end());

  std::vector<int> hull;
  if (order.size() <= 2) {
    hull = order;
  } else {
    hull.reserve(2 * order.size());
    AddChain(p, order.data(), order.data() + order.size(), 0, hull);
    // The upper chain runs back from the second-to-last point and ends on the first one,
    // which is already the start of the hull.
    std::reverse(order.begin(), order.end());
    AddChain(p, order.data() + 1, order.data() + order.size(), hull.size() - 1, hull);
    hull.pop_back();
  }
  for (const int i : hull) {
    out.Add(p[i]);
    if (indices) indices->Add(i);
  }
  return out.GetSize();
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  out.RemoveAll();
  if (indices) indices->RemoveAll();
  return 0;
}

template std::uint64_t ZmPoint2T<double>::EvaluateConvexShape(const WbArrayTempl<ZmPoint2T<double>>&,
                                                              WbArrayTempl<ZmPoint2T<double>>&, WbArrayTempl<int>*);
template std::uint64_t ZmPoint2T<float>::EvaluateConvexShape(const WbArrayTempl<ZmPoint2T<float>>&,
                                                             WbArrayTempl<ZmPoint2T<float>>&, WbArrayTempl<int>*);
