#include <algorithm>
#include <cmath>
#include <cstdint>
#include <new>

#include "filters/filter_errors.h"
#include "foundation/build_info.h"
#include "zemcalc/ZmFilter.h"

ZM_BUILD_INFO(sliding_window)

using zm::filter::Fail;

namespace {

// The broken line through the points of a curve (abscissae finite and non-decreasing, at least
// one point), read in double whatever the points' precision.
template <class P>
class BrokenLine {
 public:
  BrokenLine(const P* points, std::uint64_t count) : m_points(points), m_last(count - 1) {}

  double X(std::uint64_t i) const { return static_cast<double>(m_points[i].x); }
  double Y(std::uint64_t i) const { return static_cast<double>(m_points[i].y); }
  double FirstX() const { return X(0); }
  double LastX() const { return X(m_last); }
  double FirstY() const { return Y(0); }
  double LastY() const { return Y(m_last); }

  // Slope of the first or last segment; 0 when it has no length or there is none.
  double FirstSlope() const { return m_last > 0 && X(1) > X(0) ? (Y(1) - Y(0)) / (X(1) - X(0)) : 0.0; }
  double LastSlope() const {
    const std::uint64_t i = m_last;
    return i > 0 && X(i) > X(i - 1) ? (Y(i) - Y(i - 1)) / (X(i) - X(i - 1)) : 0.0;
  }

  // Integral over [u, v] (u <= v) of the line continued by its end values beyond its ends:
  // rectangles outside, exact trapezoids over the parts of segments inside.
  double Integral(double u, double v) const {
    double total = 0.0;
    const double first = FirstX();
    const double last = LastX();
    if (u < first) total += FirstY() * (std::min(v, first) - u);
    const double lo = std::max(u, first);
    const double hi = std::min(v, last);
    for (std::uint64_t i = SegmentAt(lo); lo < hi && i < m_last && X(i) < hi; ++i) {
      const double a = std::max(X(i), lo);
      const double b = std::min(X(i + 1), hi);
      if (b > a) total += (b - a) * (ValueOnSegment(i, a) + ValueOnSegment(i, b)) * 0.5;
    }
    if (v > last) total += LastY() * (v - std::max(u, last));
    return total;
  }

 private:
  // The last segment that starts at or before t (0 before the line).
  std::uint64_t SegmentAt(double t) const {
    const P* end = m_points + m_last + 1;
    const P* after = std::upper_bound(m_points, end, t, [](double value, const P& p) {
      return value < static_cast<double>(p.x);
    });
    return after == m_points ? 0 : static_cast<std::uint64_t>(after - m_points) - 1;
  }

  double ValueOnSegment(std::uint64_t i, double t) const {
    if (t == X(i)) return Y(i);
    if (t == X(i + 1)) return Y(i + 1);
    return Y(i) + (Y(i + 1) - Y(i)) * ((t - X(i)) / (X(i + 1) - X(i)));
  }

  const P* m_points;
  std::uint64_t m_last;
};

// Integral over [u, v] (u <= v, both on one side of the line) of its continuation beyond the
// left end, or beyond the right end when right is set.
template <class P>
double Continuation(const BrokenLine<P>& line, Extrapolation extrapolation, bool right, double u, double v) {
  const double endX = right ? line.LastX() : line.FirstX();
  const double endY = right ? line.LastY() : line.FirstY();
  switch (extrapolation) {
    case ZmExtrapolationZeros:
      return 0.0;
    case ZmExtrapolationConstant:
      return endY * (v - u);
    case ZmExtrapolationLinear: {
      const double slope = right ? line.LastSlope() : line.FirstSlope();
      return (v - u) * ((endY + slope * (u - endX)) + (endY + slope * (v - endX))) * 0.5;
    }
    case ZmExtrapolationReflection:
      // y(endX + s) = 2*endY - y(endX - s): the mirrored part lies on the line.
      return 2.0 * endY * (v - u) - line.Integral(2.0 * endX - v, 2.0 * endX - u);
  }
  return 0.0;
}

// The mean of the continued line over [a, b], divided by the nominal width.
template <class P>
double WindowMean(const BrokenLine<P>& line, Extrapolation extrapolation, double a, double b, double width) {
  const double first = line.FirstX();
  const double last = line.LastX();
  double total = 0.0;
  if (a < first) total += Continuation(line, extrapolation, false, a, std::min(b, first));
  const double lo = std::max(a, first);
  const double hi = std::min(b, last);
  if (lo < hi) total += line.Integral(lo, hi);
  if (b > last) total += Continuation(line, extrapolation, true, std::max(a, last), b);
  return total / width;
}

}  // namespace

template <class Base>
ZmFilterSWAT<Base>::ZmFilterSWAT(double width, double before)
    : m_width(width), m_before(before), m_extrapolation(ZmExtrapolationReflection) {}

template <class Base>
const WbErrObj* ZmFilterSWAT<Base>::CheckCurve(const Curve& in) const {
  if (!(m_width > 0.0) || !std::isfinite(m_width)) return Fail(zm::filter::kInvalidWidth, m_width);
  if (!(m_before >= 0.0 && m_before <= 1.0)) return Fail(zm::filter::kInvalidBefore, m_before);
  if (!zm::filter::IsKnownExtrapolation(m_extrapolation)) {
    return Fail(zm::filter::kUnknownExtrapolation, static_cast<int>(m_extrapolation));
  }
  for (std::uint64_t i = 0; i < in.GetSize(); ++i) {
    if (!std::isfinite(in[i].x)) return Fail(zm::filter::kAbscissaNotFinite, static_cast<unsigned long long>(i));
    if (i > 0 && in[i].x < in[i - 1].x) return Fail(zm::filter::kAbscissaDecreases, static_cast<unsigned long long>(i));
  }
  return nullptr;
}

template <class Base>
const WbErrObj* ZmFilterSWAT<Base>::Compute(const Curve& in, Curve& out) {
  // Every window reads the input values, so a curve filtered into itself is read from a copy.
  Curve copy;
  const Curve* source = &in;
  try {
    if (&in == &out) {
      copy = in;
      source = &copy;
    }
    out = in;
  } catch (const std::bad_alloc&) {
    return Fail(zm::filter::kNotEnoughMemory);
  }
  if (const WbErrObj* error = CheckCurve(*source)) return error;
  if (source->IsEmpty()) return nullptr;
  const BrokenLine<typename Base::Point> line(source->GetData(), source->GetSize());
  for (std::uint64_t j = 0; j < out.GetSize(); ++j) {
    const double x = static_cast<double>(out[j].x);
    const double a = x - m_before * m_width;
    const double b = x + (1.0 - m_before) * m_width;
    out[j].y = static_cast<typename Base::Scalar>(WindowMean(line, m_extrapolation, a, b, m_width));
  }
  return nullptr;
}

template class ZmFilterSWAT<ZmFilterd>;
template class ZmFilterSWAT<ZmFilterf>;

WB_IMPLEMENT_DYNAMIC(ZmFilterSWAd, ZmFilterd, new ZmFilterSWAd)
WB_IMPLEMENT_DYNAMIC(ZmFilterSWAf, ZmFilterf, new ZmFilterSWAf)
