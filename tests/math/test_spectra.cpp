// FFT spectra and correlations: numpy or hand values, and bit for bit against plain loops.
#include <cwchar>
#include <random>

#include "math_test_support.h"

using namespace math_test;

namespace {

MATH_TWIN_SUITE(SpectrumTwins);

// Relative accuracy against numpy: both twins transform in float (recurrent twiddles drift).
constexpr double kAccuracy = 1e-5;

// Random values at slightly irregular abscissas.
template <class T>
Curve<T> RandomSignal(std::size_t count, unsigned seed) {
  std::mt19937 generator(seed);
  std::uniform_real_distribution<double> value(-5.0, 5.0), jitter(0.9, 1.1);
  Curve<T> c;
  double x = 3.0;
  for (std::size_t i = 0; i < count; ++i, x += 0.01 * jitter(generator)) c.Add(ZmPoint2T<T>(T(x), T(value(generator))));
  return c;
}

// Points of a that differ from b in a bit of x or y, b's size compared too.
template <class T, class B>
std::uint64_t Mismatches(const Curve<T>& a, const B& b) {
  std::uint64_t n = a.GetSize() != b.size();
  for (std::uint64_t i = 0; i < b.size() && i < a.GetSize(); ++i)
    n += !SameBits(a[i].x, b[i].x) || !SameBits(a[i].y, b[i].y);
  return n;
}

// ComputeFFT step by step: shifted copy, weights, mean step, bit reversal, the twiddle recurrence
// restarted for every block in raw float arithmetic, and the scaling of every bin.
template <class T>
void PlainFFT(const Curve<T>& signal, int w0, int w1, int windowType, std::uint64_t nfft, bool divide,
              std::vector<ZmPoint2T<T>>& spectrum, std::vector<ZmPoint2T<T>>& phase) {
  const std::uint64_t m = std::uint64_t(w1 - w0 + 1);
  std::vector<T> x(m), y(m);
  for (std::uint64_t i = 0; i < m; ++i) x[i] = signal[w0 + i].x - signal[w0].x, y[i] = signal[w0 + i].y;
  T span = x[0];
  for (T v : x) span = v > span ? v : span;
  for (std::uint64_t i = 0; i < m; ++i) {
    const T c = std::cos((x[i] - span / 2) * T(6.2831854820251465f) / span);
    if (windowType == 1) y[i] = y[i] * (T(0.54f) + T(0.46f) * c);
    if (windowType == 2) y[i] = y[i] * (T(0.5f) + T(0.5f) * c);
  }
  T steps = x[1] - x[0];
  for (std::uint64_t k = 0; k + 2 < m; ++k) steps = steps + (x[k + 2] - x[k]) / 2;
  steps = steps + (x[m - 1] - x[m - 2]);
  const T dt = steps / T(m), df = T(1) / (T(nfft - 1) * dt), tx = x[m - 1] - x[0];
  int bits = 0;
  while (((nfft >> bits) & 1) == 0) ++bits;
  std::vector<float> re(nfft, 0.0f), im(nfft, 0.0f);
  for (std::uint64_t i = 0; i < m && i < nfft; ++i) re[WbBinFile::SwapNBits(unsigned(i), bits)] = float(y[i]);
  for (std::uint64_t len = 2; len <= nfft; len *= 2) {
    const double phi = 2.0 * 3.141592653589793 / double(len);
    for (std::uint64_t s = 0; s < nfft; s += len) {
      float r2 = float(std::cos(2 * phi)), i2 = float(std::sin(2 * phi));
      float r1 = float(std::cos(phi)), i1 = float(std::sin(phi));
      const float c = 2.0f * r1;
      for (std::uint64_t k = 0; k < len / 2; ++k) {
        const float r0 = c * r1 - r2, i0 = c * i1 - i2;
        r2 = r1, i2 = i1, r1 = r0, i1 = i0;
        const std::uint64_t a = s + k, b = s + k + len / 2;
        const float tr = r0 * re[b] - i0 * im[b], ti = r0 * im[b] + i0 * re[b];
        re[b] = re[a] - tr, im[b] = im[a] - ti;
        re[a] = re[a] + tr, im[a] = im[a] + ti;
      }
    }
  }
  spectrum.assign(nfft, ZmPoint2T<T>());
  phase.assign(nfft, ZmPoint2T<T>());
  for (std::uint64_t i = 0; i < nfft; ++i) {
    const float r = divide ? re[i] / float(nfft) : re[i], v = divide ? im[i] / float(nfft) : im[i];
    T amplitude = T(std::sqrt(r * r + v * v)) * dt / tx;
    if (i > 0) amplitude = amplitude * 2;
    if (windowType == 1) amplitude = amplitude / T(0.54f);
    if (windowType == 2) amplitude = amplitude * 2;
    spectrum[i] = ZmPoint2T<T>(T(i) * df, amplitude);
    // +0 on the imaginary part puts the negative real axis at +180, never -180.
    phase[i] = ZmPoint2T<T>(T(i) * df, T(std::atan2(v + 0.0f, r)) * T(57.2957763671875f));
  }
}

TYPED_TEST(SpectrumTwins, FftIsBitIdenticalToThePlainLoopAndMayWriteOverItsSignal) {
  using T = TypeParam;
  const Curve<T> signal = RandomSignal<T>(5000, 7);
  // Windows shorter and longer than the transform, short stages only, and a long one.
  const int cases[][3] = {{0, 4999, 8192}, {100, 1123, 1024}, {17, 3000, 2048}, {0, 9, 8},
                          {5, 7, 2},       {2, 5, 4},         {1, 40, 16},      {0, 4999, 32}};
  for (const auto& c : cases) {
    for (int windowType : {0, 1, 2, 7}) {
      for (unsigned char divide : {0, 1}) {
        std::vector<ZmPoint2T<T>> spectrum, phase;
        PlainFFT(signal, c[0], c[1], windowType, std::uint64_t(c[2]), divide != 0, spectrum, phase);
        Curve<T> actual, actualPhase;
        ASSERT_EQ(Math<T>::ComputeFFT(signal, c, windowType, std::uint64_t(c[2]), actual, divide, &actualPhase),
                  nullptr);
        EXPECT_EQ(Mismatches(actual, spectrum) + Mismatches(actualPhase, phase), 0u)
            << c[2] << " window " << c[0] << ".." << c[1] << " type " << windowType;
      }
    }
  }
  Curve<T> own = RandomSignal<T>(100, 5), expected;
  const int window[2] = {0, 99};
  ASSERT_EQ(Math<T>::ComputeFFT(own, window, 2, 128, expected, 0, nullptr), nullptr);
  ASSERT_EQ(Math<T>::ComputeFFT(own, window, 2, 128, own, 0, nullptr), nullptr);
  EXPECT_EQ(Mismatches(own, std::vector<ZmPoint2T<T>>(expected.begin(), expected.end())), 0u);
}

TYPED_TEST(SpectrumTwins, ShortSeriesPureSineAndConstantSignalsByHandAndNumpy) {
  using T = TypeParam;
  // dt = 0.6/6, Tx = 0.5, df = 1/0.7. numpy: w = 0.5 + 0.5*cos((x - 0.25)*2*pi/0.5); X = fft(r_[y*w, 0, 0]);
  // amp = abs(X)*0.1/0.5; amp[1:] *= 2; amp *= 2; phase = degrees(angle(X)); bin 4 is +180, not -180.
  const double amplitude[8] = {0.42467111, 0.98329071, 2.59521848, 2.70249094,
                               1.53262379, 2.70249094, 2.59521848, 0.98329071};
  const double degrees[8] = {0,   142.02312457, -10.37507643, -122.09894511,
                             180, 122.09894511, 10.37507643,  -142.02312457};
  const int window6[2] = {0, 5}, window[2] = {0, 255}, window101[2] = {0, 100};
  Curve<T> spectrum, phase, divided, hamming, six = Sampled<T>({0, 0.1, 0.2, 0.3, 0.4, 0.5}, {1, 3, -2, 0.5, 4, -1});
  ASSERT_EQ(Math<T>::ComputeFFT(six, window6, 2, 8, spectrum, 0, &phase), nullptr);
  ASSERT_EQ(spectrum.GetSize(), 8u);
  for (int i = 0; i < 8; ++i) {
    ExpectNearRows<T>(1e-5, {{spectrum[i].x, i / 0.7}, {phase[i].x, i / 0.7}, {spectrum[i].y, amplitude[i]}});
    EXPECT_NEAR(phase[i].y, degrees[i], 1e-4) << i;
  }
  // 3 sin(2 pi 78.125 t), dt = 1 ms: 20 whole periods, |X_20| = 3*256/2, times 2 dt/Tx (Tx = 255 dt):
  // 3*256/255; labelled 20/(255 dt) Hz; a sine's phase is -90 degrees; other bins (but 236) are 0.
  const Curve<T> signal =
      Regular<T>(256, 0.001, [](double t) { return 3 * std::sin(2 * 3.141592653589793 * 78.125 * t); });
  ASSERT_EQ(Math<T>::ComputeFFT(signal, window, 0, 256, spectrum, 0, &phase), nullptr);
  for (std::uint64_t i = 0; i < 128; ++i) EXPECT_LT(i == 20 ? T(0) : spectrum[i].y, T(1e-4)) << i;
  EXPECT_NEAR(spectrum[20].x, 78.43137254901961, 1e-3);
  EXPECT_NEAR(spectrum[20].y, 3.0117647058823529, 3.0 * kAccuracy);
  EXPECT_NEAR(phase[20].y, -90.0, 1e-3);
  // divideByCount divides every bin by nfft.
  ASSERT_EQ(Math<T>::ComputeFFT(signal, window, 0, 256, divided, 1, nullptr), nullptr);
  EXPECT_NEAR(divided[20].y, 3.0117647058823529 / 256, 3.0 / 256 * kAccuracy);
  // Hamming, numpy: w = f32(0.54) + f32(0.46)*cos((t - T/2)*2*pi/T), T = 0.255;
  // amp = abs(fft(y*w))/255; amp[1:] *= 2; amp /= f32(0.54) -> bins 18..22.
  ASSERT_EQ(Math<T>::ComputeFFT(signal, window, 1, 256, hamming, 0, nullptr), nullptr);
  const double expected[5] = {0.00336942, 1.28527235, 3.00173759, 1.28527179, 0.00337055};
  for (int i = 0; i < 5; ++i) EXPECT_NEAR(hamming[18 + i].y, expected[i], 2e-5) << 18 + i;
  // y = 1 over 1 s at 0.01 s: bin 0 is the sum times dt/Tx = 1.01, undoubled; df = 1/(127 dt).
  const Curve<T> ones = Regular<T>(101, 0.01, [](double) { return 1.0; });
  ASSERT_EQ(Math<T>::ComputeFFT(ones, window101, 0, 128, spectrum, 0, nullptr), nullptr);
  ASSERT_EQ(spectrum.GetSize(), 128u);
  EXPECT_EQ(spectrum[0].x, T(0));
  EXPECT_NEAR(spectrum[0].y, 1.01, 1.01 * kAccuracy);
  EXPECT_NEAR(spectrum[1].x, 100.0 / 127.0, 1e-4);
}

TEST(SpectrumTwins, TwinsTransformAlike) {
  // One float transform: on data exact in float the twins agree within an ulp or two.
  Curve<float> f = RandomSignal<float>(300, 11), spectrumF;
  Curve<double> exact, spectrumD;
  for (std::uint64_t i = 0; i < f.GetSize(); ++i) f[i].x = float(i) * 0.125f, exact.Add(ZmPoint2d(f[i]));
  const int window[2] = {0, 299};
  ASSERT_EQ(ZmMathd::ComputeFFT(exact, window, 0, 512, spectrumD, 0, nullptr), nullptr);
  ASSERT_EQ(ZmMathf::ComputeFFT(f, window, 0, 512, spectrumF, 0, nullptr), nullptr);
  for (std::uint64_t i = 0; i < 512; ++i) {
    EXPECT_NEAR(spectrumF[i].x, spectrumD[i].x, 3e-7 * spectrumD[i].x) << i;
    EXPECT_NEAR(spectrumF[i].y, spectrumD[i].y, 3e-7 * spectrumD[i].y) << i;
  }
}

TYPED_TEST(SpectrumTwins, FftRefusesBadWindowsLengthsAndAbscissas) {
  using T = TypeParam;
  const Curve<T> signal = RandomSignal<T>(20, 3);
  const auto refused = [&](int w0, int w1, std::uint64_t nfft, const std::wstring& message, const Curve<T>& s) {
    const int window[2] = {w0, w1};
    Curve<T> spectrum = Sampled<T>({1, 2}, {3, 4}), phase = spectrum;
    EXPECT_EQ(Message(Math<T>::ComputeFFT(s, w0 == -99 ? nullptr : window, 1, nfft, spectrum, 0, &phase)), message)
        << w0 << " " << nfft;
    EXPECT_TRUE(spectrum.GetSize() == 2 && spectrum[1].y == T(4) && phase.GetSize() == 2);  // nothing written
  };
  const std::wstring fewPoints = L"Less than 3 points in the window. Can't compute FFT";
  refused(4, 5, 64, fewPoints, signal);
  refused(9, 2, 64, fewPoints, signal);
  refused(-99, 0, 64, L"No window given. Can't compute FFT", signal);
  refused(-1, 5, 64, L"Window [-1, 5] is outside the signal of 20 points. Can't compute FFT", signal);
  refused(10, 20, 64, L"Window [10, 20] is outside the signal of 20 points. Can't compute FFT", signal);
  refused(0, 19, 64, L"Window [0, 19] is outside the signal of 0 points. Can't compute FFT", Curve<T>());
  for (std::uint64_t nfft : std::initializer_list<std::uint64_t>{0, 12, 100, 1ull << 33, ~0ull}) {
    wchar_t message[128];
    std::swprintf(message, 128, L"FFT length %llu is not a power of two between 1 and 4294967296. Can't compute FFT",
                  static_cast<unsigned long long>(nfft));
    refused(0, 19, nfft, message, signal);
  }
  // dt or Tx not > 0 (equal, returning or NaN abscissas); nfft = 1 = 2^0 spans (1 - 1) dt = 0.
  const std::wstring nonIncreasing = L"Non increasing abscissa values";
  const std::vector<double> abscissas[] = {{2, 2, 2}, {0, 1, 0}, {3, 2, 1}, {0, 1, std::nan("")}};
  for (const auto& x : abscissas) refused(0, 2, 8, nonIncreasing, Sampled<T>(x, {1, 2, 3}));
  refused(0, 19, 1, nonIncreasing, signal);
}

// The correlations by the formulas, one lag at a time, i increasing, b padded with zeros.
template <class T>
std::vector<T> PlainCorrelation(const Curve<T>& a, const Curve<T>& b, bool linear) {
  const std::uint64_t n = a.GetSize(), nb = b.GetSize() < n ? n : b.GetSize();
  auto bv = [&](std::uint64_t i) { return i < b.GetSize() ? b[i].y : T(0); };
  std::vector<T> y;
  for (std::uint64_t j = 1; !linear && j <= n; ++j) {
    T sum = 0;
    for (std::uint64_t i = 0; i < n; ++i) sum = sum + a[i].y * bv((j - 1 + i) % n);
    y.push_back(T(1) / T(n) * sum);
  }
  for (std::uint64_t j = 1; linear && j <= 2 * n - 1; ++j) {
    T sum = 0;
    const std::uint64_t lag = j >= n ? j - n : n - j;
    for (std::uint64_t i = 0; j >= n && i + lag < n; ++i) sum = sum + bv(i) * a[i + lag].y;
    for (std::uint64_t i = 0; j < n && i + lag < nb && i < n; ++i) sum = sum + a[i].y * bv(i + lag);
    y.push_back(T(1) / T(n) * sum);
  }
  return y;
}

TYPED_TEST(SpectrumTwins, CorrelationsByHandAndBitForBitAgainstThePlainSums) {
  using T = TypeParam;
  const Curve<T> a = Sampled<T>({0, 0.5, 1}, {1, 2, 3}), b = Sampled<T>({0, 0.5, 1}, {4, 5, 7});
  const Curve<T> shortB = Sampled<T>({0, 0.5}, {4, 5}), longB = Sampled<T>({0, 1, 2, 3, 4}, {4, 5, 7, 10, 11});
  // Sums, each /3. Circular, lag q: sum a[i] b[(i + q) % 3] (35 = 1*4 + 2*5 + 3*7, ...); a shorter b
  // is padded with zeros, of a longer one only 3 points count. Linear: numpy.correlate(a, b, 'full')
  // for the lags -2 .. 2 at abscissas mirrored about a[0].x; a longer b runs the negative lags to its
  // end but they stop at a's: lag -1 1*5 + 2*7 + 3*10 = 49, lag -2 1*7 + 2*10 + 3*11 = 60.
  const struct {
    Curve<T> b;
    unsigned char linear;
    std::vector<double> sums;
  } rows[] = {{b, 0, {35, 31, 30}},      {b, 1, {7, 19, 35, 23, 12}},
              {shortB, 0, {14, 17, 23}}, {shortB, 1, {0, 5, 14, 23, 12}},
              {longB, 0, {35, 31, 30}},  {longB, 1, {60, 49, 35, 23, 12}}};
  for (const auto& r : rows) {
    Curve<T> out = Sampled<T>({1}, {1});
    Math<T>::ComputeCorrelation(a, r.b, r.linear, out);
    ASSERT_EQ(out.GetSize(), r.sums.size());
    for (std::uint64_t i = 0; i < out.GetSize(); ++i)
      ExpectNearRows<T>(1e-5, {{out[i].x, 0.5 * (double(i) - 2 * r.linear)}, {out[i].y, r.sums[i] / 3}});
  }
  // A one-point a: one lag in both modes; an empty a gives nothing.
  Curve<T> out;
  Math<T>::ComputeCorrelation(Sampled<T>({2}, {3}), b, 1, out);
  ASSERT_EQ(out.GetSize(), 1u);
  ExpectRows<T>({{out[0].x, 2}, {out[0].y, 12}});
  for (unsigned char linear : {0, 1}) {
    out = b;
    Math<T>::ComputeCorrelation(Curve<T>(), b, linear, out);
    EXPECT_EQ(out.GetSize(), 0u);
  }
  // Sizes across the lag blocks, with b shorter, as long as and longer than a.
  const Curve<T> big = RandomSignal<T>(1300, 31);
  for (std::size_t nb : {1300u, 1000u, 1700u, 5u}) {
    const Curve<T> other = RandomSignal<T>(nb, 32);
    for (unsigned char linear : {0, 1}) {
      const std::vector<T> expected = PlainCorrelation(big, other, linear != 0);
      Math<T>::ComputeCorrelation(big, other, linear, out);
      ASSERT_EQ(out.GetSize(), expected.size());
      std::uint64_t mismatches = 0;
      for (std::uint64_t i = 0; i < expected.size(); ++i) mismatches += !SameBits(out[i].y, expected[i]);
      EXPECT_EQ(mismatches, 0u) << nb << " linear " << int(linear);
    }
  }
  // Lag 0 is the mean square; linear lags -q and q agree bitwise; the series may be its own output.
  Curve<T> c = RandomSignal<T>(1500, 21), circular, linear;
  long double squares = 0;
  for (const auto& p : c) squares += static_cast<long double>(p.y) * p.y;
  Math<T>::ComputeCorrelation(c, c, 0, circular);
  EXPECT_NEAR(circular[0].y, double(squares / 1500), double(squares / 1500) * (kIsDouble<T> ? 1e-12 : 1e-4));
  Math<T>::ComputeCorrelation(c, c, 1, linear);
  ASSERT_EQ(linear.GetSize(), 2999u);
  EXPECT_TRUE(SameBits(linear[1499].y, circular[0].y));
  for (std::uint64_t q = 1; q < 1500; ++q) ASSERT_TRUE(SameBits(linear[1499 - q].y, linear[1499 + q].y)) << q;
  Math<T>::ComputeCorrelation(c, c, 0, c);
  EXPECT_TRUE(SameBits(c[0].y, circular[0].y));
}

}  // namespace
