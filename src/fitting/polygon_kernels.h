#pragma once

// The polygon analysis shared by the polygon statics and the grids over a polygon.
#include <vector>

#include "fitting/fit_kernels.h"
#include "zemcalc/ZmMathPolygon.h"

namespace zm {
namespace polygon {

struct Shape {
  ZmPolygonStatus status = ZmPolygonDegenerate;
  fit::P3 average, centroid;
  fit::V3 normal;
  double area = 0, outOfPlaneRms = 0;
  bool convex = false;
};

// The vertices widened, a closing repeat of the first dropped; ZmPolygonBadInput for an
// unusable vertex, ZmPolygonTooFewPoints below 3.
template <class P>
ZmPolygonStatus Collect(const WbArrayTempl<P>& vertices, std::vector<fit::P3>& out);
// Newell normal, areas, centroid, flatness and convexity of at least 3 vertices (T sets the
// rounding scale of the degenerate test).
template <class T>
Shape Analyse(const std::vector<fit::P3>& vertices);
// Newell's vector along reference (unit-scaled) over 2: the signed area; the marker for bad input.
template <class P>
double SignedAreaAlong(const WbArrayTempl<P>& vertices, const fit::V3& reference);
// The frame's first axis in the plane of the unit normal; false when every edge is along it.
bool FirstAxis(const std::vector<fit::P3>& vertices, const fit::V3& normal, ZmPolygonAxis axis, fit::V3& x);

}  // namespace polygon
}  // namespace zm
