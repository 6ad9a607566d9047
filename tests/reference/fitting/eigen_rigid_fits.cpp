// Writes rigid_fits.txt: matched point sets (a measured part and its nominal points) with the
// rotation and translation that Eigen's umeyama (without scaling) finds to move the first onto
// the second. The last case is a mirror image, for which the best proper rotation is wanted.
// Run by hand when the cases change (CI reads the committed table and does not need Eigen):
//   g++ -O2 -std=c++17 -I/usr/include/eigen3 eigen_rigid_fits.cpp -o gen && ./gen > rigid_fits.txt
#include <Eigen/Geometry>
#include <cstdio>
#include <random>
#include <tuple>

int main() {
  std::mt19937_64 rng(20261125);
  std::normal_distribution<double> gauss(0.0, 1.0);
  // Point count, spread, noise, offset, and whether the fixed points are a mirror image.
  const std::tuple<int, double, double, double, bool> cases[] = {{4, 10, 0.01, 0, false},   {10, 100, 0.5, 1e3, false},
                                                                 {25, 1, 1e-3, -20, false}, {50, 500, 2.0, 1e4, false},
                                                                 {3, 5, 0.0, 3, false},     {12, 10, 0.05, 0, true}};
  std::printf("# rigid <n>, then n lines of moving x y z and fixed x y z, then\n");
  std::printf("# rotation <9 coefficients, rows first> translation <x y z>\n");
  for (const auto& [n, spread, noise, offset, mirror] : cases) {
    Eigen::Matrix3Xd moving(3, n), fixed(3, n);
    const Eigen::Quaterniond q = Eigen::Quaterniond(gauss(rng), gauss(rng), gauss(rng), gauss(rng)).normalized();
    const Eigen::Vector3d shift(offset + gauss(rng), -offset + gauss(rng), 0.5 * offset + gauss(rng));
    for (int i = 0; i < n; ++i) {
      moving.col(i) = spread * Eigen::Vector3d(gauss(rng), gauss(rng), gauss(rng)) + Eigen::Vector3d::Constant(offset);
      Eigen::Vector3d image = q * moving.col(i) + shift;
      if (mirror) image.x() = -image.x();
      fixed.col(i) = image + noise * Eigen::Vector3d(gauss(rng), gauss(rng), gauss(rng));
    }
    const Eigen::Matrix4d move = Eigen::umeyama(moving, fixed, false);
    std::printf("rigid %d\n", n);
    for (int i = 0; i < n; ++i) {
      std::printf("%.17g %.17g %.17g %.17g %.17g %.17g\n", moving(0, i), moving(1, i), moving(2, i), fixed(0, i),
                  fixed(1, i), fixed(2, i));
    }
    std::printf("rotation");
    for (int k = 0; k < 9; ++k) std::printf(" %.17g", move(k / 3, k % 3));
    std::printf("\ntranslation %.17g %.17g %.17g\n", move(0, 3), move(1, 3), move(2, 3));
  }
  return 0;
}
