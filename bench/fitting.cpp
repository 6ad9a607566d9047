// Fits over 10^6 points through ZmMathd next to baselines doing comparable work on the same data
// in the same run: for the plane, a plain one-pass loop that sums the centroid and the
// covariance and solves the 3x3 eigenproblem with Eigen (when installed); for the algebraic
// circle, a plain loop summing the same centred moments (the part of the Taubin fit that grows
// with the points); for the rigid move, Eigen's umeyama on the same matched sets. Each
// benchmark reports points (or pairs) per second; the time per iteration covers all 10^6.
#include <benchmark/benchmark.h>
#include <zemcalc/zemcalc.h>

#include <cmath>
#include <random>
#include <vector>

#ifdef ZEMCALC_BENCH_WITH_EIGEN
#include <Eigen/Eigenvalues>
#include <Eigen/Geometry>
#endif

namespace {

constexpr int kPoints = 1000000;

// A noisy disc of radius 50 tilted out of the XY plane, 1000 away from the origin.
const WbArrayTempl<ZmPoint3d>& Plate() {
  static const WbArrayTempl<ZmPoint3d> points = [] {
    std::mt19937_64 engine(11);
    std::uniform_real_distribution<double> u(-50.0, 50.0), noise(-0.01, 0.01);
    WbArrayTempl<ZmPoint3d> p;
    p.Reserve(kPoints);
    for (int i = 0; i < kPoints; ++i) {
      const double x = u(engine), y = u(engine);
      p.Add(ZmPoint3d(1000 + x, 1000 + 0.6 * y, 1000 + 0.8 * y + noise(engine)));
    }
    return p;
  }();
  return points;
}

// A noisy quarter of the circle of radius 20 about (3, 4).
const WbArrayTempl<ZmPoint2d>& Arc() {
  static const WbArrayTempl<ZmPoint2d> points = [] {
    std::mt19937_64 engine(12);
    std::uniform_real_distribution<double> angle(0.0, 1.5707963267948966), noise(-0.05, 0.05);
    WbArrayTempl<ZmPoint2d> p;
    p.Reserve(kPoints);
    for (int i = 0; i < kPoints; ++i) {
      const double t = angle(engine), r = 20 + noise(engine);
      p.Add(ZmPoint2d(3 + r * std::cos(t), 4 + r * std::sin(t)));
    }
    return p;
  }();
  return points;
}

// The plate moved by a rotation about (1, 2, 2) and a shift, with noise.
const WbArrayTempl<ZmPoint3d>& Moved() {
  static const WbArrayTempl<ZmPoint3d> points = [] {
    std::mt19937_64 engine(13);
    std::uniform_real_distribution<double> noise(-0.01, 0.01);
    ZmPoint3d axis(1, 2, 2);
    WbArrayTempl<ZmPoint3d> p;
    p.Reserve(kPoints);
    for (const ZmPoint3d& q : Plate()) {
      ZmPoint3d r = q;
      r.Rotate(ZmPoint3d(0, 0, 0), ZmVector3d(axis) * (1.0 / 3.0), 40.0);
      p.Add(r + ZmVector3d(5 + noise(engine), -7 + noise(engine), 2 + noise(engine)));
    }
    return p;
  }();
  return points;
}

void Finish(benchmark::State& state) { state.SetItemsProcessed(state.iterations() * kPoints); }

void BM_FitPlane(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(ZmMathd::FitPlane(Plate()).normal);
  Finish(state);
}
BENCHMARK(BM_FitPlane)->Unit(benchmark::kMillisecond);

void BM_FitCircleTaubin(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(ZmMathd::FitCircle(Arc(), ZmCircleFitTaubin).radius);
  Finish(state);
}
BENCHMARK(BM_FitCircleTaubin)->Unit(benchmark::kMillisecond);

void BM_FitCircleGeometric(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(ZmMathd::FitCircle(Arc(), ZmCircleFitGeometric).radius);
  Finish(state);
}
BENCHMARK(BM_FitCircleGeometric)->Unit(benchmark::kMillisecond);

void BM_FitRigid(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(ZmMathd::FitRigid(Plate(), Moved()).translation);
  Finish(state);
}
BENCHMARK(BM_FitRigid)->Unit(benchmark::kMillisecond);

// Baseline: the circle's centred moments in two plain passes (mean, then the six sums).
void BM_CircleMomentsLoop(benchmark::State& state) {
  const WbArrayTempl<ZmPoint2d>& points = Arc();
  for (auto _ : state) {
    double sx = 0, sy = 0;
    for (const ZmPoint2d& p : points) sx += p.x, sy += p.y;
    const double mx = sx / kPoints, my = sy / kPoints;
    double m[6] = {0, 0, 0, 0, 0, 0};
    for (const ZmPoint2d& p : points) {
      const double x = p.x - mx, y = p.y - my, z = x * x + y * y;
      m[0] += x * x, m[1] += y * y, m[2] += x * y, m[3] += x * z, m[4] += y * z, m[5] += z * z;
    }
    benchmark::DoNotOptimize(m);
  }
  Finish(state);
}
BENCHMARK(BM_CircleMomentsLoop)->Unit(benchmark::kMillisecond);

#ifdef ZEMCALC_BENCH_WITH_EIGEN
// Baseline: one pass of raw sums (centroid and second moments), then Eigen's 3x3 solver.
void BM_PlaneLoopEigen(benchmark::State& state) {
  const WbArrayTempl<ZmPoint3d>& points = Plate();
  for (auto _ : state) {
    Eigen::Vector3d sum = Eigen::Vector3d::Zero();
    Eigen::Matrix3d second = Eigen::Matrix3d::Zero();
    for (const ZmPoint3d& p : points) {
      const Eigen::Vector3d v(p.x, p.y, p.z);
      sum += v;
      second.noalias() += v * v.transpose();
    }
    const Eigen::Vector3d mean = sum / kPoints;
    const Eigen::Matrix3d cov = second / kPoints - mean * mean.transpose();
    Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> solver(cov);
    benchmark::DoNotOptimize(solver.eigenvectors()(0, 0));
  }
  Finish(state);
}
BENCHMARK(BM_PlaneLoopEigen)->Unit(benchmark::kMillisecond);

void BM_EigenUmeyama(benchmark::State& state) {
  Eigen::Matrix3Xd from(3, kPoints), to(3, kPoints);
  for (int i = 0; i < kPoints; ++i) {
    from.col(i) << Plate()[i].x, Plate()[i].y, Plate()[i].z;
    to.col(i) << Moved()[i].x, Moved()[i].y, Moved()[i].z;
  }
  for (auto _ : state) benchmark::DoNotOptimize(Eigen::umeyama(from, to, false)(0, 3));
  Finish(state);
}
BENCHMARK(BM_EigenUmeyama)->Unit(benchmark::kMillisecond);
#endif

}  // namespace
