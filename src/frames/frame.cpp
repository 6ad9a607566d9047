#include "zemcalc/ZmFrame.h"

#include <cmath>
#include <exception>

#include "zemcalc/ZmMath.h"
#include "foundation/build_info.h"
#include "foundation/out_of_memory.h"
#include "frames/frame_kernels.h"

ZM_BUILD_INFO(frame)

using zm::frames::Placement;
using zm::frames::Wider;

namespace {

// SetMatrixByXAndZ accepts x and z as orthogonal when |z x x| of the unit vectors, rounded to
// float, exceeds this float value.
constexpr float kOrthogonalCross = 0.999999f;

template <class T>
ZmMatrix3T<T> Columns(const ZmVector3T<T>& x, const ZmVector3T<T>& y, const ZmVector3T<T>& z) {
  ZmMatrix3T<T> m;
  m.SetColumn(0, x);
  m.SetColumn(1, y);
  m.SetColumn(2, z);
  return m;
}

// The three-point modes: the axis along e = p1 - p0, the axis normal to the plane of the
// points and the axis that completes them. The normal is A x b (b x A for mode 1) and
// the third axis N x A (or A x N), A and N the first two:
//   mode 0: Z = unit(e), Y = unit(Z x b), X = Y x Z
//   mode 1: X = unit(e), Y = unit(b x X), Z = X x Y
//   mode 2: X = unit(e), Z = unit(X x b), Y = Z x X
struct ThreePointMode {
  int along, normal, third;
  bool reversed;  // b x A and A x N
};
constexpr ThreePointMode kThreePointModes[3] = {{2, 1, 0, false}, {0, 1, 2, true}, {0, 2, 1, false}};

// The axes of the three-point frame, in the precision W; identity axes for another mode.
template <class W>
ZmMatrix3T<W> AxesFromPoints(const ZmPoint3T<W>& p0, const ZmPoint3T<W>& p1, const ZmPoint3T<W>& p2, int mode) {
  if (mode < 0 || mode > 2) return ZmMatrix3T<W>();
  const ThreePointMode& rule = kThreePointModes[mode];
  const W tol = W(zm::kTolerance6);
  const ZmVector3T<W> b = p2 - p0;
  ZmVector3T<W> axes[3];
  ZmVector3T<W>& a = axes[rule.along];
  ZmVector3T<W>& n = axes[rule.normal];
  a = p1 - p0;
  a.unitize(tol);
  n = rule.reversed ? b.cross(a) : a.cross(b);
  n.unitize(tol);
  axes[rule.third] = rule.reversed ? a.cross(n) : n.cross(a);
  return Columns(axes[0], axes[1], axes[2]);
}

// The axes of the origin-and-direction frame (see the constructor), in the precision W.
template <class W>
ZmMatrix3T<W> AxesFromDirectionIn(const ZmVector3T<W>& direction, const ZmVector3T<W>* reference) {
  const W tol = W(zm::kTolerance6);
  ZmVector3T<W> x, y, z = direction;
  z.unitize(tol);
  if (!reference) {
    ZmMathT<W>::OrthogonalVectors(z, x, y);
  } else {
    y = direction.cross(*reference);
    y.unitize(tol);
    x = y.cross(z);
  }
  return Columns(x, y, z);
}

template <class T, class U>
ZmMatrix3T<T> AxesFromDirection(const ZmVector3T<U>& direction, const ZmVector3T<U>* reference) {
  using W = Wider<T, U>;
  const ZmVector3T<W> widened = reference ? ZmVector3T<W>(*reference) : ZmVector3T<W>();
  return ZmMatrix3T<T>(AxesFromDirectionIn(ZmVector3T<W>(direction), reference ? &widened : nullptr));
}

// SetMatrixByXAndZ in the wider precision; target is written only on success.
template <class T, class U>
unsigned char StoreAxesByXAndZ(ZmMatrix3T<T>& target, const ZmVector3T<U>& xIn, const ZmVector3T<U>& zIn) {
  using W = Wider<T, U>;
  const W tol = W(zm::kTolerance6);
  ZmVector3T<W> x(xIn), z(zIn);
  if (!z.unitize(tol) || !x.unitize(tol)) return 0;
  const ZmVector3T<W> y = z.cross(x);
  if (!(zm::RoundToFloat(y.length()) > W(kOrthogonalCross))) return 0;
  target = ZmMatrix3T<T>(Columns(x, y, z));
  return 1;
}

// SetMatrixByZAndX in the wider precision; target is written only on success.
template <class T, class U>
unsigned char StoreAxesByZAndX(ZmMatrix3T<T>& target, const ZmVector3T<U>& zIn, const ZmVector3T<U>& xIn) {
  using W = Wider<T, U>;
  const W tol = W(zm::kTolerance6);
  ZmVector3T<W> z(zIn), x(xIn);
  if (!z.unitize(tol) || !x.unitize(tol)) return 0;
  ZmVector3T<W> y = z.cross(x);
  if (!y.unitize(tol)) return 0;
  target = ZmMatrix3T<T>(Columns(y.cross(z), y, z));
  return 1;
}

// One coordinate through a placement, computed in W and rounded to U; the invalid point when
// the placement or the coordinate is unusable or the type unknown.
template <class W, class U>
ZmPoint3T<U> ConvertWith(const Placement<W>& placement, int type, const WbCoord3DT<U>& c, bool toGlobal,
                         bool isPoint) {
  ZmPoint3T<U> result(WbCoord3DT<U>::INVALID);
  if (!placement.usable || !zm::metric::IsUsable(c)) return result;
  const WbCoord3DT<W> in(W(c.x), W(c.y), W(c.z));
  WbCoord3DT<W> out;
  const bool known = toGlobal ? zm::frames::LocalToGlobal(placement, type, isPoint, in, out)
                              : zm::frames::GlobalToLocal(placement, type, isPoint, in, out);
  if (known) result = ZmPoint3T<U>(out);
  return result;
}

template <class W, class T>
Placement<W> PlacementOf(const ZmFrameT<T>& frame) {
  return Placement<W>(frame.GetOrigin(), frame.GetMatrix());
}

template <class T, class U>
void ConvertRange(const ZmFrameT<T>& frame, const ZmPoint3T<U>* in, ZmPoint3T<U>* out, std::uint64_t n,
                  bool toGlobal) {
  const Placement<Wider<T, U>> placement = PlacementOf<Wider<T, U>>(frame);
  const int type = frame.GetType();
  for (std::uint64_t i = 0; i < n; ++i) out[i] = ConvertWith(placement, type, in[i], toGlobal, true);
}

// A frame as a Cartesian object: its origin as a point and its axes as vectors; it keeps its
// own type. An unusable frame on either side gives the invalid frame.
template <class T, class U>
ZmFrameT<U> ConvertFrameWith(const ZmFrameT<T>& frame, const ZmFrameT<U>& moved, bool toGlobal) {
  using W = Wider<T, U>;
  const Placement<W> placement = PlacementOf<W>(frame);
  const bool usable = placement.usable && PlacementOf<W>(moved).usable;
  const ZmVector3T<U> invalid(WbCoord3DT<U>::INVALID);
  ZmVector3T<U> axes[3] = {invalid, invalid, invalid};
  ZmFrameT<U> result(moved);
  result.SetOrigin(usable ? ConvertWith(placement, ZmFrameCartesian, moved.GetOrigin(), toGlobal, true)
                          : ZmPoint3T<U>(invalid));
  for (int j = 0; usable && j < 3; ++j) {
    axes[j] = ZmVector3T<U>(ConvertWith(placement, ZmFrameCartesian, moved.GetMatrix().GetColumn(j), toGlobal, false));
  }
  result.SetMatrix(axes[0], axes[1], axes[2]);
  return result;
}

// The protected type conversions, for points and vectors alike.
template <class C, class T>
unsigned char FromCartesianInto(int type, T x, T y, T z, C& out) {
  WbCoord3DT<T> c;
  if (!zm::frames::FromCartesian(type, WbCoord3DT<T>(x, y, z), c)) return 0;
  out = C(c);
  return 1;
}

template <class T>
unsigned char ToCartesianComponents(int type, const WbCoord3DT<T>& in, T& x, T& y, T& z) {
  WbCoord3DT<T> c;
  if (!zm::frames::ToCartesian(type, in, c)) return 0;
  x = c.x;
  y = c.y;
  z = c.z;
  return 1;
}

}  // namespace

// --- construction

template <class T>
ZmFrameT<T>::ZmFrameT() : m_origin(0, 0, 0) {}

template <class T>
ZmFrameT<T>::ZmFrameT(const Vector3& x, const Vector3& y, const Vector3& z, const Point3& origin, ZmFrameType type)
    : m_origin(origin), m_matrix(Columns(x, y, z)), m_type(type) {}

template <class T>
ZmFrameT<T>::ZmFrameT(const ZmPoint3T<double>& p0, const ZmPoint3T<double>& p1, const ZmPoint3T<double>& p2, int mode,
                      ZmFrameType type)
    : m_origin(p0), m_matrix(AxesFromPoints<double>(p0, p1, p2, mode)), m_type(type) {}

template <class T>
ZmFrameT<T>::ZmFrameT(const ZmPoint3T<float>& p0, const ZmPoint3T<float>& p1, const ZmPoint3T<float>& p2, int mode,
                      ZmFrameType type)
    : m_origin(p0), m_matrix(AxesFromPoints<T>(Point3(p0), Point3(p1), Point3(p2), mode)), m_type(type) {}

template <class T>
ZmFrameT<T>::ZmFrameT(const ZmPoint3T<double>& origin, const ZmVector3T<double>& direction, ZmFrameType type,
                      const ZmVector3T<double>* reference)
    : m_origin(origin), m_matrix(AxesFromDirection<T>(direction, reference)), m_type(type) {}

template <class T>
ZmFrameT<T>::ZmFrameT(const ZmPoint3T<float>& origin, const ZmVector3T<float>& direction, ZmFrameType type,
                      const ZmVector3T<float>* reference)
    : m_origin(origin), m_matrix(AxesFromDirection<T>(direction, reference)), m_type(type) {}

// --- accessors

template <class T>
void ZmFrameT<T>::SetMatrix(const ZmVector3T<double>& x, const ZmVector3T<double>& y, const ZmVector3T<double>& z) {
  m_matrix = Columns(Vector3(x), Vector3(y), Vector3(z));
}

template <class T>
void ZmFrameT<T>::SetMatrix(const ZmVector3T<float>& x, const ZmVector3T<float>& y, const ZmVector3T<float>& z) {
  m_matrix = Columns(Vector3(x), Vector3(y), Vector3(z));
}

template <class T>
ZmVector3T<T> ZmFrameT<T>::GetVector(int i) const {
  return (i >= 0 && i <= 2) ? m_matrix.GetColumn(i) : Vector3(WbCoord3DT<T>::INVALID);
}

template <class T>
unsigned char ZmFrameT<T>::GetVector(int i, ZmVector3T<double>& row) const {
  if (i < 0 || i > 2) return 0;
  row = ZmVector3T<double>(m_matrix.GetRow(i));
  return 1;
}

template <class T>
unsigned char ZmFrameT<T>::GetVector(int i, ZmVector3T<float>& axis) const {
  if (i < 0 || i > 2) return 0;
  axis = ZmVector3T<float>(m_matrix.GetColumn(i));
  return 1;
}

template <class T>
void ZmFrameT<T>::GetVectors(Vector3& x, Vector3& y, Vector3& z) const {
  x = m_matrix.GetColumn(0);
  y = m_matrix.GetColumn(1);
  z = m_matrix.GetColumn(2);
}

template <class T>
void ZmFrameT<T>::SetIdentity(unsigned char resetOrigin) {
  m_matrix = Matrix3::IDENTITY;
  if (resetOrigin) m_origin = Point3(0, 0, 0);
}

template <class T>
unsigned char ZmFrameT<T>::SetMatrixByXAndZ(const ZmVector3T<double>& x, const ZmVector3T<double>& z) {
  return StoreAxesByXAndZ(m_matrix, x, z);
}

template <class T>
unsigned char ZmFrameT<T>::SetMatrixByXAndZ(const ZmVector3T<float>& x, const ZmVector3T<float>& z) {
  return StoreAxesByXAndZ(m_matrix, x, z);
}

template <class T>
unsigned char ZmFrameT<T>::SetMatrixByZAndX(const ZmVector3T<double>& z, const ZmVector3T<double>& x) {
  return StoreAxesByZAndX(m_matrix, z, x);
}

template <class T>
unsigned char ZmFrameT<T>::SetMatrixByZAndX(const ZmVector3T<float>& z, const ZmVector3T<float>& x) {
  return StoreAxesByZAndX(m_matrix, z, x);
}

// --- conversions

template <class T>
ZmPoint3T<double> ZmFrameT<T>::Convert(const WbCoord3DT<double>& c, unsigned char toGlobal,
                                       unsigned char isPoint) const {
  return ConvertWith(PlacementOf<double>(*this), m_type, c, toGlobal != 0, isPoint != 0);
}

template <class T>
ZmPoint3T<float> ZmFrameT<T>::Convert(const WbCoord3DT<float>& c, unsigned char toGlobal, unsigned char isPoint) const {
  return ConvertWith(PlacementOf<T>(*this), m_type, c, toGlobal != 0, isPoint != 0);
}

template <class T>
void ZmFrameT<T>::ConvertPoints(int count, const ZmPoint3T<double>* in, ZmPoint3T<double>* out,
                                unsigned char toGlobal) const {
  if (count > 0 && in && out) ConvertRange(*this, in, out, std::uint64_t(count), toGlobal != 0);
}

template <class T>
void ZmFrameT<T>::ConvertPoints(int count, const ZmPoint3T<float>* in, ZmPoint3T<float>* out,
                                unsigned char toGlobal) const {
  if (count > 0 && in && out) ConvertRange(*this, in, out, std::uint64_t(count), toGlobal != 0);
}

template <class T>
void ZmFrameT<T>::LocalToGlobal(WbArrayTempl<ZmPoint3T<double>>& points) const {
  ConvertRange(*this, points.GetData(), points.GetData(), points.GetSize(), true);
}

template <class T>
void ZmFrameT<T>::LocalToGlobal(WbArrayTempl<ZmPoint3T<float>>& points) const {
  ConvertRange(*this, points.GetData(), points.GetData(), points.GetSize(), true);
}

template <class T>
ZmFrameT<double> ZmFrameT<T>::ConvertFrame(const ZmFrameT<double>& frame, unsigned char toGlobal) const {
  return ConvertFrameWith(*this, frame, toGlobal != 0);
}

template <class T>
ZmFrameT<float> ZmFrameT<T>::ConvertFrame(const ZmFrameT<float>& frame, unsigned char toGlobal) const {
  return ConvertFrameWith(*this, frame, toGlobal != 0);
}

template <class T>
unsigned char ZmFrameT<T>::ConvertCartesianCoord(T x, T y, T z, Point3& out) const {
  return FromCartesianInto(m_type, x, y, z, out);
}

template <class T>
unsigned char ZmFrameT<T>::ConvertCartesianCoord(T x, T y, T z, Vector3& out) const {
  return FromCartesianInto(m_type, x, y, z, out);
}

template <class T>
unsigned char ZmFrameT<T>::GetCartesianCoord(const Point3& in, T& x, T& y, T& z) const {
  return ToCartesianComponents(m_type, in, x, y, z);
}

template <class T>
unsigned char ZmFrameT<T>::GetCartesianCoord(const Vector3& in, T& x, T& y, T& z) const {
  return ToCartesianComponents(m_type, in, x, y, z);
}

// --- queries

template <class T>
unsigned char ZmFrameT<T>::IsValid() const {
  for (int j = 0; j < 3; ++j) {
    if (!m_matrix.GetColumn(j).IsValid()) return 0;
  }
  return m_origin.IsValid();
}

template <class T>
int ZmFrameT<T>::GetDirectionAxis(const Vector3& dir, T maxAngleDeg, T& sign) const {
  int best = kNoAxis;
  T bestAngle = 0, bestSign = 1;
  for (int i = 0; i < 3; ++i) {
    const T angle = ZmMathT<T>::AngleDeg(dir, m_matrix.GetColumn(i));
    if (angle == zm::Invalid<T>()) continue;
    const T folded = angle > T(90) ? T(180) - angle : angle;
    if (folded < maxAngleDeg && (best == kNoAxis || folded < bestAngle)) {
      best = i;
      bestAngle = folded;
      bestSign = angle <= T(90) ? T(1) : T(-1);
    }
  }
  if (best != kNoAxis) sign = bestSign;
  return best;
}

template <class T>
WbString ZmFrameT<T>::DumpOneLine() const try {
  const zm::BoundaryCall boundary;
  WbString text;
  text.Format(L"v1=%s, v2=%s, v3=%s, pt=%s", m_matrix.GetColumn(0).GetString(L"%.3f"),
              m_matrix.GetColumn(1).GetString(L"%.3f"), m_matrix.GetColumn(2).GetString(L"%.3f"),
              m_origin.GetString(L"%.1f"));
  return text;
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  return WbString();
}

template <class T>
void ZmFrameT<T>::WriteDebug(const wchar_t* /*title*/) const {}

template class ZmFrameT<double>;
template class ZmFrameT<float>;
