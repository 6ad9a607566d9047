#pragma once

// Small solvers of ZmMathd / ZmMathf: 2x2 and 3x3 linear systems by Cramer's rule, the 3x3
// determinant and product, real roots of polynomials of degree 2, 3 and 4, and least-squares
// straight lines. Nothing here allocates (MultMatrix works on matrix objects on the stack).
//
// Matrices are row-major: m[i][j] is row i, column j, and equation i reads
// m[i][0]*x0 + m[i][1]*x1 (+ m[i][2]*x2) = b[i]. Polynomials are given highest power first:
// c[0]*x^2 + c[1]*x + c[2], c[0]*x^3 + ... + c[3], c[0]*x^4 + ... + c[4]. Root slots that
// could not be found hold the invalid marker -1.0e32 (the float value, widened in ZmMathd).
//
// The thresholds are float values in both precisions (1e-6f, 1e-12f), widened in ZmMathd, so
// both twins refuse the same systems. The polynomial powers are taken with the double pow in
// both twins; in ZmMathf the power is rounded back to float and the rest stays in float.
//
// Pointers must reach arrays of the sizes stated for each member; lastStep may be null when
// the caller does not want the last Newton step.
#include <wbcore/WbArray.h>
#include <wbcore/WbError.h>

#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmPoint2.h"

template <class T>
class ZMCALC_API ZmMathSolveT {
 public:
  // Solves the 2x2 system in place: b receives (x0, x1). With d = m01*m10 - m11*m00 (the
  // negated determinant), the system is refused (0, b untouched) when |d| < 1e-12f, whatever
  // loose says: loose only selects whether the 1e-6f pre-test is skipped, which cannot change
  // the outcome. A NaN determinant is refused too.
  static unsigned char SolveSystem2x2(T (*m)[2], T* b, unsigned char loose);
  // Solves the 3x3 system in place by Cramer's rule, b[k] = D_k * (1/det). The test is on the
  // signed determinant: det < 1e-6f (a negative determinant included) or a NaN determinant
  // returns 0 and leaves b untouched. Callers that need systems of any orientation reorder
  // their rows first.
  static unsigned char SolveSystem3x3(T (*m)[3], T* b);
  // Rule of Sarrus, summed in the order m00*m11*m22 + m01*m12*m20 + m02*m10*m21
  // - m21*m00*m12 - m22*m01*m10 - m02*m20*m11.
  static T Determinant3x3(T (*m)[3]);
  // c = a x b through two temporary 3x3 matrices (ZmMatrix3T) and their product operator:
  // each coefficient the row-by-column sum in increasing index. a and b are read in full
  // before c is written, so c may be a or b.
  static void MultMatrix(T (*a)[3], T (*b)[3], T (*c)[3]);

  // Both real roots of c0*x^2 + c1*x + c2 into roots[0..1]: (sqrt(delta) - c1)/(2*c0), then
  // (-c1 - sqrt(delta))/(2*c0). A linear polynomial (c0 exactly 0) gives its one root twice.
  // Errors, with roots untouched: "Error while resolving 2-dim polynom : null coefficients"
  // when c0 and c1 are exactly 0; "... : negative delta" when delta < 0 or delta is NaN.
  static const WbErrObj* SolvePolynom2(const T* c, T* roots);
  // One root of the cubic by Newton's method from x0 into roots[0] (at most 1000 steps; it has
  // converged when eps >= |step|, and roots[0] then keeps the x at which that last step was
  // computed, the step itself going to lastStep[0]). roots[1..2] receive the roots of the
  // quadratic c0*x^2 + c1*x + c2 made of the cubic's first three coefficients (not of the
  // deflated cubic): this shortcut is part of the contract.
  // Errors: "Error while resolving 3-dim polynom : null derivate denominator" when the
  // derivative is exactly 0; "Error while resolving 4-dim polynom : first solution not found"
  // after 1000 steps unless tolerant (the text names the quartic: kept as callers know it);
  // the errors of SolvePolynom2. With tolerant set, non-convergence goes on with the last x
  // (lastStep unwritten) and a failing quadratic fills roots[1..2] with the marker and returns
  // null. NaN coefficients never converge and end as non-convergence.
  static const WbErrObj* SolvePolynom3(const T* c, T x0, T eps, T* roots, T* lastStep, unsigned char tolerant);
  // One root of the quartic by Newton's method from x0 into roots[0] (roots[1..3] are set to
  // the marker first), then the cubic deflated by that root is solved by SolvePolynom3 from
  // the caller's x0 (not from the root found) into roots[1..3], its last step into lastStep[1].
  // Errors: "Error while resolving 4-dim polynom : null derivate denominator",
  // "Error while resolving 4-dim polynom : first solution not found" (unless tolerant), and
  // those of SolvePolynom3. With tolerant set, a failing cubic fills roots[1..3] with the
  // marker and returns null.
  static const WbErrObj* SolvePolynom4(const T* c, T x0, T eps, T* roots, T* lastStep, unsigned char tolerant);

  // Least-squares line y = slope*x + intercept through (x[i], y[i]), i < x.GetSize(). Fewer
  // than 2 values succeed (1) without writing anything, which callers rely on. 0 when every x
  // equals x[0] exactly (a NaN counts as different) and, so that a short y is never read past
  // its end, when y holds fewer values than x.
  static unsigned char LinearRegression(const WbArrayTempl<T>& x, const WbArrayTempl<T>& y, T& slope, T& intercept);
  // Least-squares line through points; 0 for fewer than 2 points or when every x equals the
  // first. quality = (Sxx*Sy - Sxy*Sx) / sqrt((n*Syy - Sy^2) * (n*Sxx - Sx^2)): this is not
  // Pearson's r (its numerator is D*intercept) but the figure callers have always compared
  // against; a negative product under the root gives NaN, stored as it comes.
  static unsigned char LinearRegression(const WbArrayTempl<ZmPoint2T<T>>& pts, T& slope, T& intercept, T& quality);
};

extern template class ZmMathSolveT<double>;
extern template class ZmMathSolveT<float>;
