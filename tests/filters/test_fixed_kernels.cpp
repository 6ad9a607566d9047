// The fixed kernels: their outputs at both ends and in the middle, normalisation on first use,
// the admissible time steps in seconds and in other units with both messages, the minimum
// curve length, and creation by name of every filter class. Expected outputs are run() of
// filter_curves.h on T, the table as numpy.float32 values converted to dt, normalised:
//   s = dt(0); for k < h: s = dt(s + c[k]); s = dt(2*s) (+ c[h] for odd n); c = c / s
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <memory>
#include <string>

#include "filters/filter_curves.h"

namespace {

using namespace filter_test;

constexpr double kMarker = -1.0000000331813535e+32;  // -1.0e32f widened: no limit

// Outputs 0, 60 and 119 of Signal(120) through the class `name` (made by name: steps in
// seconds), then the output of a constant (the same at every point).
template <class T>
void ExpectKernel(const std::wstring& name, double step, double constant, const std::vector<T>& expected) {
  SCOPED_TRACE(name);
  const auto filter = ByName<T>(name);
  ASSERT_NE(filter, nullptr);
  EXPECT_EQ(Values(Filtered(*filter, Curve<T>(Signal(120), step)), {0, 60, 119}),
            std::vector<T>(expected.begin(), expected.begin() + 3));
  for (const T y : Values(Filtered(*filter, Curve<T>(std::vector<double>(60, constant), step)))) {
    ASSERT_EQ(y, expected[3]);
  }
}

TEST(FixedKernels, OutputsAtTheEndsInTheMiddleAndOfConstants) {
  // Normalised CFC kernels keep a constant (CFC 180 in float loses one ulp in the sum). FIRF16
  // scales it by its kernel sum 2 * sum(table) = 0.9974511120817624: run([2.0] * 60, T, 50, 3,
  // dt); it takes any step. y[0] = 0 and the reflection through it is odd, so its 50-tap window
  // at 0 cancels exactly.
  ExpectKernel<double>(L"ZmFilterCFC600_10kHzd", 1e-4, 3.5,
                       {1.3018203247723956, 7.804006438826752, 7.260698542634983, 3.5});
  ExpectKernel<float>(L"ZmFilterCFC600_10kHzf", 1e-4, 3.5, {1.3018203f, 7.8040066f, 7.2606983f, 3.5f});
  ExpectKernel<double>(L"ZmFilterCFC180_10kHzd", 1e-4, 3.5,
                       {0.5402395735555305, 6.64783957646176, 7.328019997253932, 3.5});
  ExpectKernel<float>(L"ZmFilterCFC180_10kHzf", 1e-4, 3.5, {0.5402396f, 6.6478395f, 7.328019f, 3.4999998f});
  ExpectKernel<double>(L"ZmFilterCFC60_10kHzd", 1e-4, 3.5,
                       {0.19487906248288353, 6.271172134712921, 7.442419764612358, 3.5});
  ExpectKernel<float>(L"ZmFilterCFC60_10kHzf", 1e-4, 3.5, {0.19487911f, 6.2711725f, 7.44242f, 3.5f});
  ExpectKernel<double>(L"ZmFilterFIRF16d", 0.37, 2.0, {0.0, 7.235483645945351, 6.862283277132519, 1.9949022241635248});
  ExpectKernel<float>(L"ZmFilterFIRF16f", 1.0, 2.0, {0.0f, 7.2354836f, 6.8622837f, 1.9949024f});
}

TEST(FixedKernels, FirstFilteringNormalisesTheStoredTableOnce) {
  // Dividing by the sum of already normalised coefficients would move some of them by an ulp
  // (CFC 60: that sum is 0.9999999999999999); later calls must repeat the first one exactly.
  const auto in = Curve<double>(Signal(120));
  ZmFilterCFC60_10kHzd cfc60(ZmUnitSecond);
  const auto once = Filtered(cfc60, in);
  EXPECT_TRUE(SameCurve(once, Filtered(cfc60, in)));
  EXPECT_EQ(cfc60.GetCoefficients()[0], -0.0017233551277024502);
  // A refused curve still counts as the first use: the kernel is normalised before the length
  // test, never before the time-step test.
  ZmFilterCFC180_10kHzd refused(ZmUnitSecond);
  EXPECT_EQ(Refusal(refused, Curve<double>({1, 2}, 1.0)),
            L"Can't process filtering. The time step of interval 1 is higher than 0.00015");
  EXPECT_EQ(refused.GetNormalise(), 1);
  EXPECT_EQ(Refusal(refused, Curve<double>({1, 2})), L"Not enough points to filter");
  EXPECT_EQ(refused.GetNormalise(), 0);
}

TEST(FixedKernels, TimeStepLimitsInTheCallersUnit) {
  // The float limits 5e-5f and 1.5e-4f widened; other units by the catalogue factor (the
  // millisecond: 5e-5f * 1000.0 in double, 5e-5f * 1000.0f in float). A unit outside the
  // catalogue cannot be converted: the limits stay in seconds.
  const struct {
    double got, expected;
  } rows[] = {
      {ZmFilterCFC600_10kHzd(ZmUnitSecond).GetMinTimeStep(), 4.999999873689376e-05},
      {ZmFilterCFC600_10kHzd(ZmUnitSecond).GetMaxTimeStep(), 1.500000071246177e-04},
      {ZmFilterCFC180_10kHzd(ZmUnitMillisecond).GetMinTimeStep(), 0.04999999873689376},
      {ZmFilterCFC180_10kHzd(ZmUnitMillisecond).GetMaxTimeStep(), 0.1500000071246177},
      {ZmFilterCFC180_10kHzf(ZmUnitMillisecond).GetMinTimeStep(), 0.049999997f},
      {ZmFilterCFC60_10kHzd(ZmUnitMicrosecond).GetMinTimeStep(), 49.99999873689376},
      {ZmFilterCFC60_10kHzd(static_cast<_ZmUnitTime>(9)).GetMinTimeStep(), 4.999999873689376e-05},
      {ZmFilterFIRF16d().GetMaxTimeStep(), kMarker},
      {ZmFilterMVAd(3).GetMinTimeStep(), kMarker},
  };
  for (const auto& r : rows) EXPECT_EQ(r.got, r.expected);
}

TEST(FixedKernels, RefusedStepsAndShortCurves) {
  // Signal(20) at 10 kHz with x[i] += dx from point `from` on: a gap between the points of
  // indices 7 and 8 is interval 8.
  const auto moved = [](std::uint64_t from, double dx) {
    auto curve = Curve<double>(Signal(20));
    for (std::uint64_t i = from; i < curve.GetSize(); ++i) curve[i].x += dx;
    return curve;
  };
  auto backwards = moved(15, 1.0);  // time running back is a step below the minimum, named first
  backwards[12].x = backwards[10].x;
  const std::wstring cant = L"Can't process filtering. The time step of interval ";
  const auto cfc600 = std::make_shared<ZmFilterCFC600_10kHzd>(ZmUnitSecond);
  const auto ms = std::make_shared<ZmFilterCFC180_10kHzd>(ZmUnitMillisecond);
  const struct {
    std::shared_ptr<ZmFilterd> filter;
    WbArrayTempl<ZmPoint2d> in;
    std::wstring message;
  } rows[] = {
      {cfc600, moved(8, 1.0e-4), cant + L"8 is higher than 0.00015"},
      {cfc600, moved(3, -0.6e-4), cant + L"3 is lower than 5e-05"},
      {cfc600, backwards, cant + L"12 is lower than 5e-05"},
      {ms, Curve<double>(Signal(40), 1.0), cant + L"1 is higher than 0.15"},
      {ms, Curve<double>(Signal(40), 0.1), L"<success>"},
  };
  for (const auto& r : rows) EXPECT_EQ(Refusal(*r.filter, r.in), r.message);
  // A curve needs half the kernel: 8, 16, 40 and 25 points.
  const std::pair<const wchar_t*, int> shortest[] = {{L"ZmFilterCFC600_10kHzd", 8},
                                                     {L"ZmFilterCFC180_10kHzd", 16},
                                                     {L"ZmFilterCFC60_10kHzd", 40},
                                                     {L"ZmFilterFIRF16d", 25}};
  for (const auto& s : shortest) {
    EXPECT_EQ(Refusal(*ByName<double>(s.first), Curve<double>(Signal(s.second - 1))), L"Not enough points to filter")
        << s.first;
    EXPECT_EQ(Refusal(*ByName<double>(s.first), Curve<double>(Signal(s.second))), L"<success>") << s.first;
  }
  // The float twin reports the same intervals with its float limits.
  ZmFilterCFC600_10kHzf filterF(ZmUnitSecond);
  EXPECT_EQ(Refusal(filterF, Curve<float>(Signal(20), 2.0e-4)), cant + L"1 is higher than 0.00015");
  EXPECT_EQ(Refusal(filterF, Curve<float>(Signal(20), 1.0e-4)), L"<success>");
}

TEST(FixedKernels, RefusalFarIntoALongCurveLeavesCurveAndKernelUnchanged) {
  // The curve is filtered block by block; a bad step found late must still leave out the copy
  // of in, in itself unchanged, and the stored table not yet normalised.
  auto in = Curve<double>(Signal(5000));
  for (std::uint64_t i = 4500; i < in.GetSize(); ++i) in[i].x += 1.0e-4;
  const std::wstring message = L"Can't process filtering. The time step of interval 4500 is higher than 0.00015";
  ZmFilterCFC600_10kHzd filter(ZmUnitSecond);
  EXPECT_EQ(Refusal(filter, in), message);  // into another curve and in place
  EXPECT_EQ(filter.GetNormalise(), 1);
  EXPECT_EQ(filter.GetCoefficients()[0], static_cast<double>(-0.03039485f));
  // Repaired, the long curve filters as a short one does away from its right end; the first
  // filtering divides the table by s = 17.00000913068652.
  for (std::uint64_t i = 4500; i < in.GetSize(); ++i) in[i].x -= 1.0e-4;
  EXPECT_EQ(Values(Filtered(filter, in), {0, 60}), std::vector<double>({1.3018203247723956, 7.804006438826752}));
  EXPECT_EQ(filter.GetNormalise(), 0);
  EXPECT_EQ(filter.GetCoefficients()[0], -0.0017879314102188877);
  EXPECT_EQ(filter.GetCoefficients()[8], 0.2758822081309706);
}

TEST(FilterClasses, CreationByName) {
  // Each family (its d and f classes) by its base.
  const std::pair<std::wstring, std::vector<std::wstring>> bases[] = {
      {L"ZmFilterMA",
       {L"ZmFilterCFC600_10kHz", L"ZmFilterCFC180_10kHz", L"ZmFilterCFC60_10kHz", L"ZmFilterFIRF16", L"ZmFilterMVA",
        L"ZmFilterCos"}},
      {L"ZmFilterMVA", {L"ZmFilterMVAWeighted"}},
      {L"ZmFilter", {L"ZmFilterSWA", L"ZmFilterCFC"}},
  };
  for (const auto& base : bases) {
    for (const std::wstring& stem : base.second) {
      for (const std::wstring twin : {L"d", L"f"}) {
        const std::wstring name = stem + twin;
        SCOPED_TRACE(name);
        WbObject* object = WbRuntimeClass::CreateObject(name.c_str());
        ASSERT_NE(object, nullptr);
        EXPECT_EQ(object->GetRuntimeClass()->GetClassName(), name);
        EXPECT_EQ(object->GetRuntimeClass()->GetBaseClass(), WbRuntimeClass::FromName((base.first + twin).c_str()));
        EXPECT_EQ(object->IsKindOf(&ZmFilterd::WbClassZmFilterd) + 2 * object->IsKindOf(&ZmFilterf::WbClassZmFilterf),
                  twin == L"d" ? 1 : 2);
        EXPECT_EQ(WbObject::DeleteDynamicObject(object), 1);
      }
    }
  }
  // The abstract interface and the kernel-less frame are known but not creatable.
  for (const wchar_t* name : {L"ZmFilterd", L"ZmFilterf", L"ZmFilterMAd", L"ZmFilterMAf"}) {
    EXPECT_NE(WbRuntimeClass::FromName(name), nullptr);
    EXPECT_EQ(WbRuntimeClass::CreateObject(name), nullptr);
  }
  // Made by name, a filter takes the documented defaults: seconds, point reflection, CFC 60.
  const auto in = Curve<double>(Signal(120));
  EXPECT_TRUE(SameCurve(Filtered(*ByName<double>(L"ZmFilterCFC180_10kHzd"), in),
                        Filtered(ZmFilterCFC180_10kHzd(ZmUnitSecond), in)));
  EXPECT_TRUE(SameCurve(Filtered(*ByName<double>(L"ZmFilterCFCd"), in), Filtered(ZmFilterCFCd(60), in)));
}

}  // namespace
