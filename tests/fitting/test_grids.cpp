// Grids over a rectangle, over polygons with holes, and evenly spaced abscissae.
#include "fitting/fitting_test_support.h"

TYPED_TEST(FittingTwins, RectangleAndPolygonGrids) {
  TWIN_NAMES;
  // X = (0, 1, 0), Y = (-1, 0, 0): 11 columns; 0.3 / 0.1 = 2.9999999999999996 -> 4 rows.
  const ZmFrameT<T> frame(V(0, 1, 0), V(-1, 0, 0), V(0, 0, 1), P(1, 2, 3), ZmFrameCartesian);
  L points;
  ASSERT_EQ(M::RectangleGrid(frame, T(1.0), T(0.3), T(0.1), T(0.1), points), 44);
  ExpectNear({Gap(points[1], P(1, 2.1, 3)), Gap(points[43], P(1 - 0.3, 3, 3))}, {0, 0}, 1e-6, "rectangle");
  EXPECT_EQ(M::RectangleGrid(frame, T(1), T(1), T(0), T(1), points), -1);
  EXPECT_EQ(points.GetSize(), 0u);
  const L square{P(0, 0, 2), P(4, 0, 2), P(4, 4, 2), P(0, 4, 2)};  // lattice (0.5, 0.5) + k, z = 2 (projected)
  const L ell{P(0, 0, 2), P(4, 0, 2), P(4, 2, 2), P(2, 2, 2), P(2, 4, 2), P(0, 4, 2)};
  const L ellFromCorner{P(2, 2, 2), P(2, 4, 2), P(0, 4, 2), P(0, 0, 2), P(4, 0, 2), P(4, 2, 2)};
  const WbArrayTempl<L> hole{L{P(1, 1, 2), P(3, 1, 2), P(3, 3, 2), P(1, 3, 2)}};
  const std::tuple<const L*, const WbArrayTempl<L>*, T, T, std::int64_t> rows[] = {
      {&square, nullptr, 1, T(0.5), 16},         // 4 x 4
      {&square, &hole, 1, T(0.5), 12},           // less the 2 x 2 inside the hole
      {&ell, nullptr, 1, T(0.5), 12},            // 4 x 2 + 2 x 2
      {&ellFromCorner, nullptr, 1, T(0.5), 12},  // the same: the lattice spans every vertex, not the first
      {&ell, nullptr, 0, T(0.5), -1},            // no spacing
      {&ell, nullptr, T(1e-9), T(0.5), -1},      // 1.6e19 points
      {&ell, nullptr, 1, T(1e17), -1},           // indices that a double cannot step through
  };
  for (const auto& [polygon, holes, spacing, originX, count] : rows) {
    EXPECT_EQ(M::PolygonGrid(*polygon, holes, P(originX, 0.5, -7), spacing, points), count);
    for (const P& p : points) {
      ExpectNear({p.z, p.x - std::floor(p.x)}, {2, 0.5}, 1e-6, count);
      EXPECT_FALSE(holes && p.x > 1 && p.x < 3 && p.y > 1 && p.y < 3);
      EXPECT_FALSE(polygon != &square && p.x > 2 && p.y > 2);
    }
  }
}

TYPED_TEST(FittingTwins, RangeGrid) {
  TWIN_NAMES;
  const std::tuple<T, T, T, std::vector<double>> rows[] = {
      // from, to, spacing, the grid (none: -1)
      {0, 1, T(0.3), {0, 0.25, 0.5, 0.75, 1}},  // ceil(3.33) = 4 intervals
      {1, 0, T(0.5), {1, 0.5, 0}},
      {2, 2, 1, {2}},
      {0, 1, 0, {}},
      {0, NAN, 1, {}},
  };
  for (const auto& [from, to, spacing, expected] : rows) {
    WbArrayTempl<T> x;
    EXPECT_EQ(M::RangeGrid(from, to, spacing, x), expected.empty() ? -1 : std::int64_t(expected.size()));
    ExpectNear(std::vector<double>(x.begin(), x.end()), expected, 1e-6, to);
    EXPECT_TRUE(x.GetSize() == 0 || x[x.GetSize() - 1] == to);  // the end exactly
  }
}
