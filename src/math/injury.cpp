#include <wbcore/WbLocalize.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <new>
#include <vector>

#include "foundation/build_info.h"
#include "zemcalc/ZmMathInjury.h"
#include "zemcalc/ZmUnitDim.h"

ZM_BUILD_INFO(injury)

namespace {

template <class... Args>
const WbErrObj* Fail(const wchar_t* message, const Args&... args) {
  return WbSetError(WbLocalizeStringExW(message, 0), args...);
}

constexpr const wchar_t* kHIC = L"the HIC";
constexpr const wchar_t* kClip = L"the clip level";
constexpr double kGravity = 9.80665;     // m/s^2 in one g
constexpr double kWindowSlack = 1.0e-9;  // relative: a window this much longer still counts
constexpr std::uint64_t kBlock = 64;     // samples per block of the HIC search

int PointNumber(std::uint64_t i) { return static_cast<int>(std::min<std::uint64_t>(i, 0x7fffffff)); }

// The curve in seconds and g.
struct Samples {
  std::vector<double> t, a;
};

// The catalogue's units of length and of time in one meter and one second, for units (time
// seconds when unset; length needed only when `withLength`); false when it cannot tell.
bool UnitsPerSI(const ZmUnitSystem& units, bool withLength, double& perMeter, double& perSecond) {
  ZmUnitSystem to = units;
  if (to.GetUnitTime() == ZmUnitTimeUnset) to.SetUnit(ZmUnitSecond);
  const ZmUnitSystem si(ZmUnitMeter, ZmUnitKilogram, ZmUnitSecond, ZmUnitTempUnset, ZmUnitAngleUnset);
  const ZmUnitDim& dim = withLength ? ZmUnitDimAcceleration : ZmUnitDimTime;
  ZmUnitConverter converter;
  unsigned char needed = 0;
  if (converter.InitFromTo(si, to, needed, &dim) != nullptr || !converter.IsValid(&dim)) return false;
  perSecond = converter.GetFactor(ZmUnitTypeTime);
  perMeter = withLength ? converter.GetFactor(ZmUnitTypeLength) : 1.0;
  return perSecond > 0.0 && std::isfinite(perSecond) && perMeter > 0.0 && std::isfinite(perMeter);
}

template <class T>
const WbErrObj* ReadSamples(const WbArrayTempl<ZmPoint2T<T>>& curve, const ZmUnitSystem& units, unsigned char inG,
                            const wchar_t* what, Samples& s) {
  const std::uint64_t n = curve.GetSize();
  if (n < 2) return Fail(L"Not enough points to compute %s", what);
  double perMeter = 1.0, perSecond = 1.0;
  if (!UnitsPerSI(units, !inG, perMeter, perSecond)) return Fail(L"Unknown unit system. Can't compute %s", what);
  const double seconds = 1.0 / perSecond;
  const double toG = inG ? 1.0 : perSecond * perSecond / perMeter / kGravity;
  try {
    s.t.resize(n);
    s.a.resize(n);
  } catch (const std::bad_alloc&) {
    return Fail(L"Not enough memory to compute %s", what);
  }
  for (std::uint64_t i = 0; i < n; ++i) {
    s.t[i] = static_cast<double>(curve[i].x) * seconds;
    s.a[i] = static_cast<double>(curve[i].y) * toG;
    if (!std::isfinite(s.a[i])) return Fail(L"The value of point %d is not a finite number. Can't compute %s", PointNumber(i), what);
    if (i > 0 && !(s.t[i] > s.t[i - 1])) {
      return Fail(L"The time of point %d does not increase. Can't compute %s", PointNumber(i), what);
    }
  }
  if (!std::isfinite(s.t[0]) || !std::isfinite(s.t[n - 1])) {
    return Fail(L"The time of point %d does not increase. Can't compute %s", 1, what);
  }
  return nullptr;
}

// The best window found so far: value, then the earliest t1, then the earliest t2.
struct Best {
  double value = 0.0;
  std::uint64_t i = 0, j = 0;
  void Offer(double v, std::uint64_t vi, std::uint64_t vj) {
    if (v > value || (v == value && value > 0.0 && (vi < i || (vi == i && vj < j)))) {
      value = v;
      i = vi;
      j = vj;
    }
  }
};

// Every pair i < j of the two blocks within the window.
void ScanBlocks(const Samples& s, const std::vector<double>& integral, std::uint64_t blockI, std::uint64_t blockJ,
                double window, Best& best) {
  const std::uint64_t n = s.t.size();
  const std::uint64_t iEnd = std::min(n, (blockI + 1) * kBlock);
  const std::uint64_t jEnd = std::min(n, (blockJ + 1) * kBlock);
  for (std::uint64_t i = blockI * kBlock; i < iEnd; ++i) {
    for (std::uint64_t j = std::max(i + 1, blockJ * kBlock); j < jEnd; ++j) {
      const double span = s.t[j] - s.t[i];
      if (span > window) break;
      const double area = integral[j] - integral[i];
      if (!(area > 0.0)) continue;
      const double mean = area / span;
      best.Offer(span * mean * mean * std::sqrt(mean), i, j);
    }
  }
}

struct BlockPair {
  double bound;
  std::uint64_t i, j;
};

}  // namespace

template <class T>
const WbErrObj* ZmMathInjuryT<T>::ComputeResultant(const Curve& x, const Curve& y, const Curve& z, Curve& result) {
  const std::uint64_t n = x.GetSize();
  if (y.GetSize() != n || z.GetSize() != n) {
    return Fail(L"The channels have different point counts (%llu, %llu, %llu)", static_cast<unsigned long long>(n),
                static_cast<unsigned long long>(y.GetSize()), static_cast<unsigned long long>(z.GetSize()));
  }
  const double step = n > 1 ? (static_cast<double>(x[n - 1].x) - static_cast<double>(x[0].x)) / static_cast<double>(n - 1) : 0.0;
  const double tolerance = 1.0e-6 * std::fabs(step);
  for (std::uint64_t i = 0; i < n; ++i) {
    const double xi = x[i].x;
    if (!(std::fabs(y[i].x - xi) <= tolerance) || !(std::fabs(z[i].x - xi) <= tolerance)) {
      if (y[i].x == x[i].x && z[i].x == x[i].x) continue;  // equal infinities
      return Fail(L"The abscissa of point %d differs between the channels", PointNumber(i));
    }
  }
  try {
    result.SetSize(n);
  } catch (const std::bad_alloc&) {
    return Fail(L"Not enough memory to compute the resultant");
  }
  for (std::uint64_t i = 0; i < n; ++i) {
    const double a = x[i].y, b = y[i].y, c = z[i].y;
    result[i] = ZmPoint2T<T>(x[i].x, static_cast<T>(std::sqrt((a * a + b * b) + c * c)));
  }
  return nullptr;
}

template <class T>
const WbErrObj* ZmMathInjuryT<T>::ComputeHIC(const Curve& acceleration, double maxWindow, const ZmUnitSystem& units,
                                             unsigned char inG, T& hic, T& t1, T& t2) {
  if (!(maxWindow > 0.0) || !std::isfinite(maxWindow)) {
    return Fail(L"The HIC window %g s is not a positive number", maxWindow);
  }
  Samples s;
  if (const WbErrObj* error = ReadSamples(acceleration, units, inG, kHIC, s)) return error;
  const std::uint64_t n = s.t.size();
  const double window = maxWindow * (1.0 + kWindowSlack);
  Best best;
  try {
    std::vector<double> integral(n, 0.0);  // trapezoids from the first sample
    for (std::uint64_t k = 1; k < n; ++k) {
      integral[k] = integral[k - 1] + (s.t[k] - s.t[k - 1]) * (s.a[k] + s.a[k - 1]) / 2.0;
    }
    const std::uint64_t blocks = (n + kBlock - 1) / kBlock;
    std::vector<double> highest(blocks, -INFINITY), lowestArea(blocks, INFINITY), highestArea(blocks, -INFINITY);
    for (std::uint64_t k = 0; k < n; ++k) {
      highest[k / kBlock] = std::max(highest[k / kBlock], s.a[k]);
      lowestArea[k / kBlock] = std::min(lowestArea[k / kBlock], integral[k]);
      highestArea[k / kBlock] = std::max(highestArea[k / kBlock], integral[k]);
    }
    std::vector<BlockPair> pairs;
    for (std::uint64_t bi = 0; bi < blocks; ++bi) {
      const double start = s.t[bi * kBlock];
      const double iLast = s.t[std::min(n, (bi + 1) * kBlock) - 1];
      double peak = -INFINITY;
      for (std::uint64_t bj = bi; bj < blocks && s.t[bj * kBlock] - iLast <= window; ++bj) {
        peak = std::max(peak, highest[bj]);
        const double area = highestArea[bj] - lowestArea[bi];
        if (!(peak > 0.0) || !(area > 0.0)) continue;
        // A mean never exceeds the highest sample, a window never spans more than the two
        // blocks; and HIC = area^2.5 / span^1.5, with the area at most the spread of the
        // integral between the blocks and, for blocks apart, the span at least their gap.
        const double span = std::min(window, s.t[std::min(n, (bj + 1) * kBlock) - 1] - start);
        double bound = span * peak * peak * std::sqrt(peak);
        const double gap = s.t[bj * kBlock] - iLast;
        if (gap > 0.0) bound = std::min(bound, area * area * std::sqrt(area) / (gap * std::sqrt(gap)));
        // The slack covers the rounding of the bound and of the values it bounds.
        pairs.push_back({bound * (1.0 + 1.0e-9), bi, bj});
      }
    }
    std::sort(pairs.begin(), pairs.end(), [](const BlockPair& a, const BlockPair& b) { return a.bound > b.bound; });
    for (const BlockPair& p : pairs) {
      if (p.bound < best.value) break;
      ScanBlocks(s, integral, p.i, p.j, window, best);
    }
  } catch (const std::bad_alloc&) {
    return Fail(L"Not enough memory to compute %s", kHIC);
  }
  hic = static_cast<T>(best.value);
  t1 = acceleration[best.i].x;
  t2 = acceleration[best.j].x;
  return nullptr;
}

template <class T>
const WbErrObj* ZmMathInjuryT<T>::ComputeClipLevel(const Curve& acceleration, double duration,
                                                   const ZmUnitSystem& units, unsigned char inG, T& level) {
  if (!(duration > 0.0) || !std::isfinite(duration)) {
    return Fail(L"The clip duration %g s is not a positive number", duration);
  }
  Samples s;
  if (const WbErrObj* error = ReadSamples(acceleration, units, inG, kClip, s)) return error;
  const std::uint64_t n = s.t.size();
  const double lasts = s.t[n - 1] - s.t[0];
  if (lasts < duration) return Fail(L"The curve lasts %g s, less than the clip duration %g s", lasts, duration);
  // Sweeping the level down: a rising or falling segment adds time at the rate
  // duration / (high - low) per unit of level between its end values, a flat one all of its
  // duration at once at its level.
  struct Event {
    double level, rate, jump;
  };
  double found = 0.0;
  try {
    std::vector<Event> events;
    events.reserve(2 * n);
    for (std::uint64_t k = 1; k < n; ++k) {
      const double d = s.t[k] - s.t[k - 1];
      const double high = std::max(s.a[k], s.a[k - 1]), low = std::min(s.a[k], s.a[k - 1]);
      if (high > low) {
        events.push_back({high, d / (high - low), 0.0});
        events.push_back({low, -d / (high - low), 0.0});
      } else {
        events.push_back({high, 0.0, d});
      }
    }
    std::sort(events.begin(), events.end(), [](const Event& a, const Event& b) { return a.level > b.level; });
    double time = 0.0, rate = 0.0, at = events.front().level;
    found = events.back().level;
    for (std::uint64_t e = 0; e < events.size();) {
      const double next = events[e].level;
      const double reached = time + rate * (at - next);
      if (reached >= duration && rate > 0.0) {
        found = at - (duration - time) / rate;
        break;
      }
      time = reached;
      at = next;
      for (; e < events.size() && events[e].level == next; ++e) {
        rate += events[e].rate;
        time += events[e].jump;
      }
      if (time >= duration) {
        found = next;
        break;
      }
    }
  } catch (const std::bad_alloc&) {
    return Fail(L"Not enough memory to compute %s", kClip);
  }
  level = static_cast<T>(found);
  return nullptr;
}

template class ZmMathInjuryT<double>;
template class ZmMathInjuryT<float>;
