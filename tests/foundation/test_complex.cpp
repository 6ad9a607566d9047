// Complex numbers: the product spelled ^, module, argument, polar form and scaling.
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <cmath>
#include <utility>
#include <vector>

namespace {

constexpr double kPi = 3.141592653589793;
using Parts = std::vector<std::pair<double, double>>;
using D = ZmComplexNumberd;
using F = ZmComplexNumberf;

template <class... C>
Parts Of(const C&... c) {
  return {{c.Real(), c.Imag()}...};
}

// (1 + 2i)(3 + 4i) = 3 - 8 + (4 + 6)i. A float factor is widened in the double twin, a double
// factor rounded into the float twin; between twins and from float parts the values are
// converted as they are.
TEST(Complex, ArithmeticConversionsAndPolarForm) {
  const D i(0, 1);
  EXPECT_EQ((std::vector<int>{(i ^ i) == D(-1, 0), i == D(0, 2), i == D(1, 1), i != D(0, 1), i != D(0, -1)}),
            (std::vector<int>{1, 0, 0, 0, 1}));
  EXPECT_EQ(Of(i ^ i, D(1, 2) ^ D(3, 4), F(1, 2) ^ F(3, 4), D(1, 2) + D(0.5, -4), D(1, 2) - D(0.5, -4), -D(1, -2), D()),
            (Parts{{-1, 0}, {-5, 10}, {-5, 10}, {1.5, -2}, {0.5, 6}, {-1, 2}, {0, 0}}));
  const double widened = 0.10000000149011612;
  EXPECT_EQ(Of(D(1.5, -2) * 2, D(3, -4) *= 0.5f, D(1, 1) * 0.1f, F(1, 1) * 0.1, F(D(0.1, 0.2)), D(0.1f, 0.2f)),
            (Parts{{3, -4},
                   {1.5, -2},
                   {widened, widened},
                   {widened, widened},
                   {widened, double(0.2f)},
                   {widened, double(0.2f)}}));
  // Python: 2 * math.cos(math.pi / 2) = 1.2246467991473532e-16,
  //         2 * math.sin(math.pi) = 2.4492935982947064e-16
  EXPECT_EQ(Of(D::Polar(2.0, kPi / 2), D::Polar(2.0, kPi), D::Polar(1.5, 0.0), D::Polar(3.0f, 0.0f)),
            (Parts{{1.2246467991473532e-16, 2.0}, {-2.0, 2.4492935982947064e-16}, {1.5, 0}, {3, 0}}));
  // The float twin: cos(pi_f) rounds to -1, sin(pi_f) = -8.742278e-08.
  const F p = F::Polar(3.0f, float(kPi));
  EXPECT_EQ(p.Real(), -3.0f);
  EXPECT_FLOAT_EQ(p.Imag(), 3.0f * -8.742278e-08f);
  const D q = D::Polar(5.0, 0.9272952180016122);  // atan2(4, 3): back from the polar form
  EXPECT_NEAR(q.Real(), 3.0, 1e-15);
  EXPECT_NEAR(q.Imag(), 4.0, 1e-15);
}

// The argument lies in (-pi, pi]: a negated real number has a negative-zero imaginary part, and
// its argument is still +pi.
TEST(Complex, ModuleAndArgument) {
  ASSERT_TRUE(std::signbit((-D(1, 0)).Imag()));
  EXPECT_EQ((std::vector<double>{D(3, 4).Module(), F(3, 4).Module(), D(-5, 12).Module(), D().Module(), D(-1, 0).Arg(),
                                 F(-1, 0).Arg(), D(0, 1).Arg(), D(2, -2).Arg(), (-D(1, 0)).Arg(), (-F(2, 0)).Arg()}),
            (std::vector<double>{5, 5, 13, 0, kPi, float(kPi), kPi / 2, -kPi / 4, kPi, float(kPi)}));
}

}  // namespace
