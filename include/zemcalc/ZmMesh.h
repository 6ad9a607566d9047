#pragma once

// Finite-element element metrics: ZmMeshd / ZmMeshf. Quality metrics, signed volumes and
// areas, warping of shells, characteristic lengths and the explicit time step, natural
// coordinates, penetration of nodes into shell segments, and the batch forms of all of these
// over a mesh given as node coordinates and connectivity.
//
// Precision: the float twin takes and returns floats but evaluates every formula in double on
// the widened coordinates and rounds the result once. Metrics of distorted elements cancel
// heavily (a warped quad's normals, a flat tet's determinant), and a single-precision
// evaluation would lose most digits on coordinates far from the origin; both twins therefore
// run the same double code and agree to the float rounding of the result.
//
// Node order (the usual finite-element order; r, s, t are the natural coordinates):
//
//   beam   0 ---- 1
//
//   tri    2            quad   3 ------- 2      natural coordinates: tri and tet by area/volume
//          | \                 |         |      coordinates, the point is N0 p0 + r p1 + s p2
//          |   \               |         |      (+ t p3), N0 = 1 - r - s (- t); quad and hex
//          0 --- 1             0 ------- 1      bilinear/trilinear on [-1, 1]; wedge r, s on the
//                                               triangle and t in [-1, 1]; pyramid r, s in
//   tet    3            hex   7 ------ 6        [-1, 1], t in [0, 1] with the apex at t = 1.
//         /|\                /|       /|
//        / | \              4 ------ 5 |        Positive orientation: a shell's normal is
//       0--|--2             | 3 -----|-2        (p1 - p0) x (p2 - p0) (tri) or (p2 - p0) x
//        \ | /              |/       |/         (p3 - p1) (quad): counter-clockwise seen from
//          1                0 ------ 1          the normal. A solid is positive when its
//                                               bottom face (0 1 2 [3]) turns counter-clockwise
//   wedge  3 ----- 5    pyramid    4            seen from the top nodes: tet 3 above
//          |\     /|              /|\           (p1 - p0) x (p2 - p0) (the triple product is
//          | \   / |             / | \          positive), hex 4 5 6 7 above 0 1 2 3, wedge
//          |  4    |           3 --|-- 2        3 4 5 above 0 1 2 and pyramid 4 above 0 1 2 3.
//          0 -|--- 2           |   |   |
//           \ |  /             0 ------ 1       The wedge order of some tools (VTK's among them)
//             1                                 turns the bottom triangle the other way: read
//                                               here such a wedge is inside out (negative
//   volume and Jacobians). Swap nodes 1 <-> 2 and 4 <-> 5 to bring it to this order.
//
// Degenerate elements: where a metric has no value (a zero edge under a ratio, zero area
// under a condition number) the invalid marker -1e32f (widened) comes back. Verdict clamps
// the same cases to +-1e30 instead; where Verdict's degenerate answer is a meaningful limit
// (a scaled Jacobian or shape of 0) it is kept. NaN or infinite coordinates give the invalid
// marker or NaN-free limits, never a crash; nothing here allocates except SmallestValues and
// the penetration search, and nothing reports errors through WbSetError: results are in-band.
#include <cstdint>

#include <wbcore/WbArray.h>

#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmPoint3.h"

// Element types; the value is not the node count, use ZmMeshT::NodeCount.
enum ZmElementType : int {
  ZmElementBeam2 = 0,
  ZmElementTri3 = 1,
  ZmElementQuad4 = 2,
  ZmElementTet4 = 3,
  ZmElementPyramid5 = 4,
  ZmElementWedge6 = 5,
  ZmElementHex8 = 6,
  ZmElementTypeCount = 7
};

// Element metrics. "Verdict" marks the definition of the Verdict library (sandialabs/verdict,
// VTK's vtkMeshQuality) evaluated the same way; the formulas are listed once here, e_i are the
// edge vectors p(i+1) - p(i) in the face order, A the area, V the volume, L lengths.
// A metric not defined for a type gives the invalid marker.
enum ZmElementMetric : int {
  // tri 0.5 |e0 x e2|; quad 0.5 |(p2 - p0) x (p3 - p1)| (Verdict: the area projected on the
  // mean plane, exact for a flat quad).
  ZmMetricArea = 0,
  // quad: the four triangles about the node average, summed: the surface area of a warped
  // quad up to the curvature of the bilinear sheet. tri as ZmMetricArea.
  ZmMetricSurfaceArea,
  // Signed volume, exact for the element's own (trilinear, bilinear-faced) shape: tet
  // (p3 - p0) . ((p1 - p0) x (p2 - p0)) / 6; hex, wedge and pyramid as the sum of the tetrahedra
  // from the node average to each face, a quadrilateral face split into four triangles about
  // its node average (the hex volume of current Verdict; VTK 9.1's is the one-point value
  // det(centre Jacobian) * 8, which is not the volume of a distorted hex). Negative when inside
  // out.
  ZmMetricVolume,
  // Verdict aspect ratio. tri Lmax (L0 + L1 + L2) / (2 sqrt(3) 2A); quad
  // Lmax (L0 + L1 + L2 + L3) / (2 (|e0 x e1| + |e2 x e3|)); tet
  // sqrt(6)/12 Lmax (sum of 2 x face areas) / |6V|. Degenerate: invalid.
  ZmMetricAspectRatio,
  // Longest over shortest edge, all edges of the element (hex: all twelve; Verdict's hex edge
  // ratio takes its longest edge among the bottom and top faces only). Zero edge: invalid.
  ZmMetricEdgeRatio,
  // Verdict radius ratio: tri circumradius / (2 inradius); tet circumradius / (3 inradius).
  ZmMetricRadiusRatio,
  // Smallest and largest corner angle in degrees (Verdict; a quad with a reflex corner reports
  // 360 - that angle as its largest). A quad whose nodes 2 and 3 coincide is the triangle
  // 0 1 2. A zero edge: invalid.
  ZmMetricMinAngle,
  ZmMetricMaxAngle,
  // tet: smallest dihedral angle in degrees (Verdict's tet minimum angle).
  ZmMetricMinDihedralAngle,
  // Verdict Jacobian: quad the smallest corner area n . (e(i-1) x e(i)) with n the unit mean
  // normal; tet 6V; hex the smallest of the eight corner determinants and the centre one / 64;
  // wedge the smallest of its six corner determinants; pyramid the smallest determinant of the
  // tetrahedra (0 1 2 4), (0 2 3 4), (0 1 3 4), (1 2 3 4).
  ZmMetricJacobian,
  // Verdict scaled Jacobian: the smallest corner determinant over the product of its edge
  // lengths (tri 2A / (sqrt(3)/2 * largest product of two edge lengths), unsigned; tet, wedge
  // scaled so that the regular one gives 1; pyramid sqrt(2) times the smallest of its
  // tetrahedra's, 0 when not positive and folded to 2 - x above 1). A zero edge gives 0 (tri,
  // quad) or invalid (hex, wedge).
  ZmMetricScaledJacobian,
  // Verdict condition number of the corner Jacobians (1 for the ideal element, larger worse).
  ZmMetricCondition,
  // Verdict shape (1 ideal, 0 degenerate or inverted). Wedge: 3 (2 det / sqrt(3))^(2/3) over the
  // corner's squared edges, 0 as soon as a corner is not positive (VTK 9.1 passes over such a
  // corner and scores an inverted wedge 1). Pyramid: the base's quad shape times the cosine of
  // the apex's tilt from the base normal times height / ideal height (or its inverse), the
  // ideal height being the longest edge / sqrt(2) (Verdict starts that longest-edge search from
  // the shorter of the first two edges; here all eight count).
  ZmMetricShape,
  // Equiangle skew: max((Amax - A0) / (180 - A0), (A0 - Amin) / A0) over the face angles
  // (A0 = 60 for triangles, 90 for quads, also for a quad whose nodes 2 and 3 coincide; tet adds
  // its dihedral angles against acos(1/3); wedge, pyramid and hex take the largest over their
  // faces). 0 ideal, 1 degenerate (a zero edge gives 1).
  ZmMetricEquiangleSkew,
  // Verdict skew: quad |a1 . a2| of the unit principal axes; hex the largest over axis pairs.
  ZmMetricSkew,
  // Verdict taper: quad |p0 - p1 + p2 - p3| / min(|a1|, |a2|); hex the largest over pairs.
  ZmMetricTaper,
  // Verdict's quad "warpage": min(n0 . n2, n1 . n3)^3 of the unit corner normals, 1 flat (its
  // manual prints 1 minus this). Degenerate corner: invalid.
  ZmMetricWarpageVerdict,
  // Verdict stretch: quad sqrt(2) Lmin / Dmax; hex sqrt(3) Lmin / Dmax.
  ZmMetricStretch,
  // Verdict Oddy metric (0 ideal); a non-positive corner: invalid.
  ZmMetricOddy,
  // tet: Verdict collapse ratio, smallest height over longest edge of the opposite face.
  ZmMetricCollapseRatio,
  // tet: mean ratio 12 (3|V|)^(2/3) / sum L^2, signed as V (1 regular).
  ZmMetricMeanRatio,
  // hex: Verdict diagonal ratio Dmin / Dmax.
  ZmMetricDiagonal,
  // hex: Verdict dimension V / sqrt(2 sum |dV/dx_i|^2), the Flanagan-Belytschko length.
  ZmMetricDimension,
  // quad warping in the forms pre-processors print:
  // the largest angle in degrees between the normals of the two triangles of a diagonal split,
  // over both splits (0 flat; a unit square with one node lifted by 0.2 gives 15.94);
  ZmMetricWarpingAngle,
  // asin(h / (L / 2)) in degrees, h the height of the nodes over the mean plane (the plane
  // through the node average normal to (p2 - p0) x (p3 - p1)) and L the shorter edge at the
  // corner, the largest over the corners; h / (L/2) is clamped to [0, 1], never NaN;
  ZmMetricWarpingCornerAngle,
  // h, and h / sqrt(area).
  ZmMetricWarpingHeight,
  ZmMetricWarpingHeightRatio,
  // Characteristic length: tri 2A / Lmax; quad A / Dmax (A as ZmMetricArea); tet 3V / Amax
  // (smallest altitude); hex, wedge and pyramid |V| / largest face area (a quad face's area as
  // ZmMetricArea); beam its length. Degenerate (zero denominator): invalid.
  ZmMetricCharacteristicLength,
  // quad variant max(A / Dmax, min of the four edges and two diagonals); other types as
  // ZmMetricCharacteristicLength.
  ZmMetricCharacteristicLengthEdges,
  ZmMetricCount
};

// Wave speed used by the explicit time step.
enum ZmWaveSpeed : int {
  ZmWaveSpeedBar = 0,         // sqrt(E / rho): beams
  ZmWaveSpeedPlaneStress = 1, // sqrt(E / (rho (1 - nu^2))): shells
  ZmWaveSpeedDilatational = 2 // sqrt(E (1 - nu) / (rho (1 + nu) (1 - 2 nu))): solids
};

// Result of a natural-coordinate search.
enum ZmNaturalStatus : int {
  ZmNaturalConverged = 0,  // the coordinates are exact to the tolerance
  ZmNaturalNotConverged = 1, // the iteration limit was reached: the last iterate is returned
  ZmNaturalSingular = 2,   // the Jacobian is singular (degenerate element): (0, 0, 0) returned
  ZmNaturalInvalidInput = 3  // a non-finite coordinate or an unknown type: nothing written
};

template <class T>
struct ZmNaturalResultT {
  ZmPoint3T<T> natural;   // r, s, t (t = 0 for shells)
  ZmPoint3T<T> closest;   // the point of the element closest to the query point
  T distance = 0;         // |point - closest|
  int iterations = 0;     // Newton steps taken (0 for the closed forms)
  ZmNaturalStatus status = ZmNaturalInvalidInput;
  unsigned char inside = 0;  // 1 when the natural coordinates lie in the element within tol
};

// Penetration of a node into a shell segment.
template <class T>
struct ZmPenetrationT {
  std::uint64_t node = 0;     // index of the node (mesh search)
  std::uint64_t segment = 0;  // index of the segment (mesh search)
  T depth = 0;                // contact distance - distance; > 0 penetrates
  T distance = 0;             // distance from the node to the segment's mid-surface
  ZmPoint3T<T> closest;       // closest point of the segment
  ZmPoint3T<T> natural;       // its natural coordinates in the segment (t = 0)
  ZmVector3T<T> normal;       // unit normal of the segment at the closest point, towards the node
};

template <class T>
class ZMCALC_API ZmMeshT {
 public:
  using Point = ZmPoint3T<T>;
  using Vector = ZmVector3T<T>;
  using NaturalResult = ZmNaturalResultT<T>;
  using Penetration = ZmPenetrationT<T>;

  // Nodes of a type (2, 3, 4, 4, 5, 6, 8); 0 for an unknown type.
  static int NodeCount(ZmElementType type);

  // The metric of one element whose nodes are nodes[0 .. NodeCount(type) - 1]; invalid for a
  // null pointer, an unknown type or a metric not defined for the type.
  static T ComputeMetric(ZmElementType type, ZmElementMetric metric, const Point* nodes);
  // 1 when the metric is defined for the type.
  static unsigned char IsMetricDefined(ZmElementType type, ZmElementMetric metric);

  // 1 when the shell (tri or quad) turns counter-clockwise about `normal` (its normal as defined
  // above has a positive component along it), 0 otherwise (inverted, or edge-on, or a bad
  // input). Verdict cannot tell: it takes the normal from the element itself.
  static unsigned char IsShellAlongNormal(ZmElementType type, const Point* nodes, const Vector& normal);

  // Wave speed of a material; invalid for E <= 0, rho <= 0, nu outside (-1, 0.5) (solids) or
  // (-1, 1) (shells), or a non-finite value.
  static T ComputeWaveSpeed(ZmWaveSpeed kind, T youngModulus, T poissonRatio, T density);
  // Stable explicit time step Lc / c: Lc the characteristic length `lengthMetric`
  // (ZmMetricCharacteristicLength, ZmMetricCharacteristicLengthEdges or ZmMetricDimension), c
  // the bar speed for beams, the plane-stress speed for shells, the dilatational speed for
  // solids. Invalid when either is.
  static T ComputeTimeStep(ZmElementType type, ZmElementMetric lengthMetric, const Point* nodes, T youngModulus,
                           T poissonRatio, T density);

  // Natural coordinates of `point` in the element (see the node picture for their ranges).
  // Triangles and tetrahedra in closed form (a shell point is first projected on the plane of
  // the triangle); quads by Newton iterations on the least-squares system of the 3x2 Jacobian
  // (so a point off a warped quad finds the foot of its normal), hexahedra, wedges and pyramids by
  // Newton iterations on the 3x3 system, from the centre, at most `maxIterations` steps (20 when
  // 0 is passed), stopping when the step is below `tolerance` (1e-12 when <= 0) in natural units.
  // inside = 1 when the coordinates lie in the element's range widened by `insideTolerance`.
  // closest is the point itself when inside, else the nearest point of the element's boundary
  // (faces triangulated: quad faces split into four triangles about their node average) or,
  // for shells, of the shell; distance is |point - closest| (for shells: the distance to the
  // shell surface, inside or not).
  static NaturalResult ComputeNaturalCoordinates(ZmElementType type, const Point* nodes, const Point& point,
                                                 T insideTolerance = T(0), T tolerance = T(0), int maxIterations = 0);
  // The point at natural coordinates (r, s, t) and, when `shape` is not null, the NodeCount(type)
  // shape-function values there. Invalid point for an unknown type or null nodes.
  static Point ComputePointAtNatural(ZmElementType type, const Point* nodes, const Point& natural,
                                     T* shape = nullptr);

  // Penetration of `node` into the shell segment (tri or quad): the contact distance is
  // (nodeThickness + segmentThickness) / 2 and depth = contact distance - distance, positive
  // when the node is closer than that. A quad segment is split into four triangles about its
  // node average and the closest point is taken over them, as contact codes do; the natural
  // coordinates of a point of such a triangle are those of the linear map of that triangle
  // (centre (0, 0), corners (+-1, +-1)). Returns 0 (and leaves `out` untouched) for a degenerate
  // segment, a bad type or non-finite input, 1 otherwise (whatever the sign of depth).
  static unsigned char ComputePenetration(ZmElementType type, const Point* segment, const Point& node,
                                          T nodeThickness, T segmentThickness, Penetration& out);

  // Batch forms over a mesh. nodes[0 .. nodeCount - 1] are the coordinates; element e has type
  // types[e] and its nodes are the next NodeCount(types[e]) entries of `connectivity` (packed,
  // element after element). values[e] receives the metric (or time step). An element with an
  // unknown type or a node index out of range gets the invalid marker (and, being of unknown
  // size, ends the walk: the remaining elements get the invalid marker too). Returns the number
  // of elements whose value is not the invalid marker.
  static std::uint64_t ComputeMeshMetric(ZmElementMetric metric, const Point* nodes, std::uint64_t nodeCount,
                                         const ZmElementType* types, const std::int64_t* connectivity,
                                         std::uint64_t elementCount, T* values);
  static std::uint64_t ComputeMeshTimeStep(ZmElementMetric lengthMetric, const Point* nodes, std::uint64_t nodeCount,
                                           const ZmElementType* types, const std::int64_t* connectivity,
                                           std::uint64_t elementCount, T youngModulus, T poissonRatio, T density,
                                           T* values);
  // The `count` smallest valid values of values[0 .. elementCount - 1] in increasing order
  // with their indices (ties by index); returns how many were written (at most count).
  static std::uint64_t SmallestValues(const T* values, std::uint64_t elementCount, std::uint64_t count,
                                      T* smallest, std::uint64_t* indices);

  // Every penetration (depth > 0) of the nodes `queryNodes` (indices into `nodes`; all nodes when
  // null, queryCount ignored) into the shell segments (tri or quad; segmentTypes and the packed
  // segmentConnectivity as in the batch forms). nodeThickness[i] is the shell thickness of node i
  // (0 when the array is null), segmentThickness[j] that of segment j (0 when null). A segment's
  // own nodes are never tested against it. The segments are binned on a uniform grid whose cell
  // is the average segment size, so the cost grows as the number of nodes and segments, not
  // their product (a sort of the (cell, segment) pairs, then a binary search per node); the
  // index takes about 100 bytes per segment plus 16 per (cell, segment) pair, at most 8 pairs for
  // a segment of average size. A segment spanning more than 8 cells along an axis is not binned but
  // tested against every node. Results are appended to `out` ordered by node, then segment.
  // Returns the number appended; bad connectivity (unknown type, index out of range) appends
  // nothing and returns 0.
  static std::uint64_t FindPenetrations(const Point* nodes, std::uint64_t nodeCount, const std::uint64_t* queryNodes,
                                        std::uint64_t queryCount, const T* nodeThickness,
                                        const ZmElementType* segmentTypes, const std::int64_t* segmentConnectivity,
                                        std::uint64_t segmentCount, const T* segmentThickness,
                                        WbArrayTempl<Penetration>& out);
};

extern template class ZmMeshT<double>;
extern template class ZmMeshT<float>;

using ZmMeshd = ZmMeshT<double>;
using ZmMeshf = ZmMeshT<float>;
