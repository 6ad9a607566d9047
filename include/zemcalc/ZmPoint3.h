#pragma once

// Points and vectors in 3D: ZmPoint3d / ZmVector3d and their float twins ZmPoint3f /
// ZmVector3f. Each is exactly three scalars x, y, z (no virtual table) deriving from the base
// coordinate WbCoord3Dd / WbCoord3Df.
//
// Precision rule of the float twins: sums and products stay in float, square roots are taken
// in double on the widened sum of squares and rounded back to float.
//
// Angles taken and returned by the members are in degrees, converted with the double factors
// 180/pi = 57.29577951308232 and pi/180 = 0.017453292519943295.
#include <wbcore/WbArray.h>
#include <wbcore/WbCoord.h>
#include <wbcore/WbError.h>

#include <cstdint>

#include "zemcalc/ZmCoordOps.h"
#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmPoint2.h"

template <class T>
class ZMCALC_API_FORWARD ZmPlaneT;
template <class T>
class ZMCALC_API_FORWARD ZmExtents3T;
template <class T>
class ZMCALC_API_FORWARD ZmFrameT;

namespace zm {
template <class T, class A, class B, class C>
constexpr WbCoord3DT<T> Coord3(A xv, B yv, C zv) {
  return WbCoord3DT<T>(ConvertScalar<T>(xv), ConvertScalar<T>(yv), ConvertScalar<T>(zv));
}
template <class T, class U>
constexpr WbCoord3DT<T> Coord3FromArray(const U* v) {
  return v ? Coord3<T>(v[0], v[1], v[2]) : WbCoord3DT<T>::INVALID;
}
}  // namespace zm

// Construction shared by the 3D point and vector: from nothing (origin), one scalar copied to
// the three components, three scalars of any arithmetic types (so (int, int, double) and
// (long, long, double) too), a pointer to three doubles or floats (a null pointer gives the
// invalid coordinate), any 3D coordinate of either precision, and any 2D coordinate (z = 0).
// Assignment accepts the same sources. Every component goes through zm::ConvertScalar, so a
// double rounds to the nearest float in the float classes whatever the caller's optimiser does.
// The coordinate assignments are templates taking the base class, an exact match for every
// point and vector, so that `pf = ZmPoint3d(...)` does not compete with the pointer assignment
// reached through ZmPoint3d's conversion to a pointer.
#define ZM_COORD3_CONSTRUCTORS(Class)                                                                                \
  constexpr Class() = default;                                                                                       \
  template <class S, zm::EnableIfScalar<S> = 0>                                                                      \
  constexpr explicit Class(S s) : Ops(zm::Coord3<T>(s, s, s)) {}                                                     \
  template <                                                                                                         \
      class A, class B, class C,                                                                                     \
      std::enable_if_t<std::is_arithmetic<A>::value && std::is_arithmetic<B>::value && std::is_arithmetic<C>::value, \
                       int> = 0>                                                                                     \
  constexpr Class(A xv, B yv, C zv) : Ops(zm::Coord3<T>(xv, yv, zv)) {}                                              \
  explicit Class(const double* v) : Ops(zm::Coord3FromArray<T>(v)) {}                                                \
  explicit Class(const float* v) : Ops(zm::Coord3FromArray<T>(v)) {}                                                 \
  template <class U>                                                                                                 \
  constexpr Class(const WbCoord3DT<U>& c) : Ops(zm::Coord3<T>(c.x, c.y, c.z)) {}                                     \
  template <class U>                                                                                                 \
  constexpr Class(const WbCoord2DT<U>& c) : Ops(zm::Coord3<T>(c.x, c.y, U(0))) {}                                    \
  template <class S, zm::EnableIfScalar<S> = 0>                                                                      \
  Class& operator=(S s) {                                                                                            \
    return *this = Class(s);                                                                                         \
  }                                                                                                                  \
  template <class U>                                                                                                 \
  Class& operator=(const WbCoord3DT<U>& c) {                                                                         \
    return *this = Class(c);                                                                                         \
  }                                                                                                                  \
  template <class U>                                                                                                 \
  Class& operator=(const WbCoord2DT<U>& c) {                                                                         \
    return *this = Class(c);                                                                                         \
  }                                                                                                                  \
  Class& operator=(const double* v) { return *this = Class(v); }                                                     \
  Class& operator=(const float* v) { return *this = Class(v); }

template <class T>
class ZMCALC_API ZmVector3T : public ZmVectorOps<ZmVector3T<T>, WbCoord3DT<T>> {
  using Ops = ZmVectorOps<ZmVector3T<T>, WbCoord3DT<T>>;

 public:
  ZM_COORD3_CONSTRUCTORS(ZmVector3T)

  static const ZmVector3T UNIT_X, UNIT_Y, UNIT_Z;
  static const ZmVector3T NEGATIVE_UNIT_X, NEGATIVE_UNIT_Y, NEGATIVE_UNIT_Z;

  // this x o
  ZmVector3T cross(const ZmVector3T& o) const {
    return ZmVector3T(this->y * o.z - this->z * o.y, this->z * o.x - this->x * o.z, this->x * o.y - this->y * o.x);
  }
  void cross(const ZmVector3T& o, ZmVector3T& out) const { out = cross(o); }
  void scaleZ(T f) { this->z *= f; }

  // Index of the largest absolute component; -1 when all three are equal; ties between two
  // components resolve towards the later axis.
  int GetMainDirection() const;
  // Index 0, 1 or 2 of the axis whose direction lies within tolDeg degrees (strictly) of this
  // vector, or -1. With signedOnly the axis must point the same way; otherwise the negative
  // axis counts too. An invalid or zero vector gives -1.
  int GetAlignedAxis(unsigned char signedOnly, T tolDeg) const;
  // Angle in degrees between this and target (0 to 180); axis receives the unit axis that turns
  // this onto target (this x target, or any unit perpendicular of this when the two are
  // parallel or opposite). An invalid or zero vector gives the invalid marker and the invalid axis.
  T GetRotationTo(const ZmVector3T& target, ZmVector3T& axis) const;
  // Rotates about an axis through the origin by angleDeg degrees (right-hand rule); 0 and
  // unchanged when this vector is invalid or the axis cannot be normalised.
  unsigned char Rotate(const ZmVector3T& axis, T angleDeg);

  // Direction grid: the unit sphere cut into cells of `step` degrees in latitude and longitude.
  // A step that gives no cell (step <= 0, NaN, or above 180) yields a count of 0, an invalid
  // normal and an index of -1 instead of dividing by zero.
  static int GetIndexedNormalsCount(T step);
  static ZmVector3T GetIndexedNormal(T step, int index);
  // The cell that holds this direction; -1 for an invalid or zero vector, a vector with an
  // infinite or NaN component, one whose length overflows the class's precision (beyond about
  // 1e154 in double, 1.8e19 in float), or an unusable step.
  int GetNormalIndex(T step) const;
  // The eight neighbours of a cell, wrapping in both directions; returns 0 (out untouched)
  // when the step is unusable or the index is outside the grid, else 1.
  static unsigned char GetNormalNeighbourIndexes(T step, int index, int out[8]);

  // -1/0/1 comparators for sorting; the second operand may be of either precision.
  template <class U>
  static int CompareX(const ZmVector3T& a, const ZmVector3T<U>& b) {
    return wbcore_detail::CompareScalars(a.x, b.x);
  }
  template <class U>
  static int CompareY(const ZmVector3T& a, const ZmVector3T<U>& b) {
    return wbcore_detail::CompareScalars(a.y, b.y);
  }
  template <class U>
  static int CompareZ(const ZmVector3T& a, const ZmVector3T<U>& b) {
    return wbcore_detail::CompareScalars(a.z, b.z);
  }
  // Lexicographic on x, then y, then z.
  template <class U>
  static int CompareVectors(const ZmVector3T& a, const ZmVector3T<U>& b) {
    const int cx = CompareX(a, b);
    if (cx != 0) return cx;
    const int cy = CompareY(a, b);
    return cy != 0 ? cy : CompareZ(a, b);
  }
};

template <class T>
class ZMCALC_API ZmPoint3T : public ZmCoordOps<ZmPoint3T<T>, WbCoord3DT<T>> {
  using Ops = ZmCoordOps<ZmPoint3T<T>, WbCoord3DT<T>>;

 public:
  ZM_COORD3_CONSTRUCTORS(ZmPoint3T)

  // The three components, where an array of three is expected.
  operator T*() { return &this->x; }
  operator const T*() const { return &this->x; }

  T DistanceToPoint(const ZmPoint3T& p) const { return (*this - p).length(); }
  // The distance to p; `nearest` (when given) receives the point of p nearest to this one,
  // which for a single point is p itself.
  T DistanceToPointEx(const ZmPoint3T& p, ZmPoint3T* nearest) const;
  // Perpendicular distance to the infinite line through linePoint with direction dir
  // (ZmMath DistToLine).
  T DistanceToLine(const ZmPoint3T& linePoint, const ZmVector3T<T>& dir) const;
  // Distance to the plane (ZmMath DistToPlane).
  T DistanceToPlane(const ZmPlaneT<T>& plane) const;
  // 1 when the distance is strictly greater than 1.0e-5 (the float value, widened).
  unsigned char IsDistinctFrom(const ZmPoint3T& p) const;
  // 1 when each coordinate lies in its closed interval.
  unsigned char IsInside(T xmin, T xmax, T ymin, T ymax, T zmin, T zmax) const;
  // (r, theta, z), theta in degrees in (-180, 180]; a point on the negative x axis with
  // y = +0 gives -180.
  ZmPoint3T GetCylindricalCoordinates() const;
  // (rho, theta, phi): phi is the elevation above the xy plane in degrees.
  ZmPoint3T GetSphericalCoordinates() const;
  // Rotates about the axis through center by angleDeg degrees; 0 and unchanged when the axis
  // cannot be normalised or a coordinate is invalid.
  unsigned char Rotate(const ZmPoint3T& center, const ZmVector3T<T>& axis, T angleDeg);
  // Places this point, read in the frame's Cartesian axes, in the frame's parent: the frame's
  // 3x3 matrix times the point, plus the frame's origin. 0 and unchanged when the point or
  // the frame holds the invalid marker or a NaN.
  unsigned char Rotate(const ZmFrameT<T>& frame);
  // x and y of the point in the plane's frame (ZmPlane GetFrame, then GlobalToLocal), rounded
  // to float in both twins; the invalid 2D point for an unusable point or plane.
  ZmPoint2T<float> GetPlane2DCoords(const ZmPlaneT<T>& plane) const;

  static T GetX(const ZmPoint3T& p) { return p.x; }
  static T GetY(const ZmPoint3T& p) { return p.y; }
  static T GetZ(const ZmPoint3T& p) { return p.z; }
  // Lexicographic on x, then y, then z.
  static int ComparePoints(const ZmPoint3T& a, const ZmPoint3T& b);

  // Collinearity within tol: 1 when p0 and p1 are closer than tol (the distance rounded to
  // float), or when p2 lies within tol of the line through p0 and p1.
  static unsigned char AreAligned(const ZmPoint3T& p0, const ZmPoint3T& p1, const ZmPoint3T& p2, T tol);
  // Centre of the axis-aligned bounding box (not the mean); an empty array gives the invalid point.
  static ZmPoint3T ComputeCenter(const WbArrayTempl<ZmPoint3T>& points);
  static ZmPoint3T ComputeCenter(const ZmPoint3T& a, const ZmPoint3T& b);
  // Sum of the segment lengths, each rounded to float before it is added; an empty array
  // gives the invalid marker, a single point 0.
  static T ComputePolylineLength(const WbArrayTempl<ZmPoint3T>& points);
  // The point at arc length `length` from the first point, each segment length rounded to
  // float as in ComputePolylineLength. A length below 0 or beyond the end gives the first or
  // last point when clampToEnds is set and the invalid point otherwise; an empty array always
  // gives the invalid point.
  static ZmPoint3T GetPolylinePointAtLength(const WbArrayTempl<ZmPoint3T>& points, T length, unsigned char clampToEnds);
  // The principal axes of a point cloud, with the cloud's extents measured in them. Points
  // holding the invalid marker or a NaN are left out. The origin is the mean of the points
  // (ZmMath ComputeCenter); X, Y and Z are the eigenvectors of their covariance matrix sorted by
  // decreasing variance (X along the largest spread, Z along the smallest, the normal of a
  // flat cloud) and Z = X x Y. An eigenvector has no sign of its own: each axis taken from one
  // points so that its component of largest magnitude (the first of equal ones) is positive.
  // Variances closer than 1e-5f (the float value, widened) times the largest leave their axes
  // undetermined; they are then fixed as:
  //   - the two smaller equal (a straight cloud): X from its eigenvector, Y and Z its
  //     orthogonal completion (ZmMath OrthogonalVectors);
  //   - the two larger equal (a round flat cloud): Z from its eigenvector, X and Y its
  //     orthogonal completion;
  //   - all three equal (one point, coincident points, an isotropic cloud): the global axes.
  // The frame is Cartesian. extents (when given) receives the box of the points' local
  // coordinates, centred near 0 in each axis. Returns 1, or 0 with frame and extents untouched
  // when no point is left or a coordinate is infinite (or the sums overflow).
  static unsigned char ComputePointsCloudLocalFrame(const WbArrayTempl<ZmPoint3T>& points, ZmFrameT<T>& frame,
                                                    ZmExtents3T<T>* extents);

  // 3-2-1 (isostatic) relocation of a measured part onto its locators. nominal[k] is the
  // reference location of point k and positions[k] its current (measured or simulated) one;
  // the whole current set is moved rigidly so that three reference points land on their
  // nominal locations, then each point is blended with its nominal location axis by axis:
  // positions[k] = nominal[k] + (D.x w.x, D.y w.y, D.z w.z) with D the moved point minus
  // nominal[k] and w the weights (1 keeps the relocated coordinate, 0 snaps to the nominal).
  //
  // The reference points (nominal P1..P3, current Q1..Q3) are, with fewer than two planes:
  // the points of i1, i2 and i3; i2 = -1 stands for the point of i1 moved by (1, 0, 0), and
  // i3 = -1 for it moved by (0, 1, 0), in both sets, so one locator gives a translation and two
  // a translation and a rotation about the missing direction.
  // With two or more planes (the first two are used: a primary and a secondary locating plane,
  // given where the nominal part lies) and all three locators, the planes are first carried to
  // the current part by the rigid move of its three locators (the frames below, built on the
  // points of i1, i2, i3), and the reference points become, in each position, the point of i3,
  // its foot on the line where the two planes meet, and its projection onto the primary plane;
  // a derived point that coincides with the point of i3 (already on the line, or on the plane)
  // is moved off it by the secondary, respectively primary, plane's unit normal. A part that
  // was only moved rigidly therefore comes back exactly onto its nominal position, while for a
  // deformed part the point of i3 lands on its nominal location and the orientation follows
  // the locating planes. Parallel planes (no line) or an absent i2 or i3 fall back to the
  // three-point rule.
  //
  // The move carries Q1, Q2, Q3 onto P1, P2, P3: with A and B the Cartesian frames of
  // (P1, P2, P3) and (Q1, Q2, Q3) (origin the first point, X towards the second, Y in the
  // plane towards the third), each point becomes A.LocalToGlobal(B.GlobalToLocal(point)).
  //
  // Errors (positions then unchanged): "Two reference points are too close from each other to
  // compute the isostatic locking" when two current reference points coincide exactly (or, with
  // planes, two nominal locators); a reference index outside the point lists (i2 and i3 may be
  // -1); lists of different sizes.
  static const WbErrObj* ComputeIsoStaticLocking(const WbArrayTempl<ZmPoint3T>& nominal, int i1, int i2, int i3,
                                                 const WbArrayTempl<ZmPlaneT<T>>& planes, const ZmVector3T<T>& weights,
                                                 WbArrayTempl<ZmPoint3T>& positions);
};

#undef ZM_COORD3_CONSTRUCTORS

// Absolute value of each component.
template <class T>
ZmVector3T<T> abs(const ZmVector3T<T>& v) {
  return ZmVector3T<T>(v.x < 0 ? -v.x : v.x, v.y < 0 ? -v.y : v.y, v.z < 0 ? -v.z : v.z);
}

extern template class ZmVectorOps<ZmVector3T<double>, WbCoord3DT<double>>;
extern template class ZmVectorOps<ZmVector3T<float>, WbCoord3DT<float>>;
extern template class ZmVector3T<double>;
extern template class ZmVector3T<float>;
extern template class ZmPoint3T<double>;
extern template class ZmPoint3T<float>;

using ZmVector3d = ZmVector3T<double>;
using ZmVector3f = ZmVector3T<float>;
using ZmPoint3d = ZmPoint3T<double>;
using ZmPoint3f = ZmPoint3T<float>;

extern ZMCALC_API const ZmPoint3d ZmNonValP3d;
extern ZMCALC_API const ZmPoint3f ZmNonValP3f;
extern ZMCALC_API const ZmVector3d ZmNonValV3d;
extern ZMCALC_API const ZmVector3f ZmNonValV3f;
extern ZMCALC_API const ZmVector3d ZmV3dX;
extern ZMCALC_API const ZmVector3d ZmV3dY;
extern ZMCALC_API const ZmVector3d ZmV3dZ;
extern ZMCALC_API const ZmVector3f ZmV3fX;
extern ZMCALC_API const ZmVector3f ZmV3fY;
extern ZMCALC_API const ZmVector3f ZmV3fZ;
