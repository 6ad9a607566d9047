// Point-to-segment distance (ns per call) and point-to-polyline projection on 1000 vertices
// (us per call) through ZmMathd, each next to a plain loop over raw doubles that does the same
// arithmetic (same roundings, same clamping, same tie rule) without the library's classes and
// input checks. The ratio of the two, in the same run, is the figure of merit.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

#include <zemcalc/zemcalc.h>

namespace {

constexpr std::size_t kSamples = 1024;  // query points, cycled (power of two)
constexpr std::size_t kVertices = 1000;

struct Raw {
  double x, y, z;
};

std::vector<ZmPoint3d> RandomPoints(std::size_t count, unsigned seed) {
  std::mt19937 generator(seed);
  std::uniform_real_distribution<double> coordinate(-10.0, 10.0);
  std::vector<ZmPoint3d> points(count);
  for (ZmPoint3d& p : points) p = ZmPoint3d(coordinate(generator), coordinate(generator), coordinate(generator));
  return points;
}

// A random walk: consecutive vertices about one unit apart.
WbArrayTempl<ZmPoint3d> RandomPolyline(std::size_t count, unsigned seed) {
  std::mt19937 generator(seed);
  std::uniform_real_distribution<double> step(-0.6, 0.6);
  WbArrayTempl<ZmPoint3d> polyline;
  polyline.Reserve(count);
  ZmPoint3d p(0, 0, 0);
  for (std::size_t i = 0; i < count; ++i) {
    polyline.Add(p);
    p = ZmPoint3d(p.x + step(generator), p.y + step(generator), p.z + step(generator));
  }
  return polyline;
}

std::vector<Raw> ToRaw(const ZmPoint3d* points, std::size_t count) {
  std::vector<Raw> raw(count);
  for (std::size_t i = 0; i < count; ++i) raw[i] = {points[i].x, points[i].y, points[i].z};
  return raw;
}

// --- the plain loops

inline double Rounded(double v) { return static_cast<double>(static_cast<float>(v)); }
inline double Dot(const Raw& a, const Raw& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Raw Sub(const Raw& a, const Raw& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline double Length(const Raw& a) { return std::sqrt(Dot(a, a)); }

// Clamped foot on [a, b]; false for a degenerate segment.
inline bool PlainFoot(const Raw& p, const Raw& a, const Raw& b, Raw& foot) {
  const Raw d = Sub(b, a);
  const double dd = Dot(d, d);
  if (!(dd > double(1.0e-14f))) return false;
  const double s = Dot(Sub(p, a), d);
  if (s <= 0) {
    foot = a;
  } else if (s >= dd) {
    foot = b;
  } else {
    const double t = s / dd;
    foot = {a.x + d.x * t, a.y + d.y * t, a.z + d.z * t};
  }
  return true;
}

inline double PlainDistToSegment(const Raw& p, const Raw& a, const Raw& b, Raw& toFoot) {
  Raw foot;
  if (!PlainFoot(p, a, b, foot)) foot = a;
  toFoot = Sub(foot, p);
  return Rounded(Length(toFoot));
}

double PlainProjectedParam(const std::vector<Raw>& line, const Raw& p, Raw& foot) {
  double best = 3.4028234663852886e38, arc = 0, bestArc = 0;
  std::size_t bestStart = 0;
  for (std::size_t i = 1; i < line.size(); ++i) {
    Raw f;
    if (PlainFoot(p, line[i - 1], line[i], f)) {
      const double distance = Rounded(Length(Sub(f, p)));
      if (distance < best) {
        best = distance;
        foot = f;
        bestStart = i - 1;
        bestArc = arc;
      }
    }
    arc += Rounded(Length(Sub(line[i - 1], line[i])));
  }
  if (arc < double(1.0e-6f)) {
    foot = p;
    return 0;
  }
  const double t = bestArc / arc + Rounded(Length(Sub(foot, line[bestStart]))) / arc;
  return t < 0 ? 0 : (t > 1 ? 1 : t);
}

// --- point to segment

void BM_DistToSegment_Library(benchmark::State& state) {
  const std::vector<ZmPoint3d> p = RandomPoints(kSamples, 1), a = RandomPoints(kSamples, 2),
                               b = RandomPoints(kSamples, 3);
  std::size_t i = 0;
  ZmVector3d toFoot;
  for (auto _ : state) {
    benchmark::DoNotOptimize(ZmMathd::DistToSegment(p[i], a[i], b[i], toFoot));
    i = (i + 1) & (kSamples - 1);
  }
}
BENCHMARK(BM_DistToSegment_Library);

void BM_DistToSegment_PlainLoop(benchmark::State& state) {
  const std::vector<ZmPoint3d> pp = RandomPoints(kSamples, 1), aa = RandomPoints(kSamples, 2),
                               bb = RandomPoints(kSamples, 3);
  const std::vector<Raw> p = ToRaw(pp.data(), kSamples), a = ToRaw(aa.data(), kSamples), b = ToRaw(bb.data(), kSamples);
  std::size_t i = 0;
  Raw toFoot;
  for (auto _ : state) {
    benchmark::DoNotOptimize(PlainDistToSegment(p[i], a[i], b[i], toFoot));
    i = (i + 1) & (kSamples - 1);
  }
}
BENCHMARK(BM_DistToSegment_PlainLoop);

// --- point to polyline

void BM_GetProjectedPoint_Library(benchmark::State& state) {
  const WbArrayTempl<ZmPoint3d> line = RandomPolyline(kVertices, 4);
  const std::vector<ZmPoint3d> p = RandomPoints(kSamples, 5);
  std::size_t i = 0;
  ZmPoint3d foot;
  double param = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(ZmMathd::GetProjectedPoint(line, p[i], param, foot));
    benchmark::DoNotOptimize(param);
    i = (i + 1) & (kSamples - 1);
  }
  state.counters["vertices"] = double(kVertices);
}
BENCHMARK(BM_GetProjectedPoint_Library)->Unit(benchmark::kMicrosecond);

void BM_GetProjectedPoint_PlainLoop(benchmark::State& state) {
  const WbArrayTempl<ZmPoint3d> zline = RandomPolyline(kVertices, 4);
  const std::vector<Raw> line = ToRaw(zline.GetData(), kVertices);
  const std::vector<ZmPoint3d> pp = RandomPoints(kSamples, 5);
  const std::vector<Raw> p = ToRaw(pp.data(), kSamples);
  // The plain loop must give the library's answer, bit for bit, or it measures something else.
  for (std::size_t k = 0; k < kSamples; ++k) {
    Raw plainFoot{0, 0, 0};
    ZmPoint3d foot;
    double param = 0;
    ZmMathd::GetProjectedPoint(zline, pp[k], param, foot);
    if (PlainProjectedParam(line, p[k], plainFoot) != param || plainFoot.x != foot.x || plainFoot.y != foot.y ||
        plainFoot.z != foot.z) {
      state.SkipWithError("the plain loop disagrees with GetProjectedPoint");
      return;
    }
  }
  std::size_t i = 0;
  Raw foot{0, 0, 0};
  for (auto _ : state) {
    benchmark::DoNotOptimize(PlainProjectedParam(line, p[i], foot));
    i = (i + 1) & (kSamples - 1);
  }
  state.counters["vertices"] = double(kVertices);
}
BENCHMARK(BM_GetProjectedPoint_PlainLoop)->Unit(benchmark::kMicrosecond);

void BM_ProjOnPolyline_Library(benchmark::State& state) {
  const WbArrayTempl<ZmPoint3d> line = RandomPolyline(kVertices, 4);
  const std::vector<ZmPoint3d> p = RandomPoints(kSamples, 5);
  std::size_t i = 0;
  int segment = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(ZmMathd::ProjOnPolyline(p[i], line, &segment));
    i = (i + 1) & (kSamples - 1);
  }
  state.counters["vertices"] = double(kVertices);
}
BENCHMARK(BM_ProjOnPolyline_Library)->Unit(benchmark::kMicrosecond);

void BM_ProjOnPolyline_PlainLoop(benchmark::State& state) {
  const WbArrayTempl<ZmPoint3d> zline = RandomPolyline(kVertices, 4);
  const std::vector<Raw> line = ToRaw(zline.GetData(), kVertices);
  const std::vector<ZmPoint3d> pp = RandomPoints(kSamples, 5);
  const std::vector<Raw> p = ToRaw(pp.data(), kSamples);
  std::size_t i = 0;
  for (auto _ : state) {
    double best = -1;
    Raw result{0, 0, 0}, toFoot;
    int segment = -1;
    for (std::size_t k = 0; k + 1 < line.size(); ++k) {
      const double d = PlainDistToSegment(p[i], line[k], line[k + 1], toFoot);
      if (segment < 0 || d < best) {
        best = d;
        result = {p[i].x + toFoot.x, p[i].y + toFoot.y, p[i].z + toFoot.z};
        segment = int(k);
      }
    }
    benchmark::DoNotOptimize(result);
    benchmark::DoNotOptimize(segment);
    i = (i + 1) & (kSamples - 1);
  }
  state.counters["vertices"] = double(kVertices);
}
BENCHMARK(BM_ProjOnPolyline_PlainLoop)->Unit(benchmark::kMicrosecond);

}  // namespace
