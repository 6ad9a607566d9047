#pragma once

// Everything of zemcalc and of the base library it is written against.
#include <wbcore/WbArray.h>
#include <wbcore/WbBinFile.h>
#include <wbcore/WbCoord.h>
#include <wbcore/WbError.h>
#include <wbcore/WbLocalize.h>
#include <wbcore/WbLogger.h>
#include <wbcore/WbMem.h>
#include <wbcore/WbObject.h>
#include <wbcore/WbString.h>

#include "zemcalc/ZmAngle.h"
#include "zemcalc/ZmComplex.h"
#include "zemcalc/ZmConstants.h"
#include "zemcalc/ZmExtents.h"
#include "zemcalc/ZmFilter.h"
#include "zemcalc/ZmFilterFixed.h"
#include "zemcalc/ZmMath.h"
#include "zemcalc/ZmMathAngle.h"
#include "zemcalc/ZmMathDistance.h"
#include "zemcalc/ZmMathMaterial.h"
#include "zemcalc/ZmMathPointCloud.h"
#include "zemcalc/ZmMathPolyline.h"
#include "zemcalc/ZmMathRotation.h"
#include "zemcalc/ZmMathSolve.h"
#include "zemcalc/ZmMatrix.h"
#include "zemcalc/ZmPlane.h"
#include "zemcalc/ZmPoint2.h"
#include "zemcalc/ZmPoint3.h"
#include "zemcalc/ZmQuaternion.h"
#include "zemcalc/ZmSort.h"
#include "zemcalc/ZmUnitDim.h"
#include "zemcalc/ZmUnitManager.h"
#include "zemcalc/ZmUnitSystem.h"
