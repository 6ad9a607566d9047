// Element metrics over 10^6 elements through the batch form of ZmMeshd, next to a plain loop
// of the same formula over the same arrays in the same run (the ceiling of a compiled loop
// without the batch's checks); natural coordinates in a hexahedron; and the penetration search
// of two facing sheets of 10^6 nodes and 10^6 segments. Items per second are elements (points,
// nodes) per second.
#include <benchmark/benchmark.h>
#include <zemcalc/zemcalc.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

constexpr int kElements = 1000000;

struct Mesh {
  std::vector<ZmPoint3d> nodes;
  std::vector<ZmElementType> types;
  std::vector<std::int64_t> connectivity;
};

// Distinct, mildly distorted elements: each element has nodes of its own.
Mesh MakeMesh(ZmElementType type, const std::vector<ZmPoint3d>& reference) {
  Mesh m;
  std::mt19937_64 rng(3);
  std::uniform_real_distribution<double> d(-0.15, 0.15), shift(-100.0, 100.0);
  m.types.assign(kElements, type);
  for (int e = 0; e < kElements; ++e) {
    const ZmPoint3d origin(shift(rng), shift(rng), shift(rng));
    for (const ZmPoint3d& p : reference) {
      m.connectivity.push_back(static_cast<std::int64_t>(m.nodes.size()));
      m.nodes.emplace_back(origin.x + p.x + d(rng), origin.y + p.y + d(rng), origin.z + p.z + d(rng));
    }
  }
  return m;
}

const Mesh& Quads() {
  static const Mesh m = MakeMesh(ZmElementQuad4, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}});
  return m;
}
const Mesh& Tets() {
  static const Mesh m = MakeMesh(ZmElementTet4, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
  return m;
}
const Mesh& Hexes() {
  static const Mesh m = MakeMesh(ZmElementHex8, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0},
                                                 {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}});
  return m;
}

void Batch(benchmark::State& state, const Mesh& m, ZmElementMetric metric) {
  std::vector<double> values(kElements);
  for (auto _ : state) {
    ZmMeshd::ComputeMeshMetric(metric, m.nodes.data(), m.nodes.size(), m.types.data(), m.connectivity.data(),
                               kElements, values.data());
    benchmark::DoNotOptimize(values.data());
  }
  state.SetItemsProcessed(state.iterations() * kElements);
}

void BM_QuadScaledJacobian(benchmark::State& s) { Batch(s, Quads(), ZmMetricScaledJacobian); }
void BM_QuadWarpageVerdict(benchmark::State& s) { Batch(s, Quads(), ZmMetricWarpageVerdict); }
void BM_QuadWarpingAngle(benchmark::State& s) { Batch(s, Quads(), ZmMetricWarpingAngle); }
void BM_QuadCharacteristicLength(benchmark::State& s) { Batch(s, Quads(), ZmMetricCharacteristicLength); }
void BM_TetVolume(benchmark::State& s) { Batch(s, Tets(), ZmMetricVolume); }
void BM_HexScaledJacobian(benchmark::State& s) { Batch(s, Hexes(), ZmMetricScaledJacobian); }
void BM_HexVolume(benchmark::State& s) { Batch(s, Hexes(), ZmMetricVolume); }
void BM_HexCharacteristicLength(benchmark::State& s) { Batch(s, Hexes(), ZmMetricCharacteristicLength); }

// Plain loops of the same formulas: the quad scaled Jacobian (corner areas about the unit
// normal of the principal axes over the adjacent edge lengths) and the hex scaled Jacobian
// (nine frames), written inline over the same arrays.
struct V {
  double x, y, z;
};
inline V Sub(const ZmPoint3d& a, const ZmPoint3d& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline V Cross(V a, V b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
inline double Dot(V a, V b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

void BM_PlainLoopQuadScaledJacobian(benchmark::State& state) {
  const Mesh& m = Quads();
  std::vector<double> values(kElements);
  for (auto _ : state) {
    for (int e = 0; e < kElements; ++e) {
      const std::int64_t* c = &m.connectivity[4 * static_cast<std::size_t>(e)];
      const ZmPoint3d* p[4] = {&m.nodes[c[0]], &m.nodes[c[1]], &m.nodes[c[2]], &m.nodes[c[3]]};
      const V edge[4] = {Sub(*p[1], *p[0]), Sub(*p[2], *p[1]), Sub(*p[3], *p[2]), Sub(*p[0], *p[3])};
      V n = Cross({edge[0].x - edge[2].x, edge[0].y - edge[2].y, edge[0].z - edge[2].z},
                  {edge[1].x - edge[3].x, edge[1].y - edge[3].y, edge[1].z - edge[3].z});
      const double ln = std::sqrt(Dot(n, n));
      n = {n.x / ln, n.y / ln, n.z / ln};
      double best = 1e30;
      for (int i = 0; i < 4; ++i) {
        const int j = (i + 3) % 4;
        const double area = Dot(n, Cross(edge[j], edge[i]));
        best = std::min(best, area / std::sqrt(Dot(edge[i], edge[i]) * Dot(edge[j], edge[j])));
      }
      values[e] = best;
    }
    benchmark::DoNotOptimize(values.data());
  }
  state.SetItemsProcessed(state.iterations() * kElements);
}

void BM_PlainLoopHexScaledJacobian(benchmark::State& state) {
  static const int corners[8][4] = {{0, 1, 3, 4}, {1, 2, 0, 5}, {2, 3, 1, 6}, {3, 0, 2, 7},
                                    {4, 7, 5, 0}, {5, 4, 6, 1}, {6, 5, 7, 2}, {7, 6, 4, 3}};
  const Mesh& m = Hexes();
  std::vector<double> values(kElements);
  for (auto _ : state) {
    for (int e = 0; e < kElements; ++e) {
      const std::int64_t* c = &m.connectivity[8 * static_cast<std::size_t>(e)];
      double best = 1e30;
      for (const auto& k : corners) {
        const V a = Sub(m.nodes[c[k[1]]], m.nodes[c[k[0]]]), b = Sub(m.nodes[c[k[2]]], m.nodes[c[k[0]]]),
                d = Sub(m.nodes[c[k[3]]], m.nodes[c[k[0]]]);
        best = std::min(best, Dot(a, Cross(b, d)) / std::sqrt(Dot(a, a) * Dot(b, b) * Dot(d, d)));
      }
      values[e] = best;
    }
    benchmark::DoNotOptimize(values.data());
  }
  state.SetItemsProcessed(state.iterations() * kElements);
}

void BM_HexNaturalCoordinates(benchmark::State& state) {
  const Mesh& m = Hexes();
  std::mt19937_64 rng(9);
  std::uniform_real_distribution<double> u(-0.9, 0.9);
  std::vector<ZmPoint3d> points(kElements);
  for (int e = 0; e < kElements; ++e)
    points[e] = ZmMeshd::ComputePointAtNatural(ZmElementHex8, &m.nodes[8 * static_cast<std::size_t>(e)],
                                               ZmPoint3d(u(rng), u(rng), u(rng)));
  for (auto _ : state) {
    double sum = 0;
    for (int e = 0; e < kElements; ++e)
      sum += ZmMeshd::ComputeNaturalCoordinates(ZmElementHex8, &m.nodes[8 * static_cast<std::size_t>(e)], points[e])
                 .natural.x;
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * kElements);
}

// Two facing sheets: quads of size 1 at z = 0 (n x n segments) and an offset grid of nodes at
// z = 0.05 (n x n nodes); every node penetrates (thickness 0.2 on both).
void BM_PenetrationSearch(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::vector<ZmPoint3d> nodes;
  std::vector<ZmElementType> types;
  std::vector<std::int64_t> connectivity;
  for (int j = 0; j <= n; ++j)
    for (int i = 0; i <= n; ++i) nodes.emplace_back(i, j, 0);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) {
      const std::int64_t a = j * (n + 1) + i;
      connectivity.insert(connectivity.end(), {a, a + 1, a + n + 2, a + n + 1});
      types.push_back(ZmElementQuad4);
    }
  std::vector<std::uint64_t> query;
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) {
      query.push_back(nodes.size());
      nodes.emplace_back(i + 0.5, j + 0.5, 0.05);
    }
  std::vector<double> thickness(nodes.size(), 0.2), segmentThickness(types.size(), 0.2);
  std::uint64_t found = 0;
  for (auto _ : state) {
    WbArrayTempl<ZmPenetrationT<double>> out;
    found = ZmMeshd::FindPenetrations(nodes.data(), nodes.size(), query.data(), query.size(), thickness.data(),
                                      types.data(), connectivity.data(), types.size(), segmentThickness.data(), out);
  }
  state.counters["penetrations"] = double(found);
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(query.size()));
}

BENCHMARK(BM_QuadScaledJacobian)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainLoopQuadScaledJacobian)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_QuadWarpageVerdict)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_QuadWarpingAngle)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_QuadCharacteristicLength)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TetVolume)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HexScaledJacobian)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainLoopHexScaledJacobian)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HexVolume)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HexCharacteristicLength)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HexNaturalCoordinates)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PenetrationSearch)->Arg(250)->Arg(500)->Arg(1000)->Unit(benchmark::kMillisecond);

}  // namespace
