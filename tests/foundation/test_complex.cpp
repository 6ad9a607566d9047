// Complex numbers: the product spelled ^, module, argument, polar form and scaling.
#include <cmath>
#include <utility>

#include "foundation/foundation_test_support.h"

namespace {

using namespace foundation_test;
using Parts = std::pair<double, double>;

template <class C>
Parts Of(const C& c) {
  return {c.Real(), c.Imag()};
}

TEST(Complex, ArithmeticAndConversions) {
  using D = ZmComplexNumberd;
  using F = ZmComplexNumberf;
  const D i(0, 1);
  EXPECT_EQ((i ^ i) == D(-1, 0), 1);
  ExpectRows<Parts>({{Of(i ^ i), {-1, 0}},
                     {Of(D(1, 2) ^ D(3, 4)), {-5, 10}},  // 3 - 8 + (4 + 6)i
                     {Of(F(1, 2) ^ F(3, 4)), {-5, 10}},
                     {Of(D(1, 2) + D(0.5, -4)), {1.5, -2}},
                     {Of(D(1, 2) - D(0.5, -4)), {0.5, 6}},
                     {Of(-D(1, -2)), {-1, 2}},
                     {Of(D()), {0, 0}},
                     {Of(D(1.5, -2) * 2), {3, -4}},
                     {Of(D(3, -4) *= 0.5f), {1.5, -2}},
                     {Of(D(1, 1) * 0.1f), {0.10000000149011612, 0.10000000149011612}},  // 0.1f widened
                     {Of(F(1, 1) * 0.1), {double(0.1f), double(0.1f)}},                 // rounded into the float twin
                     // Between twins and from float parts the values are converted as they are.
                     {Of(F(D(0.1, 0.2))), {double(0.1f), double(0.2f)}},
                     {Of(D(0.1f, 0.2f)), {double(0.1f), double(0.2f)}},
                     // Python: 2 * math.cos(math.pi / 2) = 1.2246467991473532e-16,
                     //         2 * math.sin(math.pi) = 2.4492935982947064e-16
                     {Of(D::Polar(2.0, kPi / 2)), {1.2246467991473532e-16, 2.0}},
                     {Of(D::Polar(2.0, kPi)), {-2.0, 2.4492935982947064e-16}},
                     {Of(D::Polar(1.5, 0.0)), {1.5, 0.0}},
                     {Of(D::Polar(3.0f, 0.0f)), {3.0, 0.0}}});
  // The float twin: cos(pi_f) rounds to -1, sin(pi_f) = -8.742278e-08.
  const F p = F::Polar(3.0f, float(kPi));
  EXPECT_EQ(p.Real(), -3.0f);
  EXPECT_FLOAT_EQ(p.Imag(), 3.0f * -8.742278e-08f);
  const D q = D::Polar(5.0, 0.9272952180016122);  // atan2(4, 3): back from the polar form
  EXPECT_NEAR(q.Real(), 3.0, 1e-15);
  EXPECT_NEAR(q.Imag(), 4.0, 1e-15);
}

TEST(Complex, ModuleAndArgument) {
  // The argument lies in (-pi, pi]: a negated real number has a negative-zero imaginary part,
  // and its argument is still +pi.
  ASSERT_TRUE(std::signbit((-ZmComplexNumberd(1, 0)).Imag()));
  ExpectRows<double>({{ZmComplexNumberd(3, 4).Module(), 5.0},
                      {ZmComplexNumberf(3, 4).Module(), 5.0},
                      {ZmComplexNumberd(-5, 12).Module(), 13.0},
                      {ZmComplexNumberd().Module(), 0.0},
                      {ZmComplexNumberd(-1, 0).Arg(), kPi},
                      {ZmComplexNumberf(-1, 0).Arg(), float(kPi)},
                      {ZmComplexNumberd(0, 1).Arg(), kPi / 2},
                      {ZmComplexNumberd(2, -2).Arg(), -kPi / 4},
                      {(-ZmComplexNumberd(1, 0)).Arg(), kPi},
                      {(-ZmComplexNumberf(2, 0)).Arg(), float(kPi)}});
}

}  // namespace
