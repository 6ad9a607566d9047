#pragma once

// Grids of ZmMathd / ZmMathf: regular points over a rectangle or a planar polygon, and evenly
// spaced abscissae over a range. Each returns the number of points written (the output array
// is replaced), or -1 with the array emptied for bad input: a NaN, an infinity or the invalid
// marker among the arguments, a spacing that is not positive, a negative length, a polygon the
// polygon statics cannot frame, or more than 2^24 points.
#include <cstdint>

#include <wbcore/WbArray.h>

#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmFrame.h"
#include "zemcalc/ZmPoint3.h"

template <class T>
class ZMCALC_API ZmMathGridT {
public:
  using Point3 = ZmPoint3T<T>;

  // origin + i spacingX X + j spacingY Y (X, Y the frame's first two axes) for i = 0..nx - 1
  // and j = 0..ny - 1, i running fastest, with n = floor(length / spacing) + 1: the corner at
  // the frame's origin and the far sides reached when the length is a whole number of
  // spacings (length / spacing within 16 eps of a whole number counts as whole, eps the twin's
  // machine epsilon: 1.0 / 0.1 is 9.99999985 in float).
  static std::int64_t RectangleGrid(const ZmFrameT<T>& frame, T lengthX, T lengthY, T spacingX, T spacingY,
                                    WbArrayTempl<Point3>& points);
  // The points of the square lattice of the given spacing through origin (projected onto the
  // polygon's plane), along the axes of the polygon's first-edge frame (ZmMathPolygon
  // PolygonFrame), that lie inside the polygon and outside its holes (holes may be null). The
  // holes are projected onto the polygon's plane. Inside means an odd number of boundary
  // crossings of a ray along +X (each edge half-open in Y): a point on an edge may fall
  // either side. Rows of increasing Y, each of increasing X.
  static std::int64_t PolygonGrid(const WbArrayTempl<Point3>& polygon, const WbArrayTempl<WbArrayTempl<Point3>>* holes,
                                  const Point3& origin, T spacing, WbArrayTempl<Point3>& points);
  // The fewest evenly spaced abscissae from `from` to `to` (either way, both included, the
  // last exactly `to`) no farther apart than maxSpacing: n = max(1, ceil(|to - from| /
  // maxSpacing)) intervals, x_i = from + (to - from) i / n. from == to gives one abscissa.
  static std::int64_t RangeGrid(T from, T to, T maxSpacing, WbArrayTempl<T>& abscissae);
};

extern template class ZmMathGridT<double>;
extern template class ZmMathGridT<float>;
