// Complex numbers: the product spelled ^, module, argument, polar form and scaling.
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <cmath>

namespace {

constexpr double kPi = 3.141592653589793;

template <class C>
void ExpectParts(const C& c, double re, double im) {
  EXPECT_EQ(double(c.Real()), re);
  EXPECT_EQ(double(c.Imag()), im);
}

TEST(Complex, ProductSumAndScaling) {
  const ZmComplexNumberd i(0, 1);
  ExpectParts(i ^ i, -1, 0);
  EXPECT_EQ((i ^ i) == ZmComplexNumberd(-1, 0), 1);
  // (1 + 2i)(3 + 4i) = 3 - 8 + (4 + 6)i
  ExpectParts(ZmComplexNumberd(1, 2) ^ ZmComplexNumberd(3, 4), -5, 10);
  ExpectParts(ZmComplexNumberf(1, 2) ^ ZmComplexNumberf(3, 4), -5, 10);
  ExpectParts(ZmComplexNumberd(1, 2) + ZmComplexNumberd(0.5, -4), 1.5, -2);
  ExpectParts(ZmComplexNumberd(1, 2) - ZmComplexNumberd(0.5, -4), 0.5, 6);
  ExpectParts(-ZmComplexNumberd(1, -2), -1, 2);
  ExpectParts(ZmComplexNumberd(), 0, 0);

  ExpectParts(ZmComplexNumberd(1.5, -2) * 2, 3, -4);
  ZmComplexNumberd scaled(3, -4);
  scaled *= 0.5f;
  ExpectParts(scaled, 1.5, -2);
  ExpectParts(ZmComplexNumberd(1, 1) * 0.1f, 0.10000000149011612, 0.10000000149011612);  // 0.1f widened
  ExpectParts(ZmComplexNumberf(1, 1) * 0.1, double(0.1f), double(0.1f));                 // rounded into the float twin
  // Between twins and from float parts the values are converted as they are.
  ExpectParts(ZmComplexNumberf(ZmComplexNumberd(0.1, 0.2)), double(0.1f), double(0.2f));
  ExpectParts(ZmComplexNumberd(0.1f, 0.2f), double(0.1f), double(0.2f));
}

TEST(Complex, ModuleAndArgument) {
  EXPECT_EQ(ZmComplexNumberd(3, 4).Module(), 5.0);
  EXPECT_EQ(ZmComplexNumberf(3, 4).Module(), 5.0f);
  EXPECT_EQ(ZmComplexNumberd(-5, 12).Module(), 13.0);
  EXPECT_EQ(ZmComplexNumberd().Module(), 0.0);

  EXPECT_EQ(ZmComplexNumberd(-1, 0).Arg(), kPi);
  EXPECT_EQ(ZmComplexNumberf(-1, 0).Arg(), float(kPi));
  EXPECT_EQ(ZmComplexNumberd(0, 1).Arg(), kPi / 2);
  EXPECT_EQ(ZmComplexNumberd(2, -2).Arg(), -kPi / 4);
  // The argument lies in (-pi, pi]: a negated real number has a negative-zero imaginary
  // part, and its argument is still +pi.
  const ZmComplexNumberd negated = -ZmComplexNumberd(1, 0);
  ASSERT_TRUE(std::signbit(negated.Imag()));
  EXPECT_EQ(negated.Arg(), kPi);
  EXPECT_EQ((-ZmComplexNumberf(2, 0)).Arg(), float(kPi));
}

TEST(Complex, PolarForm) {
  // Python: 2 * math.cos(math.pi / 2) = 1.2246467991473532e-16,
  //         2 * math.sin(math.pi) = 2.4492935982947064e-16
  ExpectParts(ZmComplexNumberd::Polar(2.0, kPi / 2), 1.2246467991473532e-16, 2.0);
  ExpectParts(ZmComplexNumberd::Polar(2.0, kPi), -2.0, 2.4492935982947064e-16);
  ExpectParts(ZmComplexNumberd::Polar(1.5, 0.0), 1.5, 0.0);
  // The float overload and the float twin: cos(pi_f) rounds to -1, sin(pi_f) = -8.742278e-08.
  ExpectParts(ZmComplexNumberd::Polar(3.0f, 0.0f), 3.0, 0.0);
  const ZmComplexNumberf p = ZmComplexNumberf::Polar(3.0f, float(kPi));
  EXPECT_EQ(p.Real(), -3.0f);
  EXPECT_FLOAT_EQ(p.Imag(), 3.0f * -8.742278e-08f);
  // Back from the polar form.
  const ZmComplexNumberd q = ZmComplexNumberd::Polar(5.0, 0.9272952180016122);  // atan2(4, 3)
  EXPECT_NEAR(q.Real(), 3.0, 1e-15);
  EXPECT_NEAR(q.Imag(), 4.0, 1e-15);
}

}  // namespace
