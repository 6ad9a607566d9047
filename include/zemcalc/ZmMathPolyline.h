#pragma once

// Polylines in ZmMathd / ZmMathf: length, arc-length parametrisation, and the projection of a
// point onto a polyline or onto a set of independent segments. The rounding, threshold and
// bad-input rules are those of ZmMathDistance.h; segment lengths are rounded to float one by
// one before they are summed (in the class's precision).
//
// A polyline is a WbArrayTempl of points P[0] ... P[n-1], its segments P[i] -> P[i+1].
// Segments are tried in order and a later one replaces the current best only when it is
// strictly nearer, so ties keep the earlier segment. None of these functions allocates.
#include <wbcore/WbArray.h>

#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmPoint3.h"

template <class T>
class ZMCALC_API ZmMathPolylineT {
public:
  using Point3 = ZmPoint3T<T>;
  using Polyline = WbArrayTempl<Point3>;

  // Sum of the segment lengths, each rounded to float; 0 for fewer than two points, the
  // invalid value when a point is unusable.
  static T GetLength(const Polyline& polyline);

  // The point at normalised arc length t (0 at the first point, 1 at the last): t == 0 and
  // t == 1 give the end points exactly; otherwise the target length GetLength * t is found by
  // walking the segments and interpolating linearly in the first segment whose end reaches it.
  // Beyond the ends the walk extrapolates along the end segment: a negative t before the first
  // point along the first segment, a t above 1 past the last point along the last segment
  // (symmetric, and continuous at both ends). A zero-length end segment gives its point. An
  // empty polyline or a non-finite t gives the invalid point, and so does any other t when a
  // point is unusable (t == 0 and t == 1 still return the end points as stored); a one-point
  // polyline gives its point.
  static void GetCoordinatesAt(const Polyline& polyline, T t, Point3& out);

  // The foot of p on the polyline and its normalised arc length param in [0, 1]:
  // 1. a polyline shorter than 1e-6f in total (empty and one-point polylines included): foot
  //    = p, param = 0, result 1;
  // 2. otherwise every segment that is not degenerate (d.d > 1e-14f) is projected on, clamped;
  //    the nearest foot (distances rounded to float, ties keep the earlier segment) wins, with
  //    param = (arc length before its segment) / L + |foot - segment start| / L, clamped to
  //    [0, 1]; result 1;
  // 3. a polyline whose every segment is degenerate while the total still reaches 1e-6f has no
  //    segment to project on: its nearest vertex (the earlier on ties) is the foot, with that
  //    vertex's normalised arc length; result 1.
  // An unusable p or polyline point gives 0 with foot invalidated and param = 0.
  static unsigned char GetProjectedPoint(const Polyline& polyline, const Point3& p, T& param, Point3& foot);

  // Distance from p to the polyline through GetProjectedPoint, rounded to float: 0 for an
  // empty or one-point polyline or one shorter than 1e-6f (the foot is p itself); the invalid
  // value when GetProjectedPoint fails.
  static T DistanceTo(const Polyline& polyline, const Point3& p);

  // The nearest point of the polyline to p (DistToSegment on each segment in order, the
  // earlier on ties), and in *segIndex (when given) the index of its segment's first point.
  // Fewer than two points, or an unusable p, leave the invalid point and -1; a segment with an
  // unusable end is skipped.
  static Point3 ProjOnPolyline(const Point3& p, const Polyline& polyline, int* segIndex = nullptr);

  // The nearest point to p on independent segments given as consecutive pairs (P[0], P[1]),
  // (P[2], P[3]) ...; an odd last point is ignored; the earlier pair wins ties. Fewer than two
  // points, an unusable p, or no usable pair give the invalid point.
  static Point3 ProjOnSegments(const Point3& p, const Polyline& pairs);
};

extern template class ZmMathPolylineT<double>;
extern template class ZmMathPolylineT<float>;
