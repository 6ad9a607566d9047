#include "fitting/fits.h"
#include "foundation/build_info.h"

ZM_BUILD_INFO(fit_api)

template <class T>
ZmLineFitT<T> ZmMathFitT<T>::FitLine(const WbArrayTempl<Point3>& points) {
  return zm::fit::FitLine3<T>(points);
}

template <class T>
ZmLine2FitT<T> ZmMathFitT<T>::FitLine(const WbArrayTempl<Point2>& points) {
  const ZmLineFitT<T> fit = zm::fit::FitLine3<T>(points);
  ZmLine2FitT<T> line;
  line.point = ZmPoint2T<T>(fit.point);
  line.direction = ZmVector2T<T>(fit.direction);
  line.fitQuality = fit.fitQuality;
  line.quality = fit.quality;
  return line;
}

template <class T>
ZmPlaneFitT<T> ZmMathFitT<T>::FitPlane(const WbArrayTempl<Point3>& points) {
  return zm::fit::FitPlane<T>(points);
}

template <class T>
ZmCircle2FitT<T> ZmMathFitT<T>::FitCircle(const WbArrayTempl<Point2>& points, ZmCircleFitMethod method) {
  return zm::fit::FitCircle2<T>(points, method);
}

template <class T>
ZmCircle3FitT<T> ZmMathFitT<T>::FitCircle(const WbArrayTempl<Point3>& points, ZmCircleFitMethod method) {
  return zm::fit::FitCircle3<T>(points, method);
}

template <class T>
ZmSphereFitT<T> ZmMathFitT<T>::FitSphere(const WbArrayTempl<Point3>& points, unsigned char geometric) {
  return zm::fit::FitSphere<T>(points, geometric != 0);
}

template <class T>
ZmCylinderFitT<T> ZmMathFitT<T>::FitCylinder(const WbArrayTempl<Point3>& points) {
  return zm::fit::FitCylinder<T>(points);
}

template <class T>
ZmEllipse2FitT<T> ZmMathFitT<T>::FitEllipse(const WbArrayTempl<Point2>& points) {
  return zm::fit::FitEllipse<T>(points);
}

template <class T>
ZmRigidFitT<T> ZmMathFitT<T>::FitRigid(const WbArrayTempl<Point3>& moving, const WbArrayTempl<Point3>& fixed,
                                       const WbArrayTempl<T>* weights) {
  return zm::fit::FitRigid<T>(moving, fixed, weights);
}

template class ZmMathFitT<double>;
template class ZmMathFitT<float>;
