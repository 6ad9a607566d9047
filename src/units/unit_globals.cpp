// The global dimensions and the unit catalogue.
//
// They live together in one static buffer whose storage needs no initialisation: the
// exported names are references bound to it at compile time (constexpr, so no dynamic
// initialisation can be involved). The objects themselves are constructed by the first
// ZmUnitGlobalsInit -- one of which every translation unit that includes ZmUnitDim.h holds
// ahead of its own globals -- and destroyed by the last one. Their order is the order of the
// members of UnitGlobals: the dimensions, then the catalogue, which copies several of them;
// destruction runs in reverse.
#include <new>

#include "foundation/build_info.h"
#include "units/units_internal.h"
#include "zemcalc/ZmUnitManager.h"

ZM_BUILD_INFO(unit_globals)

namespace {

struct UnitGlobals {
  ZmUnitDim none{L"Ratio", 0, 0, 0, 0, 0};
  ZmUnitDim time{L"Time", 0, 0, 1, 0, 0};
  ZmUnitDim mass{L"Mass", 0, 1, 0, 0, 0};
  ZmUnitDim freq{L"Frequency", 0, 0, -1, 0, 0};
  ZmUnitDim length{L"Length", 1, 0, 0, 0, 0};
  ZmUnitDim area{L"Area", 2, 0, 0, 0, 0};
  ZmUnitDim volume{L"Volume", 3, 0, 0, 0, 0};
  ZmUnitDim pressure{L"Pressure", -1, 1, -2, 0, 0};
  ZmUnitDim velocity{L"Velocity", 1, 0, -1, 0, 0};
  ZmUnitDim velocitySquare{L"Velocity Square", 2, 0, -2, 0, 0};
  ZmUnitDim acceleration{L"Acceleration", 1, 0, -2, 0, 0};
  ZmUnitDim force{L"Force", 1, 1, -2, 0, 0};
  ZmUnitDim forcePerLength{force, length};
  ZmUnitDim moment{L"Moment", 2, 1, -2, 0, 0};
  ZmUnitDim density{L"Density", -3, 1, 0, 0, 0};
  ZmUnitDim inertia{L"Inertia", 2, 1, 0, 0, 0};
  ZmUnitDim angle{L"Angle", 0, 0, 0, 0, 1};
  ZmUnitDim invLength{L"Inv. Length", -1, 0, 0, 0, 0};
  ZmUnitDim temp{L"Temperature", 0, 0, 0, 1, 0};
  ZmUnitManager manager;
};

// Raw storage for UnitGlobals: the constexpr constructor makes it constant-initialised and
// the empty destructor leaves the objects to ZmUnitGlobalsInit.
union UnitGlobalsStorage {
  constexpr UnitGlobalsStorage() : unused() {}
  ~UnitGlobalsStorage() {}
  char unused;
  UnitGlobals objects;
};

UnitGlobalsStorage g_storage;
// Live ZmUnitGlobalsInit objects. Only static initialisation and destruction touch it, and
// the loader runs those on one thread.
int g_guardCount = 0;

}  // namespace

ZmUnitGlobalsInit::ZmUnitGlobalsInit() {
  if (g_guardCount++ == 0) new (&g_storage.objects) UnitGlobals();
}

ZmUnitGlobalsInit::~ZmUnitGlobalsInit() {
  if (--g_guardCount == 0) g_storage.objects.~UnitGlobals();
}

constexpr const ZmUnitDim& ZmUnitDimNone = g_storage.objects.none;
constexpr const ZmUnitDim& ZmUnitDimTime = g_storage.objects.time;
constexpr const ZmUnitDim& ZmUnitDimMass = g_storage.objects.mass;
constexpr const ZmUnitDim& ZmUnitDimFreq = g_storage.objects.freq;
constexpr const ZmUnitDim& ZmUnitDimLength = g_storage.objects.length;
constexpr const ZmUnitDim& ZmUnitDimArea = g_storage.objects.area;
constexpr const ZmUnitDim& ZmUnitDimVolume = g_storage.objects.volume;
constexpr const ZmUnitDim& ZmUnitDimPressure = g_storage.objects.pressure;
constexpr const ZmUnitDim& ZmUnitDimVelocity = g_storage.objects.velocity;
constexpr const ZmUnitDim& ZmUnitDimVelocitySquare = g_storage.objects.velocitySquare;
constexpr const ZmUnitDim& ZmUnitDimAcceleration = g_storage.objects.acceleration;
constexpr const ZmUnitDim& ZmUnitDimForce = g_storage.objects.force;
constexpr const ZmUnitDim& ZmUnitDimForcePerLength = g_storage.objects.forcePerLength;
constexpr const ZmUnitDim& ZmUnitDimMoment = g_storage.objects.moment;
constexpr const ZmUnitDim& ZmUnitDimDensity = g_storage.objects.density;
constexpr const ZmUnitDim& ZmUnitDimInertia = g_storage.objects.inertia;
constexpr const ZmUnitDim& ZmUnitDimAngle = g_storage.objects.angle;
constexpr const ZmUnitDim& ZmUnitDimInvLength = g_storage.objects.invLength;
constexpr const ZmUnitDim& ZmUnitDimTemp = g_storage.objects.temp;
constexpr ZmUnitManager& ZmUnitMgr = g_storage.objects.manager;
