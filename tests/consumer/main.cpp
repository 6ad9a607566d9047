#include <zemcalc/zemcalc.h>

#include <cstdio>

int main() {
  const ZmPoint3d a(1.0, 2.0, 3.0);
  const ZmVector3d v = ZmPoint3d(4.0, 6.0, 3.0) - a;
  const WbString text = a.GetString(L"%.1f", L",");
  const bool ok = v.length() == 5.0 && text == L"1.0,2.0,3.0" && ZmMathd::IsEqual(1.0, 1.5, 0.5) &&
                  ZmNonValP3d.IsValid() == 0;
  std::printf("consumer: %s\n", ok ? "ok" : "FAILED");
  return ok ? 0 : 1;
}
