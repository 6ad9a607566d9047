#pragma once

// The fits behind ZmMathFitT, one source file per family, each instantiated there for double
// and float; fit_api.cpp forwards the public statics to them.
#include "zemcalc/ZmMathFit.h"

namespace zm {
namespace fit {

template <class T, class P>
ZmLineFitT<T> FitLine3(const WbArrayTempl<P>& points);
template <class T>
ZmPlaneFitT<T> FitPlane(const WbArrayTempl<ZmPoint3T<T>>& points);
template <class T>
ZmCircle2FitT<T> FitCircle2(const WbArrayTempl<ZmPoint2T<T>>& points, ZmCircleFitMethod method);
template <class T>
ZmCircle3FitT<T> FitCircle3(const WbArrayTempl<ZmPoint3T<T>>& points, ZmCircleFitMethod method);
template <class T>
ZmSphereFitT<T> FitSphere(const WbArrayTempl<ZmPoint3T<T>>& points, bool geometric);
template <class T>
ZmCylinderFitT<T> FitCylinder(const WbArrayTempl<ZmPoint3T<T>>& points);
template <class T>
ZmEllipse2FitT<T> FitEllipse(const WbArrayTempl<ZmPoint2T<T>>& points);
template <class T>
ZmRigidFitT<T> FitRigid(const WbArrayTempl<ZmPoint3T<T>>& moving, const WbArrayTempl<ZmPoint3T<T>>& fixed,
                        const WbArrayTempl<T>* weights);

}  // namespace fit
}  // namespace zm
