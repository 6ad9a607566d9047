// Writes linear_fits.txt: random point clouds with the line and plane that CGAL's
// linear_least_squares_fitting_3 fits to them, and its fit quality. Run by hand when the
// cases change (CI reads the committed table and does not need CGAL):
//   g++ -O2 -std=c++17 -I/usr/include/eigen3 -DCGAL_EIGEN3_ENABLED cgal_linear_fits.cpp -o gen
//   ./gen > linear_fits.txt
#include <CGAL/Simple_cartesian.h>
#include <CGAL/linear_least_squares_fitting_3.h>

#include <cstdio>
#include <random>
#include <tuple>
#include <vector>

using K = CGAL::Simple_cartesian<double>;

int main() {
  std::mt19937_64 rng(20261125);
  std::normal_distribution<double> gauss(0.0, 1.0);
  // Spreads along three orthogonal directions, the cloud's offset from the origin, its size.
  const std::tuple<double, double, double, double, int> shapes[] = {
      {10, 5, 0.1, 0, 20},   {10, 5, 0.1, 1e4, 30}, {3, 2, 1, 5, 12},      {8, 0.2, 0.1, -50, 25},
      {1, 1, 1e-3, 1e5, 40}, {5, 4, 3, 0, 8},       {20, 0.5, 0.5, 7, 16}, {2, 1.9, 0.01, -3, 10}};
  std::printf("# cloud <n>, then n lines of x y z, then\n");
  std::printf("# plane <nx ny nz> <px py pz> <quality> and line <dx dy dz> <px py pz> <quality>\n");
  for (const auto& [sx, sy, sz, offset, count] : shapes) {
    // A random rotation: orthonormalised random columns.
    K::Vector_3 a(gauss(rng), gauss(rng), gauss(rng)), b(gauss(rng), gauss(rng), gauss(rng));
    a = a / std::sqrt(a.squared_length());
    b = b - (b * a) * a;
    b = b / std::sqrt(b.squared_length());
    const K::Vector_3 c = CGAL::cross_product(a, b);
    const K::Vector_3 shift(offset, -0.5 * offset, 0.25 * offset);
    std::vector<K::Point_3> points;
    for (int i = 0; i < count; ++i) {
      const K::Vector_3 v = sx * gauss(rng) * a + sy * gauss(rng) * b + sz * gauss(rng) * c + shift;
      points.push_back(K::Point_3(v.x(), v.y(), v.z()));
    }
    std::printf("cloud %d\n", count);
    for (const K::Point_3& p : points) std::printf("%.17g %.17g %.17g\n", p.x(), p.y(), p.z());
    K::Plane_3 plane;
    K::Line_3 line;
    K::Point_3 centroid;
    const double planeQuality =
        CGAL::linear_least_squares_fitting_3(points.begin(), points.end(), plane, centroid, CGAL::Dimension_tag<0>());
    const K::Vector_3 n = plane.orthogonal_vector() / std::sqrt(plane.orthogonal_vector().squared_length());
    std::printf("plane %.17g %.17g %.17g %.17g %.17g %.17g %.17g\n", n.x(), n.y(), n.z(), centroid.x(), centroid.y(),
                centroid.z(), planeQuality);
    const double lineQuality =
        CGAL::linear_least_squares_fitting_3(points.begin(), points.end(), line, centroid, CGAL::Dimension_tag<0>());
    const K::Vector_3 d = line.to_vector() / std::sqrt(line.to_vector().squared_length());
    std::printf("line %.17g %.17g %.17g %.17g %.17g %.17g %.17g\n", d.x(), d.y(), d.z(), centroid.x(), centroid.y(),
                centroid.z(), lineQuality);
  }
  return 0;
}
