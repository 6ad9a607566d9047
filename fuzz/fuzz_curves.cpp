// The curve statics (interpolation both ways, resampling, extrapolation, range extraction,
// envelopes, convex shape) over curves with any abscissas and values, in both precisions.
// Sampling steps are kept to at least 1/1024 of the abscissa span so that the output stays
// small; the library's own bound on larger outputs is tested elsewhere.
#include <zemcalc/ZmPoint2.h>

#include <cmath>
#include <cstdlib>

#include "fuzz_input.h"

namespace {

template <class T>
void Fuzz(FuzzedDataProvider& in) {
  using Point = ZmPoint2T<T>;
  WbArrayTempl<Point> curve = fuzz::Curve<T>(in, 512);
  const std::uint64_t n = in.ConsumeBool() ? curve.GetSize() : in.ConsumeIntegralInRange<std::uint64_t>(0, 600);
  const Point* points = n <= curve.GetSize() ? curve.GetData() : nullptr;
  int index = -7;
  const T x = fuzz::Number<T>(in);
  Point::InterpolateOnX(points, n, x, index, in.ConsumeIntegralInRange<int>(-2, 600));
  Point::InterpolateOnY(points, n, x, index, in.ConsumeIntegralInRange<int>(-2, 600));
  WbArrayTempl<T> xs;
  if (Point::InterpolateOnYn(points, n, x, xs) != xs.GetSize()) std::abort();
  WbArrayTempl<Point> out;
  WbArrayTempl<int> indices;
  switch (in.ConsumeIntegralInRange<int>(0, 4)) {
    case 0: {
      T span = 0;
      for (std::uint64_t i = 0; i < curve.GetSize(); ++i)
        if (std::isfinite(curve[i].x)) span = std::fmax(span, std::fabs(curve[i].x));
      const T step = span / T(in.ConsumeIntegralInRange<int>(1, 1024));
      if (step > 0 && Point::SampleX(points, n, step, out, fuzz::Number<T>(in)) != out.GetSize()) std::abort();
      break;
    }
    case 1: {
      const unsigned char linear = in.ConsumeBool();
      Point::ExtrapolateOnX(curve, x, linear, fuzz::Number<T>(in));
      break;
    }
    case 2: {
      const T xmin = fuzz::Number<T>(in), xmax = fuzz::Number<T>(in);
      if (Point::ExtractXRange(curve, xmin, xmax, fuzz::Number<T>(in)) != curve.GetSize()) std::abort();
      break;
    }
    case 3: {
      const unsigned char upper = in.ConsumeBool();
      Point::EvaluateEnvelop(curve, upper, out, fuzz::Number<T>(in));
      Point::EvaluateSinusoidEnvelop(curve, upper, out, in.ConsumeBool() ? &indices : nullptr);
      break;
    }
    default: {
      const std::uint64_t count = Point::EvaluateConvexShape(curve, out, &indices);
      if (count != out.GetSize() || count != indices.GetSize()) std::abort();
      for (std::uint64_t i = 0; i < count; ++i)
        if (indices[i] < 0 || static_cast<std::uint64_t>(indices[i]) >= curve.GetSize()) std::abort();
      break;
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider in(data, size);
  if (in.ConsumeBool())
    Fuzz<double>(in);
  else
    Fuzz<float>(in);
  return 0;
}
