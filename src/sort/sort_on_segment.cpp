#include <cmath>

#include <wbcore/WbMem.h>

#include "zemcalc/ZmMath.h"
#include "zemcalc/ZmSort.h"
#include "foundation/build_info.h"

ZM_BUILD_INFO(sort_on_segment)

int ZmSort::SortArrayPoint3DOnSegment(ZmPoint3d& a, ZmPoint3d& b, WbArrayTempl<ZmPoint3d>& pts, int* idx) {
  return SortOnSegment(a, b, pts, idx);
}

int ZmSort::SortArrayPoint3DOnSegment(ZmPoint3f& a, ZmPoint3f& b, WbArrayTempl<ZmPoint3f>& pts, int* idx) {
  return SortOnSegment(a, b, pts, idx);
}

// The key of a point is cos(angle) * |w| with w = point - a: the signed abscissa of its
// projection on the line a -> b. The distance is rounded to float before the product, in both
// precisions.
template <class T>
int ZmSort::SortOnSegment(ZmPoint3T<T>& a, ZmPoint3T<T>& b, WbArrayTempl<ZmPoint3T<T>>& pts, int* idx) {
  const int n = static_cast<int>(pts.GetSize());
  if (n <= 1) return 1;
  T* key = static_cast<T*>(WbMemCalloc(static_cast<std::size_t>(n), sizeof(T)));
  if (!key) return 1;
  const ZmVector3T<T> d = b - a;
  for (int k = 0; k < n; ++k) {
    const ZmVector3T<T> w = pts[static_cast<std::uint64_t>(k)] - a;
    key[k] = std::cos(ZmMathT<T>::AngleRad(w, d)) * zm::RoundToFloat(w.length());
  }
  sort_fast(n, idx, key);
  WbMemFree(key);
  return 0;
}
