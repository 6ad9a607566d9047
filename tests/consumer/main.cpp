// A user's program: it includes only the umbrella header, links zemcalc::zemcalc and touches
// one piece of each family, including the unit catalogue from its own global's constructor.
#include <zemcalc/zemcalc.h>

#include <cstdio>

namespace {

// Runs before main: the catalogue and the dimensions must already be there.
struct DeckUnits {
  DeckUnits() { ok = ZmUnitMgr.CSMSolverStringToSystem(L"UNIT MM TON S KELVIN", system, 1) == nullptr; }
  ZmUnitSystem system;
  bool ok = false;
};
const DeckUnits g_deck;

bool Check(const char* what, bool ok) {
  if (!ok) std::printf("consumer: %s FAILED\n", what);
  return ok;
}

}  // namespace

int main() {
  const ZmPoint3d a(1.0, 2.0, 3.0);
  const ZmVector3d v = ZmPoint3d(4.0, 6.0, 3.0) - a;
  const WbString text = a.GetString(L"%.1f", L",");
  bool ok = Check("points", v.length() == 5.0 && text == L"1.0,2.0,3.0" && ZmNonValP3d.IsValid() == 0);
  ok &= Check("tolerance", ZmMathd::IsEqual(1.0, 1.5, 0.5) == 1 && ZmMathd::IsEqual(1.0, 1.1, 0.1) == 0);

  // Units: the deck read by the global, then 210000 MPa into (m, Kg, s).
  const ZmUnitSystem mKgS(ZmUnitMeter, ZmUnitKilogram, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian);
  const float young = mKgS.ConvertValueFrom(210000.0f, g_deck.system, ZmUnitDimPressure, nullptr);
  ok &= Check("units", g_deck.ok && g_deck.system.GetUnitLength() == ZmUnitMillimeter && young > 2.09e11f &&
                           young < 2.11e11f);

  // A filter created by its class name smooths a constant 10 kHz signal without changing it.
  WbObject* object = WbRuntimeClass::CreateObject(L"ZmFilterCFC180_10kHzd");
  ZmFilterd* filter = dynamic_cast<ZmFilterd*>(object);
  WbArrayTempl<ZmPoint2d> signal, filtered;
  for (int i = 0; i < 200; ++i) signal.Add(ZmPoint2d(i * 1e-4, 3.0));
  ok &= Check("filter", filter && filter->Compute(signal, filtered) == nullptr && filtered.GetSize() == 200 &&
                            ZmMathd::IsEqual(filtered[100].y, 3.0, 1e-9));
  WbObject::DeleteDynamicObject(object);

  // A cylindrical frame reads (0, -1, 5) as r = 1, theta = -90, z = 5.
  const ZmFramed cylinder(ZmVector3d(1, 0, 0), ZmVector3d(0, 1, 0), ZmVector3d(0, 0, 1), ZmPoint3d(0, 0, 0),
                          ZmFrameCylindrical);
  const ZmPoint3d local = cylinder.GlobalToLocal(ZmPoint3d(0, -1, 5));
  ok &= Check("frame", ZmMathd::IsEqual(local.x, 1.0, 1e-12) && ZmMathd::IsEqual(local.y, -90.0, 1e-9));

  std::printf("consumer: %s\n", ok ? "ok" : "FAILED");
  return ok ? 0 : 1;
}
