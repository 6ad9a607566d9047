// The tensor members that work in the x-y plane of a frame: directions of 2D tensors carried
// to global coordinates, and the value of a 2D tensor in a global direction.
#include "foundation/build_info.h"
#include "math/tensor_kernels.h"
#include "zemcalc/ZmFrame.h"
#include "zemcalc/ZmMathTensor.h"

ZM_BUILD_INFO(tensors_plane)

namespace {

constexpr float kNegligibleSquare = 1.0e-12f;  // squared length of a local direction
constexpr float kSmallDirectionScale = 1.0e7f;

// How a local direction too short to trust is treated.
enum class ShortDirection { kUseXAxis, kScaleUp };

// The local direction of the principal value lambda: (p, xy, 0) with p = lambda - yy when
// |p| > |q|, else (xy, q, 0) with q = lambda - xx, normalised.
template <class T>
ZmVector3T<T> LocalDirection(T xx, T yy, T xy, T lambda, ShortDirection rule) {
  const T p = lambda - yy, q = lambda - xx;
  ZmVector3T<T> d =
      zm::tensor::Magnitude(p) > zm::tensor::Magnitude(q) ? ZmVector3T<T>(p, xy, T(0)) : ZmVector3T<T>(xy, q, T(0));
  if (d.lengthSquared() < T(kNegligibleSquare)) {
    if (rule == ShortDirection::kUseXAxis) return ZmVector3T<T>::UNIT_X;
    d.x *= T(kSmallDirectionScale);
    d.y *= T(kSmallDirectionScale);
  }
  d.unitize(T(zm::kTolerance6));
  return d;
}

template <class T>
void PlaneVectors(T xx, T yy, T xy, const ZmFrameT<T>& frame, T* s1, T* s2, ZmVector3T<T>* d1, ZmVector3T<T>* d2,
                  ShortDirection rule) {
  T first, second;
  zm::tensor::PlaneMainValues(xx, yy, xy, first, second);
  if (s1) *s1 = first;
  if (s2) *s2 = second;
  if (d1) *d1 = frame.LocalToGlobal(LocalDirection(xx, yy, xy, first, rule));
  if (d2) *d2 = frame.LocalToGlobal(LocalDirection(xx, yy, xy, second, rule));
}

}  // namespace

template <class T>
void ZmMathTensorT<T>::Tensor2DToVectors3D(T xx, T yy, T xy, const Frame& frame, T* s1, T* s2, Vector3* d1,
                                           Vector3* d2) {
  PlaneVectors(xx, yy, xy, frame, s1, s2, d1, d2, ShortDirection::kUseXAxis);
}

template <class T>
void ZmMathTensorT<T>::Tensor2DToVectors3DForm(T xx, T yy, T xy, const Frame& frame, T* s1, T* s2, Vector3* d1,
                                               Vector3* d2) {
  PlaneVectors(xx, yy, xy, frame, s1, s2, d1, d2, ShortDirection::kScaleUp);
}

template <class T>
T ZmMathTensorT<T>::ComputeDirectionalTensorValue(T xx, T yy, T xy, const Vector3& dir, const Frame& frame) {
  const Vector3 local = frame.GlobalToLocal(dir);
  const T u = local.x, v = local.y;
  if (u == T(0) && v == T(0)) return T(0);
  return xx * (u * u) + T(2) * xy * u * v + yy * (v * v);
}

template void ZmMathTensorT<double>::Tensor2DToVectors3D(double, double, double, const ZmFrameT<double>&, double*,
                                                         double*, ZmVector3T<double>*, ZmVector3T<double>*);
template void ZmMathTensorT<float>::Tensor2DToVectors3D(float, float, float, const ZmFrameT<float>&, float*, float*,
                                                        ZmVector3T<float>*, ZmVector3T<float>*);
template void ZmMathTensorT<double>::Tensor2DToVectors3DForm(double, double, double, const ZmFrameT<double>&, double*,
                                                             double*, ZmVector3T<double>*, ZmVector3T<double>*);
template void ZmMathTensorT<float>::Tensor2DToVectors3DForm(float, float, float, const ZmFrameT<float>&, float*, float*,
                                                            ZmVector3T<float>*, ZmVector3T<float>*);
template double ZmMathTensorT<double>::ComputeDirectionalTensorValue(double, double, double, const ZmVector3T<double>&,
                                                                     const ZmFrameT<double>&);
template float ZmMathTensorT<float>::ComputeDirectionalTensorValue(float, float, float, const ZmVector3T<float>&,
                                                                   const ZmFrameT<float>&);
