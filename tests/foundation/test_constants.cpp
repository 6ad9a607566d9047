// The invalid marker, the exported constants and the layout of the value types.
#include <cstring>
#include <type_traits>
#include <vector>

#include "foundation/foundation_test_support.h"

namespace {

using namespace foundation_test;
using Values = std::vector<double>;

// Each type is exactly N of its scalars, a plain value.
template <int N, class... V>
constexpr bool ExactlyScalars() {
  return ((sizeof(V) == N * sizeof(typename V::Scalar) && std::is_standard_layout<V>::value &&
           std::is_trivially_copyable<V>::value && !std::is_polymorphic<V>::value) &&
          ...);
}
static_assert(
    ExactlyScalars<3, ZmPoint3d, ZmPoint3f, ZmVector3d, ZmVector3f>() &&
        ExactlyScalars<2, ZmPoint2d, ZmPoint2f, ZmVector2d, ZmVector2f, ZmComplexNumberd, ZmComplexNumberf>() &&
        ExactlyScalars<1, ZmDegreed, ZmDegreef, ZmRadiand, ZmRadianf>() &&
        std::is_base_of<WbCoord2Dd, ZmPoint2d>::value && std::is_base_of<WbCoord2Df, ZmVector2f>::value,
    "value types are exactly their fields");

// The components of a value type in memory order (x, y, z), widened.
template <class... V>
Values Of(const V&... v) {
  Values out;
  const auto add = [&out](const auto& one) {
    using T = typename std::decay_t<decltype(one)>::Scalar;
    T parts[sizeof(one) / sizeof(T)];
    std::memcpy(parts, &one, sizeof(one));
    out.insert(out.end(), parts, parts + sizeof(one) / sizeof(T));
  };
  (add(v), ...);
  return out;
}

template <class V2, class V3>
Values Statics() {
  return Of(V2::UNIT_X, V2::UNIT_Y, V2::NEGATIVE_UNIT_X, V2::NEGATIVE_UNIT_Y, V3::UNIT_X, V3::UNIT_Y, V3::UNIT_Z,
            V3::NEGATIVE_UNIT_X, V3::NEGATIVE_UNIT_Y, V3::NEGATIVE_UNIT_Z);
}

TEST(InvalidMarker, IsTheWidenedFloatNotTheDecimalDouble) {
  EXPECT_EQ(double(zm::kInvalid), kMarker);
  EXPECT_EQ(zm::Invalid<double>(), kMarker);
  EXPECT_EQ(ZmNonValP3d.IsValid(), 0);
  const ZmPoint3d decimal(-1e32, -1e32, -1e32);
  EXPECT_EQ((std::vector<int>{decimal.IsValid(), decimal == ZmNonValP3d, decimal != ZmNonValP3d}),
            (std::vector<int>{1, 0, 1}));
  ZmPoint3d invalidated(4, 5, 6);
  invalidated.Invalidate();
  EXPECT_EQ(invalidated == ZmNonValP3d, 1);
  // Widening the float twin's marker gives the double twin's marker, and back.
  EXPECT_EQ(ZmPoint3d(ZmNonValP3f) == ZmNonValP3d, 1);
  EXPECT_EQ(ZmPoint3f(ZmNonValP3d) == ZmNonValP3f, 1);
  // The shared thresholds widen the same way.
  EXPECT_EQ(double(zm::kTolerance5), 9.999999747378752e-06);
  EXPECT_EQ(double(zm::kTolerance6), 9.999999974752427e-07);
}

TEST(ExportedConstants, EveryValueInBothTwins) {
  EXPECT_EQ(Of(ZmNonValP2d, ZmNonValP2f, ZmNonValV2d, ZmNonValV2f, ZmNonValP3d, ZmNonValP3f, ZmNonValV3d, ZmNonValV3f),
            Values(4 * 2 + 4 * 3, kMarker));
  EXPECT_EQ(ZmNonValV2f.IsValid() + ZmNonValP2d.IsValid() + ZmNonValV3f.IsValid(), 0);
  const Values axes2 = {1, 0, 0, 1}, axes3 = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  EXPECT_EQ(Of(ZmV2dX, ZmV2dY), axes2);
  EXPECT_EQ(Of(ZmV2fX, ZmV2fY), axes2);
  EXPECT_EQ(Of(ZmV3dX, ZmV3dY, ZmV3dZ), axes3);
  EXPECT_EQ(Of(ZmV3fX, ZmV3fY, ZmV3fZ), axes3);
  // The class statics, then their negatives.
  const Values statics = {1, 0, 0, 1, -1, 0, 0, -1, 1, 0, 0, 0, 1, 0, 0, 0, 1, -1, 0, 0, 0, -1, 0, 0, 0, -1};
  EXPECT_EQ((Statics<ZmVector2d, ZmVector3d>()), statics);
  EXPECT_EQ((Statics<ZmVector2f, ZmVector3f>()), statics);
  // Standard gravity is the float 9.80665f; numpy: float(np.float32(9.80665)) = 9.806650161743164.
  static_assert(std::is_same<decltype(WbGms), const float>::value, "");
  EXPECT_EQ(double(WbGms), 9.806650161743164);
}

}  // namespace
