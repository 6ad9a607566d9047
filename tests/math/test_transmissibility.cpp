// Transmissibility of noise through an oscillator simulated here by its exact sampled recursion.
#include <algorithm>
#include <random>

#include "math_test_support.h"

using namespace math_test;

namespace {

MATH_TWIN_SUITE(TransmissibilityTwins);

constexpr double kStep = 1e-3;  // 1 kHz sampling

// Noise in [-1, 1] and its response, at abscissas accumulated as the resampling accumulates them.
// x'' + 2 z w x' + w^2 x = w^2 u: h(t) = w^2/wd e^(-z w t) sin(wd t), wd = w sqrt(1 - z^2); its samples
// g[j] = dt h(j dt) obey g[j] = 2 r cos(wd dt) g[j-1] - r^2 g[j-2], r = e^(-z w dt), g[0] = 0, so
// y = g * u follows the same recursion plus g[1] u[k-1]. Peak: 49.87 Hz, 1/(2 z sqrt(1 - z^2)) = 10.01.
template <class T>
void NoiseThroughOscillator(std::size_t count, Curve<T>& input, Curve<T>& output) {
  const double z = 0.05, w = 2 * M_PI * 50, wd = w * std::sqrt(1 - z * z);  // damping, 50 Hz
  const double r = std::exp(-z * w * kStep), c = 2 * r * std::cos(wd * kStep);
  const double g1 = kStep * w * w / wd * r * std::sin(wd * kStep);
  std::mt19937 generator(2024);
  std::uniform_real_distribution<double> noise(-1.0, 1.0);
  std::vector<double> u(count), y(count, 0.0);
  for (double& v : u) v = noise(generator);
  for (std::size_t k = 2; k < count; ++k) y[k] = c * y[k - 1] - r * r * y[k - 2] + g1 * u[k - 1];
  T x = 0;
  for (std::size_t k = 0; k < count; ++k) {
    input.Add(ZmPoint2T<T>(x, T(u[k])));
    output.Add(ZmPoint2T<T>(x, T(y[k])));
    x = x + T(kStep);
  }
}

template <class T>
T ValueAt(const Curve<T>& curve, double x) {
  int index = -1;
  return ZmPoint2T<T>::InterpolateOnX(curve.GetData(), curve.GetSize(), T(x), index, 0);
}

// The titles, each ended by a new line.
std::wstring Texts(const WbObjectArrayTempl<WbString>& titles) {
  std::wstring texts;
  for (std::uint64_t i = 0; i < titles.GetSize(); ++i) texts += std::wstring(titles[i]->GetString()) + L"\n";
  return texts;
}

TYPED_TEST(TransmissibilityTwins, PeaksAtTheNaturalFrequencyOnEveryRoute) {
  using T = TypeParam;
  Curve<T> input, output;
  NoiseThroughOscillator<T>(16384, input, output);
  const T absent = T(kMarker);
  for (int method : {Math<T>::TRANSMISSIBILITY_DIRECT, Math<T>::TRANSMISSIBILITY_CIRCULAR_CORRELATION,
                     Math<T>::TRANSMISSIBILITY_LINEAR_CORRELATION, 0}) {
    Curve<T> result;
    ASSERT_EQ(Math<T>::ComputeTransmissibility(input, output, absent, absent, T(kStep), T(2), method, T(200), T(0.5),
                                               absent, 0, result, nullptr, nullptr, nullptr),
              nullptr)
        << method;
    ASSERT_GT(result.GetSize(), 100u) << method;
    EXPECT_TRUE(result[0].x >= T(2) && result[result.GetSize() - 1].x <= T(200));
    // The peak within 1.5 Hz of 49.87 Hz (half-power band 5 Hz), under 10: smoothed over about 9 Hz.
    const ZmPoint2T<T> peak =
        *std::max_element(result.begin(), result.end(), [](const auto& a, const auto& b) { return a.y < b.y; });
    EXPECT_NEAR(peak.x, 49.87, 1.5) << method;
    EXPECT_LT(peak.y, T(11)) << method;
    if (method == Math<T>::TRANSMISSIBILITY_LINEAR_CORRELATION) {
      // Lags from 0 only: the half of the cross-correlation carrying the response is dropped.
      EXPECT_GT(peak.y, T(2)) << method;
      continue;
    }
    // |H| = 1/sqrt((1 - s^2)^2 + (2 z s)^2), s = f/50: 1.041 at 10 Hz, 0.125 at 150 Hz.
    EXPECT_GT(peak.y, T(5)) << method;
    EXPECT_NEAR(ValueAt(result, 10.0), 1.041, 0.1) << method;
    EXPECT_NEAR(ValueAt(result, 150.0), 0.125, 0.03) << method;
  }
}

TYPED_TEST(TransmissibilityTwins, HandsBackEveryStageWithItsTitleInOrder) {
  using T = TypeParam;
  Curve<T> input, output;
  NoiseThroughOscillator<T>(4096, input, output);
  // The output raised by 2 and the input starting at 0.5: aligning at 0 adds 0.5 - 2 = -1.5.
  input[0].y = T(0.5);
  for (auto& p : output) p.y = p.y + T(2);
  const T absent = T(kMarker);
  WbObjectArrayTempl<Curve<T>> curves;
  WbObjectArrayTempl<WbString> titles;
  Curve<T> result, phase;
  ASSERT_EQ(Math<T>::ComputeTransmissibility(input, output, T(0), T(0), T(kStep), T(2), 3, T(200), T(0.5), T(1), 0,
                                             result, &curves, &titles, &phase),
            nullptr);
  EXPECT_EQ(
      Texts(titles),
      L"Fitting of output curve with input (-1.5)|Time|\nSampling of input (0 / 0.001)|Time|\n"
      L"Sampling of output (0 / 0.001)|Time|\nAutocorrelation (MATLAB) of input signal|Time|\n"
      L"Intercorrelation (MATLAB) of input signal with output signal|Time|\n"
      L"FFT of Autocorrelation of input signal|Frequency|\n"
      L"FFT of Intercorrelation of input signal with output signal|Frequency|\n"
      L"Restriction of input frequencies|Frequency|\nRestriction of output frequencies|Frequency|\n"
      L"Computation of max input envelop (step=0.5)|Frequency|\n"
      L"Computation of max output envelop (step=0.5)|Frequency|\n"
      L"FFT phase of input signal|Frequency|Angle (degrees)\nFFT phase of output signal|Frequency|Angle (degrees)\n"
      L"Phase difference (output - input)|Frequency|Angle (degrees)\n");
  ASSERT_EQ(curves.GetSize(), 14u);
  // The stages' curves: output at the input's level, lags from 0 (4096 of 8191), ranges, the phase.
  ExpectRows<std::uint64_t>({{curves[1]->GetSize(), 4096},
                             {curves[3]->GetSize(), 4096},
                             {curves[5]->GetSize(), 4096},
                             {curves[13]->GetSize(), phase.GetSize()}});
  ExpectRows<T>({{(*curves[0])[0].y, T(0.5)},
                 {(*curves[3])[0].x, T(0)},
                 {(*curves[7])[0].x, T(2)},
                 {(*curves[7])[curves[7]->GetSize() - 1].x, T(200)}});
  ASSERT_GT(phase.GetSize(), 100u);
  EXPECT_TRUE(phase[0].x >= T(2) && phase[phase.GetSize() - 1].x <= T(200));
  // Output minus input phase, each read at the frequency by a search from the first point.
  for (std::uint64_t k = 0; k < phase.GetSize(); ++k)
    ASSERT_EQ(phase[k].y, ValueAt(*curves[12], phase[k].x) - ValueAt(*curves[11], phase[k].x)) << k;
  // Resampled at 1 Hz from the first frequency kept.
  ASSERT_GT(result.GetSize(), 100u);
  EXPECT_NEAR(result[1].x - result[0].x, 1.0, 1e-4);

  // The direct route, without the optional stages: no fitting, no start, no envelope step.
  titles.RemoveAll();
  ASSERT_EQ(Math<T>::ComputeTransmissibility(input, output, absent, absent, T(kStep), absent, 1, absent, absent, absent,
                                             0, result, nullptr, &titles, nullptr),
            nullptr);
  EXPECT_EQ(Texts(titles),
            L"Sampling of input (0.001)|Time|\nSampling of output (0.001)|Time|\nFFT of input signal|Frequency|\n"
            L"FFT of output signal|Frequency|\nRestriction of input frequencies|Frequency|\n"
            L"Restriction of output frequencies|Frequency|\nComputation of max input envelop|Frequency|\n"
            L"Computation of max output envelop|Frequency|\n");
  // Without bounds the range runs from 0 to the Nyquist frequency, 500 Hz.
  EXPECT_TRUE(result[result.GetSize() - 1].x <= T(500) && result[result.GetSize() - 1].x > T(490));

  // Circular correlations are labelled XU.
  titles.RemoveAll();
  ASSERT_EQ(Math<T>::ComputeTransmissibility(input, output, absent, absent, T(kStep), T(2), 2, T(200), absent, absent,
                                             0, result, nullptr, &titles, nullptr),
            nullptr);
  EXPECT_EQ(Texts(titles).substr(0, 108),
            L"Sampling of input (0.001)|Time|\nSampling of output (0.001)|Time|\nAutocorrelation (XU) of input "
            L"signal|Time|\n");
}

TYPED_TEST(TransmissibilityTwins, RefusesWhatItCannotCompute) {
  using T = TypeParam;
  Curve<T> input, output;
  NoiseThroughOscillator<T>(1024, input, output);
  const T absent = T(kMarker);
  // An error leaves the result untouched.
  const auto refused = [&](const Curve<T>& in, const Curve<T>& out, T outStart, T step, T low, int method, T high,
                           T finalStep, std::uint64_t nfft) {
    Curve<T> result = {ZmPoint2T<T>(T(7), T(8))};
    const std::wstring message =
        Message(Math<T>::ComputeTransmissibility(in, out, absent, outStart, step, low, method, high, absent, finalStep,
                                                 nfft, result, nullptr, nullptr, nullptr));
    EXPECT_TRUE(result.GetSize() == 1 && result[0].y == T(8));
    return message;
  };
  // FFT errors pass through; work beyond the bounds is refused first; a silent input divides by 0.
  const Curve<T> twoPoints = {ZmPoint2T<T>(T(0), T(1)), ZmPoint2T<T>(T(kStep), T(2))};
  Curve<T> longOutput = output, silent = input;
  longOutput.Add(ZmPoint2T<T>(T(400), T(0)));
  for (auto& p : silent) p.y = 0;
  const T a = absent, step = T(kStep);
  ExpectRows<std::wstring>({
      {refused(input, output, a, T(0), a, 1, a, a, 0), L"Unable to sample points of input signal with shift=0"},
      {refused(input, Curve<T>(), T(0.25), step, a, 1, a, a, 0),
       L"Unable to sample points of output signal from abscissa 0.25 with shift=0.001"},
      {refused(input, output, a, step, T(5000), 1, T(6000), a, 0), L"No input signal frequencies in given range"},
      {refused(input, output, a, step, a, 1, a, a, 100),
       L"FFT length 100 is not a power of two between 1 and 4294967296. Can't compute FFT"},
      {refused(twoPoints, twoPoints, a, step, a, 1, a, a, 0), L"Less than 3 points in the window. Can't compute FFT"},
      {refused(twoPoints, twoPoints, a, T(1e-9), a, 1, a, a, 0),
       L"Sampling of input signal at step 1e-09 gives more than 262144 points"},
      {refused(input, longOutput, a, T(0.01), a, 2, a, a, 0),
       L"Sampling of output signal at step 0.01 gives more than 32768 points"},
      {refused(input, output, a, step, a, 1, a, a, 1u << 19), L"FFT length 524288 is larger than 262144"},
      {refused(input, output, a, step, a, 1, a, T(1e-9), 0),
       L"Sampling of the transmissibility at step 1e-09 gives more than 262144 points"},
      {refused(silent, output, a, step, a, 1, a, a, 0),
       L"Unable to form the transmissibility: no input envelope value at the output envelope frequencies"},
  });
  Curve<T> result = {ZmPoint2T<T>(T(7), T(8))};
  // A final step that cannot sample empties the result, without an error.
  ASSERT_EQ(Math<T>::ComputeTransmissibility(input, output, absent, absent, T(kStep), absent, 1, absent, absent, T(-1),
                                             0, result, nullptr, nullptr, nullptr),
            nullptr);
  EXPECT_EQ(result.GetSize(), 0u);
}

}  // namespace
