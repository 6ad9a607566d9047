#pragma once

// ZmMathd / ZmMathf: the static algorithms of the library. Each topic is a class template of
// its own (comparison, distances, ...), instantiated once for double and once for float in
// the source file of that topic; ZmMathT gathers them, so that every static is reached as
// ZmMathd::Name or ZmMathf::Name.
#include "zemcalc/ZmConstants.h"
#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmPoint2.h"
#include "zemcalc/ZmPoint3.h"

template <class T>
class ZmPlaneT;

// Comparison with an explicit tolerance. Both tests are inclusive and ignore the sign of the
// tolerance; the difference is formed in the class's precision; a NaN gives 0.
template <class T>
class ZMCALC_API ZmMathCompareT {
public:
  // 1 when |tol| >= |a - b|.
  static unsigned char IsEqual(T a, T b, T tol) { return Magnitude(tol) >= Magnitude(T(a - b)) ? 1 : 0; }
  // 1 when |tol| >= ||a| - |b||: equal up to sign.
  static unsigned char IsEqualAbs(T a, T b, T tol) {
    return Magnitude(tol) >= Magnitude(T(Magnitude(a) - Magnitude(b))) ? 1 : 0;
  }

private:
  static T Magnitude(T v) { return v < 0 ? -v : v; }
};

// Distances. Lengths in 3D are rounded to single precision (also in the double twin) before
// they are returned: both precisions report the same distances. The 2D distance keeps the
// full precision of the class.
template <class T>
class ZMCALC_API ZmMathDistanceT {
public:
  using Point3 = ZmPoint3T<T>;
  using Vector3 = ZmVector3T<T>;

  // |p - q| rounded to float.
  static T Distance(const Point3& p, const Point3& q);
  // |p - q| in the class's precision.
  static T Distance(const ZmPoint2T<T>& p, const ZmPoint2T<T>& q);
  // Distance from p to the infinite line through linePoint with direction dir, rounded to
  // float. A direction with dir.dir <= 1e-14 (the float value) is degenerate: the line is then
  // taken as the point linePoint.
  static T DistToLine(const Point3& p, const Vector3& dir, const Point3& linePoint);
  // Distance from p to the plane (never negative), rounded to float.
  static T DistToPlane(const Point3& p, const ZmPlaneT<T>& plane);
  // Orthogonal projection of p onto the plane through planePoint with the given unit normal
  // (used as passed, not normalised): p - ((p - planePoint).normal) normal. An invalid p is
  // returned as it is.
  static Point3 ProjOnPlane(const Point3& p, const Vector3& normal, const Point3& planePoint);
  static Point3 ProjOnPlane(const Point3& p, const ZmPlaneT<T>& plane);
};

extern template class ZmMathDistanceT<double>;
extern template class ZmMathDistanceT<float>;

template <class T>
class ZMCALC_API ZmMathT : public ZmMathCompareT<T>, public ZmMathDistanceT<T> {};

using ZmMathd = ZmMathT<double>;
using ZmMathf = ZmMathT<float>;
