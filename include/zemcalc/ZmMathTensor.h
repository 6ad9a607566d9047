#pragma once

// Tensor analysis of ZmMathd / ZmMathf: principal values and directions of symmetric
// second-order tensors (stress and strain results of shell and solid elements), the strain
// "mode" angle of forming-limit diagrams, strain-measure conversions and the value of a tensor
// in a direction.
//
// A 3D symmetric tensor is given by six scalars in the order xx, yy, zz, xy, yz, xz: the
// matrix with rows (xx, xy, xz), (xy, yy, yz), (xz, yz, zz). A 2D (in-plane) tensor is
// xx, yy, xy, expressed in the local x-y plane of a frame. Principal values come out in
// decreasing algebraic order (s1 >= s2 >= s3). Mode angles are in degrees, converted with the
// double 180/pi = 57.29577951308232.
//
// The thresholds are float values, widened in ZmMathd: 1e-20f, 1e-5f, 1e-12f, 1e-6f, and the
// float value of pi/3 (1.0471975803375244) in the closed-form cubic. ZmMathf runs the same
// steps in float with the same float constants; its 1e-100 guard is that value in float, 0.
// Its square roots, cosines and arc cosines are taken in float.
//
// Nothing here allocates or reports errors: degenerate tensors go through the stated fallbacks
// (a sign choice for a vanishing discriminant, clamped cosines, fixed directions for multiple
// eigenvalues, zero logarithmic strain below -0.5). NaN components give NaN values (and
// whatever directions the fallbacks leave, always finite or NaN, never a crash). Output
// pointers may be null: that output is then not written.
#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmPoint3.h"

template <class T>
class ZMCALC_API_FORWARD ZmFrameT;

template <class T>
class ZMCALC_API ZmMathTensorT {
 public:
  using Vector3 = ZmVector3T<T>;
  using Frame = ZmFrameT<T>;

  // Principal values of a 3D tensor by the closed-form trigonometric solution of the
  // characteristic cubic (no iteration). With I1 = xx + yy + zz and
  // N = xy^2 + yz^2 + xz^2 - (yy + zz) xx - yy zz: p = I1^2/3 + N, P = p^3/27,
  // q = (yz xz - zz xy) xy + (yy zz - yz^2) xx + (xy yz - yy xz) xz + N I1/3 + 2 I1^3/27;
  // c = sign(q) when P <= 1e-100, else q/2/sqrt(P) clamped to [-1, 1]; theta = acos(c);
  // m = 2 sqrt(p/3) (0 unless p > 0); a = m cos(theta/3) + I1/3,
  // b = I1/3 - m cos(pi/3 - theta/3) with the float pi/3, and the third root from the trace,
  // I1 - a - b. The three are ordered with ties resolved towards a, then b.
  static void Tensor3DToMainValues(T xx, T yy, T zz, T xy, T yz, T xz, T* s1, T* s2, T* s3);
  // Principal values and unit directions, d1 for s1, d3 for s3 and d2 = d1 x d3, so that
  // (d1, d3, d2) is right-handed: the triple in value order (d1, d2, d3) has determinant -1.
  // A direction is the largest of the cross products of two rows of T - lambda I (the first one
  // on ties, compared by their largest absolute component). When all are below 1e-20f the
  // eigenvalue is multiple: d1 is r x (1, 0, 0) for the first row r with a component above
  // 1e-5f, or r x (0, 1, 0) when that product is below 1e-5f in every component, and (1, 0, 0)
  // when no row qualifies; d3 is (1, 0, 0) x d1, or (0, 1, 0) x d1 when that is below 1e-5f.
  // Each is normalised with unitize(1e-20f), which leaves a vector that is too short as it is.
  static void Tensor3DToVectors3D(T xx, T yy, T zz, T xy, T yz, T xz, T* s1, T* s2, T* s3, Vector3* d1, Vector3* d2,
                                  Vector3* d3);
  // Principal values of a 2D tensor: R = sqrt(4 xy xy + (xx - yy)^2), s1 = (xx + yy + R) 0.5,
  // s2 = (xx + yy - R) 0.5.
  static void Tensor2DToMainValues(T xx, T yy, T xy, T* s1, T* s2);
  // Principal values and their directions in global coordinates. For each value lambda, with
  // p = lambda - yy and q = lambda - xx, the local direction is (p, xy, 0) when |p| > |q|, else
  // (xy, q, 0); one whose squared length is below 1e-12f becomes (1, 0, 0), the others are
  // normalised with unitize(1e-6f). The local direction is carried to global coordinates by
  // frame.LocalToGlobal (as a vector).
  static void Tensor2DToVectors3D(T xx, T yy, T xy, const Frame& frame, T* s1, T* s2, Vector3* d1, Vector3* d2);
  // The same, except that a local direction whose squared length is below 1e-12f is scaled by
  // 1e7 instead of being replaced, so that the direction of a very small but non-zero vector is
  // kept; every direction is then normalised with unitize(1e-6f) (an exactly zero one stays 0).
  static void Tensor2DToVectors3DForm(T xx, T yy, T xy, const Frame& frame, T* s1, T* s2, Vector3* d1, Vector3* d2);
  // Strain mode of a plane state given as a 3D tensor. With s1 >= s2 >= s3, the major value is
  // s2 when |s2| > |s1|, else s1; the minor one is s2 when |s2| <= |s1| and |s2| > |s3|, else
  // s3. Then as StrainTensor2DToMode with (major, minor); NaN for a NaN component.
  static T PlaneTensor3DToMode(T xx, T yy, T zz, T xy, T yz, T xz);
  // The two in-plane principal values and directions of a plane state given as a 3D tensor:
  // (s1, d1) and (s3, d3) of Tensor3DToVectors3D, except that s2 with its direction replaces
  // the first of them (m1, then m2) whose magnitude is smaller. The value of smallest
  // magnitude is dropped; m1 >= m2 is not re-established.
  static void PlaneTensor3DToVectors3D(T xx, T yy, T zz, T xy, T yz, T xz, T& m1, T& m2, Vector3& d1, Vector3& d2);
  // Mode angle of a 2D strain tensor, in degrees, returned and written to *mode (when given).
  // With e1 >= e2 its principal values: atan(e2/e1) when e1 > 0 (45 equibiaxial, 0 plane
  // strain, -45 pure shear); atan(e2/e1) - 180 when e1 <= 0 and e2 < 0; -90 otherwise
  // (the zero tensor among them). A NaN component gives NaN.
  static T StrainTensor2DToMode(T xx, T yy, T xy, T* mode);
  // Green-Lagrange to logarithmic strain, in place on t = (xx, yy, xy): each principal value e
  // becomes 0.5 ln(2e + 1) (0 when e < -0.5) and the tensor is rebuilt on the same principal
  // axes. With xy exactly 0, xx and yy are converted one by one.
  static void PureStrainTensor2TrueStrainTensor(Vector3& t);
  // -ln(1 - e): the inverse of TrueStrain2EngineerStrain with compressive set.
  static T EngineerStrain2TrueStrain(T e);
  // exp(e) - 1 when compressive is 0, else 1 - exp(-e).
  static T TrueStrain2EngineerStrain(T e, unsigned char compressive);
  // xx u^2 + 2 xy u v + yy v^2 with (u, v, w) = frame.GlobalToLocal(dir) as a vector (dir is
  // not normalised, w is ignored); 0 when u and v are both exactly 0.
  static T ComputeDirectionalTensorValue(T xx, T yy, T xy, const Vector3& dir, const Frame& frame);
  // dir . (M dir) with M the matrix of the 3D tensor (dir is not normalised).
  static T ComputeDirectionalTensorValue(T xx, T yy, T zz, T xy, T yz, T xz, const Vector3& dir);
};

extern template class ZmMathTensorT<double>;
extern template class ZmMathTensorT<float>;
