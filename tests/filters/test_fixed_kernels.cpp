// The fixed kernels: their outputs at both ends and in the middle, normalisation on first use,
// the admissible time steps in seconds and in milliseconds with both messages, the minimum
// curve length, and creation by name.
//
// Expected outputs replay the rules in numpy (see test_moving_average.cpp for run()):
//   T = the table as numpy.float32 values, converted to dt (float64 or float32)
//   normalised: s = dt(0); for k < h: s = dt(s + c[k]); s = dt(2*s) (+ c[h] for odd n); c = c / s
//   y[i] = ((37 * i) % 101) / 8.0 for i < 120 (exact in both precisions), point reflection
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <memory>
#include <string>

#include "filters/filter_curves.h"

using filter_test::Curve;
using filter_test::Signal;
using filter_test::Message;
using filter_test::SameCurve;

namespace {

template <class Filter>
void ExpectOutputs(Filter filter, double first, double middle, double last) {
  using T = typename Filter::T;
  WbArrayTempl<ZmPoint2T<T>> out;
  ASSERT_EQ(filter.Compute(Curve<T>(Signal(120)), out), nullptr);
  EXPECT_EQ(out[0].y, static_cast<T>(first));
  EXPECT_EQ(out[60].y, static_cast<T>(middle));
  EXPECT_EQ(out[119].y, static_cast<T>(last));
}

TEST(FixedKernels, OutputsAtTheEndsAndInTheMiddle) {
  ExpectOutputs(ZmFilterCFC600_10kHzd(ZmUnitSecond), 1.3018203247723956, 7.804006438826752, 7.260698542634983);
  ExpectOutputs(ZmFilterCFC600_10kHzf(ZmUnitSecond), 1.3018203f, 7.8040066f, 7.2606983f);
  ExpectOutputs(ZmFilterCFC180_10kHzd(ZmUnitSecond), 0.5402395735555305, 6.64783957646176, 7.328019997253932);
  ExpectOutputs(ZmFilterCFC180_10kHzf(ZmUnitSecond), 0.5402396f, 6.6478395f, 7.328019f);
  ExpectOutputs(ZmFilterCFC60_10kHzd(ZmUnitSecond), 0.19487906248288353, 6.271172134712921, 7.442419764612358);
  ExpectOutputs(ZmFilterCFC60_10kHzf(ZmUnitSecond), 0.19487911f, 6.2711725f, 7.44242f);
  // y[0] = 0 and the reflection through it is odd, so the 50-tap window at 0 cancels exactly.
  ExpectOutputs(ZmFilterFIRF16d(), 0.0, 7.235483645945351, 6.862283277132519);
  ExpectOutputs(ZmFilterFIRF16f(), 0.0f, 7.2354836f, 6.8622837f);
}

TEST(FixedKernels, ConstantSignals) {
  // Normalised CFC kernels keep a constant (CFC 180 in float loses one ulp in the sum);
  // FIRF16 scales it by its kernel sum 2 * sum(table) = 0.9974511120817624.
  const auto constant = Curve<double>(std::vector<double>(100, 3.5));
  const auto constantF = Curve<float>(std::vector<double>(100, 3.5));
  const auto check = [](auto filter, const auto& in, auto expected) {
    auto out = in;
    ASSERT_EQ(filter.Compute(in, out), nullptr);
    for (const auto& p : out) ASSERT_EQ(p.y, expected);
  };
  check(ZmFilterCFC600_10kHzd(ZmUnitSecond), constant, 3.5);
  check(ZmFilterCFC180_10kHzd(ZmUnitSecond), constant, 3.5);
  check(ZmFilterCFC60_10kHzd(ZmUnitSecond), constant, 3.5);
  check(ZmFilterCFC600_10kHzf(ZmUnitSecond), constantF, 3.5f);
  check(ZmFilterCFC180_10kHzf(ZmUnitSecond), constantF, 3.4999998f);
  check(ZmFilterCFC60_10kHzf(ZmUnitSecond), constantF, 3.5f);
  // run([2.0] * 60, T, 50, 3, dt); any step is accepted (here 1 and an uneven one).
  check(ZmFilterFIRF16d(), Curve<double>(std::vector<double>(60, 2.0), 1.0), 1.9949022241635248);
  check(ZmFilterFIRF16f(), Curve<float>(std::vector<double>(60, 2.0), 0.37), 1.9949024f);
}

TEST(FixedKernels, FirstFilteringNormalisesTheStoredTableOnce) {
  ZmFilterCFC600_10kHzd filter(ZmUnitSecond);
  ASSERT_EQ(filter.GetKernelSize(), 17);
  ASSERT_EQ(filter.GetCoefficients().GetSize(), 9u);
  EXPECT_EQ(filter.GetNormalise(), 1);
  EXPECT_EQ(filter.GetCoefficients()[0], static_cast<double>(-0.03039485f));
  EXPECT_EQ(filter.GetCoefficients()[8], static_cast<double>(4.69f));
  const auto in = Curve<double>(Signal(120));
  WbArrayTempl<ZmPoint2d> first;
  ASSERT_EQ(filter.Compute(in, first), nullptr);
  // s = 17.00000913068652; c / s
  EXPECT_EQ(filter.GetNormalise(), 0);
  EXPECT_EQ(filter.GetCoefficients()[0], -0.0017879314102188877);
  EXPECT_EQ(filter.GetCoefficients()[8], 0.2758822081309706);
  // Dividing by the sum of already normalised coefficients would move some of them by an ulp
  // (CFC 60: that sum is 0.9999999999999999); later calls must repeat the first one exactly.
  ZmFilterCFC60_10kHzd cfc60(ZmUnitSecond);
  WbArrayTempl<ZmPoint2d> once, again;
  ASSERT_EQ(cfc60.Compute(in, once), nullptr);
  EXPECT_EQ(cfc60.GetCoefficients()[0], -0.0017233551277024502);
  ASSERT_EQ(cfc60.Compute(in, again), nullptr);
  EXPECT_EQ(cfc60.GetCoefficients()[0], -0.0017233551277024502);
  EXPECT_TRUE(SameCurve(once, again));
  // A refused curve still counts as the first use: the kernel is normalised before the length
  // test, never before the time-step test.
  ZmFilterCFC180_10kHzd refused(ZmUnitSecond);
  WbArrayTempl<ZmPoint2d> out;
  EXPECT_EQ(Message(refused.Compute(Curve<double>({1, 2}, 1.0), out)),
            L"Can't process filtering. The time step of interval 1 is higher than 0.00015");
  EXPECT_EQ(refused.GetNormalise(), 1);
  EXPECT_EQ(Message(refused.Compute(Curve<double>({1, 2}), out)), L"Not enough points to filter");
  EXPECT_EQ(refused.GetNormalise(), 0);
}

TEST(FixedKernels, TimeStepsInSeconds) {
  ZmFilterCFC600_10kHzd filter(ZmUnitSecond);
  EXPECT_EQ(filter.GetMinTimeStep(), 4.999999873689376e-05);  // the float limits, widened
  EXPECT_EQ(filter.GetMaxTimeStep(), 1.500000071246177e-04);
  WbArrayTempl<ZmPoint2d> out;
  // A gap between the points of indices 7 and 8 is interval 8.
  auto gap = Curve<double>(Signal(20));
  for (std::uint64_t i = 8; i < gap.GetSize(); ++i) gap[i].x += 1.0e-4;
  EXPECT_EQ(Message(filter.Compute(gap, out)),
            L"Can't process filtering. The time step of interval 8 is higher than 0.00015");
  EXPECT_TRUE(SameCurve(out, gap));
  auto tight = Curve<double>(Signal(20));
  for (std::uint64_t i = 3; i < tight.GetSize(); ++i) tight[i].x -= 0.6e-4;
  EXPECT_EQ(Message(filter.Compute(tight, out)),
            L"Can't process filtering. The time step of interval 3 is lower than 5e-05");
  EXPECT_TRUE(SameCurve(out, tight));
  // Time running backwards is a step below the minimum; the first offending interval is named.
  auto backwards = Curve<double>(Signal(20));
  backwards[12].x = backwards[10].x;  // x[12] - x[11] = -1e-4
  backwards[15].x += 1.0;
  EXPECT_EQ(Message(filter.Compute(backwards, out)),
            L"Can't process filtering. The time step of interval 12 is lower than 5e-05");
  // The float twin reports the same intervals with its float limits.
  ZmFilterCFC600_10kHzf filterF(ZmUnitSecond);
  WbArrayTempl<ZmPoint2f> outF;
  EXPECT_EQ(Message(filterF.Compute(Curve<float>(Signal(20), 2.0e-4), outF)),
            L"Can't process filtering. The time step of interval 1 is higher than 0.00015");
  ASSERT_EQ(filterF.Compute(Curve<float>(Signal(20), 1.0e-4), outF), nullptr);
}

TEST(FixedKernels, RefusalFarIntoALongCurveLeavesCurveAndKernelUnchanged) {
  // The curve is filtered block by block; a bad step found late must still leave out the copy
  // of in, in itself unchanged, and the stored table not yet normalised.
  auto in = Curve<double>(Signal(5000));
  for (std::uint64_t i = 4500; i < in.GetSize(); ++i) in[i].x += 1.0e-4;
  const std::wstring message = L"Can't process filtering. The time step of interval 4500 is higher than 0.00015";
  ZmFilterCFC600_10kHzd filter(ZmUnitSecond);
  WbArrayTempl<ZmPoint2d> out;
  EXPECT_EQ(Message(filter.Compute(in, out)), message);
  EXPECT_TRUE(SameCurve(out, in));
  EXPECT_EQ(filter.GetNormalise(), 1);
  EXPECT_EQ(filter.GetCoefficients()[0], static_cast<double>(-0.03039485f));
  WbArrayTempl<ZmPoint2d> same = in;
  EXPECT_EQ(Message(filter.Compute(same, same)), message);
  EXPECT_TRUE(SameCurve(same, in));
  EXPECT_EQ(filter.GetNormalise(), 1);
  // Repaired, the same long curve filters to what the first block of a short one gives.
  for (std::uint64_t i = 4500; i < in.GetSize(); ++i) in[i].x -= 1.0e-4;
  ASSERT_EQ(filter.Compute(in, out), nullptr);
  ExpectOutputs(filter, 1.3018203247723956, 7.804006438826752, 7.260698542634983);
}

TEST(FixedKernels, TimeStepsInTheCallersUnit) {
  // Limits converted with the catalogue factor of the millisecond, 1000: 5e-5f * 1000.0 and
  // 1.5e-4f * 1000.0 in double, 5e-5f * 1000.0f in float.
  ZmFilterCFC180_10kHzd ms(ZmUnitMillisecond);
  EXPECT_EQ(ms.GetMinTimeStep(), 0.04999999873689376);
  EXPECT_EQ(ms.GetMaxTimeStep(), 0.1500000071246177);
  WbArrayTempl<ZmPoint2d> out;
  EXPECT_EQ(ms.Compute(Curve<double>(Signal(40), 0.1), out), nullptr);
  EXPECT_EQ(Message(ms.Compute(Curve<double>(Signal(40), 1.0), out)),
            L"Can't process filtering. The time step of interval 1 is higher than 0.15");
  EXPECT_EQ(ZmFilterCFC180_10kHzf(ZmUnitMillisecond).GetMinTimeStep(), 0.049999997f);
  EXPECT_EQ(ZmFilterCFC60_10kHzd(ZmUnitMicrosecond).GetMinTimeStep(), 49.99999873689376);
  // A unit outside the catalogue cannot be converted: the limits stay in seconds.
  EXPECT_EQ(ZmFilterCFC60_10kHzd(static_cast<_ZmUnitTime>(9)).GetMinTimeStep(), 4.999999873689376e-05);
  // FIRF16 has no limits at all.
  EXPECT_EQ(ZmFilterFIRF16d().GetMaxTimeStep(), -1.0000000331813535e+32);
}

TEST(FixedKernels, CurvesShorterThanHalfTheKernelAreRefused) {
  struct Case {
    std::unique_ptr<ZmFilterd> filter;
    int shortest;
  };
  Case cases[4];
  cases[0] = {std::make_unique<ZmFilterCFC600_10kHzd>(ZmUnitSecond), 8};
  cases[1] = {std::make_unique<ZmFilterCFC180_10kHzd>(ZmUnitSecond), 16};
  cases[2] = {std::make_unique<ZmFilterCFC60_10kHzd>(ZmUnitSecond), 40};
  cases[3] = {std::make_unique<ZmFilterFIRF16d>(), 25};
  for (Case& c : cases) {
    SCOPED_TRACE(c.shortest);
    WbArrayTempl<ZmPoint2d> out;
    const auto tooShort = Curve<double>(Signal(c.shortest - 1));
    EXPECT_EQ(Message(c.filter->Compute(tooShort, out)), L"Not enough points to filter");
    EXPECT_TRUE(SameCurve(out, tooShort));
    EXPECT_EQ(c.filter->Compute(Curve<double>(Signal(c.shortest)), out), nullptr);
  }
}

TEST(FixedKernels, CreationByName) {
  struct Named {
    const wchar_t* name;
    const WbRuntimeClass* base;
    bool isDouble;
  };
  const Named named[] = {
      {L"ZmFilterCFC600_10kHzd", &ZmFilterMAd::WbClassZmFilterMAd, true},
      {L"ZmFilterCFC180_10kHzd", &ZmFilterMAd::WbClassZmFilterMAd, true},
      {L"ZmFilterCFC60_10kHzd", &ZmFilterMAd::WbClassZmFilterMAd, true},
      {L"ZmFilterFIRF16d", &ZmFilterMAd::WbClassZmFilterMAd, true},
      {L"ZmFilterMVAd", &ZmFilterMAd::WbClassZmFilterMAd, true},
      {L"ZmFilterMVAWeightedd", &ZmFilterMVAd::WbClassZmFilterMVAd, true},
      {L"ZmFilterCosd", &ZmFilterMAd::WbClassZmFilterMAd, true},
      {L"ZmFilterSWAd", &ZmFilterd::WbClassZmFilterd, true},
      {L"ZmFilterCFC600_10kHzf", &ZmFilterMAf::WbClassZmFilterMAf, false},
      {L"ZmFilterCFC180_10kHzf", &ZmFilterMAf::WbClassZmFilterMAf, false},
      {L"ZmFilterCFC60_10kHzf", &ZmFilterMAf::WbClassZmFilterMAf, false},
      {L"ZmFilterFIRF16f", &ZmFilterMAf::WbClassZmFilterMAf, false},
      {L"ZmFilterMVAf", &ZmFilterMAf::WbClassZmFilterMAf, false},
      {L"ZmFilterMVAWeightedf", &ZmFilterMVAf::WbClassZmFilterMVAf, false},
      {L"ZmFilterCosf", &ZmFilterMAf::WbClassZmFilterMAf, false},
      {L"ZmFilterSWAf", &ZmFilterf::WbClassZmFilterf, false},
  };
  for (const Named& n : named) {
    SCOPED_TRACE(std::wstring(n.name));
    WbObject* object = WbRuntimeClass::CreateObject(n.name);
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(std::wstring(object->GetRuntimeClass()->GetClassName()), n.name);
    EXPECT_EQ(object->GetRuntimeClass()->GetBaseClass(), n.base);
    EXPECT_EQ(object->IsKindOf(&ZmFilterd::WbClassZmFilterd), n.isDouble ? 1 : 0);
    EXPECT_EQ(object->IsKindOf(&ZmFilterf::WbClassZmFilterf), n.isDouble ? 0 : 1);
    EXPECT_EQ(WbObject::DeleteDynamicObject(object), 1);
  }
  EXPECT_EQ(ZmFilterCFC180_10kHzd::GetBaseRuntimeClass(), &ZmFilterMAd::WbClassZmFilterMAd);
  EXPECT_EQ(ZmFilterMVAWeightedf::GetBaseRuntimeClass(), &ZmFilterMVAf::WbClassZmFilterMVAf);
  EXPECT_EQ(ZmFilterd::GetBaseRuntimeClass(), &WbObject::WbClassWbObject);
  // The abstract interface and the kernel-less frame are known but not creatable.
  for (const wchar_t* name : {L"ZmFilterd", L"ZmFilterf", L"ZmFilterMAd", L"ZmFilterMAf"}) {
    EXPECT_NE(WbRuntimeClass::FromName(name), nullptr);
    EXPECT_EQ(WbRuntimeClass::CreateObject(name), nullptr);
  }
  // A filter made by name filters like one constructed in seconds.
  std::unique_ptr<WbObject> byName(WbRuntimeClass::CreateObject(L"ZmFilterCFC180_10kHzd"));
  ASSERT_NE(byName, nullptr);
  auto* filter = static_cast<ZmFilterd*>(byName.get());
  ZmFilterCFC180_10kHzd direct(ZmUnitSecond);
  const auto in = Curve<double>(Signal(120));
  WbArrayTempl<ZmPoint2d> fromName, fromConstructor;
  ASSERT_EQ(filter->Compute(in, fromName), nullptr);
  ASSERT_EQ(direct.Compute(in, fromConstructor), nullptr);
  EXPECT_TRUE(SameCurve(fromName, fromConstructor));
  EXPECT_EQ(Message(filter->Compute(Curve<double>(Signal(40), 0.1), fromName)),
            L"Can't process filtering. The time step of interval 1 is higher than 0.00015");
}

}  // namespace
