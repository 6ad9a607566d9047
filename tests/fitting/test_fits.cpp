// Fits against the committed tables (CGAL, a generalised eigenproblem, scipy's least squares,
// Eigen's umeyama), exact shapes, and the stated answers on degenerate input.
#include "fitting/fitting_test_support.h"

// The table's names of the circle methods, by ZmCircleFitMethod.
const char* const kMethods[] = {"kasa", "pratt", "taubin", "hyper", "geometric"};

// |cos| of the angle between a and the direction b[first], b[first + 1], b[first + 2].
template <class V>
double AbsCosine(const V& a, const std::vector<double>& b, int first = 0) {
  const double* d = &b[first];
  return std::fabs(a.x * d[0] + a.y * d[1] + a.z * d[2]) / std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
}

TYPED_TEST(FittingTwins, FitsMatchTheReferenceTables) {
  TWIN_NAMES;
  const auto clouds = ReadTable("linear_fits.txt", {"cloud"});
  ASSERT_EQ(clouds.size(), 8u);
  for (std::size_t c = 0; c < clouds.size(); ++c) {
    const Record& r = clouds[c];
    const std::vector<double>&plane = r.results.at("plane"), &line = r.results.at("line");
    const double size = std::fabs(plane[3]) + std::fabs(plane[4]) + std::fabs(plane[5]) + 1;
    // Float input far from the origin keeps too few digits of the spread to compare with.
    if (!kIsDouble<T> && size > 100) continue;
    const double tol = kIsDouble<T> ? 1e-9 : 2e-3;
    const auto pf = M::FitPlane(r.Points<P>());
    const auto lf = M::FitLine(r.Points<P>());
    // Status and count exactly (tol < 1); the plane's rms and largest residual along its normal.
    double sum = 0, largest = 0;
    for (const auto& p : r.rows) {
      const double d = (p[0] - plane[3]) * plane[0] + (p[1] - plane[4]) * plane[1] + (p[2] - plane[5]) * plane[2];
      sum += d * d, largest = std::fmax(largest, std::fabs(d));
    }
    ExpectNear({double(pf.quality.status), double(pf.quality.count), AbsCosine(pf.normal, plane),
                AbsCosine(lf.direction, line), pf.fitQuality, lf.fitQuality},
               {ZmFitOk, double(r.rows.size()), 1, 1, plane[6], line[6]}, tol, c);
    ExpectNear({pf.point.x, pf.point.y, pf.point.z, pf.quality.rms, pf.quality.maxResidual},
               {plane[3], plane[4], plane[5], std::sqrt(sum / double(r.rows.size())), largest}, tol * size, c);
  }
  const auto sets = ReadTable("rigid_fits.txt", {"rigid"});
  ASSERT_EQ(sets.size(), 6u);
  for (std::size_t c = 0; c < sets.size(); ++c) {
    double size = 1;
    for (const auto& row : sets[c].rows)
      for (double v : row) size = std::fmax(size, std::fabs(v));
    if (!kIsDouble<T> && size > 2000) continue;  // float keeps too few digits of such a set
    const double tol = kIsDouble<T> ? 1e-9 : 1e-4;
    const auto fit = M::FitRigid(sets[c].Points<P>(), sets[c].Points<P>(3));
    const std::vector<double>&rot = sets[c].results.at("rotation"), &shift = sets[c].results.at("translation");
    EXPECT_EQ(fit.quality.status, ZmFitOk) << c;
    EXPECT_NEAR(fit.rotation.Determinant(), 1.0, tol) << c;  // the mirror image too
    const auto r0 = fit.rotation.GetRow(0), r1 = fit.rotation.GetRow(1), r2 = fit.rotation.GetRow(2);
    ExpectNear({r0.x, r0.y, r0.z, r1.x, r1.y, r1.z, r2.x, r2.y, r2.z}, rot, tol, c);
    ExpectNear({fit.translation.x, fit.translation.y, fit.translation.z}, shift, tol * size, c);
  }
  // Relative: float input keeps about 7 digits; the shape moves by noise / sqrt(n) times that.
  const double tol = kIsDouble<T> ? 1e-9 : 2e-4;
  int circles = 0, ellipses = 0;
  for (const Record& r : ReadTable("shape_fits.txt", {"circle2", "circle3", "sphere", "cylinder", "ellipse"})) {
    circles += r.kind == "circle2", ellipses += r.kind == "ellipse";
    for (const auto& [name, e] : r.results) {
      const std::string where = r.kind + " " + name + " " + std::to_string(circles + ellipses);
      const auto method = ZmCircleFitMethod(std::find(kMethods, kMethods + 5, name) - kMethods);
      const auto Ok = [&where](const auto& fit) {
        EXPECT_EQ(fit.quality.status, ZmFitOk) << where;
        return fit;
      };
      if (r.kind == "circle2") {
        const auto fit = Ok(M::FitCircle(r.Points<P2>(), method));
        ExpectNear({fit.center.x, fit.center.y, fit.radius}, {e[0], e[1], e[2]}, tol * e[2], where);
      } else if (r.kind == "circle3") {
        const auto fit = Ok(M::FitCircle(r.Points<P>(), method));
        ExpectNear({fit.center.x, fit.center.y, fit.center.z}, {e[0], e[1], e[2]}, 100 * tol * e[6], where);
        ExpectNear({AbsCosine(fit.normal, e, 3), fit.radius / e[6]}, {1, 1}, tol, where);
      } else if (r.kind == "sphere") {
        const auto fit = Ok(M::FitSphere(r.Points<P>(), method == ZmCircleFitGeometric));
        ExpectNear({fit.center.x, fit.center.y, fit.center.z, fit.radius}, {e[0], e[1], e[2], e[3]}, tol * e[3], where);
      } else if (r.kind == "cylinder") {
        const auto fit = Ok(M::FitCylinder(r.Points<P>()));
        EXPECT_NEAR(AbsCosine(fit.direction, e, 3), 1.0, tol) << where;
        ExpectNear({fit.point.x, fit.point.y, fit.point.z, fit.radius}, {e[0], e[1], e[2], e[6]}, 10 * tol * e[6],
                   where);
      } else {
        const auto fit = Ok(M::FitEllipse(r.Points<P2>()));
        ExpectNear({fit.center.x, fit.center.y, fit.a, fit.b}, {e[0], e[1], e[4], e[5]}, tol * e[4], where);
        EXPECT_NEAR(std::fabs(fit.majorAxis.x * e[2] + fit.majorAxis.y * e[3]), 1.0, tol) << where;
        // The largest residual against the distance to 100000 points along the fitted ellipse.
        double largest = 0;
        for (const auto& p : r.rows) {
          double nearest = 1e300;
          for (int k = 0; k < 100000; ++k) {
            const double t = k * 2 * kPi / 100000, u = fit.a * std::cos(t), v = fit.b * std::sin(t);
            nearest = std::fmin(nearest, std::hypot(fit.center.x + u * fit.majorAxis.x - v * fit.majorAxis.y - p[0],
                                                    fit.center.y + u * fit.majorAxis.y + v * fit.majorAxis.x - p[1]));
          }
          largest = std::fmax(largest, nearest);
        }
        EXPECT_NEAR(fit.quality.maxResidual, largest, 1e-5) << where;
      }
    }
  }
  EXPECT_EQ(circles, 5);
  EXPECT_EQ(ellipses, 2);
}

TYPED_TEST(FittingTwins, ExactShapeFits) {
  TWIN_NAMES;
  // (3, 4), (5, 0), (0, -5), (-4, 3) are at 5 from (0, 0): centre (1, 2); NaN is skipped.
  const L2 circle{P2(4, 6), P2(6, 2), P2(1, -3), P2(-3, 5), P2(NAN, 0)};
  for (int m = ZmCircleFitKasa; m <= ZmCircleFitGeometric; ++m) {
    const auto fit = M::FitCircle(circle, ZmCircleFitMethod(m));
    EXPECT_EQ(fit.quality.status, ZmFitOk) << m;
    EXPECT_EQ(fit.quality.count, 4) << m;
    ExpectNear({fit.center.x, fit.center.y, fit.radius, fit.quality.maxResidual}, {1, 2, 5, 0}, 1e-5, kMethods[m]);
  }
  L standing;  // the same circle stood up in the plane x = 7, (y, z) = (1, 2) + ...: normal along X
  for (const P2& p : circle) standing.Add(P(7, p.x, p.y));
  const auto c3 = M::FitCircle(standing, ZmCircleFitHyper);
  L2 ellipse;  // x^2 / 9 + y^2 / 4 = 1 about (1, -1), turned a quarter: major axis along Y
  for (int k = 0; k < 8; ++k) ellipse.Add(P2(1 - 2 * std::sin(k * kPi / 4), -1 + 3 * std::cos(k * kPi / 4)));
  const auto e = M::FitEllipse(ellipse);
  // (0, 1), (2, 5) on y = 2x + 1 moved +-1 along (-2, 1)/sqrt(5): that line through (1, 3),
  // residuals 1; covariance eigenvalues 4 (+-sqrt 5)^2 = 20 along, 4 across.
  const T s = T(1 / std::sqrt(5.0));
  const auto line = M::FitLine(L2{P2(-2 * s, 1 + s), P2(2 * s, 1 - s), P2(2 - 2 * s, 5 + s), P2(2 + 2 * s, 5 - s)});
  const L moving{P(0, 0, 0), P(1, 0, 0), P(0, 2, 0), P(0, 0, 3), P(1, 1, 1)};
  L fixed;  // a quarter turn about Z, then (10, 20, 30): (x, y, z) -> (10 - y, 20 + x, 30 + z)
  for (const P& p : moving) fixed.Add(P(10 - p.y, 20 + p.x, 30 + p.z));
  const auto rigid = M::FitRigid(moving, fixed);
  EXPECT_EQ(std::vector<int>({c3.quality.status, e.quality.status, line.quality.status, rigid.quality.status}),
            std::vector<int>(4, ZmFitOk));
  ExpectNear({std::fabs(c3.normal.x), std::fabs(line.direction.x * 2 - line.direction.y), Gap(line.point, P2(1, 3)),
              line.quality.rms + line.quality.maxResidual, line.fitQuality,
              Gap(rigid.rotation * V(1, 0, 0), V(0, 1, 0)), Gap(rigid.rotation * V(0, 1, 0), V(-1, 0, 0))},
             {1, 0, 0, 2, 1 - 4.0 / 20.0, 0, 0}, 1e-6, "exact");
  ExpectNear({Gap(c3.center, P(7, 1, 2)), e.a, e.b, std::fabs(e.majorAxis.y), Gap(e.center, P2(1, -1)),
              e.quality.maxResidual, Gap(rigid.translation, V(10, 20, 30)), rigid.quality.maxResidual},
             {0, 3, 2, 1, 0, 0, 0, 0}, 1e-5, "exact");
  // Disturbed: weight 3 is the pair given three times; weights 0 and below drop their pair.
  fixed[1] += V(0.3, -0.2, 0.1), fixed[3] += V(-0.1, 0.2, 0.4);
  L weightedM = moving, weightedF = fixed;
  weightedM.Add(P(5, 5, 5)), weightedF.Add(P(-50, 7, 1));
  L repeatedM = weightedM, repeatedF = weightedF;
  for (int k = 0; k < 2; ++k) repeatedM.Add(moving[3]), repeatedF.Add(fixed[3]);
  const WbArrayTempl<T> weights{1, 1, 1, 3, 1, 0}, repeatedWeights{1, 1, 1, 1, 1, -2, 1, 1};
  const auto weighted = M::FitRigid(weightedM, weightedF, &weights);
  const auto repeated = M::FitRigid(repeatedM, repeatedF, &repeatedWeights);
  EXPECT_GT(weighted.quality.rms, 0.01);
  const auto &a = weighted.rotation, &b = repeated.rotation;
  ExpectNear({double(weighted.quality.count), double(repeated.quality.count), Gap(a.GetRow(0), b.GetRow(0)),
              Gap(a.GetRow(1), b.GetRow(1)), Gap(a.GetRow(2), b.GetRow(2)),
              Gap(weighted.translation, repeated.translation) / 10},
             {5, 7, 0, 0, 0, 0}, 1e-5, "weights");
}

TYPED_TEST(FittingTwins, FitsOfDegenerateInput) {
  TWIN_NAMES;
  const P invalid(WbCoord3DT<T>::INVALID), none(0, 0, 0);
  const T s = T(1 / std::sqrt(2.0));
  const std::tuple<L, ZmFitStatus, ZmFitStatus, P, P> rows[] = {
      {L{}, ZmFitTooFewPoints, ZmFitTooFewPoints, none, none},
      {L{P(1, 2, 3), P(4, 5, 6)}, ZmFitTooFewPoints, ZmFitOk, none, P(1, 1, 1) * T(1 / std::sqrt(3.0))},
      // Normal = direction x least aligned axis: X x Y = Z; (1, 1, 0) x Z = (1, -1, 0).
      {L{P(0, 0, 0), P(1, 0, 0), P(3, 0, 0)}, ZmFitDegenerate, ZmFitOk, P(0, 0, 1), P(1, 0, 0)},
      {L{P(0, 0, 0), P(1, 1, 0), P(3, 3, 0)}, ZmFitDegenerate, ZmFitOk, P(1, -1, 0) * s, P(1, 1, 0) * s},
      {L{P(5, 5, 5), P(5, 5, 5), P(5, 5, 5)}, ZmFitDegenerate, ZmFitDegenerate, P(0, 0, 1), P(1, 0, 0)},
      // NaN and marked points are skipped: what is left is the square in z = 2.
      {L{P(0, 0, 2), P(NAN, 0, 0), P(1, 0, 2), invalid, P(1, 1, 2), P(0, 1, 2)}, ZmFitOk, ZmFitOk, P(0, 0, 1), none},
      {L{P(0, 0, 0), P(1, 0, 0), P(INFINITY, 1, 0)}, ZmFitBadInput, ZmFitBadInput, none, none},
  };
  for (std::size_t i = 0; i < sizeof(rows) / sizeof(rows[0]); ++i) {
    const auto& [points, plane, line, normal, direction] = rows[i];  // up to sign; none: not checked
    const auto pf = M::FitPlane(points);
    const auto lf = M::FitLine(points);
    EXPECT_EQ(std::make_pair(pf.quality.status, lf.quality.status), std::make_pair(plane, line)) << i;
    EXPECT_FALSE(std::isnan(pf.quality.rms) || std::isnan(lf.quality.rms) || std::isnan(pf.fitQuality)) << i;
    EXPECT_EQ(pf.normal.x == zm::Invalid<T>(), plane != ZmFitOk && plane != ZmFitDegenerate) << i;
    if (normal != none) ExpectNear({std::fabs(pf.normal.dot(V(normal))), pf.quality.rms}, {1, 0}, 1e-6, i);
    if (direction != none) ExpectNear({std::fabs(lf.direction.dot(V(direction)))}, {1}, 1e-6, i);
  }
  // Circles: no such method, too few, on a line, two points twice; radius and rms marked.
  const std::tuple<L2, int, ZmFitStatus> circles[] = {
      {L2{P2(4, 6), P2(6, 2), P2(1, -3), P2(-3, 5)}, 7, ZmFitBadInput},
      {L2{P2(0, 0), P2(1, 1)}, ZmCircleFitTaubin, ZmFitTooFewPoints},
      {L2{P2(0, 0), P2(1, 1), P2(2, 2), P2(-3, -3)}, ZmCircleFitGeometric, ZmFitDegenerate},
      {L2{P2(0, 0), P2(1, 0), P2(1, 0), P2(0, 0)}, ZmCircleFitKasa, ZmFitDegenerate}};
  for (const auto& [points, method, status] : circles) {
    const auto fit = M::FitCircle(points, ZmCircleFitMethod(method));
    EXPECT_EQ(fit.quality.status, status) << method;
    ExpectNear({fit.radius, fit.quality.rms}, {zm::Invalid<T>(), zm::Invalid<T>()}, 0, method);
  }
  // Rigid moves need as many moving as fixed points; one pair or pairs on a line: degenerate, exact.
  const L square{P(0, 0, 0), P(1, 0, 0), P(1, 1, 0), P(0, 1, 0)}, one{P(1, 2, 3)}, pair{P(0, 0, 0), P(1, 0, 0)};
  const ZmRigidFitT<T> rigid[] = {M::FitRigid(one, L{P(4, 6, 8)}), M::FitRigid(pair, L{P(0, 0, 0), P(0, 1, 0)}),
                                  M::FitRigid(pair, one), M::FitRigid(L(), L())};
  const std::pair<ZmFitStatus, ZmFitStatus> statuses[] = {
      {M::FitCircle(L{P(0, 0, 0), P(1, 1, 1), P(2, 2, 2)}).quality.status, ZmFitDegenerate},
      {M::FitSphere(square).quality.status, ZmFitDegenerate},
      {M::FitSphere(one).quality.status, ZmFitTooFewPoints},
      {M::FitCylinder(square).quality.status, ZmFitTooFewPoints},
      {M::FitCylinder(L{P(0, 0, 0), P(1, 0, 0), P(2, 0, 0), P(3, 0, 0), P(4, 0, 0)}).quality.status, ZmFitDegenerate},
      {M::FitEllipse(L2{P2(0, 0), P2(1, 1), P2(2, 2), P2(3, 3), P2(4, 4), P2(5, 5)}).quality.status, ZmFitDegenerate},
      {M::FitEllipse(L2{P2(0, 0), P2(1, 1), P2(2, 0), P2(1, -1)}).quality.status, ZmFitTooFewPoints},
      {rigid[0].quality.status, ZmFitDegenerate},
      {rigid[1].quality.status, ZmFitDegenerate},
      {rigid[2].quality.status, ZmFitBadInput},
      {rigid[3].quality.status, ZmFitTooFewPoints}};
  for (const auto& st : statuses) EXPECT_EQ(st.first, st.second) << &st - statuses;
  // A rigid move always comes out a rotation; a single pair gives the identity and the shift.
  const V v(1, 2, 3);
  ExpectNear({rigid[0].rotation.Determinant(), rigid[1].rotation.Determinant(), rigid[2].rotation.Determinant(),
              rigid[3].rotation.Determinant(), rigid[0].quality.maxResidual, rigid[1].quality.maxResidual,
              Gap(rigid[0].rotation * v, v), Gap(rigid[0].translation, V(3, 4, 5))},
             {1, 1, 1, 1, 0, 0, 0, 0}, 1e-6, "rigid");
}
