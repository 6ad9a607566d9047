// Circle, sphere and cylinder fits: every method against the independent reference table
// (generalised eigenproblem and scipy's least squares), exact shapes, and degenerate input.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include <zemcalc/zemcalc.h>

#include "fitting/reference_table.h"

namespace {

template <class T>
class ShapeFitTwins : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(ShapeFitTwins, Scalars);

// Relative tolerance: the 1e-9 for double; float input keeps about 7 digits, and the
// fitted circle moves by noise / sqrt(n) times that.
template <class T>
double Tolerance() {
  return std::is_same<T, double>::value ? 1e-9 : 2e-4;
}

template <class T>
WbArrayTempl<ZmPoint3T<T>> Points3(const ReferenceRecord& r) {
  WbArrayTempl<ZmPoint3T<T>> points;
  for (const auto& row : r.rows) points.Add(ZmPoint3T<T>(row[0], row[1], row[2]));
  return points;
}

TYPED_TEST(ShapeFitTwins, CirclesMatchTheReference) {
  using T = TypeParam;
  const double tol = Tolerance<T>();
  const struct {
    const char* name;
    ZmCircleFitMethod method;
  } methods[] = {{"kasa", ZmCircleFitKasa},
                 {"pratt", ZmCircleFitPratt},
                 {"taubin", ZmCircleFitTaubin},
                 {"hyper", ZmCircleFitHyper},
                 {"geometric", ZmCircleFitGeometric}};
  int circles = 0, ellipses = 0;
  for (const ReferenceRecord& r : ReadReferenceTable("shape_fits.txt", {"circle2", "circle3", "sphere", "cylinder", "ellipse"})) {
    if (r.kind == "circle2") {
      ++circles;
      WbArrayTempl<ZmPoint2T<T>> points;
      for (const auto& row : r.rows) points.Add(ZmPoint2T<T>(row[0], row[1]));
      for (const auto& m : methods) {
        const std::vector<double>& e = r.results.at(m.name);
        const auto fit = ZmMathT<T>::FitCircle(points, m.method);
        EXPECT_EQ(fit.quality.status, ZmFitOk) << m.name;
        EXPECT_NEAR(fit.center.x, e[0], tol * e[2]) << m.name << " " << circles;
        EXPECT_NEAR(fit.center.y, e[1], tol * e[2]) << m.name << " " << circles;
        EXPECT_NEAR(fit.radius, e[2], tol * e[2]) << m.name << " " << circles;
      }
    } else if (r.kind == "circle3") {
      const std::vector<double>& e = r.results.at("geometric");
      const auto fit = ZmMathT<T>::FitCircle(Points3<T>(r), ZmCircleFitGeometric);
      EXPECT_EQ(fit.quality.status, ZmFitOk);
      for (int i = 0; i < 3; ++i) EXPECT_NEAR(zm::Component(fit.center, i), e[i], 100 * tol * e[6]);
      EXPECT_NEAR(std::fabs(fit.normal.x * e[3] + fit.normal.y * e[4] + fit.normal.z * e[5]), 1.0, tol);
      EXPECT_NEAR(fit.radius, e[6], tol * e[6]);
    } else if (r.kind == "sphere") {
      for (const char* name : {"kasa", "geometric"}) {
        const std::vector<double>& e = r.results.at(name);
        const auto fit = ZmMathT<T>::FitSphere(Points3<T>(r), name[0] == 'g');
        EXPECT_EQ(fit.quality.status, ZmFitOk);
        for (int i = 0; i < 3; ++i) EXPECT_NEAR(zm::Component(fit.center, i), e[i], tol * e[3]) << name;
        EXPECT_NEAR(fit.radius, e[3], tol * e[3]) << name;
      }
    } else if (r.kind == "ellipse") {
      const std::vector<double>& e = r.results.at("direct");
      WbArrayTempl<ZmPoint2T<T>> points;
      for (const auto& row : r.rows) points.Add(ZmPoint2T<T>(row[0], row[1]));
      const auto fit = ZmMathT<T>::FitEllipse(points);
      EXPECT_EQ(fit.quality.status, ZmFitOk);
      EXPECT_NEAR(fit.center.x, e[0], tol * e[4]);
      EXPECT_NEAR(fit.center.y, e[1], tol * e[4]);
      EXPECT_NEAR(std::fabs(fit.majorAxis.x * e[2] + fit.majorAxis.y * e[3]), 1.0, tol);
      EXPECT_NEAR(fit.a, e[4], tol * e[4]);
      EXPECT_NEAR(fit.b, e[5], tol * e[4]);
      // The largest residual against the distance to 100000 points along the fitted ellipse.
      double largest = 0;
      for (const auto& row : r.rows) {
        double nearest = 1e300;
        for (int k = 0; k < 100000; ++k) {
          const double t = k * 6.283185307179586 / 100000, u = fit.a * std::cos(t), v = fit.b * std::sin(t);
          nearest = std::fmin(nearest, std::hypot(fit.center.x + u * fit.majorAxis.x - v * fit.majorAxis.y - row[0],
                                                  fit.center.y + u * fit.majorAxis.y + v * fit.majorAxis.x - row[1]));
        }
        largest = std::fmax(largest, nearest);
      }
      EXPECT_NEAR(fit.quality.maxResidual, largest, 1e-5);
      ++ellipses;
    } else {
      const std::vector<double>& e = r.results.at("geometric");
      const auto fit = ZmMathT<T>::FitCylinder(Points3<T>(r));
      EXPECT_EQ(fit.quality.status, ZmFitOk);
      EXPECT_NEAR(std::fabs(fit.direction.x * e[3] + fit.direction.y * e[4] + fit.direction.z * e[5]), 1.0, tol);
      for (int i = 0; i < 3; ++i) EXPECT_NEAR(zm::Component(fit.point, i), e[i], 10 * tol * e[6]);
      EXPECT_NEAR(fit.radius, e[6], 10 * tol * e[6]);
    }
  }
  EXPECT_EQ(circles, 5);
  EXPECT_EQ(ellipses, 2);
}

TYPED_TEST(ShapeFitTwins, ExactShapesAndDegenerateInput) {
  using T = TypeParam;
  using P2 = ZmPoint2T<T>;
  using P3 = ZmPoint3T<T>;
  const T nan = std::numeric_limits<T>::quiet_NaN();
  // (3, 4) is at distance 5 from the origin, as are (5, 0), (0, -5), (-4, 3); centre (1, 2).
  const WbArrayTempl<P2> exact{P2(4, 6), P2(6, 2), P2(1, -3), P2(-3, 5), P2(nan, 0)};
  struct Row {
    WbArrayTempl<P2> points;
    ZmCircleFitMethod method;
    ZmFitStatus status;
  };
  const Row rows[] = {
      {exact, ZmCircleFitKasa, ZmFitOk},
      {exact, ZmCircleFitPratt, ZmFitOk},
      {exact, ZmCircleFitTaubin, ZmFitOk},
      {exact, ZmCircleFitHyper, ZmFitOk},
      {exact, ZmCircleFitGeometric, ZmFitOk},
      {exact, ZmCircleFitMethod(7), ZmFitBadInput},
      {{P2(0, 0), P2(1, 1)}, ZmCircleFitTaubin, ZmFitTooFewPoints},
      {{P2(0, 0), P2(1, 1), P2(2, 2), P2(-3, -3)}, ZmCircleFitGeometric, ZmFitDegenerate},
      {{P2(0, 0), P2(1, 0), P2(1, 0), P2(0, 0)}, ZmCircleFitKasa, ZmFitDegenerate},
  };
  for (std::size_t i = 0; i < sizeof(rows) / sizeof(rows[0]); ++i) {
    const auto fit = ZmMathT<T>::FitCircle(rows[i].points, rows[i].method);
    EXPECT_EQ(fit.quality.status, rows[i].status) << i;
    if (rows[i].status == ZmFitOk) {
      EXPECT_EQ(fit.quality.count, 4) << i;
      EXPECT_NEAR(fit.center.x, 1.0, 1e-5) << i;
      EXPECT_NEAR(fit.center.y, 2.0, 1e-5) << i;
      EXPECT_NEAR(fit.radius, 5.0, 1e-5) << i;
      EXPECT_NEAR(fit.quality.maxResidual, 0.0, 1e-5) << i;
    } else {
      EXPECT_EQ(fit.radius, zm::Invalid<T>()) << i;
      EXPECT_EQ(fit.quality.rms, zm::Invalid<T>()) << i;
    }
  }
  // The same circle stood up in the plane x = 7 (y, z) = (1, 2) + ...: normal along X.
  WbArrayTempl<P3> standing;
  for (const P2& p : exact) standing.Add(P3(7, p.x, p.y));
  const auto c3 = ZmMathT<T>::FitCircle(standing, ZmCircleFitHyper);
  EXPECT_EQ(c3.quality.status, ZmFitOk);
  EXPECT_NEAR(std::fabs(c3.normal.x), 1.0, 1e-6);
  EXPECT_NEAR((c3.center - P3(7, 1, 2)).length(), 0.0, 1e-5);
  EXPECT_EQ(ZmMathT<T>::FitCircle(WbArrayTempl<P3>{P3(0, 0, 0), P3(1, 1, 1), P3(2, 2, 2)}).quality.status,
            ZmFitDegenerate);
  // A sphere needs 4 points off one plane; a cylinder 5 points off one line.
  const WbArrayTempl<P3> square{P3(0, 0, 0), P3(1, 0, 0), P3(1, 1, 0), P3(0, 1, 0)};
  EXPECT_EQ(ZmMathT<T>::FitSphere(square).quality.status, ZmFitDegenerate);
  EXPECT_EQ(ZmMathT<T>::FitSphere(WbArrayTempl<P3>{P3(0, 0, 0)}).quality.status, ZmFitTooFewPoints);
  EXPECT_EQ(ZmMathT<T>::FitCylinder(square).quality.status, ZmFitTooFewPoints);
  const WbArrayTempl<P3> line{P3(0, 0, 0), P3(1, 0, 0), P3(2, 0, 0), P3(3, 0, 0), P3(4, 0, 0)};
  EXPECT_EQ(ZmMathT<T>::FitCylinder(line).quality.status, ZmFitDegenerate);
  // The ellipse x^2 / 9 + y^2 / 4 = 1 about (1, -1), turned a quarter: major axis along Y.
  WbArrayTempl<P2> ellipse;
  for (int k = 0; k < 8; ++k) {
    const double t = k * 3.141592653589793 / 4;
    ellipse.Add(P2(1 - 2 * std::sin(t), -1 + 3 * std::cos(t)));
  }
  const auto e = ZmMathT<T>::FitEllipse(ellipse);
  EXPECT_EQ(e.quality.status, ZmFitOk);
  EXPECT_NEAR(e.a, 3.0, 1e-5);
  EXPECT_NEAR(e.b, 2.0, 1e-5);
  EXPECT_NEAR(std::fabs(e.majorAxis.y), 1.0, 1e-5);
  EXPECT_NEAR((e.center - P2(1, -1)).length(), 0.0, 1e-5);
  EXPECT_NEAR(e.quality.maxResidual, 0.0, 1e-5);
  EXPECT_EQ(ZmMathT<T>::FitEllipse(WbArrayTempl<P2>{P2(0, 0), P2(1, 1), P2(2, 2), P2(3, 3), P2(4, 4), P2(5, 5)})
                .quality.status,
            ZmFitDegenerate);
  EXPECT_EQ(ZmMathT<T>::FitEllipse(WbArrayTempl<P2>{P2(0, 0), P2(1, 1), P2(2, 0), P2(1, -1)}).quality.status,
            ZmFitTooFewPoints);
  // The regular octahedron of radius 2 about (1, 1, 1) is its own sphere.
  WbArrayTempl<P3> octahedron;
  for (int axis = 0; axis < 3; ++axis) {
    for (T sign : {T(-2), T(2)}) {
      P3 p(1, 1, 1);
      zm::Component(p, axis) += sign;
      octahedron.Add(p);
    }
  }
  for (unsigned char geometric : {0, 1}) {
    const auto sphere = ZmMathT<T>::FitSphere(octahedron, geometric);
    EXPECT_EQ(sphere.quality.status, ZmFitOk);
    EXPECT_NEAR((sphere.center - P3(1, 1, 1)).length(), 0.0, 1e-6);
    EXPECT_NEAR(sphere.radius, 2.0, 1e-6);
  }
}

}  // namespace
