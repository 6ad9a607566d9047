#pragma once

// ZmMathd / ZmMathf: the static algorithms of the library. Each topic is a class template of
// its own (comparison, distances, ...), instantiated once for double and once for float in
// the source file of that topic; ZmMathT gathers them, so that every static is reached as
// ZmMathd::Name or ZmMathf::Name.
#include "zemcalc/ZmConstants.h"
#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmMathAngle.h"
#include "zemcalc/ZmMathArc.h"
#include "zemcalc/ZmMathDistance.h"
#include "zemcalc/ZmMathFit.h"
#include "zemcalc/ZmMathGrid.h"
#include "zemcalc/ZmMathInjury.h"
#include "zemcalc/ZmMathIntersect.h"
#include "zemcalc/ZmMathMaterial.h"
#include "zemcalc/ZmMathPointCloud.h"
#include "zemcalc/ZmMathPolygon.h"
#include "zemcalc/ZmMathPolyline.h"
#include "zemcalc/ZmMathRotation.h"
#include "zemcalc/ZmMathSolve.h"
#include "zemcalc/ZmMathSpectrum.h"
#include "zemcalc/ZmMathTensor.h"
#include "zemcalc/ZmMathTransmissibility.h"
#include "zemcalc/ZmPoint2.h"
#include "zemcalc/ZmPoint3.h"

template <class T>
class ZMCALC_API_FORWARD ZmPlaneT;

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

template <class T>
class ZMCALC_API ZmMathT : public ZmMathCompareT<T>, public ZmMathDistanceT<T>, public ZmMathPolylineT<T>,
                             public ZmMathAngleT<T>, public ZmMathRotationT<T>, public ZmMathPointCloudT<T>,
                             public ZmMathSolveT<T>, public ZmMathMaterialT<T>, public ZmMathTensorT<T>,
                             public ZmMathIntersectT<T>,
                             public ZmMathSpectrumT<T>, public ZmMathTransmissibilityT<T>,
                             public ZmMathFitT<T>, public ZmMathArcT<T>, public ZmMathPolygonT<T>,
                             public ZmMathGridT<T>, public ZmMathInjuryT<T> {};

using ZmMathd = ZmMathT<double>;
using ZmMathf = ZmMathT<float>;
