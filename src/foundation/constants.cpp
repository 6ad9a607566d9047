// The exported constant objects. Their constructors are constexpr, so every value here is
// stored in the image and none depends on the order of static initialisation.
#include "zemcalc/ZmPoint2.h"
#include "zemcalc/ZmPoint3.h"
#include "foundation/build_info.h"

ZM_BUILD_INFO(constants)

const float WbGms = 9.80665f;

constexpr float kMarker = zm::kInvalid;

const ZmPoint2d ZmNonValP2d(kMarker, kMarker);
const ZmPoint2f ZmNonValP2f(kMarker, kMarker);
const ZmPoint3d ZmNonValP3d(kMarker, kMarker, kMarker);
const ZmPoint3f ZmNonValP3f(kMarker, kMarker, kMarker);
const ZmVector2d ZmNonValV2d(kMarker, kMarker);
const ZmVector2f ZmNonValV2f(kMarker, kMarker);
const ZmVector3d ZmNonValV3d(kMarker, kMarker, kMarker);
const ZmVector3f ZmNonValV3f(kMarker, kMarker, kMarker);

const ZmVector2d ZmV2dX(1, 0);
const ZmVector2d ZmV2dY(0, 1);
const ZmVector2f ZmV2fX(1, 0);
const ZmVector2f ZmV2fY(0, 1);
const ZmVector3d ZmV3dX(1, 0, 0);
const ZmVector3d ZmV3dY(0, 1, 0);
const ZmVector3d ZmV3dZ(0, 0, 1);
const ZmVector3f ZmV3fX(1, 0, 0);
const ZmVector3f ZmV3fY(0, 1, 0);
const ZmVector3f ZmV3fZ(0, 0, 1);
