// The invalid marker, the exported constants and the layout of the value types.
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <type_traits>

namespace {

constexpr double kMarker = -1.0000000331813535e+32;  // -1.0e32f widened

template <class T>
constexpr bool IsPlainValue() {
  return std::is_standard_layout<T>::value && !std::is_polymorphic<T>::value && std::is_trivially_copyable<T>::value;
}

TEST(Layout, ValueTypesAreExactlyTheirFields) {
  static_assert(sizeof(ZmPoint3d) == 3 * sizeof(double) && sizeof(ZmVector3d) == 3 * sizeof(double), "");
  static_assert(sizeof(ZmPoint3f) == 3 * sizeof(float) && sizeof(ZmVector3f) == 3 * sizeof(float), "");
  static_assert(sizeof(ZmPoint2d) == 2 * sizeof(double) && sizeof(ZmVector2d) == 2 * sizeof(double), "");
  static_assert(sizeof(ZmPoint2f) == 2 * sizeof(float) && sizeof(ZmVector2f) == 2 * sizeof(float), "");
  static_assert(sizeof(ZmDegreed) == sizeof(double) && sizeof(ZmRadiand) == sizeof(double), "");
  static_assert(sizeof(ZmDegreef) == sizeof(float) && sizeof(ZmRadianf) == sizeof(float), "");
  static_assert(sizeof(ZmComplexNumberd) == 2 * sizeof(double), "");
  static_assert(sizeof(ZmComplexNumberf) == 2 * sizeof(float), "");
  static_assert(IsPlainValue<ZmPoint3d>() && IsPlainValue<ZmPoint3f>() && IsPlainValue<ZmVector3d>() &&
                    IsPlainValue<ZmVector3f>(),
                "");
  static_assert(IsPlainValue<ZmPoint2d>() && IsPlainValue<ZmPoint2f>() && IsPlainValue<ZmVector2d>() &&
                    IsPlainValue<ZmVector2f>(),
                "");
  static_assert(
      IsPlainValue<ZmDegreed>() && IsPlainValue<ZmDegreef>() && IsPlainValue<ZmRadiand>() && IsPlainValue<ZmRadianf>(),
      "");
  static_assert(IsPlainValue<ZmComplexNumberd>() && IsPlainValue<ZmComplexNumberf>(), "");
  static_assert(std::is_base_of<WbCoord2Dd, ZmPoint2d>::value && std::is_base_of<WbCoord2Df, ZmVector2f>::value, "");
  // x, y, z in that order.
  const ZmPoint3d p(1, 2, 3);
  EXPECT_EQ(reinterpret_cast<const double*>(&p)[2], 3.0);
}

TEST(InvalidMarker, IsTheWidenedFloatNotTheDecimalDouble) {
  EXPECT_EQ(double(zm::kInvalid), kMarker);
  EXPECT_EQ(zm::Invalid<double>(), kMarker);
  EXPECT_EQ(ZmNonValP3d.x, kMarker);
  EXPECT_EQ(ZmNonValP3d.y, kMarker);
  EXPECT_EQ(ZmNonValP3d.z, kMarker);
  EXPECT_EQ(ZmNonValP3d.IsValid(), 0);

  const ZmPoint3d decimal(-1e32, -1e32, -1e32);
  EXPECT_EQ(decimal.IsValid(), 1);
  EXPECT_EQ(decimal == ZmNonValP3d, 0);
  EXPECT_EQ(decimal != ZmNonValP3d, 1);

  ZmPoint3d invalidated(4, 5, 6);
  invalidated.Invalidate();
  EXPECT_EQ(invalidated == ZmNonValP3d, 1);
  // Widening the float twin's marker gives the double twin's marker.
  EXPECT_EQ(ZmPoint3d(ZmNonValP3f) == ZmNonValP3d, 1);
  EXPECT_EQ(ZmPoint3f(ZmNonValP3d) == ZmNonValP3f, 1);

  // The shared thresholds widen the same way.
  EXPECT_EQ(double(zm::kTolerance5), 9.999999747378752e-06);
  EXPECT_EQ(double(zm::kTolerance6), 9.999999974752427e-07);
}

template <class V>
void ExpectXY(const V& v, double x, double y) {
  EXPECT_EQ(double(v.x), x);
  EXPECT_EQ(double(v.y), y);
}
template <class V>
void ExpectXYZ(const V& v, double x, double y, double z) {
  ExpectXY(v, x, y);
  EXPECT_EQ(double(v.z), z);
}

template <class V2, class V3>
void ExpectAxisStatics() {
  ExpectXY(V2::UNIT_X, 1, 0);
  ExpectXY(V2::UNIT_Y, 0, 1);
  ExpectXY(V2::NEGATIVE_UNIT_X, -1, 0);
  ExpectXY(V2::NEGATIVE_UNIT_Y, 0, -1);
  ExpectXYZ(V3::UNIT_X, 1, 0, 0);
  ExpectXYZ(V3::UNIT_Y, 0, 1, 0);
  ExpectXYZ(V3::UNIT_Z, 0, 0, 1);
  ExpectXYZ(V3::NEGATIVE_UNIT_X, -1, 0, 0);
  ExpectXYZ(V3::NEGATIVE_UNIT_Y, 0, -1, 0);
  ExpectXYZ(V3::NEGATIVE_UNIT_Z, 0, 0, -1);
}

TEST(ExportedConstants, EveryValueInBothTwins) {
  ExpectXY(ZmNonValP2d, kMarker, kMarker);
  ExpectXY(ZmNonValP2f, kMarker, kMarker);
  ExpectXY(ZmNonValV2d, kMarker, kMarker);
  ExpectXY(ZmNonValV2f, kMarker, kMarker);
  ExpectXYZ(ZmNonValP3f, kMarker, kMarker, kMarker);
  ExpectXYZ(ZmNonValV3d, kMarker, kMarker, kMarker);
  ExpectXYZ(ZmNonValV3f, kMarker, kMarker, kMarker);
  EXPECT_EQ(ZmNonValV2f.IsValid() + ZmNonValP2d.IsValid() + ZmNonValV3f.IsValid(), 0);

  ExpectXY(ZmV2dX, 1, 0);
  ExpectXY(ZmV2fX, 1, 0);
  ExpectXY(ZmV2dY, 0, 1);
  ExpectXY(ZmV2fY, 0, 1);
  ExpectXYZ(ZmV3dX, 1, 0, 0);
  ExpectXYZ(ZmV3fX, 1, 0, 0);
  ExpectXYZ(ZmV3dY, 0, 1, 0);
  ExpectXYZ(ZmV3fY, 0, 1, 0);
  ExpectXYZ(ZmV3dZ, 0, 0, 1);
  ExpectXYZ(ZmV3fZ, 0, 0, 1);

  ExpectAxisStatics<ZmVector2d, ZmVector3d>();
  ExpectAxisStatics<ZmVector2f, ZmVector3f>();

  // Standard gravity is the float 9.80665f; numpy: float(np.float32(9.80665)) = 9.806650161743164.
  static_assert(std::is_same<decltype(WbGms), const float>::value, "");
  EXPECT_EQ(WbGms, 9.80665f);
  EXPECT_EQ(double(WbGms), 9.806650161743164);
}

}  // namespace
