#pragma once

// Bounding box and centre of a point cloud in ZmMathd / ZmMathf. A cloud is either an array
// of points or a flat coordinate list x0, y0, z0, x1, ... whose point count is its size
// divided by 3, rounded down (trailing coordinates are ignored). Points holding the invalid
// marker or a NaN are skipped: they belong to no box and to no mean.
#include <wbcore/WbArray.h>

#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmPoint3.h"

template <class T>
class ZMCALC_API ZmMathPointCloudT {
public:
  using Point3 = ZmPoint3T<T>;

  // Writes minX, maxX, minY, maxY, minZ, maxZ to box[0..5]. The minima start at the largest
  // float 3.4028234663852886e38 and the maxima at its negative, so a list without a whole
  // usable point leaves min > max, the mark of an empty box. A null box is ignored.
  static void CartesianBox(const WbArrayTempl<T>& coords, T* box);
  // The arithmetic mean of the whole points (their sum multiplied by 1/n), not the centre of
  // the box; the invalid point when there is no usable whole point (fewer than 3 coordinates).
  static Point3 ComputeCenter(const WbArrayTempl<T>& coords);
  // The arithmetic mean of the points; the invalid point for an empty array.
  static Point3 ComputeCenter(const WbArrayTempl<Point3>& points);
};

extern template class ZmMathPointCloudT<double>;
extern template class ZmMathPointCloudT<float>;
