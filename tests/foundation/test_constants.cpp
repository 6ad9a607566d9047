// The invalid marker, the exported constants and the layout of the value types.
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <cstring>
#include <type_traits>
#include <vector>

namespace {

constexpr double kMarker = -1.0000000331813535e+32;  // -1.0e32f widened
using Values = std::vector<double>;
using Ints = std::vector<int>;

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

// The marker and the shared thresholds are the float values widened, not the decimal doubles:
// -1e32 is an ordinary value. Widening the float twin's marker gives the double twin's, and back.
// Standard gravity is the float 9.80665f; numpy: float(np.float32(9.80665)) = 9.806650161743164.
TEST(ExportedConstants, EveryValueInBothTwins) {
  static_assert(std::is_same<decltype(WbGms), const float>::value, "");
  EXPECT_EQ((Values{double(zm::kInvalid), zm::Invalid<double>(), double(zm::kTolerance5), double(zm::kTolerance6),
                    double(WbGms)}),
            (Values{kMarker, kMarker, 9.999999747378752e-06, 9.999999974752427e-07, 9.806650161743164}));
  ZmPoint3d invalidated(4, 5, 6);
  invalidated.Invalidate();
  const ZmPoint3d decimal(-1e32, -1e32, -1e32);
  EXPECT_EQ(
      (Ints{ZmNonValP3d.IsValid(), ZmNonValV2f.IsValid(), decimal.IsValid(), decimal == ZmNonValP3d,
            invalidated == ZmNonValP3d, ZmPoint3d(ZmNonValP3f) == ZmNonValP3d, ZmPoint3f(ZmNonValP3d) == ZmNonValP3f}),
      (Ints{0, 0, 1, 0, 1, 1, 1}));
  EXPECT_EQ(Of(ZmNonValP2d, ZmNonValP2f, ZmNonValV2d, ZmNonValV2f, ZmNonValP3d, ZmNonValP3f, ZmNonValV3d, ZmNonValV3f),
            Values(4 * 2 + 4 * 3, kMarker));
  const Values axes2 = {1, 0, 0, 1}, axes3 = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  EXPECT_TRUE(Of(ZmV2dX, ZmV2dY) == axes2 && Of(ZmV2fX, ZmV2fY) == axes2);
  EXPECT_TRUE(Of(ZmV3dX, ZmV3dY, ZmV3dZ) == axes3 && Of(ZmV3fX, ZmV3fY, ZmV3fZ) == axes3);
  // The class statics, then their negatives.
  const Values statics = {1, 0, 0, 1, -1, 0, 0, -1, 1, 0, 0, 0, 1, 0, 0, 0, 1, -1, 0, 0, 0, -1, 0, 0, 0, -1};
  EXPECT_EQ((Statics<ZmVector2d, ZmVector3d>()), statics);
  EXPECT_EQ((Statics<ZmVector2f, ZmVector3f>()), statics);
}

}  // namespace
