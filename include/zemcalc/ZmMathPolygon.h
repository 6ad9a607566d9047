#pragma once

// Polygon frames of ZmMathd / ZmMathf: the area, normal, centroid, flatness, convexity and
// local frame of a 3D polygon (nearly planar), and the signed area of a 2D one.
//
// A polygon is its vertices in order; a last vertex equal to the first closes it and is
// dropped. Vertices holding the invalid marker, a NaN or an infinity make the input bad: a
// polygon is not a cloud, and skipping a vertex would change its shape. Everything is computed
// in double about the vertex average c, so that coordinates far from the origin keep the
// digits of the polygon's size:
//   Newell's normal N = sum (p_i - c) x (p_i+1 - c), its length twice the area;
//   area centroid = c + sum A_i (p_i - c + p_i+1 - c) / 3 / sum A_i, with
//   A_i = ((p_i - c) x (p_i+1 - c)).N / (2 |N|) the signed areas of the fan about c.
#include <wbcore/WbArray.h>

#include "zemcalc/ZmConstants.h"
#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmFrame.h"
#include "zemcalc/ZmPoint2.h"
#include "zemcalc/ZmPoint3.h"

enum ZmPolygonStatus : int {
  ZmPolygonOk = 0,
  ZmPolygonTooFewPoints = 1,  // fewer than 3 distinct vertices
  ZmPolygonDegenerate = 2,    // no area: every vertex on one line (within 16 eps of the size)
  ZmPolygonBadInput = 3
};

// The choice of a polygon frame's first axis (always turned into the polygon's plane):
//   ZmPolygonAxisFirstEdge  along the first edge of non-zero length in the plane;
//   ZmPolygonAxisMidLines   for a quadrilateral p0..p3, the bisector of its two mid-lines
//                           a = unit(mid(p1, p2) - mid(p3, p0)) and b = unit(mid(p2, p3) -
//                           mid(p0, p1)): X = unit(a + b x n), which is a when a and b are
//                           square, and follows both equally when they are not; other
//                           polygons fall back to the first edge.
enum ZmPolygonAxis : int { ZmPolygonAxisFirstEdge = 0, ZmPolygonAxisMidLines = 1 };

template <class T>
struct ZmPolygonPropertiesT {
  ZmPoint3T<T> centroid = ZmPoint3T<T>(WbCoord3DT<T>::INVALID);       // area centroid
  ZmPoint3T<T> vertexAverage = ZmPoint3T<T>(WbCoord3DT<T>::INVALID);  // mean of the vertices
  ZmVector3T<T> normal = ZmVector3T<T>(WbCoord3DT<T>::INVALID);       // unit Newell normal
  T area = zm::Invalid<T>();  // |N| / 2: the area seen along the normal, never negative
  // Root mean square of the vertices' distances to the plane through the vertex average
  // normal to the normal: 0 for a planar polygon.
  T outOfPlaneRms = zm::Invalid<T>();
  // 1 when every turn from one edge to the next goes the same way about the normal (a straight
  // turn, within 16 eps, goes either way) and the turns add up to one full turn (so a star that
  // crosses itself is not convex); 0 otherwise.
  unsigned char convex = 0;
  ZmPolygonStatus status = ZmPolygonBadInput;
};

template <class T>
class ZMCALC_API ZmMathPolygonT {
public:
  using Point2 = ZmPoint2T<T>;
  using Point3 = ZmPoint3T<T>;
  using Vector3 = ZmVector3T<T>;

  // The properties above. A degenerate polygon keeps its vertex average (as centroid too) and
  // an area of 0, with the normal, rms and convexity of no meaning (normal Z, rms and convex
  // 0); too few or bad vertices leave every field invalid.
  static ZmPolygonPropertiesT<T> PolygonProperties(const WbArrayTempl<Point3>& vertices);
  // Shoelace about the vertex average: positive counter-clockwise, negative clockwise, 0 for
  // fewer than 3 vertices; the invalid marker for bad vertices.
  static T SignedArea(const WbArrayTempl<Point2>& vertices);
  // The area seen along reference (any length): N.unit(reference) / 2, positive when the
  // polygon turns counter-clockwise about it: the polygon's orientation. The invalid marker
  // for bad vertices or a zero reference.
  static T SignedArea(const WbArrayTempl<Point3>& vertices, const Vector3& reference);
  // The Cartesian frame at the area centroid, Z the Newell normal and X by the axis choice.
  // Returns the polygon's status; frame is untouched unless ZmPolygonOk.
  static ZmPolygonStatus PolygonFrame(const WbArrayTempl<Point3>& vertices, ZmPolygonAxis axis, ZmFrameT<T>& frame);
};

extern template class ZmMathPolygonT<double>;
extern template class ZmMathPolygonT<float>;
