#pragma once

// Least-squares fits of ZmMathd / ZmMathf: lines, planes, circles, spheres, cylinders,
// ellipses and the rigid move of one matched point set onto another.
//
// Input. Points holding the invalid marker or a NaN are skipped (they belong to no fit); an
// infinite coordinate (or sums that overflow) gives ZmFitBadInput. Every sum is formed in
// double in both twins, about the mean of the points (so that coordinates far from the origin
// do not cancel the spread), and the results are rounded to the twin's precision at the end.
//
// Every fit returns its quality: the number of points used, the root mean square and the
// largest of the residuals (the orthogonal distances of the points to the fitted shape), and a
// status. A fit that is not ZmFitOk says why:
//   ZmFitTooFewPoints  fewer usable points than the shape needs (line 2, plane and circle 3,
//                      sphere 4, cylinder and ellipse 5, rigid move 1);
//   ZmFitDegenerate    the points do not determine the shape (coincident points for a line,
//                      collinear ones for a plane or a circle, coplanar ones for a sphere); the
//                      fields hold the stated fallback of each fit;
//   ZmFitBadInput      an infinite coordinate or weight, or matched lists of different sizes;
//   ZmFitNoConvergence the geometric iteration stopped at its limit (its best estimate is kept).
// Shape fields that a failed fit cannot give hold the invalid marker -1.0e32f (widened); the
// quality figures of a fit without a shape are the marker too. No fit returns a NaN.
#include <cstdint>

#include <wbcore/WbArray.h>

#include "zemcalc/ZmConstants.h"
#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmMatrix.h"
#include "zemcalc/ZmPoint2.h"
#include "zemcalc/ZmPoint3.h"

enum ZmFitStatus : int {
  ZmFitOk = 0,
  ZmFitTooFewPoints = 1,
  ZmFitDegenerate = 2,
  ZmFitBadInput = 3,
  ZmFitNoConvergence = 4
};

// The algebraic circle fits, all on the points' centred moments, and the geometric one:
//   Kasa      minimises sum (|p - c|^2 - r^2)^2: fast, biased towards small radii on short arcs;
//   Pratt     the algebraic distance normalised by the gradient at the circle (constraint
//             B^2 + C^2 - 4 A D = 1 on A z + B x + C y + D = 0, z = x^2 + y^2);
//   Taubin    normalised by the mean squared gradient over the points;
//   Hyper     Al-Sharadqah and Chernov's constraint that removes the essential bias;
//   Geometric Levenberg-Marquardt on (centre, radius) minimising sum (|p - c| - r)^2, seeded
//             by Taubin; it converges when a step no longer lowers the sum.
// Pratt, Taubin and Hyper take the smallest non-negative root of their characteristic
// polynomial by Newton's method from 0, which approaches it monotonically.
enum ZmCircleFitMethod : int {
  ZmCircleFitKasa = 0,
  ZmCircleFitPratt = 1,
  ZmCircleFitTaubin = 2,
  ZmCircleFitHyper = 3,
  ZmCircleFitGeometric = 4
};

template <class T>
struct ZmFitQualityT {
  ZmFitStatus status = ZmFitTooFewPoints;
  std::int64_t count = 0;  // the usable points (pairs for the rigid move)
  T rms = zm::Invalid<T>();
  T maxResidual = zm::Invalid<T>();
};

// A line through point (the centroid) along the unit direction of largest spread. fitQuality
// is 1 - l1 / l2 with l1 <= l2 the two largest eigenvalues of the covariance (1 for points on
// a line, 0 when no direction stands out), the figure CGAL's linear_least_squares_fitting_3
// reports. Coincident points (as for the plane below): ZmFitDegenerate, direction the X axis,
// fitQuality 0. The 2D fit is the same fit with z = 0.
template <class T>
struct ZmLineFitT {
  ZmPoint3T<T> point = ZmPoint3T<T>(WbCoord3DT<T>::INVALID);
  ZmVector3T<T> direction = ZmVector3T<T>(WbCoord3DT<T>::INVALID);
  T fitQuality = zm::Invalid<T>();
  ZmFitQualityT<T> quality;
};
template <class T>
struct ZmLine2FitT {
  ZmPoint2T<T> point = ZmPoint2T<T>(WbCoord2DT<T>::INVALID);
  ZmVector2T<T> direction = ZmVector2T<T>(WbCoord2DT<T>::INVALID);
  T fitQuality = zm::Invalid<T>();
  ZmFitQualityT<T> quality;
};

// A plane through point (the centroid) with the unit normal of least spread. fitQuality is
// 1 - l0 / l1 with l0 <= l1 the two smallest covariance eigenvalues. Points are collinear when
// l1 <= (16 eps)^2 l2 (eps the twin's machine epsilon: the spread off the line is within a few
// rounding units of the extent) and coincident when l2 <= n (16 eps m)^2, m the largest
// coordinate of the centroid. Collinear points: ZmFitDegenerate, the normal is the line's
// direction crossed with the global axis least aligned with it, normalised, fitQuality 0;
// coincident points: the normal is the Z axis.
template <class T>
struct ZmPlaneFitT {
  ZmPoint3T<T> point = ZmPoint3T<T>(WbCoord3DT<T>::INVALID);
  ZmVector3T<T> normal = ZmVector3T<T>(WbCoord3DT<T>::INVALID);
  T fitQuality = zm::Invalid<T>();
  ZmFitQualityT<T> quality;
};

template <class T>
struct ZmCircle2FitT {
  ZmPoint2T<T> center = ZmPoint2T<T>(WbCoord2DT<T>::INVALID);
  T radius = zm::Invalid<T>();
  ZmFitQualityT<T> quality;
};

// A circle in space: the plane fitted first (normal as in ZmPlaneFitT, the circle's axis),
// then the circle fitted to the points projected onto it. The residual of a point is its
// distance to the circle, sqrt(h^2 + (rho - r)^2) with h its height over the plane and rho
// its distance to the centre within it.
template <class T>
struct ZmCircle3FitT {
  ZmPoint3T<T> center = ZmPoint3T<T>(WbCoord3DT<T>::INVALID);
  ZmVector3T<T> normal = ZmVector3T<T>(WbCoord3DT<T>::INVALID);
  T radius = zm::Invalid<T>();
  ZmFitQualityT<T> quality;
};

template <class T>
struct ZmSphereFitT {
  ZmPoint3T<T> center = ZmPoint3T<T>(WbCoord3DT<T>::INVALID);
  T radius = zm::Invalid<T>();
  ZmFitQualityT<T> quality;
};

// A cylinder: the axis through point (the foot of the points' centroid on the axis) along the
// unit direction, and the radius. Residual: distance to the axis minus the radius.
template <class T>
struct ZmCylinderFitT {
  ZmPoint3T<T> point = ZmPoint3T<T>(WbCoord3DT<T>::INVALID);
  ZmVector3T<T> direction = ZmVector3T<T>(WbCoord3DT<T>::INVALID);
  T radius = zm::Invalid<T>();
  ZmFitQualityT<T> quality;
};

// An ellipse in the plane: centre, unit major axis, semi-axes a >= b. Residual: the distance
// to the ellipse (computed as the root of its one-dimensional equation by bisection).
template <class T>
struct ZmEllipse2FitT {
  ZmPoint2T<T> center = ZmPoint2T<T>(WbCoord2DT<T>::INVALID);
  ZmVector2T<T> majorAxis = ZmVector2T<T>(WbCoord2DT<T>::INVALID);
  T a = zm::Invalid<T>();
  T b = zm::Invalid<T>();
  ZmFitQualityT<T> quality;
};

// The rigid move q = rotation * p + translation. rotation is a proper rotation (determinant
// +1), never a reflection, even for a mirrored set.
template <class T>
struct ZmRigidFitT {
  ZmMatrix3T<T> rotation;
  ZmVector3T<T> translation = ZmVector3T<T>(0, 0, 0);
  ZmFitQualityT<T> quality;
};

template <class T>
class ZMCALC_API ZmMathFitT {
public:
  using Point2 = ZmPoint2T<T>;
  using Point3 = ZmPoint3T<T>;

  // Orthogonal regression: the centroid and the eigenvectors of the covariance about it.
  static ZmLineFitT<T> FitLine(const WbArrayTempl<Point3>& points);
  static ZmLine2FitT<T> FitLine(const WbArrayTempl<Point2>& points);
  static ZmPlaneFitT<T> FitPlane(const WbArrayTempl<Point3>& points);

  // Circles (see ZmCircleFitMethod). Collinear points (or a line the algebraic solution turns
  // into, a radius beyond 1e8 times the spread of the points): ZmFitDegenerate, no circle.
  static ZmCircle2FitT<T> FitCircle(const WbArrayTempl<Point2>& points,
                                    ZmCircleFitMethod method = ZmCircleFitGeometric);
  static ZmCircle3FitT<T> FitCircle(const WbArrayTempl<Point3>& points,
                                    ZmCircleFitMethod method = ZmCircleFitGeometric);
  // Sphere: the algebraic (Kasa) fit, sum (|p - c|^2 - r^2)^2 minimal, refined when geometric
  // is not 0 by Levenberg-Marquardt on sum (|p - c| - r)^2. Coplanar points: ZmFitDegenerate.
  static ZmSphereFitT<T> FitSphere(const WbArrayTempl<Point3>& points, unsigned char geometric = 1);
  // Cylinder by Levenberg-Marquardt on the axis and the radius, minimising
  // sum (distance to axis - r)^2. The seed is the best of three: each eigenvector of the
  // points' covariance taken as the axis, with the Taubin circle of the points projected across
  // it. The seed decides which local minimum is found: points that cover a fair part of the
  // mantle are needed. Points that do not determine an axis (fewer than 5, or lying on a
  // line): not ZmFitOk.
  static ZmCylinderFitT<T> FitCylinder(const WbArrayTempl<Point3>& points);

  // Fitzgibbon's direct ellipse fit in Halir and Flusser's numerically stable form, on the
  // points centred on their mean and scaled to a unit root mean square: the conic
  // A x^2 + B xy + C y^2 + D x + E y + F = 0 minimising the algebraic distance under
  // 4 A C - B^2 = 1, which is always an ellipse. Fewer than 5 points: ZmFitTooFewPoints; points
  // that leave no ellipse (collinear, or all on a line pair): ZmFitDegenerate.
  static ZmEllipse2FitT<T> FitEllipse(const WbArrayTempl<Point2>& points);

  // The rigid move that minimises sum w_k |R moving[k] + t - fixed[k]|^2 (Horn's unit
  // quaternion: the eigenvector of the largest eigenvalue of the 4x4 matrix built from the
  // weighted cross-covariance, so the result is always a proper rotation). weights may be null
  // (all 1); a pair with an unusable point or a weight that is not positive (or NaN) is left
  // out. The translation carries the weighted centroid of moving onto that of fixed. One pair
  // or pairs whose moving points are collinear leave the turn about that line undetermined:
  // ZmFitDegenerate, with the rotation of smallest angle among the optimal ones for one pair
  // (the identity) and one optimal rotation for a line. The quality's residuals are the
  // distances |R m + t - f| over the pairs used (unweighted).
  static ZmRigidFitT<T> FitRigid(const WbArrayTempl<Point3>& moving, const WbArrayTempl<Point3>& fixed,
                                 const WbArrayTempl<T>* weights = nullptr);
};

using ZmFitQualityd = ZmFitQualityT<double>;
using ZmFitQualityf = ZmFitQualityT<float>;
using ZmLineFitd = ZmLineFitT<double>;
using ZmLineFitf = ZmLineFitT<float>;
using ZmLine2Fitd = ZmLine2FitT<double>;
using ZmLine2Fitf = ZmLine2FitT<float>;
using ZmPlaneFitd = ZmPlaneFitT<double>;
using ZmPlaneFitf = ZmPlaneFitT<float>;
using ZmCircle2Fitd = ZmCircle2FitT<double>;
using ZmCircle2Fitf = ZmCircle2FitT<float>;
using ZmCircle3Fitd = ZmCircle3FitT<double>;
using ZmCircle3Fitf = ZmCircle3FitT<float>;
using ZmSphereFitd = ZmSphereFitT<double>;
using ZmSphereFitf = ZmSphereFitT<float>;
using ZmCylinderFitd = ZmCylinderFitT<double>;
using ZmCylinderFitf = ZmCylinderFitT<float>;
using ZmEllipse2Fitd = ZmEllipse2FitT<double>;
using ZmEllipse2Fitf = ZmEllipse2FitT<float>;
using ZmRigidFitd = ZmRigidFitT<double>;
using ZmRigidFitf = ZmRigidFitT<float>;

extern template class ZmMathFitT<double>;
extern template class ZmMathFitT<float>;
