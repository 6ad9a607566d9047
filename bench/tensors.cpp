// Principal values (and values with directions) of 10^6 random symmetric 3x3 tensors through
// ZmMathd, next to a reference symmetric eigen-solver doing the same work on the same data in
// the same run: Eigen's SelfAdjointEigenSolver (Householder tridiagonalisation and implicit QL,
// the general-purpose reference) and its computeDirect (a closed-form cubic like ours), when
// Eigen is installed. Each benchmark reports tensors per second; the time per iteration is the
// time for all 10^6 tensors.
#include <benchmark/benchmark.h>
#include <zemcalc/zemcalc.h>

#include <random>
#include <vector>

#ifdef ZEMCALC_BENCH_WITH_EIGEN
#include <Eigen/Eigenvalues>
#endif

namespace {

constexpr int kTensors = 1000000;

struct Tensor {
  double xx, yy, zz, xy, yz, xz;
};

const std::vector<Tensor>& Tensors() {
  static const std::vector<Tensor> tensors = [] {
    std::mt19937_64 engine(7);
    std::uniform_real_distribution<double> component(-500.0, 500.0);
    std::vector<Tensor> t(kTensors);
    for (Tensor& c : t)
      c = {component(engine), component(engine), component(engine),
           component(engine), component(engine), component(engine)};
    return t;
  }();
  return tensors;
}

void Finish(benchmark::State& state) { state.SetItemsProcessed(state.iterations() * kTensors); }

void BM_ZmMathValues(benchmark::State& state) {
  const std::vector<Tensor>& tensors = Tensors();
  for (auto _ : state) {
    double sum = 0;
    for (const Tensor& t : tensors) {
      double s1, s2, s3;
      ZmMathd::Tensor3DToMainValues(t.xx, t.yy, t.zz, t.xy, t.yz, t.xz, &s1, &s2, &s3);
      sum += s1 + s2 + s3;
    }
    benchmark::DoNotOptimize(sum);
  }
  Finish(state);
}
BENCHMARK(BM_ZmMathValues)->Unit(benchmark::kMillisecond);

void BM_ZmMathValuesAndDirections(benchmark::State& state) {
  const std::vector<Tensor>& tensors = Tensors();
  for (auto _ : state) {
    double sum = 0;
    for (const Tensor& t : tensors) {
      double s1, s2, s3;
      ZmVector3d d1, d2, d3;
      ZmMathd::Tensor3DToVectors3D(t.xx, t.yy, t.zz, t.xy, t.yz, t.xz, &s1, &s2, &s3, &d1, &d2, &d3);
      sum += s1 + d1.x + d2.y + d3.z;
    }
    benchmark::DoNotOptimize(sum);
  }
  Finish(state);
}
BENCHMARK(BM_ZmMathValuesAndDirections)->Unit(benchmark::kMillisecond);

#ifdef ZEMCALC_BENCH_WITH_EIGEN
Eigen::Matrix3d ToMatrix(const Tensor& t) {
  Eigen::Matrix3d m;
  m << t.xx, t.xy, t.xz, t.xy, t.yy, t.yz, t.xz, t.yz, t.zz;
  return m;
}

template <bool kDirect>
void EigenSolve(benchmark::State& state, int options) {
  const std::vector<Tensor>& tensors = Tensors();
  Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> solver;
  for (auto _ : state) {
    double sum = 0;
    for (const Tensor& t : tensors) {
      if (kDirect) {
        solver.computeDirect(ToMatrix(t), options);
      } else {
        solver.compute(ToMatrix(t), options);
      }
      sum += solver.eigenvalues()[0];
      if (options == Eigen::ComputeEigenvectors) sum += solver.eigenvectors()(0, 0);
    }
    benchmark::DoNotOptimize(sum);
  }
  Finish(state);
}

void BM_EigenIterativeValues(benchmark::State& state) { EigenSolve<false>(state, Eigen::EigenvaluesOnly); }
void BM_EigenIterativeValuesAndDirections(benchmark::State& state) {
  EigenSolve<false>(state, Eigen::ComputeEigenvectors);
}
void BM_EigenDirectValues(benchmark::State& state) { EigenSolve<true>(state, Eigen::EigenvaluesOnly); }
void BM_EigenDirectValuesAndDirections(benchmark::State& state) { EigenSolve<true>(state, Eigen::ComputeEigenvectors); }
BENCHMARK(BM_EigenIterativeValues)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EigenIterativeValuesAndDirections)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EigenDirectValues)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EigenDirectValuesAndDirections)->Unit(benchmark::kMillisecond);
#endif

}  // namespace
